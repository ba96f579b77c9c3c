#include "workstation/archive/BinaryPropertyList.h"

#include <algorithm>
#include <bit>
#include <limits>

#include "workstation/archive/ArchiveBounds.h"
#include "workstation/archive/PropertyListMarkers.h"
#include "workstation/archive/Utf.h"

namespace workstation {

namespace {

constexpr std::size_t trailerSize = 32;
constexpr std::size_t largestNumberSize = 8;

PlistNode scalar(PlistNode::Kind kind, std::int64_t integer) {
  PlistNode node;
  node.kind = kind;
  node.integer = integer;
  return node;
}

}  // namespace

Result<BinaryPropertyList> BinaryPropertyList::open(std::span<const std::uint8_t> bytes) {
  BinaryPropertyList list;
  list.bytes_ = bytes;
  const bool hasSignature = bytes.size() >= signature.size() + trailerSize &&
                            std::equal(signature.begin(), signature.end(), bytes.begin(),
                                       [](char c, std::uint8_t byte) { return static_cast<std::uint8_t>(c) == byte; });
  if (!hasSignature) return Result<BinaryPropertyList>::refused("it is too short for a binary property list");
  if (!list.readTrailer())
    return Result<BinaryPropertyList>::refused(
        "the last 32 bytes do not describe a binary property list of at most " +
        std::to_string(archive_bounds::objects) +
        " objects that lies before them; it may be cut off, or followed by other bytes");
  return Result<BinaryPropertyList>::of(list);
}

bool BinaryPropertyList::readTrailer() {
  const std::size_t trailer = bytes_.size() - trailerSize;
  offsetSize_ = bytes_[trailer + 6];
  referenceSize_ = bytes_[trailer + 7];
  const std::uint64_t count = number(trailer + 8, 8);
  const std::uint64_t top = number(trailer + 16, 8);
  const std::uint64_t table = number(trailer + 24, 8);
  const auto isSize = [](std::size_t size) { return size >= 1 && size <= largestNumberSize; };
  if (!isSize(offsetSize_) || !isSize(referenceSize_)) return false;
  if (count > archive_bounds::objects || top >= count) return false;
  if (table < signature.size() || table > trailer || count > (trailer - table) / offsetSize_) return false;
  tablePosition_ = static_cast<std::size_t>(table);
  count_ = static_cast<Index>(count);
  top_ = static_cast<Index>(top);
  return true;
}

/// `size` bytes from 1 to 8, which must lie within the list.
std::uint64_t BinaryPropertyList::number(std::size_t position, std::size_t size) const {
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < size; ++i) value = value << 8 | bytes_[position + i];
  return value;
}

/// Whether so much content fits between a position and the offset table.
bool BinaryPropertyList::holds(std::size_t position, std::uint64_t count, std::size_t unitSize) const {
  return position <= tablePosition_ && count <= (tablePosition_ - position) / unitSize;
}

std::optional<PlistNode> BinaryPropertyList::node(Index index) const {
  if (index >= count_) return std::nullopt;
  const std::uint64_t offset = number(tablePosition_ + index * offsetSize_, offsetSize_);
  if (offset < signature.size() || offset >= tablePosition_) return std::nullopt;
  const std::size_t position = static_cast<std::size_t>(offset);
  const std::uint8_t marker = bytes_[position];
  const unsigned low = lowerHalfOf(marker);
  switch (kindOf(marker)) {
    case constantMarker:
      if (marker == falseMarker || marker == trueMarker)
        return scalar(PlistNode::Kind::Boolean, marker == trueMarker ? 1 : 0);
      return PlistNode();
    case integerMarker:
      return integer(position + 1, low);
    case realMarker:
      return real(position + 1, low);
    case uidMarker:
      return uid(position + 1, low + 1);
    case asciiMarker:
    case utf16Marker:
    case arrayMarker:
    case dictionaryMarker:
      return sequence(position + 1, marker);
    default:
      return PlistNode();
  }
}

/// Integers of 1, 2 and 4 bytes are unsigned, those of 8 and 16 signed.
std::optional<PlistNode> BinaryPropertyList::integer(std::size_t position, unsigned sizeExponent) const {
  if (sizeExponent > 4 || !holds(position, 1, std::size_t{1} << sizeExponent)) return std::nullopt;
  if (sizeExponent < 4)
    return scalar(PlistNode::Kind::Integer,
                  static_cast<std::int64_t>(number(position, std::size_t{1} << sizeExponent)));
  const std::uint64_t high = number(position, 8);
  const auto low = static_cast<std::int64_t>(number(position + 8, 8));
  const bool fits = high == (low < 0 ? std::numeric_limits<std::uint64_t>::max() : 0);
  return fits ? scalar(PlistNode::Kind::Integer, low) : PlistNode();
}

std::optional<PlistNode> BinaryPropertyList::real(std::size_t position, unsigned sizeExponent) const {
  if (sizeExponent != 2 && sizeExponent != 3) return std::nullopt;
  const std::size_t size = std::size_t{1} << sizeExponent;
  if (!holds(position, 1, size)) return std::nullopt;
  PlistNode node;
  node.kind = PlistNode::Kind::Real;
  const std::uint64_t bits = number(position, size);
  node.real = size == 4 ? std::bit_cast<float>(static_cast<std::uint32_t>(bits)) : std::bit_cast<double>(bits);
  return node;
}

std::optional<PlistNode> BinaryPropertyList::uid(std::size_t position, std::size_t size) const {
  if (!holds(position, 1, size)) return std::nullopt;
  constexpr auto largest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < size; ++i) value = value > largest >> 8 ? largest : value << 8 | bytes_[position + i];
  return scalar(PlistNode::Kind::Uid, static_cast<std::int64_t>(value));
}

/// A text, an array or a dictionary, from behind its marker.
std::optional<PlistNode> BinaryPropertyList::sequence(std::size_t position, std::uint8_t marker) const {
  std::uint64_t count = lowerHalfOf(marker);
  if (count == lengthFollows) {
    if (!holds(position, 1, 1) || kindOf(bytes_[position]) != integerMarker) return std::nullopt;
    const std::optional<PlistNode> length = integer(position + 1, lowerHalfOf(bytes_[position]));
    if (!length || length->kind != PlistNode::Kind::Integer || length->integer < 0) return std::nullopt;
    position += 1 + (std::size_t{1} << (lowerHalfOf(bytes_[position])));
    count = static_cast<std::uint64_t>(length->integer);
  }
  PlistNode node;
  std::size_t unitSize = referenceSize_;
  switch (kindOf(marker)) {
    case asciiMarker:
      node.kind = PlistNode::Kind::Text;
      unitSize = 1;
      break;
    case utf16Marker:
      node.kind = PlistNode::Kind::Text;
      node.isUtf16 = true;
      unitSize = 2;
      break;
    case arrayMarker:
      node.kind = PlistNode::Kind::Array;
      break;
    default:
      node.kind = PlistNode::Kind::Dictionary;
      unitSize = 2 * referenceSize_;
  }
  if (!holds(position, count, unitSize)) return std::nullopt;
  node.count = static_cast<std::uint32_t>(count);
  node.position = position;
  return node;
}

PropertyList::Index BinaryPropertyList::reference(const PlistNode& container, std::uint32_t slot) const {
  const std::uint64_t index = number(container.position + slot * referenceSize_, referenceSize_);
  // An index that is too large stays too large.
  return static_cast<Index>(std::min<std::uint64_t>(index, std::numeric_limits<Index>::max()));
}

std::optional<std::string> BinaryPropertyList::text(const PlistNode& node) const {
  const auto content = bytes_.subspan(node.position, node.isUtf16 ? 2 * std::size_t{node.count} : node.count);
  if (node.isUtf16) return utf8FromBigEndianUtf16(content);
  std::string ascii(content.begin(), content.end());
  if (!isAscii(ascii)) return std::nullopt;
  return ascii;
}

bool BinaryPropertyList::isText(const PlistNode& node, std::string_view ascii) const {
  if (node.kind != PlistNode::Kind::Text || node.count != ascii.size()) return false;
  const std::size_t unitSize = node.isUtf16 ? 2 : 1;
  for (std::size_t i = 0; i < ascii.size(); ++i)
    if (number(node.position + i * unitSize, unitSize) != static_cast<std::uint8_t>(ascii[i])) return false;
  return true;
}

}  // namespace workstation
