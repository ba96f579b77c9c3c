#include "cli/PlainText.h"

#include <gtest/gtest.h>

namespace cli::test {
namespace {

TEST(PlainText, WhatATerminalWouldObeyIsShownAsAQuestionMark) {
  EXPECT_EQ(printable("a\x1b[31mb"), "a?[31mb");
  EXPECT_EQ(printable("two\nlines\t"), "two?lines?");
  EXPECT_EQ(printable("c1 \xc2\x9b end"), "c1 ? end");
  EXPECT_EQ(printable("raw \x9b end"), "raw ? end");
  EXPECT_EQ(printable("turned \xe2\x80\xae back"), "turned ? back");
  EXPECT_EQ(printable("overlong \xe0\x80\x9b"), "overlong ?");
}

TEST(PlainText, LettersOfAllScriptsStay) {
  for (const char* text : {"Wirbelsäule", "脊椎", "позвоночник", "😀", "caf\xe9 of Latin-1"}) {
    EXPECT_EQ(printable(text), text);
  }
}

TEST(PlainText, WideCharactersTakeTwoColumnsAndCombiningOnesNone) {
  EXPECT_EQ(terminalColumns("abc"), 3U);
  EXPECT_EQ(terminalColumns("ä"), 1U);
  EXPECT_EQ(terminalColumns("a\xcc\x88"), 1U);
  EXPECT_EQ(terminalColumns("脊椎"), 4U);
  EXPECT_EQ(terminalColumns("\xe9"), 1U) << "a byte outside UTF-8";
  EXPECT_EQ(terminalColumns("\xe8\x84"), 2U) << "a character that was cut";
}

TEST(PlainText, PaddingCountsColumnsAndLeavesOneBlankAtLeast) {
  EXPECT_EQ(padded("脊", 5), "脊   ");
  EXPECT_EQ(padded("abcdef", 3), "abcdef ");
}

TEST(PlainText, OneOfAThingIsSingular) {
  EXPECT_EQ(counted(1, "file", "files"), "1 file");
  EXPECT_EQ(counted(0, "file", "files"), "0 files");
}

}  // namespace
}  // namespace cli::test
