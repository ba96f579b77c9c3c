#include "workstation/dicom/Uid.h"

#include <gtest/gtest.h>

#include <set>

namespace workstation {
namespace {

/// A decimal number without its lowest `bits` bits, by long division.
std::string shiftedRight(std::string digits, int bits) {
  for (; bits > 0; --bits) {
    int remainder = 0;
    for (char& digit : digits) {
      const int dividend = remainder * 10 + (digit - '0');
      digit = static_cast<char>('0' + dividend / 2);
      remainder = dividend % 2;
    }
  }
  const std::size_t first = digits.find_first_not_of('0');
  return first == std::string::npos ? "0" : digits.substr(first);
}

/// The last four decimal digits decide, since 10000 is a multiple of 16.
int lastHexDigit(const std::string& digits) {
  return std::stoi(digits.size() > 4 ? digits.substr(digits.size() - 4) : digits) % 16;
}

TEST(Uid, IsTheSameForTheSameSeed) { EXPECT_EQ(makeUid("study 1"), makeUid("study 1")); }

TEST(Uid, DiffersForEachOfManySimilarSeeds) {
  std::set<std::string> uids;
  for (int i = 0; i < 100000; ++i) uids.insert(makeUid("seed " + std::to_string(i)));
  uids.insert(makeUid(""));
  uids.insert(makeUid(std::string(1, '\0')));
  uids.insert(makeUid(std::string(2, '\0')));
  EXPECT_EQ(uids.size(), 100003U);
}

TEST(Uid, IsAnotherOneEachTimeAFreshOneIsMade) {
  std::set<std::string> uids;
  for (int i = 0; i < 1000; ++i) uids.insert(freshUid());
  EXPECT_EQ(uids.size(), 1000U);
  EXPECT_TRUE(uids.begin()->starts_with("2.25."));
}

TEST(Uid, IsADecimalUuidOfThisVersionAndVariant) {
  for (int i = 0; i < 1000; ++i) {
    const std::string uid = makeUid("seed " + std::to_string(i));
    ASSERT_TRUE(uid.starts_with("2.25.")) << uid;
    ASSERT_LE(uid.size(), 44U) << uid;
    const std::string digits = uid.substr(5);
    ASSERT_EQ(digits.find_first_not_of("0123456789"), std::string::npos) << uid;
    ASSERT_NE(digits[0], '0') << uid;
    ASSERT_EQ(shiftedRight(digits, 128), "0") << "more than 128 bits: " << uid;
    ASSERT_EQ(lastHexDigit(shiftedRight(digits, 76)), 8) << "version of " << uid;
    ASSERT_EQ(lastHexDigit(shiftedRight(digits, 60)) >> 2, 2) << "variant of " << uid;
  }
}

}  // namespace
}  // namespace workstation
