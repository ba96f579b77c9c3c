#include "ArchiveTesting.h"

#include <algorithm>
#include <bit>
#include <fstream>
#include <iterator>
#include <limits>

namespace archive_testing {

using pelmar::Bytes;
using pelmar::Value;

namespace {

void append(Bytes& bytes, std::uint64_t value, std::size_t size) {
  for (std::size_t i = size; i-- > 0;) bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

/// A marker with the length behind it in 4 bytes, however short.
Bytes header(std::uint8_t marker, std::size_t count) {
  Bytes bytes{static_cast<std::uint8_t>(marker | 0xF), 0x12};
  append(bytes, count, 4);
  return bytes;
}

}  // namespace

std::int64_t integerOf(const Value& value) {
  // The rounded number is at most 2^10 away from the integer.
  constexpr std::int64_t reach = 1024;
  constexpr auto limits = std::numeric_limits<std::int64_t>();
  const double rounded = value.doubleValue();
  const std::int64_t middle = rounded >= 9.2233720368547748e18 ? limits.max() : static_cast<std::int64_t>(rounded);
  const std::int64_t first = middle < limits.min() + reach ? limits.min() : middle - reach;
  for (std::int64_t offset = 0; offset <= 2 * reach && first <= limits.max() - offset; ++offset)
    if (value == Value(first + offset)) return first + offset;
  return 0;
}

bool sameContent(const Value& a, const Value& b) {
  if (a.isBool() != b.isBool() || a.isInteger() != b.isInteger() || a.isReal() != b.isReal()) return false;
  const auto pointA = pelmar::ref_cast<pelmar::Point3D>(a.object());
  const auto pointB = pelmar::ref_cast<pelmar::Point3D>(b.object());
  if (pointA && pointB) return pointA->x() == pointB->x() && pointA->y() == pointB->y() && pointA->z() == pointB->z();
  if (a.array() && b.array())
    return std::equal(a.array()->begin(), a.array()->end(), b.array()->begin(), b.array()->end(), sameContent);
  if (a.dictionary() && b.dictionary())
    return std::equal(
        a.dictionary()->begin(), a.dictionary()->end(), b.dictionary()->begin(), b.dictionary()->end(),
        [](const auto& x, const auto& y) { return x.first == y.first && sameContent(x.second, y.second); });
  return a == b;
}

Bytes bytesOfFile(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  const std::string content((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
  return bytesOfText(content);
}

Bytes bytesOfText(const std::string& text) { return Bytes(text.begin(), text.end()); }

workstation::Result<Value> read(const Bytes& archive) {
  DoublePointClass points;
  return workstation::readArchive(archive, points);
}

ListMaker::Index ListMaker::raw(Bytes object) {
  objects_.push_back(std::move(object));
  return static_cast<Index>(objects_.size() - 1);
}

ListMaker::Index ListMaker::text(const std::string& ascii) {
  Bytes bytes = header(0x50, ascii.size());
  bytes.insert(bytes.end(), ascii.begin(), ascii.end());
  return raw(std::move(bytes));
}

ListMaker::Index ListMaker::integer(std::int64_t value) {
  Bytes bytes{0x13};
  append(bytes, static_cast<std::uint64_t>(value), 8);
  return raw(std::move(bytes));
}

ListMaker::Index ListMaker::real(double value) {
  Bytes bytes{0x23};
  append(bytes, std::bit_cast<std::uint64_t>(value), 8);
  return raw(std::move(bytes));
}

ListMaker::Index ListMaker::uid(std::uint32_t value) {
  Bytes bytes{0x83};
  append(bytes, value, 4);
  return raw(std::move(bytes));
}

ListMaker::Index ListMaker::array(const std::vector<Index>& elements) {
  Bytes bytes = header(0xA0, elements.size());
  for (const Index element : elements) append(bytes, element, 2);
  return raw(std::move(bytes));
}

ListMaker::Index ListMaker::dictionary(const Entries& entries) {
  Bytes bytes = header(0xD0, entries.size());
  for (const auto& [key, value] : entries) append(bytes, key, 2);
  for (const auto& [key, value] : entries) append(bytes, value, 2);
  return raw(std::move(bytes));
}

ListMaker::Index ListMaker::classEntry(const std::string& name) {
  return dictionary({{text("$classname"), text(name)}, {text("$classes"), array({text(name), text("NSObject")})}});
}

ListMaker::Index ListMaker::archivedArray(const std::vector<std::uint32_t>& elementUids, std::uint32_t classUid) {
  std::vector<Index> elements;
  for (const std::uint32_t element : elementUids) elements.push_back(uid(element));
  return dictionary({{text("NS.objects"), array(elements)}, {text("$class"), uid(classUid)}});
}

ListMaker::Index ListMaker::archivedDictionary(const std::vector<std::uint32_t>& keyUids,
                                               const std::vector<std::uint32_t>& valueUids, std::uint32_t classUid) {
  std::vector<Index> keys;
  std::vector<Index> values;
  for (const std::uint32_t key : keyUids) keys.push_back(uid(key));
  for (const std::uint32_t value : valueUids) values.push_back(uid(value));
  return dictionary(
      {{text("NS.keys"), array(keys)}, {text("NS.objects"), array(values)}, {text("$class"), uid(classUid)}});
}

ListMaker::Index ListMaker::archivedPoint(Index x, Index y, Index z, std::uint32_t classUid) {
  return dictionary({{text("x"), x}, {text("y"), y}, {text("z"), z}, {text("$class"), uid(classUid)}});
}

Bytes ListMaker::archive(const std::vector<Index>& objects) {
  const Index roots = dictionary({{text("root"), uid(1)}});
  return list(dictionary({{text("$archiver"), text("NSKeyedArchiver")},
                          {text("$version"), integer(100000)},
                          {text("$top"), roots},
                          {text("$objects"), array(objects)}}));
}

Bytes ListMaker::list(Index top) const {
  Bytes bytes = bytesOfText("bplist00");
  std::vector<std::size_t> offsets;
  for (const Bytes& object : objects_) {
    offsets.push_back(bytes.size());
    bytes.insert(bytes.end(), object.begin(), object.end());
  }
  const std::size_t table = bytes.size();
  for (const std::size_t offset : offsets) append(bytes, offset, 4);
  append(bytes, 0, 6);
  append(bytes, 4, 1);
  append(bytes, 2, 1);
  append(bytes, objects_.size(), 8);
  append(bytes, top, 8);
  append(bytes, table, 8);
  return bytes;
}

}  // namespace archive_testing
