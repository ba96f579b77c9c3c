#include "cli/PlainText.h"

#include <algorithm>
#include <array>
#include <utility>

namespace cli {

namespace {

struct Character {
  char32_t code = 0;
  std::size_t bytes = 1;
  bool valid = false;
};

Character characterAt(std::string_view text, std::size_t at) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(at);
  if (lead < 0x80) return {lead, 1, true};
  const std::size_t bytes = lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : 2;
  if (lead < 0xc2 || lead > 0xf4 || at + bytes > text.size()) return {lead, 1, false};
  char32_t code = lead & (0x7fU >> bytes);
  for (std::size_t i = 1; i < bytes; ++i) {
    if ((byte(at + i) & 0xc0U) != 0x80) return {lead, 1, false};
    code = code << 6 | (byte(at + i) & 0x3fU);
  }
  return {code, bytes, true};
}

using Range = std::pair<char32_t, char32_t>;

template <std::size_t N>
bool isIn(const std::array<Range, N>& ranges, char32_t code) {
  return std::any_of(ranges.begin(), ranges.end(),
                     [code](const Range& range) { return code >= range.first && code <= range.second; });
}

constexpr std::array<Range, 6> obeyed{
    {{0, 0x1f}, {0x7f, 0x9f}, {0x200e, 0x200f}, {0x2028, 0x2029}, {0x202a, 0x202e}, {0x2066, 0x2069}}};
constexpr std::array<Range, 4> combining{{{0x300, 0x36f}, {0x200b, 0x200d}, {0x20d0, 0x20ff}, {0xfe00, 0xfe0f}}};
constexpr std::array<Range, 9> wide{{{0x1100, 0x115f},
                                     {0x2e80, 0x303e},
                                     {0x3041, 0xa4cf},
                                     {0xac00, 0xd7a3},
                                     {0xf900, 0xfaff},
                                     {0xfe30, 0xfe6f},
                                     {0xff00, 0xff60},
                                     {0xffe0, 0xffe6},
                                     {0x20000, 0x3fffd}}};

}  // namespace

std::string printable(std::string_view text) {
  std::string result;
  for (std::size_t at = 0; at < text.size();) {
    const auto character = characterAt(text, at);
    if (isIn(obeyed, character.code))
      result += '?';
    else
      result += text.substr(at, character.bytes);
    at += character.bytes;
  }
  return result;
}

std::size_t terminalColumns(std::string_view text) {
  std::size_t columns = 0;
  for (std::size_t at = 0; at < text.size();) {
    const auto character = characterAt(text, at);
    if (!character.valid || !isIn(combining, character.code)) columns += isIn(wide, character.code) ? 2 : 1;
    at += character.bytes;
  }
  return columns;
}

std::string padded(const std::string& text, std::size_t columns) {
  const auto taken = terminalColumns(text);
  return text + std::string(taken < columns ? columns - taken : 1, ' ');
}

std::string counted(std::size_t count, const std::string& one, const std::string& many) {
  return std::to_string(count) + " " + (count == 1 ? one : many);
}

}  // namespace cli
