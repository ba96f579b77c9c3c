#pragma once
// The first byte of an object in a binary property list: its kind in the upper half; in the lower one a size, a length
// or, of constants, which one.

#include <cstdint>

namespace workstation {

constexpr std::uint8_t constantMarker = 0x00;
constexpr std::uint8_t falseMarker = 0x08;
constexpr std::uint8_t trueMarker = 0x09;
constexpr std::uint8_t integerMarker = 0x10;
constexpr std::uint8_t realMarker = 0x20;
constexpr std::uint8_t asciiMarker = 0x50;
constexpr std::uint8_t utf16Marker = 0x60;
constexpr std::uint8_t uidMarker = 0x80;
constexpr std::uint8_t arrayMarker = 0xA0;
constexpr std::uint8_t dictionaryMarker = 0xD0;

/// In the lower half: the length is this or more, and follows as an integer object.
constexpr std::uint8_t lengthFollows = 0x0F;

constexpr std::uint8_t kindOf(std::uint8_t marker) { return marker & 0xF0; }
constexpr std::uint8_t lowerHalfOf(std::uint8_t marker) { return marker & 0x0F; }

}  // namespace workstation
