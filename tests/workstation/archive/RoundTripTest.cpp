// Random values and states, each from its seed: what is written is read again as it was.

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <random>

#include "ArchiveTesting.h"
#include "workstation/archive/SavedLabelling.h"

namespace {

using archive_testing::DoublePointClass;
using pelmar::Value;
using workstation::SavedLabelling;

class RandomValues {
 public:
  explicit RandomValues(unsigned seed) : engine_(seed) {}

  Value value(int levels) {
    switch (below(levels > 0 ? 8 : 5)) {
      case 0:
        return below(2) == 1;
      case 1:
        return integer();
      case 2:
        return real();
      case 3:
        return text();
      case 4:
        return points_.pointWithX(coordinate(), coordinate(), coordinate());
      case 5:
      case 6:
        return dictionary(levels);
      default:
        return array(levels);
    }
  }

  SavedLabelling labelling() {
    SavedLabelling labelling;
    if (below(4) > 0) labelling.anatomicalRegion = static_cast<int>(below(4)) - 1;
    if (below(4) > 0) labelling.additionalVertebra = below(2) == 1;
    if (below(4) > 0) {
      labelling.levels.emplace();
      for (std::uint64_t i = below(27); i > 0; --i)
        labelling.levels->push_back(
            {text(), {coordinate(), coordinate(), coordinate()}, {coordinate(), coordinate(), coordinate()}});
    }
    return labelling;
  }

 private:
  std::uint64_t below(std::uint64_t end) { return engine_() % end; }

  /// Of every size, with the limits of the sizes among them.
  std::int64_t integer() {
    const auto shifted = static_cast<std::int64_t>(engine_()) >> below(64);
    const std::int64_t limits[] = {
        0,          -1,          255,       256,       65535,       65536,         4294967295,    4294967296,
        2147483647, -2147483648, INT64_MAX, INT64_MIN, -4294967296, INT64_MAX - 1, INT64_MIN + 1, 9007199254740993};
    return below(2) == 0 ? shifted : limits[below(std::size(limits))];
  }

  double real() {
    const auto number = std::bit_cast<double>(engine_());
    return std::isfinite(number) ? number : -0.0;
  }

  double coordinate() { return std::uniform_real_distribution<double>(-2000, 2000)(engine_); }

  std::string text() {
    const std::string pieces[] = {"L", "4-", "$", "$null", "é", "€", "𝔸", std::string(1, '\0'), "\t", "&lt;"};
    std::string result;
    for (std::uint64_t i = below(20); i > 0; --i) result += pieces[below(std::size(pieces))];
    return below(20) == 0 ? "$null" : result;
  }

  Value dictionary(int levels) {
    Value::Dictionary entries;
    for (std::uint64_t i = below(6); i > 0; --i) entries.insert_or_assign(text(), value(levels - 1));
    return entries;
  }

  Value array(int levels) {
    Value::Array elements;
    for (std::uint64_t i = below(25); i > 0; --i) elements.push_back(value(levels - 1));
    return elements;
  }

  std::mt19937_64 engine_;
  DoublePointClass points_;
};

TEST(ArchiveRoundTrip, random_values_come_back_as_they_were) {
  for (unsigned seed = 0; seed < 400; ++seed) {
    SCOPED_TRACE(seed);
    const Value value = RandomValues(seed).value(4);
    const auto archive = workstation::writeArchive(value);
    ASSERT_TRUE(archive) << archive.problem;
    EXPECT_EQ(archive->size() % 2, 0u);
    const auto read = archive_testing::read(*archive);
    ASSERT_TRUE(read) << read.problem;
    EXPECT_TRUE(archive_testing::sameContent(*read, value));
    EXPECT_EQ(*workstation::writeArchive(*read), *archive);
  }
}

TEST(ArchiveRoundTrip, random_labellings_come_back_as_they_were) {
  DoublePointClass points;
  for (unsigned seed = 0; seed < 400; ++seed) {
    SCOPED_TRACE(seed);
    const SavedLabelling labelling = RandomValues(seed).labelling();
    const auto archive = workstation::writeArchive(workstation::valueFromLabelling(labelling, points));
    ASSERT_TRUE(archive) << archive.problem;
    const auto read = archive_testing::read(*archive);
    ASSERT_TRUE(read) << read.problem;
    EXPECT_EQ(workstation::labellingFromValue(*read), labelling);
  }
}

}  // namespace
