#include <cstdint>

#include "tests/double/TestServices.h"

namespace testhost {
namespace {

using CodePoints = std::u32string;

/// UTF-8 to code points; a byte that starts nothing valid stands for itself.
CodePoints decoded(std::string_view text) {
  CodePoints result;
  for (std::size_t at = 0; at < text.size();) {
    const auto byte = static_cast<std::uint8_t>(text[at]);
    const std::size_t length = byte < 0x80 ? 1 : byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : byte >= 0xC0 ? 2 : 1;
    if (length == 1 || at + length > text.size()) {
      result.push_back(byte);
      ++at;
      continue;
    }
    char32_t code = byte & (0xFFU >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) code = (code << 6) | (static_cast<std::uint8_t>(text[at + i]) & 0x3FU);
    result.push_back(code);
    at += length;
  }
  return result;
}

std::string encoded(const CodePoints& codes) {
  std::string text;
  for (const char32_t code : codes) {
    if (code < 0x80) {
      text += static_cast<char>(code);
    } else if (code < 0x800) {
      text += static_cast<char>(0xC0 | (code >> 6));
      text += static_cast<char>(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
      text += static_cast<char>(0xE0 | (code >> 12));
      text += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
      text += static_cast<char>(0x80 | (code & 0x3F));
    } else {
      text += static_cast<char>(0xF0 | (code >> 18));
      text += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
      text += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
      text += static_cast<char>(0x80 | (code & 0x3F));
    }
  }
  return text;
}

char32_t lowered(char32_t code) {
  const bool upper = (code >= U'A' && code <= U'Z') || (code >= 0xC0 && code <= 0xDE && code != 0xD7);
  return upper ? code + 0x20 : code;
}

char32_t raised(char32_t code) {
  const bool lower = (code >= U'a' && code <= U'z') || (code >= 0xE0 && code <= 0xFE && code != 0xF7);
  return lower ? code - 0x20 : code;
}

/// The plain letters of U+00E0 .. U+00FF; a blank where the letter has no decomposition.
constexpr std::string_view plainLatin1 = "aaaaaa ceeeeiiii nooooo  uuuuy y";

CodePoints folded(std::string_view text) {
  CodePoints result;
  for (char32_t code : decoded(text)) {
    if (code >= 0x300 && code <= 0x36F) continue;
    if (code >= 0xFF01 && code <= 0xFF5E) code -= 0xFEE0;
    if (code == 0x3000) code = U' ';
    code = lowered(code);
    if (code >= 0xE0 && code <= 0xFF && plainLatin1[code - 0xE0] != ' ') {
      code = static_cast<char32_t>(plainLatin1[code - 0xE0]);
    }
    result.push_back(code);
  }
  return result;
}

template <class Change>
std::string changed(std::string_view text, Change change) {
  CodePoints codes = decoded(text);
  for (char32_t& code : codes) code = change(code);
  return encoded(codes);
}

}  // namespace

std::string TestTextServices::lowercaseString(std::string_view text) const { return changed(text, lowered); }

std::string TestTextServices::uppercaseString(std::string_view text) const { return changed(text, raised); }

bool TestTextServices::containsIgnoringCaseDiacriticsAndWidth(std::string_view text, std::string_view needle) const {
  return !needle.empty() && folded(text).find(folded(needle)) != CodePoints::npos;
}

}  // namespace testhost
