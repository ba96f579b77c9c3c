#include "workstation/archive/Utf.h"

#include <algorithm>
#include <array>

namespace workstation {

namespace {

constexpr std::uint32_t highSurrogates = 0xD800;
constexpr std::uint32_t lowSurrogates = 0xDC00;
constexpr std::uint32_t afterSurrogates = 0xE000;
constexpr std::uint32_t codePointsEnd = 0x110000;

bool isWithin(std::uint32_t unit, std::uint32_t begin, std::uint32_t end) { return unit >= begin && unit < end; }

/// The code point that begins at `at`, which is moved behind it; nothing when the bytes there are not valid.
std::optional<std::uint32_t> nextCodePoint(std::string_view text, std::size_t& at) {
  const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
  const std::uint32_t first = byte(at);
  if (first < 0x80) {
    ++at;
    return first;
  }
  const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  if (first < 0xC2 || first > 0xF4 || text.size() - at < length) return std::nullopt;
  std::uint32_t codePoint = first & (0x7Fu >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(at + i) & 0xC0) != 0x80) return std::nullopt;
    codePoint = codePoint << 6 | (byte(at + i) & 0x3Fu);
  }
  constexpr std::array<std::uint32_t, 5> smallest{0, 0, 0x80, 0x800, 0x10000};
  if (codePoint < smallest[length] || codePoint >= codePointsEnd) return std::nullopt;
  if (isWithin(codePoint, highSurrogates, afterSurrogates)) return std::nullopt;
  at += length;
  return codePoint;
}

}  // namespace

bool isAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<std::uint8_t>(c) < 0x80; });
}

bool isUtf8(std::string_view text) {
  for (std::size_t at = 0; at < text.size();)
    if (!nextCodePoint(text, at)) return false;
  return true;
}

std::optional<std::vector<std::uint16_t>> utf16FromUtf8(std::string_view text) {
  std::vector<std::uint16_t> units;
  for (std::size_t at = 0; at < text.size();) {
    const std::optional<std::uint32_t> codePoint = nextCodePoint(text, at);
    if (!codePoint) return std::nullopt;
    if (*codePoint < 0x10000) {
      units.push_back(static_cast<std::uint16_t>(*codePoint));
    } else {
      units.push_back(static_cast<std::uint16_t>(highSurrogates + ((*codePoint - 0x10000) >> 10)));
      units.push_back(static_cast<std::uint16_t>(lowSurrogates + ((*codePoint - 0x10000) & 0x3FF)));
    }
  }
  return units;
}

std::optional<std::string> utf8FromBigEndianUtf16(std::span<const std::uint8_t> bytes) {
  if (bytes.size() % 2 != 0) return std::nullopt;
  const auto unit = [&](std::size_t at) { return std::uint32_t{bytes[at]} << 8 | bytes[at + 1]; };
  std::string text;
  for (std::size_t at = 0; at < bytes.size(); at += 2) {
    std::uint32_t codePoint = unit(at);
    if (isWithin(codePoint, highSurrogates, afterSurrogates)) {
      if (codePoint >= lowSurrogates || bytes.size() - at < 4) return std::nullopt;
      const std::uint32_t low = unit(at + 2);
      if (!isWithin(low, lowSurrogates, afterSurrogates)) return std::nullopt;
      codePoint = 0x10000 + ((codePoint - highSurrogates) << 10) + (low - lowSurrogates);
      at += 2;
    }
    appendUtf8(text, codePoint);
  }
  return text;
}

void appendUtf8(std::string& text, std::uint32_t codePoint) {
  const auto append = [&](std::uint32_t byte) { text.push_back(static_cast<char>(static_cast<std::uint8_t>(byte))); };
  if (codePoint < 0x80) {
    append(codePoint);
    return;
  }
  if (codePoint < 0x800) {
    append(0xC0 | codePoint >> 6);
  } else if (codePoint < 0x10000) {
    append(0xE0 | codePoint >> 12);
    append(0x80 | (codePoint >> 6 & 0x3F));
  } else {
    append(0xF0 | codePoint >> 18);
    append(0x80 | (codePoint >> 12 & 0x3F));
    append(0x80 | (codePoint >> 6 & 0x3F));
  }
  append(0x80 | (codePoint & 0x3F));
}

}  // namespace workstation
