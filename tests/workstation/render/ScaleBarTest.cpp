#include "workstation/render/ScaleBar.h"

#include <gtest/gtest.h>

#include <limits>

namespace workstation::test {
namespace {

TEST(ScaleBar, IsTheLongestRoundLengthThatFits) {
  struct Row {
    double pointsPerMm;
    double longestPoints;
    double lengthMm;
    const char* text;
  };
  const Row rows[] = {{2, 150, 50, "5 cm"}, {2, 200, 100, "10 cm"}, {2, 199.9, 50, "5 cm"},    {30, 160, 5, "5 mm"},
                      {5, 100, 20, "2 cm"}, {10, 100, 10, "1 cm"},  {0.1, 150, 1000, "100 cm"}};
  for (const Row& row : rows) {
    const auto bar = scaleBarFor(row.pointsPerMm, row.longestPoints);
    ASSERT_TRUE(bar) << row.text;
    EXPECT_EQ(bar->lengthMm, row.lengthMm);
    EXPECT_DOUBLE_EQ(bar->lengthPoints, row.lengthMm * row.pointsPerMm);
    EXPECT_EQ(bar->text, row.text);
  }
}

TEST(ScaleBar, NoneWhereNothingFits) {
  EXPECT_FALSE(scaleBarFor(200, 100));
  EXPECT_FALSE(scaleBarFor(0, 100));
  EXPECT_FALSE(scaleBarFor(-1, 100));
  EXPECT_FALSE(scaleBarFor(std::numeric_limits<double>::quiet_NaN(), 100));
  EXPECT_FALSE(scaleBarFor(std::numeric_limits<double>::infinity(), 100));
}

}  // namespace
}  // namespace workstation::test
