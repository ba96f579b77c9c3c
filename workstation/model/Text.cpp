#include "workstation/model/Text.h"

#include <utf8proc.h>

#include <array>
#include <cstdlib>
#include <memory>
#include <optional>
#include <vector>

namespace workstation {
namespace {

using CodePoints = std::vector<utf8proc_int32_t>;

constexpr utf8proc_int32_t sharpS = 0xDF;
constexpr utf8proc_int32_t ideographicSpace = 0x3000;
constexpr utf8proc_int32_t firstWidthForm = 0xFF00;  // Halfwidth and Fullwidth Forms
constexpr utf8proc_int32_t lastWidthForm = 0xFFEF;

/// Nothing when the text is not valid UTF-8.
std::optional<CodePoints> decoded(std::string_view text) {
  CodePoints result;
  const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
  auto left = static_cast<utf8proc_ssize_t>(text.size());
  while (left > 0) {
    utf8proc_int32_t codePoint = -1;
    const utf8proc_ssize_t used = utf8proc_iterate(bytes, left, &codePoint);
    if (used <= 0) return std::nullopt;
    result.push_back(codePoint);
    bytes += used;
    left -= used;
  }
  return result;
}

std::string encoded(const CodePoints& codePoints) {
  std::string text;
  for (const utf8proc_int32_t codePoint : codePoints) {
    std::array<utf8proc_uint8_t, 4> bytes{};
    const utf8proc_ssize_t used = utf8proc_encode_char(codePoint, bytes.data());
    text.append(bytes.begin(), bytes.begin() + used);
  }
  return text;
}

std::string asciiCased(std::string_view text, char first, char last, int shift) {
  std::string result(text);
  for (char& letter : result) {
    if (letter >= first && letter <= last) letter = static_cast<char>(letter + shift);
  }
  return result;
}

/// Appends what a code point is without its letter case, its diacritics and its width.
void appendFolded(utf8proc_int32_t codePoint, CodePoints& result) {
  int options = UTF8PROC_DECOMPOSE | UTF8PROC_CASEFOLD | UTF8PROC_STRIPMARK;
  const bool widthForm = codePoint >= firstWidthForm && codePoint <= lastWidthForm;
  // Compatibility decomposition of these forms changes their width and nothing else.
  if (widthForm || codePoint == ideographicSpace) options |= UTF8PROC_COMPAT;
  std::array<utf8proc_int32_t, 32> parts{};
  int boundary = 0;
  const utf8proc_ssize_t count =
      utf8proc_decompose_char(codePoint, parts.data(), static_cast<utf8proc_ssize_t>(parts.size()),
                              static_cast<utf8proc_option_t>(options), &boundary);
  if (count < 0 || count > static_cast<utf8proc_ssize_t>(parts.size())) {
    result.push_back(codePoint);
    return;
  }
  result.insert(result.end(), parts.begin(), parts.begin() + count);
}

std::string folded(std::string_view text) {
  const auto codePoints = decoded(text);
  if (!codePoints) return asciiCased(text, 'A', 'Z', 'a' - 'A');
  CodePoints result;
  for (const utf8proc_int32_t codePoint : *codePoints) appendFolded(codePoint, result);
  return encoded(result);
}

}  // namespace

std::string Text::lowercaseString(std::string_view text) const {
  auto codePoints = decoded(text);
  if (!codePoints) return asciiCased(text, 'A', 'Z', 'a' - 'A');
  for (utf8proc_int32_t& codePoint : *codePoints) codePoint = utf8proc_tolower(codePoint);
  return encoded(*codePoints);
}

std::string Text::uppercaseString(std::string_view text) const {
  const auto codePoints = decoded(text);
  if (!codePoints) return asciiCased(text, 'a', 'z', 'A' - 'a');
  CodePoints result;
  for (const utf8proc_int32_t codePoint : *codePoints) {
    if (codePoint == sharpS) {
      result.insert(result.end(), {'S', 'S'});
    } else {
      result.push_back(utf8proc_toupper(codePoint));
    }
  }
  return encoded(result);
}

bool Text::containsIgnoringCaseDiacriticsAndWidth(std::string_view text, std::string_view needle) const {
  const std::string wanted = folded(needle);
  return !wanted.empty() && folded(text).find(wanted) != std::string::npos;
}

}  // namespace workstation
