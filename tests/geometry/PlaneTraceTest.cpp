#include "geometry/PlaneTrace.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace vertana {
namespace {

using pelmar::PixelPoint;

TEST(UnitVector, pointsFromTheFirstPointToTheSecond) {
  // Length of (3, 4) is 5, that of (-3, -4) too.
  EXPECT_EQ(unitVector({1, 1}, {4, 5}), (PixelPoint{0.6, 0.8}));
  EXPECT_EQ(unitVector({4, 5}, {1, 1}), (PixelPoint{-0.6, -0.8}));
}

TEST(UnitVector, lengthIsASinglePrecisionSquareRoot) {
  // The square root of 2 in single precision is 1.41421353816986083984375.
  const auto unit = unitVector({0, 0}, {1, -1});
  EXPECT_DOUBLE_EQ(unit.x, 1 / 1.41421353816986083984375);
  EXPECT_DOUBLE_EQ(unit.y, -1 / 1.41421353816986083984375);
}

TEST(UnitVector, equalPointsGiveNoFiniteVector) {
  const auto unit = unitVector({3, 3}, {3, 3});
  EXPECT_FALSE(std::isfinite(unit.x));
  EXPECT_FALSE(std::isfinite(unit.y));
}

struct TraceRow {
  std::string name;
  PixelPoint alongNormal;  ///< from the plane's point
  double spacingXMm;
  PixelPoint firstFromPoint;  ///< the second end lies opposite
  friend std::ostream& operator<<(std::ostream& out, const TraceRow& row) { return out << row.name; }
};

class PlaneTraceEnds : public ::testing::TestWithParam<TraceRow> {};

TEST_P(PlaneTraceEnds, lieOnBothSidesOfThePoint) {
  const TraceRow& row = GetParam();
  const PixelPoint point{100, 200};
  const auto trace = planeTrace(point, {100 + row.alongNormal.x, 200 + row.alongNormal.y}, row.spacingXMm);
  EXPECT_NEAR(trace.first.x, 100 + row.firstFromPoint.x, 1e-9);
  EXPECT_NEAR(trace.first.y, 200 + row.firstFromPoint.y, 1e-9);
  EXPECT_NEAR(trace.second.x, 100 - row.firstFromPoint.x, 1e-9);
  EXPECT_NEAR(trace.second.y, 200 - row.firstFromPoint.y, 1e-9);
}

// Half the length is 15 mm; the perpendicular of (dx, dy) is (dy, -dx).
INSTANTIATE_TEST_SUITE_P(Directions, PlaneTraceEnds,
                         ::testing::Values(TraceRow{"NormalDownFirstEndOnTheRight", {0, 1}, 0.5, {30, 0}},
                                           TraceRow{"NormalUpFirstEndOnTheLeft", {0, -1}, 0.5, {-30, 0}},
                                           TraceRow{"NormalToTheRightFirstEndAbove", {1, 0}, 0.5, {0, -30}},
                                           TraceRow{"NormalToTheLeftFirstEndBelow", {-1, 0}, 0.5, {0, 30}},
                                           TraceRow{"LengthOfTheNormalDoesNotMatter", {0, 8}, 0.5, {30, 0}},
                                           TraceRow{"OneMillimetreAPixel", {0, 1}, 1, {15, 0}},
                                           TraceRow{"TwoMillimetresAPixel", {0, 1}, 2, {7.5, 0}},
                                           // (0.8, -0.6) times 15
                                           TraceRow{"Oblique", {3, 4}, 1, {12, -9}}),
                         [](const auto& tested) { return tested.param.name; });

TEST(PlaneTrace, lengthInPixelsIsRoundedToSinglePrecision) {
  // 30 / 0.7 = 42.857142857...; the nearest single-precision number is 11234743 / 2^18 = 42.857143402099609375.
  EXPECT_EQ(planeTrace({0, 0}, {0, 1}, 0.7).first.x, 42.857143402099609375 / 2);
}

TEST(PlaneTrace, normalAcrossTheSliceGivesNoFiniteLine) {
  const auto trace = planeTrace({5, 5}, {5, 5}, 1);
  EXPECT_FALSE(std::isfinite(trace.first.x));
  EXPECT_FALSE(std::isfinite(trace.second.y));
}

}  // namespace
}  // namespace vertana
