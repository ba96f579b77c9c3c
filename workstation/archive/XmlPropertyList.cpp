#include "workstation/archive/XmlPropertyList.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <system_error>

#include "workstation/archive/ArchiveBounds.h"
#include "workstation/archive/XmlScanner.h"

namespace workstation {

namespace {

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view blanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

/// The whole of a text as a number, after an optional "+".
template <class Number>
std::errc readNumber(std::string_view text, Number& number) {
  text = trimmed(text);
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error == std::errc() && end != text.data() + text.size()) return std::errc::invalid_argument;
  return error;
}

}  // namespace

/// Builds the list while it walks through the tags.
class XmlPropertyListParser {
 public:
  explicit XmlPropertyListParser(std::string_view xml) : scanner_(xml) {}

  bool run();
  const std::string& problem() const { return scanner_.problem(); }
  XmlPropertyList& list() { return list_; }

 private:
  using Tag = XmlScanner::Tag;
  /// A container that has not ended. Its references so far are those in `pending_` from `begin`; in a dictionary
  /// they alternate between keys and values.
  struct Open {
    std::string_view name;
    std::size_t begin;
    bool isDictionary() const { return name == "dict"; }
  };

  bool readTop();
  bool readElement(const Tag& tag);
  bool close(std::string_view name);
  bool readLeaf(const Tag& tag);
  bool readContent(const Tag& tag, PlistNode& node);
  bool readNumberElement(std::string_view name, std::string_view text, PlistNode& node);
  bool expects(std::string_view name);
  bool add(const PlistNode& node);

  XmlScanner scanner_;
  XmlPropertyList list_;
  std::vector<Open> open_;
  std::vector<PropertyList::Index> pending_;
};

bool XmlPropertyListParser::run() {
  if (!scanner_.readProlog()) return false;
  const std::optional<Tag> first = scanner_.nextTag();
  if (!first) return false;
  if (first->kind != Tag::Kind::Open || first->name != "plist") return scanner_.refuse("<plist> is missing");
  if (!readTop()) return false;
  const std::optional<Tag> behind = scanner_.nextTag();
  if (!behind) return false;
  if (behind->kind != Tag::Kind::End) return scanner_.refuse("there is more behind </plist>");
  return true;
}

/// From behind <plist> to behind </plist>.
bool XmlPropertyListParser::readTop() {
  while (true) {
    const std::optional<Tag> tag = scanner_.nextTag();
    if (!tag) return false;
    if (tag->kind == Tag::Kind::End) return scanner_.refuse("the text is cut off");
    if (tag->kind != Tag::Kind::Close) {
      if (!readElement(*tag)) return false;
    } else if (!open_.empty()) {
      if (!close(tag->name)) return false;
    } else if (tag->name != "plist" || pending_.size() != 1) {
      return scanner_.refuse("<plist> does not hold exactly one element");
    } else {
      list_.top_ = pending_.front();
      return true;
    }
  }
}

bool XmlPropertyListParser::readElement(const Tag& tag) {
  if (!expects(tag.name)) return false;
  if (tag.name != "dict" && tag.name != "array") return readLeaf(tag);
  if (open_.size() >= archive_bounds::elementDepth)
    return scanner_.refuse("elements stand inside each other more than " +
                           std::to_string(archive_bounds::elementDepth) + " deep");
  open_.push_back({tag.name, pending_.size()});
  return tag.kind == Tag::Kind::Open || close(tag.name);
}

/// Whether such an element may stand here: in a dictionary keys and values take turns, elsewhere there are no keys.
bool XmlPropertyListParser::expects(std::string_view name) {
  const bool needsKey =
      !open_.empty() && open_.back().isDictionary() && (pending_.size() - open_.back().begin) % 2 == 0;
  if (needsKey == (name == "key")) return true;
  return scanner_.refuse(needsKey ? "a value in <dict> has no key" : "a key stands where a value must stand");
}

bool XmlPropertyListParser::close(std::string_view name) {
  const Open open = open_.back();
  if (name != open.name) return scanner_.refuse("<" + std::string(open.name) + "> does not end");
  open_.pop_back();
  const std::size_t references = pending_.size() - open.begin;
  const std::size_t step = open.isDictionary() ? 2 : 1;
  if (references % step != 0) return scanner_.refuse("a key has no value");
  PlistNode node;
  node.kind = open.isDictionary() ? PlistNode::Kind::Dictionary : PlistNode::Kind::Array;
  node.count = static_cast<std::uint32_t>(references / step);
  node.position = list_.references_.size();
  for (std::size_t part = 0; part < step; ++part)
    for (std::size_t i = open.begin + part; i < pending_.size(); i += step) list_.references_.push_back(pending_[i]);
  pending_.resize(open.begin);
  return add(node);
}

bool XmlPropertyListParser::add(const PlistNode& node) {
  if (list_.nodes_.size() >= archive_bounds::objects)
    return scanner_.refuse("there are more than " + std::to_string(archive_bounds::objects) + " elements");
  pending_.push_back(static_cast<PropertyList::Index>(list_.nodes_.size()));
  list_.nodes_.push_back(node);
  return true;
}

bool XmlPropertyListParser::readLeaf(const Tag& tag) {
  constexpr std::array<std::string_view, 8> names{"string", "key", "integer", "real", "true", "false", "data", "date"};
  if (std::find(names.begin(), names.end(), tag.name) == names.end())
    return scanner_.refuse("<" + std::string(tag.name) + "> is not an element of property lists");
  PlistNode node;
  if (tag.name == "true" || tag.name == "false") {
    node.kind = PlistNode::Kind::Boolean;
    node.integer = tag.name == "true" ? 1 : 0;
  }
  return readContent(tag, node) && add(node);
}

bool XmlPropertyListParser::readContent(const Tag& tag, PlistNode& node) {
  const std::size_t begin = list_.texts_.size();
  if (tag.kind == Tag::Kind::Open && !scanner_.readText(tag.name, list_.texts_)) return false;
  if (tag.name == "string" || tag.name == "key") {
    node.kind = PlistNode::Kind::Text;
    node.position = begin;
    node.count = static_cast<std::uint32_t>(list_.texts_.size() - begin);
    return true;
  }
  const std::string text = list_.texts_.substr(begin);
  list_.texts_.resize(begin);
  if (tag.name == "integer" || tag.name == "real") return readNumberElement(tag.name, text, node);
  if (node.kind == PlistNode::Kind::Boolean && !trimmed(text).empty())
    return scanner_.refuse("<" + std::string(tag.name) + "> holds a text");
  return true;
}

bool XmlPropertyListParser::readNumberElement(std::string_view name, std::string_view text, PlistNode& node) {
  const bool isReal = name == "real";
  const std::errc error = isReal ? readNumber(text, node.real) : readNumber(text, node.integer);
  if (error != std::errc() && error != std::errc::result_out_of_range)
    return scanner_.refuse("<" + std::string(name) + "> holds no number");
  if (isReal) node.kind = PlistNode::Kind::Real;
  // A real beyond the range is as good as infinite; an integer beyond it stays of a kind that nobody reads.
  if (isReal && error != std::errc()) node.real = std::numeric_limits<double>::infinity();
  if (!isReal && error == std::errc()) node.kind = PlistNode::Kind::Integer;
  return true;
}

Result<XmlPropertyList> XmlPropertyList::parse(std::string_view xml) {
  XmlPropertyListParser parser(xml);
  if (!parser.run()) return Result<XmlPropertyList>::refused(parser.problem());
  return Result<XmlPropertyList>::of(std::move(parser.list()));
}

std::optional<PlistNode> XmlPropertyList::node(Index index) const {
  if (index >= nodes_.size()) return std::nullopt;
  return nodes_[index];
}

PropertyList::Index XmlPropertyList::reference(const PlistNode& container, std::uint32_t slot) const {
  return references_[container.position + slot];
}

std::optional<std::string> XmlPropertyList::text(const PlistNode& node) const {
  return texts_.substr(node.position, node.count);
}

bool XmlPropertyList::isText(const PlistNode& node, std::string_view ascii) const {
  return node.kind == PlistNode::Kind::Text && std::string_view(texts_).substr(node.position, node.count) == ascii;
}

}  // namespace workstation
