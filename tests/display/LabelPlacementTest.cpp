#include "display/LabelPlacement.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace vertana {
namespace {

using pelmar::PixelPoint;
using pelmar::Vector3f;

constexpr float noNumber = std::numeric_limits<float>::quiet_NaN();

struct SideRow {
  std::string name;
  Vector3f axis;
  int side;
  friend std::ostream& operator<<(std::ostream& out, const SideRow& row) { return out << row.name; }
};

class LabelsSide : public ::testing::TestWithParam<SideRow> {};

TEST_P(LabelsSide, followsTheHorizontalScreenAxis) {
  EXPECT_EQ(labelsSideForHorizontalAxis(GetParam().axis), GetParam().side);
}

INSTANTIATE_TEST_SUITE_P(
    Axes, LabelsSide,
    ::testing::Values(SideRow{"NoDirectionAtAll", {0, 0, 0}, 1}, SideRow{"NegativeZeros", {-0.0F, -0.0F, -0.0F}, 1},
                      SideRow{"SagittalFrontToBack", {0, 1, 0}, 1}, SideRow{"SagittalBackToFront", {0, -1, 0}, 1},
                      SideRow{"Coronal", {1, 0, 0}, 0}, SideRow{"CoronalMirrored", {-1, 0, 0}, 0},
                      SideRow{"HeadToFeet", {0, 0, -1}, 0},
                      SideRow{"MostlyAcrossButAlsoFrontToBack", {0.9F, 0.3F, 0}, 1},
                      SideRow{"MostlyAcrossAndBackToFront", {-0.9F, -0.3F, 0}, 1},
                      SideRow{"MostlyAlongTheBodyButAlsoFrontToBack", {0, 0.3F, 0.9F}, 1},
                      SideRow{"FrontToBackFoundInTheThirdPass", {0.8F, 0.3F, 0.5F}, 1},
                      SideRow{"FrontToBackFoundInTheThirdPassAfterZAndX", {0.5F, 0.3F, 0.8F}, 1},
                      SideRow{"NothingLeftAfterXAndZ", {0.8F, 0.1F, 0.5F}, 0},
                      // 0.2 in single precision is 0.200000003: above 0.2 once widened. The one below it is not.
                      SideRow{"SinglePrecisionPointTwoIsAbovePointTwo", {0.97F, 0.2F, 0}, 1},
                      SideRow{"JustBelowPointTwoIsNot", {0.97F, std::nextafter(0.2F, 0.0F), 0}, 0},
                      SideRow{"LargestComponentBelowPointTwo", {0.1F, 0.15F, 0.05F}, 0},
                      SideRow{"SmallAcross", {0.15F, 0.1F, 0.1F}, 0},
                      SideRow{"SmallAlongTheBody", {0.1F, 0.1F, 0.15F}, 0}, SideRow{"TieOfXAndY", {0.7F, 0.7F, 0}, 1},
                      SideRow{"TieOfYAndZ", {0, 0.7F, 0.7F}, 1}, SideRow{"TieOfXAndZ", {0.7F, 0, 0.7F}, 0},
                      SideRow{"TieOfAllThree", {0.58F, 0.58F, 0.58F}, 1},
                      SideRow{"MostlyFrontToBackButAlsoAcross", {0.3F, 0.9F, 0}, 1},
                      SideRow{"MostlyFrontToBackButAlsoAlongTheBody", {0, 0.9F, 0.3F}, 1},
                      // What is no number is neither larger than another component nor smaller.
                      SideRow{"AcrossIsNoNumber", {noNumber, 0, 0.9F}, 0},
                      SideRow{"FrontToBackIsNoNumberAndMostlyAcross", {0.9F, noNumber, 0}, 0},
                      SideRow{"FrontToBackIsNoNumberAndMostlyAlongTheBody", {0, noNumber, 0.9F}, 0},
                      SideRow{"AlongTheBodyIsNoNumber", {0, 0.9F, noNumber}, 0}),
    [](const auto& tested) { return tested.param.name; });

TEST(LabelDistance, byRegionInMillimetres) {
  EXPECT_EQ(labelDistanceMm(0), 15);
  EXPECT_EQ(labelDistanceMm(1), 20);
  EXPECT_EQ(labelDistanceMm(2), 30);
  EXPECT_EQ(labelDistanceMm(-1), 0);
  EXPECT_EQ(labelDistanceMm(3), 0);
}

struct PointRow {
  std::string name;
  PixelPoint upperNormal;
  PixelPoint lowerNormal;
  bool footFirst;
  int side;
  PixelPoint fromMiddle;
  friend std::ostream& operator<<(std::ostream& out, const PointRow& row) { return out << row.name; }
};

class LabelPoint : public ::testing::TestWithParam<PointRow> {};

TEST_P(LabelPoint, liesBesideTheSpine) {
  const auto& row = GetParam();
  LabelPlacement placement;
  placement.middle = {100, 200};
  placement.upperNormal = row.upperNormal;
  placement.lowerNormal = row.lowerNormal;
  placement.footFirst = row.footFirst;
  placement.side = row.side;
  placement.distance = {30, 60};
  EXPECT_EQ(labelPoint(placement), (PixelPoint{100 + row.fromMiddle.x, 200 + row.fromMiddle.y}));
}

// w is (n.y, -n.x), or (-n.y, n.x) from foot to head; distances are 30 pixels in x and 60 in y.
INSTANTIATE_TEST_SUITE_P(
    Sides, LabelPoint,
    ::testing::Values(PointRow{"HeadFirstSideZero", {0, 1}, {0, 1}, false, 0, {30, 0}},
                      PointRow{"HeadFirstSideOne", {0, 1}, {0, 1}, false, 1, {-30, 0}},
                      PointRow{"FootFirstSideZero", {0, -1}, {0, -1}, true, 0, {30, 0}},
                      PointRow{"FootFirstSideOne", {0, -1}, {0, -1}, true, 1, {-30, 0}},
                      PointRow{"FootFirstFlagAlone", {0, 1}, {0, 1}, true, 0, {-30, 0}},
                      PointRow{"NormalAcrossTheImageUsesTheVerticalDistance", {1, 0}, {1, 0}, false, 0, {0, -60}},
                      PointRow{"NormalAcrossTheImageFootFirst", {1, 0}, {1, 0}, true, 0, {0, 60}},
                      PointRow{"NormalAcrossTheImageSideOne", {1, 0}, {1, 0}, false, 1, {0, 60}},
                      // n = (0.5, 0.5), not of unit length
                      PointRow{"MeanOfTwoNormals", {1, 0}, {0, 1}, false, 0, {15, -30}},
                      PointRow{"OppositeNormalsLeaveTheLabelOnTheSpine", {0, 1}, {0, -1}, false, 0, {0, 0}}),
    [](const auto& tested) { return tested.param.name; });

TEST(ConnectorEnd, isFourFifthsOfTheWayToTheLabel) {
  EXPECT_EQ(connectorEnd({100, 200}, {130, 190}), (PixelPoint{124, 192}));
  EXPECT_EQ(connectorEnd({100, 200}, {100, 200}), (PixelPoint{100, 200}));
}

}  // namespace
}  // namespace vertana
