#pragma once
// UTF-8 and UTF-16, strictly: no overlong forms, no lone surrogates.

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace workstation {

bool isAscii(std::string_view text);
bool isUtf8(std::string_view text);
/// The code units of a text in UTF-8; nothing when it is not valid.
std::optional<std::vector<std::uint16_t>> utf16FromUtf8(std::string_view text);
/// Nothing when a surrogate stands alone, or the number of bytes is odd.
std::optional<std::string> utf8FromBigEndianUtf16(std::span<const std::uint8_t> bytes);
/// `codePoint` must be at most 0x10FFFF and no surrogate.
void appendUtf8(std::string& text, std::uint32_t codePoint);

}  // namespace workstation
