#include "workstation/dicom/FileSignature.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>

namespace workstation {
namespace {

constexpr std::size_t preambleLength = 128;

struct Start {
  std::array<unsigned char, 512> bytes{};
  std::size_t length = 0;
  std::uintmax_t fileLength = 0;
};

std::uint32_t number(const unsigned char* bytes, int count, bool bigEndian) {
  std::uint32_t value = 0;
  for (int i = 0; i < count; ++i) value |= std::uint32_t{bytes[bigEndian ? count - 1 - i : i]} << (8 * i);
  return value;
}

bool isValueRepresentation(const unsigned char* bytes) {
  static constexpr std::string_view known =
      "AE AS AT CS DA DS DT FD FL IS LO LT OB OD OF OL OV OW PN SH SL SQ SS ST SV TM UC UI UL UN UR US UT UV";
  const std::string_view name(reinterpret_cast<const char*>(bytes), 2);
  const std::size_t found = known.find(name);
  return found != std::string_view::npos && found % 3 == 0;
}

bool hasLongLength(const unsigned char* representation) {
  static constexpr std::string_view known = "OB OD OF OL OV OW SQ SV UC UN UR UT UV";
  return known.find(std::string_view(reinterpret_cast<const char*>(representation), 2)) != std::string_view::npos;
}

/// Whether two elements of ascending tags stand at the start, the first of a group that a data set begins with.
bool beginsLikeDataSet(const Start& start, bool bigEndian) {
  std::size_t at = 0;
  std::uint32_t lastTag = 0;
  for (int element = 0; element < 2; ++element) {
    if (at == start.fileLength && element > 0) return true;
    if (at + 12 > start.length) return element > 0 && at + 8 <= start.fileLength;
    const unsigned char* bytes = start.bytes.data() + at;
    const std::uint32_t tag = number(bytes, 2, bigEndian) << 16 | number(bytes + 2, 2, bigEndian);
    const std::uint32_t group = tag >> 16;
    if (tag <= lastTag || (element == 0 && group != 2 && group != 4 && group != 8)) return false;
    lastTag = tag;
    const bool isExplicit = isValueRepresentation(bytes + 4);
    const bool isLong = isExplicit && hasLongLength(bytes + 4);
    const std::uint32_t length = !isExplicit ? number(bytes + 4, 4, bigEndian)
                                 : isLong    ? number(bytes + 8, 4, bigEndian)
                                             : number(bytes + 6, 2, bigEndian);
    if (length == 0xffffffffU) return group == 8;
    at += (isLong ? 12U : 8U) + std::size_t{length};
    if (at > start.fileLength) return false;
  }
  return true;
}

}  // namespace

FileSignature signatureOf(const std::filesystem::path& file, std::string& problem) {
  Start start;
  std::error_code error;
  start.fileLength = std::filesystem::file_size(file, error);
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(std::fopen(file.c_str(), "rb"), &std::fclose);
  if (error || !stream) {
    problem = "it cannot be opened (" + (error ? error.message() : std::string(std::strerror(errno))) + ")";
    return FileSignature::unopenable;
  }
  start.length = std::fread(start.bytes.data(), 1, start.bytes.size(), stream.get());
  if (std::ferror(stream.get()) != 0) {
    problem = "it cannot be read";
    return FileSignature::unopenable;
  }
  if (start.length == 0) return FileSignature::empty;
  if (start.length >= preambleLength + 4 && std::memcmp(start.bytes.data() + preambleLength, "DICM", 4) == 0)
    return FileSignature::dicom;
  if (beginsLikeDataSet(start, false) || beginsLikeDataSet(start, true)) return FileSignature::headerless;
  const auto end = start.bytes.begin() + static_cast<std::ptrdiff_t>(start.length);
  const bool isZero = std::all_of(start.bytes.begin(), end, [](unsigned char byte) { return byte == 0; });
  return isZero && start.length < preambleLength + 4 ? FileSignature::cutShort : FileSignature::other;
}

}  // namespace workstation
