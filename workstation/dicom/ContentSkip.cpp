#include "workstation/dicom/ContentSkip.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "workstation/dicom/Padding.h"

namespace workstation {
namespace {

/// Before the meta information (PS3.10 7.1).
constexpr std::size_t signatureAt = 128;
constexpr std::string_view signature = "DICM";
constexpr std::string_view explicitLittleEndian = "1.2.840.10008.1.2.1";

namespace tags {
constexpr std::uint32_t transferSyntax = 0x00020010;
constexpr std::uint32_t lastOfMetaInformation = 0x0002FFFF;
constexpr std::uint32_t evidence = 0x0040A375;  ///< Current Requested Procedure Evidence Sequence
constexpr std::uint32_t content = 0x0040A730;   ///< Content Sequence
constexpr std::uint32_t item = 0xFFFEE000;
constexpr std::uint32_t itemEnd = 0xFFFEE00D;
constexpr std::uint32_t sequenceEnd = 0xFFFEE0DD;
}  // namespace tags

constexpr std::uint32_t undefinedLength = 0xFFFFFFFF;
constexpr int deepestNesting = 64;

/// The value representations whose length has two bytes (PS3.5 7.1.2).
constexpr std::array<std::string_view, 21> shortOnes = {"AE", "AS", "AT", "CS", "DA", "DS", "DT",
                                                        "FD", "FL", "IS", "LO", "LT", "PN", "SH",
                                                        "SL", "SS", "ST", "TM", "UI", "UL", "US"};

struct Element {
  std::uint32_t tag = 0;
  bool isSequence = false;
  std::uint32_t length = 0;
};

/// Goes over the elements of a file in explicit VR little endian. Every step answers nothing, or false, where the bytes
/// do not allow it.
class ElementWalk {
 public:
  ElementWalk(const pelmar::Bytes& bytes, std::size_t start) : bytes_(bytes), at_(start) {}

  std::size_t place() const { return at_; }
  bool isAtEnd() const { return at_ == bytes_.size(); }

  /// Stands before the value then.
  std::optional<Element> header() {
    const auto tag = tagHere();
    if (!tag || !has(8)) return std::nullopt;
    const std::string_view representation = text(at_ + 4, at_ + 6);
    const auto isCapital = [](char c) { return c >= 'A' && c <= 'Z'; };
    if (!std::all_of(representation.begin(), representation.end(), isCapital)) return std::nullopt;
    Element element{*tag, representation == "SQ", 0};
    if (std::find(shortOnes.begin(), shortOnes.end(), representation) != shortOnes.end()) {
      element.length = number(at_ + 6, 2);
      at_ += 8;
      return element;
    }
    if (!has(12)) return std::nullopt;
    element.length = number(at_ + 8, 4);
    at_ += 12;
    return element;
  }

  bool skipValue(const Element& element, int depth = 0) {
    if (element.length != undefinedLength) return skip(element.length);
    return element.isSequence && skipItems(depth);
  }

  std::string_view text(std::size_t from, std::size_t to) const {
    return {reinterpret_cast<const char*>(bytes_.data()) + from, to - from};
  }

 private:
  bool has(std::size_t count) const { return bytes_.size() - at_ >= count; }
  bool skip(std::size_t count) {
    if (!has(count)) return false;
    at_ += count;
    return true;
  }

  std::uint32_t number(std::size_t at, std::size_t count) const {
    std::uint32_t value = 0;
    for (std::size_t i = count; i > 0; --i) value = value << 8U | bytes_[at + i - 1];
    return value;
  }
  std::optional<std::uint32_t> tagHere() const {
    if (!has(4)) return std::nullopt;
    return number(at_, 2) << 16U | number(at_ + 2, 2);
  }
  /// Of an item, or of what ends items: they have no value representation.
  std::optional<Element> itemHeader() {
    const auto tag = tagHere();
    if (!tag || !has(8)) return std::nullopt;
    const Element element{*tag, false, number(at_ + 4, 4)};
    at_ += 8;
    return element;
  }

  /// Up to the end of a sequence of undefined length.
  bool skipItems(int depth) {
    if (depth > deepestNesting) return false;
    for (auto next = itemHeader(); next; next = itemHeader()) {
      if (next->tag == tags::sequenceEnd) return next->length == 0;
      if (next->tag != tags::item) return false;
      if (next->length == undefinedLength ? !skipElements(depth) : !skip(next->length)) return false;
    }
    return false;
  }
  /// Up to the end of an item of undefined length.
  bool skipElements(int depth) {
    while (tagHere() != tags::itemEnd) {
      const auto element = header();
      if (!element || !skipValue(*element, depth + 1)) return false;
    }
    return itemHeader()->length == 0;
  }

  const pelmar::Bytes& bytes_;
  std::size_t at_;
};

}  // namespace

std::optional<pelmar::Bytes> withoutContent(const pelmar::Bytes& file) {
  const std::size_t start = signatureAt + signature.size();
  ElementWalk walk(file, start);
  if (file.size() < start || walk.text(signatureAt, start) != signature) return std::nullopt;
  pelmar::Bytes kept(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(start));
  bool isExplicit = false;
  while (!walk.isAtEnd()) {
    const std::size_t begin = walk.place();
    const auto element = walk.header();
    const std::size_t value = walk.place();
    if (!element || (element->tag > tags::lastOfMetaInformation && !isExplicit) || !walk.skipValue(*element))
      return std::nullopt;
    if (element->tag == tags::transferSyntax)
      isExplicit = withoutPadding(walk.text(value, walk.place())) == explicitLittleEndian;
    if (element->tag == tags::content || element->tag == tags::evidence) continue;
    kept.insert(kept.end(), file.begin() + static_cast<std::ptrdiff_t>(begin),
                file.begin() + static_cast<std::ptrdiff_t>(walk.place()));
  }
  return kept;
}

}  // namespace workstation
