#include "workstation/dicom/CharacterSets.h"

#include <gtest/gtest.h>

namespace workstation {
namespace {

struct Row {
  const char* name;
  const char* characterSet;
  std::string bytes;
  std::string expected;
};

class CharacterSets : public testing::TestWithParam<Row> {};

TEST_P(CharacterSets, AreReadAsUtf8) {
  EXPECT_EQ(toUtf8(GetParam().bytes, GetParam().characterSet), GetParam().expected);
}

// The names of PS3.5 annexes H, I, J and PS3.3 C.12.1.1.2, and what the fallbacks promise.
INSTANTIATE_TEST_SUITE_P(
    Values, CharacterSets,
    testing::Values(Row{"PlainAscii", "", "Doe^John", "Doe^John"},
                    Row{"Latin1", "ISO_IR 100", "Buc^J\xe9r\xf4me", "Buc^Jérôme"},
                    Row{"Latin2", "ISO_IR 101", "Wa\xb3\xeasa", "Wałęsa"}, Row{"Latin9", "ISO_IR 203", "\xa4", "€"},
                    Row{"Cyrillic", "ISO_IR 144", "\xbb\xee\xda", "Люк"}, Row{"Thai", "ISO_IR 166", "\xa1", "ก"},
                    Row{"Greek", "ISO_IR 126", "\xc4\xe9\xef", "Διο"}, Row{"Hebrew", "ISO_IR 138", "\xf9\xf8", "שר"},
                    Row{"Utf8", "ISO_IR 192", "Wang=王^小東", "Wang=王^小東"},
                    Row{"Gb18030", "GB18030", "\xcd\xf5", "王"},
                    Row{"KanjiByEscape", "\\ISO 2022 IR 87",
                        "Yamada^Tarou=\x1b$B;3ED\x1b(B^\x1b$BB@O:\x1b(B=\x1b$B$d$^$@\x1b(B^\x1b$B$?$m$&\x1b(B",
                        "Yamada^Tarou=山田^太郎=やまだ^たろう"},
                    Row{"KatakanaAtTheStart", "ISO 2022 IR 13\\ISO 2022 IR 87",
                        "\xd4\xcf\xc0\xde^\xc0\xdb\xb3=\x1b$B;3ED\x1b(J^\x1b$BB@O:\x1b(J", "ﾔﾏﾀﾞ^ﾀﾛｳ=山田^太郎"},
                    Row{"SupplementaryKanji", "\\ISO 2022 IR 159", "\x1b$(D\x30\x21\x1b(B", "丂"},
                    Row{"Korean", "\\ISO 2022 IR 149", "Hong^Gildong=\x1b$)C\xfb\xf3^\x1b$)C\xd1\xce\xd4\xd7",
                        "Hong^Gildong=洪^吉洞"},
                    Row{"CyrillicByEscape", "ISO 2022 IR 100\\ISO 2022 IR 144", "J\xe9r=\x1b-L\xbb\xee\xda", "Jér=Люк"},
                    Row{"DelimiterEndsAnEscape", "ISO 2022 IR 100\\ISO 2022 IR 144", "\x1b-L\xbb^\xe9", "Л^é"},
                    Row{"UndeclaredUtf8", "", "J\xc3\xa9r", "Jér"}, Row{"UndeclaredLatin1", "", "J\xe9r", "Jér"},
                    Row{"UnknownTerm", "NO SUCH SET", "J\xe9r", "Jér"},
                    Row{"BrokenUtf8", "ISO_IR 192",
                        "a\xff"
                        "b",
                        "a\uFFFDb"},
                    Row{"CutOffUtf8", "ISO_IR 192", "a\xe7\x8e", "a\uFFFD\uFFFD"},
                    Row{"UnknownEscape", "\\ISO 2022 IR 87", "a\x1b%Gb", "a\uFFFD%Gb"},
                    Row{"HalfAKanji", "\\ISO 2022 IR 87", "\x1b$B;", "\uFFFD"}),
    [](const auto& row) { return row.param.name; });

TEST(CharacterSetsOfAnyBytes, GiveValidUtf8) {
  const std::string sets[] = {"",          "ISO_IR 100", "ISO_IR 192",         "GB18030",          "ISO_IR 13",
                              "ISO_IR 58", "NONSENSE",   "\\ISO 2022 IR 87\\", "\\ISO 2022 IR 149"};
  std::uint32_t state = 1;
  for (int round = 0; round < 3000; ++round) {
    std::string bytes;
    for (int i = 0; i < 24; ++i) {
      state = state * 1664525U + 1013904223U;
      const char common[] = {'\x1b', '$', '(', ')', 'B', 'C', 'D', '^'};
      bytes += (state >> 31) != 0 ? common[(state >> 20) % 8] : static_cast<char>(state >> 22);
    }
    for (const std::string& set : sets) {
      const std::string text = toUtf8(bytes, set);
      ASSERT_EQ(toUtf8(text, "ISO_IR 192"), text) << "set " << set << ", round " << round;
    }
  }
}

}  // namespace
}  // namespace workstation
