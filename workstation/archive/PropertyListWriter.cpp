#include "workstation/archive/PropertyListWriter.h"

#include <algorithm>
#include <bit>

#include "workstation/archive/BinaryPropertyList.h"
#include "workstation/archive/PropertyListMarkers.h"
#include "workstation/archive/Utf.h"

namespace workstation {

namespace {

void appendNumber(pelmar::Bytes& bytes, std::uint64_t value, std::size_t size) {
  for (std::size_t i = size; i-- > 0;) bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

/// The power of two whose number of bytes holds a value: 0, 1, 2 or 3.
std::size_t sizeExponent(std::uint64_t value) {
  if (value < 0x100) return 0;
  if (value < 0x10000) return 1;
  return value < 0x100000000 ? 2 : 3;
}

void appendInteger(pelmar::Bytes& bytes, std::uint64_t value) {
  const std::size_t exponent = sizeExponent(value);
  bytes.push_back(static_cast<std::uint8_t>(integerMarker | exponent));
  appendNumber(bytes, value, std::size_t{1} << exponent);
}

void appendMarker(pelmar::Bytes& bytes, std::uint8_t marker, std::size_t count) {
  bytes.push_back(static_cast<std::uint8_t>(marker | std::min<std::size_t>(count, lengthFollows)));
  if (count >= lengthFollows) appendInteger(bytes, count);
}

}  // namespace

PropertyListWriter::Index PropertyListWriter::boolean(bool value) {
  return addScalar({value ? trueMarker : falseMarker});
}

PropertyListWriter::Index PropertyListWriter::integer(std::int64_t value) {
  pelmar::Bytes bytes;
  // A negative number has the highest of its 64 bits set and thus takes 8 bytes, the signed form.
  appendInteger(bytes, static_cast<std::uint64_t>(value));
  return addScalar(std::move(bytes));
}

PropertyListWriter::Index PropertyListWriter::real(double value) {
  pelmar::Bytes bytes{realMarker | 3};
  appendNumber(bytes, std::bit_cast<std::uint64_t>(value), 8);
  return addScalar(std::move(bytes));
}

PropertyListWriter::Index PropertyListWriter::text(std::string_view utf8) {
  pelmar::Bytes bytes;
  if (isAscii(utf8)) {
    appendMarker(bytes, asciiMarker, utf8.size());
    bytes.insert(bytes.end(), utf8.begin(), utf8.end());
  } else {
    const std::vector<std::uint16_t> units = utf16FromUtf8(utf8).value_or(std::vector<std::uint16_t>());
    appendMarker(bytes, utf16Marker, units.size());
    for (const std::uint16_t unit : units) appendNumber(bytes, unit, 2);
  }
  return addScalar(std::move(bytes));
}

PropertyListWriter::Index PropertyListWriter::uid(std::uint32_t value) {
  const std::size_t size = std::size_t{1} << sizeExponent(value);
  pelmar::Bytes bytes{static_cast<std::uint8_t>(uidMarker | (size - 1))};
  appendNumber(bytes, value, size);
  return addScalar(std::move(bytes));
}

PropertyListWriter::Index PropertyListWriter::array(std::vector<Index> elements) {
  const std::size_t count = elements.size();
  return addObject({{}, arrayMarker, count, std::move(elements)});
}

PropertyListWriter::Index PropertyListWriter::dictionary(const Entries& entries) {
  const Index index = addObject({{}, dictionaryMarker, 0, {}});
  fill(index, entries);
  return index;
}

void PropertyListWriter::fill(Index dictionary, const Entries& entries) {
  Object& object = objects_[dictionary];
  object.count = entries.size();
  for (const auto& [key, value] : entries) object.references.push_back(key);
  for (const auto& [key, value] : entries) object.references.push_back(value);
}

PropertyListWriter::Index PropertyListWriter::addScalar(pelmar::Bytes scalar) {
  const auto known = scalars_.find(scalar);
  if (known != scalars_.end()) return known->second;
  const Index index = addObject({scalar, 0, 0, {}});
  scalars_.emplace(std::move(scalar), index);
  return index;
}

PropertyListWriter::Index PropertyListWriter::addObject(Object object) {
  objects_.push_back(std::move(object));
  return static_cast<Index>(objects_.size() - 1);
}

void PropertyListWriter::write(const Object& object, std::size_t referenceSize, pelmar::Bytes& bytes) const {
  if (!object.scalar.empty()) {
    bytes.insert(bytes.end(), object.scalar.begin(), object.scalar.end());
    return;
  }
  appendMarker(bytes, object.marker, object.count);
  for (const Index reference : object.references) appendNumber(bytes, reference, referenceSize);
}

pelmar::Bytes PropertyListWriter::bytes(Index top) const {
  constexpr std::string_view signature = BinaryPropertyList::signature;
  pelmar::Bytes bytes(signature.begin(), signature.end());
  const std::size_t referenceSize = std::size_t{1} << sizeExponent(objects_.size() - 1);
  std::vector<std::size_t> offsets;
  for (const Object& object : objects_) {
    offsets.push_back(bytes.size());
    write(object, referenceSize, bytes);
  }
  const std::size_t offsetSize = std::size_t{1} << sizeExponent(offsets.back());
  if ((bytes.size() + offsets.size() * offsetSize) % 2 != 0) bytes.push_back(0);
  const std::size_t table = bytes.size();
  for (const std::size_t offset : offsets) appendNumber(bytes, offset, offsetSize);
  bytes.insert(bytes.end(), 6, 0);
  bytes.push_back(static_cast<std::uint8_t>(offsetSize));
  bytes.push_back(static_cast<std::uint8_t>(referenceSize));
  appendNumber(bytes, objects_.size(), 8);
  appendNumber(bytes, top, 8);
  appendNumber(bytes, table, 8);
  return bytes;
}

}  // namespace workstation
