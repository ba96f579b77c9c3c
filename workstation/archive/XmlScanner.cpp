#include "workstation/archive/XmlScanner.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cstdint>
#include <utility>

#include "workstation/archive/Utf.h"

namespace workstation {

namespace {

constexpr std::string_view blanks = " \t\r\n";
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/// Characters that XML 1.0 allows in a text.
bool isCharacter(std::uint32_t codePoint) {
  if (codePoint < 0x20) return codePoint == '\t' || codePoint == '\n' || codePoint == '\r';
  return codePoint < 0xD800 ||
         (codePoint >= 0xE000 && codePoint <= 0x10FFFF && codePoint != 0xFFFE && codePoint != 0xFFFF);
}

std::string lowerCase(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return result;
}

/// The character that "amp", "#38" or "#x26" stands for.
std::optional<std::uint32_t> referredCharacter(std::string_view name) {
  constexpr std::array<std::pair<std::string_view, char>, 5> named{
      {{"lt", '<'}, {"gt", '>'}, {"amp", '&'}, {"quot", '"'}, {"apos", '\''}}};
  for (const auto& [known, character] : named)
    if (known == name) return static_cast<std::uint8_t>(character);
  if (!name.starts_with('#')) return std::nullopt;
  name.remove_prefix(1);
  const int base = name.starts_with('x') ? 16 : 10;
  if (base == 16) name.remove_prefix(1);
  std::uint32_t codePoint = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), codePoint, base);
  if (error != std::errc() || end != name.data() + name.size() || !isCharacter(codePoint)) return std::nullopt;
  return codePoint;
}

}  // namespace

XmlScanner::XmlScanner(std::string_view xml) : xml_(xml) {
  if (startsWith(byteOrderMark)) at_ = byteOrderMark.size();
}

bool XmlScanner::refuse(const std::string& what) {
  if (!problem_.empty()) return false;
  const auto reached = xml_.begin() + static_cast<std::ptrdiff_t>(std::min(at_, xml_.size()));
  problem_ = "line " + std::to_string(1 + std::count(xml_.begin(), reached, '\n')) + ": " + what;
  return false;
}

void XmlScanner::skipBlanks() { at_ = std::min(xml_.find_first_not_of(blanks, at_), xml_.size()); }

/// `what` names the thing that must end with the mark.
bool XmlScanner::skipBehind(std::string_view mark, const char* what) {
  const std::size_t end = xml_.find(mark, at_);
  if (end == std::string_view::npos) return refuse(std::string(what) + " does not end");
  at_ = end + mark.size();
  return true;
}

bool XmlScanner::skipBlanksAndRemarks() {
  while (true) {
    skipBlanks();
    if (startsWith("<!--")) {
      at_ += 4;
      if (!skipBehind("-->", "a comment")) return false;
    } else if (startsWith("<?")) {
      if (!skipBehind("?>", "a processing instruction")) return false;
    } else {
      return true;
    }
  }
}

bool XmlScanner::readProlog() {
  if (!isUtf8(xml_)) return refuse("the text is not valid UTF-8");
  for (const char c : xml_)
    if (!isCharacter(static_cast<std::uint8_t>(c))) return refuse("the text holds a control character");
  skipBlanks();
  if (startsWith("<?xml") && !readDeclaration()) return false;
  if (!skipBlanksAndRemarks()) return false;
  if (startsWith("<!DOCTYPE") && !readDocumentType()) return false;
  return true;
}

bool XmlScanner::readDeclaration() {
  const std::size_t begin = at_;
  if (!skipBehind("?>", "the XML declaration")) return false;
  const std::string declaration = lowerCase(xml_.substr(begin, at_ - begin));
  const std::size_t encoding = declaration.find("encoding");
  if (encoding == std::string::npos) return true;
  const std::size_t quote = declaration.find_first_of("\"'", encoding);
  if (quote == std::string::npos) return refuse("the XML declaration names no encoding");
  const std::size_t end = declaration.find(declaration[quote], quote + 1);
  const std::string name = declaration.substr(quote + 1, end == std::string::npos ? end : end - quote - 1);
  if (name != "utf-8" && name != "us-ascii") return refuse("the encoding is not UTF-8");
  return true;
}

/// An internal subset could define entities that stand for more text than the file holds.
bool XmlScanner::readDocumentType() {
  const std::size_t begin = at_;
  if (!skipBehind(">", "the document type")) return false;
  if (xml_.substr(begin, at_ - begin).find('[') != std::string_view::npos)
    return refuse("the document type has definitions of its own");
  return true;
}

std::optional<XmlScanner::Tag> XmlScanner::nextTag() {
  if (!skipBlanksAndRemarks()) return std::nullopt;
  if (at_ == xml_.size()) return Tag();
  if (xml_[at_] != '<') {
    refuse("there is text where a tag must stand");
    return std::nullopt;
  }
  return readTag();
}

std::optional<XmlScanner::Tag> XmlScanner::readTag() {
  Tag tag;
  ++at_;
  tag.kind = startsWith("/") ? Tag::Kind::Close : Tag::Kind::Open;
  if (tag.kind == Tag::Kind::Close) ++at_;
  const std::size_t nameEnd = std::min(xml_.find_first_of(" \t\r\n/><", at_), xml_.size());
  tag.name = xml_.substr(at_, nameEnd - at_);
  const std::size_t end = xml_.find_first_of("<>", nameEnd);
  if (tag.name.empty() || end == std::string_view::npos || xml_[end] == '<') {
    refuse("a tag is damaged");
    return std::nullopt;
  }
  if (tag.kind == Tag::Kind::Open && xml_[end - 1] == '/') tag.kind = Tag::Kind::Empty;
  at_ = end + 1;
  return tag;
}

bool XmlScanner::readText(std::string_view name, std::string& text) {
  while (true) {
    const std::size_t end = std::min(xml_.find_first_of("<&\r", at_), xml_.size());
    text += xml_.substr(at_, end - at_);
    at_ = end;
    if (at_ == xml_.size()) return refuse("<" + std::string(name) + "> does not end");
    if (xml_[at_] == '\r') {
      // XML 1.0, 2.11: every end of a line is read as one line feed.
      text += '\n';
      at_ += startsWith("\r\n") ? 2 : 1;
    } else if (xml_[at_] == '&') {
      if (!readReference(text)) return false;
    } else if (startsWith("<!--")) {
      at_ += 4;
      if (!skipBehind("-->", "a comment")) return false;
    } else if (startsWith("<![CDATA[")) {
      at_ += 9;
      const std::size_t begin = at_;
      if (!skipBehind("]]>", "a CDATA section")) return false;
      text += xml_.substr(begin, at_ - 3 - begin);
    } else {
      const std::optional<Tag> tag = readTag();
      if (!tag) return false;
      if (tag->kind == Tag::Kind::Close && tag->name == name) return true;
      return refuse("<" + std::string(name) + "> holds another element");
    }
  }
}

bool XmlScanner::readReference(std::string& text) {
  constexpr std::size_t longestReference = 10;  // "&#x10FFFF;"
  const std::size_t end = xml_.substr(at_, longestReference).find(';');
  if (end == std::string_view::npos) return refuse("an entity reference does not end");
  const std::optional<std::uint32_t> character = referredCharacter(xml_.substr(at_ + 1, end - 1));
  if (!character) return refuse("an entity is not known");
  appendUtf8(text, *character);
  at_ += end + 1;
  return true;
}

}  // namespace workstation
