#include "workstation/dicom/SpineCodes.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "ReportFixtures.h"

namespace workstation::test {
namespace {

/// Whether a SNOMED CT identifier ends in the check digit that the dihedral group D5 gives it (Verhoeff 1969): each
/// digit, from the right, is permuted by its place and multiplied up; the product of all must be 0.
bool hasCheckDigit(std::string_view identifier) {
  // Of the group: 0-4 are rotations, 5-9 reflections.
  const auto product = [](int a, int b) {
    const bool flips = a >= 5;
    const int turn = flips ? (a % 5 - b % 5 + 5) % 5 : (a % 5 + b % 5) % 5;
    return turn + (flips != (b >= 5) ? 5 : 0);
  };
  const int permutation[] = {1, 5, 7, 6, 2, 8, 3, 0, 9, 4};
  int checksum = 0;
  for (std::size_t place = 0; place < identifier.size(); ++place) {
    int digit = identifier[identifier.size() - 1 - place] - '0';
    for (std::size_t i = 0; i < place % 8; ++i) digit = permutation[digit];
    checksum = product(checksum, digit);
  }
  return checksum == 0;
}

TEST(SpineCodes, TheCheckDigitTestItselfTellsRightFromWrong) {
  EXPECT_TRUE(hasCheckDigit("22298006"));  // a well-known one: myocardial infarction
  EXPECT_FALSE(hasCheckDigit("22298007"));
  EXPECT_FALSE(hasCheckDigit("22289006"));
}

std::set<std::string> allDiscs() {
  std::set<std::string> names;
  for (int region = 0; region <= 2; ++region)
    for (const bool extra : {false, true})
      for (const std::string& name : discsOf(region, extra)) names.insert(name);
  return names;
}

void expectSound(const std::optional<Code>& code, const std::string& name) {
  ASSERT_TRUE(code) << name;
  EXPECT_LE(code->value.size(), 16U) << name;  // SH
  EXPECT_LE(code->meaning.size(), 64U) << name;
  if (code->scheme == "SCT")
    EXPECT_TRUE(hasCheckDigit(code->value)) << name << " " << code->value;
  else
    EXPECT_EQ(code->scheme, "99VERTANA") << name;
}

TEST(SpineCodes, EveryDiscHasItsOwnCodesForTheLevelAndForTheDisc) {
  std::set<std::string> values;
  for (const std::string& name : allDiscs()) {
    expectSound(levelCode(name), name);
    expectSound(discCode(name), name);
    EXPECT_EQ(discOfLevelCode(*levelCode(name)), name);
    // "L4-L5" is "... L4/L5 ..."
    std::string words = name;
    words.replace(words.find('-'), 1, "/");
    EXPECT_NE(levelCode(name)->meaning.find(words), std::string::npos) << name;
    EXPECT_NE(discCode(name)->meaning.find(words), std::string::npos) << name;
    values.emplace(levelCode(name)->value);
    values.emplace(discCode(name)->value);
  }
  EXPECT_EQ(values.size(), 2 * allDiscs().size());
}

TEST(SpineCodes, OnlyLevelsWithoutAStandardCodeUseThePrivateScheme) {
  std::set<std::string> own;
  for (const std::string& name : allDiscs())
    if (levelCode(name)->scheme == privateScheme) own.insert(name);
  EXPECT_EQ(own, (std::set<std::string>{"C0-C1", "C7-C8", "C8-T1", "T12-T13", "T13-L1", "L5-L6", "L6-S1"}));
}

TEST(SpineCodes, EveryVertebraHasItsOwnCode) {
  std::set<std::string> names = {"C0", "C1-C2", "C3", "C4", "C5", "C6", "C7", "C8", "S1"};
  for (int i = 1; i <= 13; ++i) names.insert("T" + std::to_string(i));
  for (int i = 1; i <= 6; ++i) names.insert("L" + std::to_string(i));
  std::set<std::string> values;
  for (const std::string& name : names) {
    expectSound(vertebraCode(name), name);
    EXPECT_EQ(vertebraOfCode(*vertebraCode(name)), name);
    values.emplace(vertebraCode(name)->value);
  }
  EXPECT_EQ(values.size(), names.size());
}

TEST(SpineCodes, EveryRegionHasItsOwnCode) {
  for (int region = -1; region <= 2; ++region) {
    expectSound(regionCode(region), std::to_string(region));
    EXPECT_EQ(regionOfCode(*regionCode(region)), region);
  }
  EXPECT_EQ(regionCode(2)->value, "122496007");
  EXPECT_FALSE(regionCode(3));
  EXPECT_FALSE(regionCode(-2));
}

TEST(SpineCodes, NamesAndCodesOfNothingAreUnknown) {
  EXPECT_FALSE(levelCode(""));
  EXPECT_FALSE(levelCode("C1-C2"));  // no disc there
  EXPECT_FALSE(vertebraCode("L7"));
  EXPECT_FALSE(discOfLevelCode(*discCode("L4-L5")));
  EXPECT_FALSE(vertebraOfCode({"11994002", "SRT", ""}));  // the right number in another scheme
}

}  // namespace
}  // namespace workstation::test
