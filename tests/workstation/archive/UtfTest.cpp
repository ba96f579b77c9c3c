#include "workstation/archive/Utf.h"

#include <gtest/gtest.h>

namespace {

using workstation::isUtf8;
using workstation::utf16FromUtf8;
using workstation::utf8FromBigEndianUtf16;
using Units = std::vector<std::uint16_t>;

TEST(Utf, characters_of_one_to_four_bytes_become_utf16) {
  EXPECT_EQ(utf16FromUtf8("A"), Units({0x41}));
  EXPECT_EQ(utf16FromUtf8("\xC3\xA9"), Units({0xE9}));
  EXPECT_EQ(utf16FromUtf8("\xE2\x82\xAC"), Units({0x20AC}));
  // U+1D538: 0x1D538 - 0x10000 = 0xD538 = 0b0000110101'0100111000
  EXPECT_EQ(utf16FromUtf8("\xF0\x9D\x94\xB8"), Units({0xD835, 0xDD38}));
}

TEST(Utf, utf16_becomes_characters_of_one_to_four_bytes) {
  const std::vector<std::uint8_t> bytes{0, 0x41, 0, 0xE9, 0x20, 0xAC, 0xD8, 0x35, 0xDD, 0x38};
  EXPECT_EQ(utf8FromBigEndianUtf16(bytes), "A\xC3\xA9\xE2\x82\xAC\xF0\x9D\x94\xB8");
}

TEST(Utf, invalid_utf8_is_found) {
  for (const char* text : {"\x80", "\xC3", "\xC0\x80", "\xC1\xBF", "\xE0\x80\x80", "\xED\xA0\x80", "\xF0\x80\x80\x80",
                           "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF", "\xE2\x82", "\xC3\x28", "a\xE2\x28\xA1"}) {
    EXPECT_FALSE(isUtf8(text)) << text;
    EXPECT_FALSE(utf16FromUtf8(text)) << text;
  }
  for (const char* text :
       {"", "a", "\xC2\x80", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"})
    EXPECT_TRUE(isUtf8(text)) << text;
}

TEST(Utf, lone_surrogates_and_odd_lengths_are_refused) {
  using Bytes = std::vector<std::uint8_t>;
  for (const Bytes& bytes : {Bytes{0x41}, Bytes{0xD8, 0x35}, Bytes{0xDD, 0x38}, Bytes{0xD8, 0x35, 0, 0x41},
                             Bytes{0xDD, 0x38, 0xD8, 0x35}, Bytes{0xD8, 0x35, 0xD8, 0x35}})
    EXPECT_FALSE(utf8FromBigEndianUtf16(bytes));
}

}  // namespace
