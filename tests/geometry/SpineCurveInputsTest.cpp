// The spine curve from a polygon, and which input counts when there are several.

#include <algorithm>

#include "tests/geometry/SpineCurve.h"

namespace vertana {
namespace {

using Points = std::vector<pelmar::PixelPoint>;

// --- from a polygon ---

const Points sixPoints{{100, 0}, {103, 12}, {104, 20}, {105, 33}, {103, 41}, {100, 50}};
const Points threePoints{{100, 0}, {120, 25}, {100, 50}};

Points reversed(Points points) {
  std::reverse(points.begin(), points.end());
  return points;
}

TEST_F(SpineCurve, polygonBeingDrawnOrSelectedIsShownAsItIsInThePersonsOrder) {
  for (const long mode : {pelmar::ROIModeDrawing, pelmar::ROIModeSelected}) {
    for (const auto& points : {threePoints, reversed(threePoints), reversed(sixPoints)}) {
      inputPolygon(points, mode);
      holdForeignPlane();
      filter.createOpenPolygon();
      EXPECT_EQ(curvePoints(), points);
      EXPECT_FALSE(holdsPlanes());
    }
  }
  EXPECT_EQ(host.calls.countContaining("resamplePoints"), 0U);
}

TEST_F(SpineCurve, finishedPolygonWithTheRightCountKeepsItsPoints) {
  inputPolygon(sixPoints);
  holdForeignPlane();
  filter.createOpenPolygon();
  EXPECT_EQ(curvePoints(), sixPoints);
  EXPECT_EQ(host.calls.countContaining("resamplePoints"), 0U);
  EXPECT_TRUE(holdsForeignPlane()) << "a finished polygon leaves the planes";
}

TEST_F(SpineCurve, finishedPolygonDrawnFromTheFeetIsReversed) {
  inputPolygon(reversed(sixPoints));
  filter.createOpenPolygon();
  EXPECT_EQ(curvePoints(), sixPoints);
}

TEST_F(SpineCurve, finishedPolygonWithEndsAtTheSameHeightKeepsItsOrder) {
  const Points level{{10, 5}, {20, 9}, {30, 9}, {40, 9}, {50, 9}, {60, 5}};
  inputPolygon(level);
  filter.createOpenPolygon();
  EXPECT_EQ(curvePoints(), level);
}

TEST_F(SpineCurve, finishedPolygonWithAnotherCountIsItsSplineResampled) {
  const auto polygon = inputPolygon(threePoints);
  // The host's spline, not the polygon itself, is what gets resampled.
  polygon->splineOverride =
      std::vector<pelmar::MyPoint>{pelmar::MyPoint::point({100, 0}), pelmar::MyPoint::point({100, 50})};
  filter.createOpenPolygon();
  EXPECT_EQ(curvePoints(), downFromHead({0, 1, 2, 3, 4, 5}));
  EXPECT_EQ(host.calls.count("resamplePoints(6,false)"), 1U);
  EXPECT_EQ(host.calls.count("splinePoints()"), 1U);
}

TEST_F(SpineCurve, resampledPolygonDrawnFromTheFeetIsReversed) {
  const auto polygon = inputPolygon(reversed(threePoints));
  polygon->splineOverride =
      std::vector<pelmar::MyPoint>{pelmar::MyPoint::point({100, 50}), pelmar::MyPoint::point({100, 0})};
  filter.createOpenPolygon();
  EXPECT_EQ(curvePoints(), downFromHead({0, 1, 2, 3, 4, 5}));
}

TEST_F(SpineCurve, finishedPolygonWhoseSplineTheHostDoesNotGiveLeavesNoPoints) {
  const auto polygon = inputPolygon(threePoints);
  polygon->splineOverride = std::vector<pelmar::MyPoint>();
  filter.createOpenPolygon();
  EXPECT_TRUE(filter.openPolygonROI());
  EXPECT_TRUE(curvePoints().empty());
}

TEST_F(SpineCurve, polygonBeingEditedCountsAsFinished) {
  inputPolygon(threePoints, pelmar::ROIModeEditing, 0.5F);
  holdForeignPlane();
  filter.createOpenPolygon();
  EXPECT_EQ(curvePoints().size(), 6U);
  EXPECT_TRUE(holdsForeignPlane());
}

TEST_F(SpineCurve, resampledCountFollowsTheExtraVertebra) {
  useRegion(2, true);
  inputPolygon(threePoints);
  filter.createOpenPolygon();
  EXPECT_EQ(curvePoints().size(), 7U);
}

// --- which input counts ---

TEST_F(SpineCurve, lineCountsBeforePolygonBeforePlanes) {
  inputLine({100, 0}, {100, 50});
  inputPolygon(sixPoints);
  holdForeignPlane();
  filter.createOpenPolygon();
  EXPECT_EQ(curvePoints(), downFromHead({0, 1, 2, 3, 4, 5}));
  filter.setInputLengthROI(nullptr);
  filter.createOpenPolygon();
  EXPECT_EQ(curvePoints(), sixPoints);
  filter.setInputOpenPolygonROI(nullptr);
  filter.createOpenPolygon();
  EXPECT_EQ(curvePoints().size(), 1U);
}

TEST_F(SpineCurve, lineBeingDrawnIsCountedByItsOwnLengthBesideADrawnPolygon) {
  inputLine({100, 0}, {100, 50}, pelmar::ROIModeDrawing, 9.0F);
  inputPolygon(sixPoints, pelmar::ROIModeDrawing, 30.0F);
  filter.createOpenPolygon();
  EXPECT_EQ(curvePoints().size(), 4U);
}

TEST_F(SpineCurve, finishedLineBesideADrawnPolygonIsCountedByThePolygonsLength) {
  // 6 cm / 3 cm: two vertebrae along the line.
  inputLine({100, 0}, {100, 60}, pelmar::ROIModeFinished, 30.0F);
  inputPolygon(sixPoints, pelmar::ROIModeSelected, 6.0F);
  holdForeignPlane();
  filter.createOpenPolygon();
  EXPECT_EQ(curvePoints(), downFromHead({0, 3, 6}));
  EXPECT_FALSE(holdsPlanes());
}

TEST_F(SpineCurve, storedPlanesGiveAVertexEachOnTheImageThatIsShown) {
  for (const auto& image : sagittal->images) {
    image->geometry.spacingX = 0.5;
    image->geometry.spacingY = 2;
  }
  sagittal->images[2]->geometry.origin = {4, -100, 200};
  sagittal->view->current = 2;
  filter.setIntervertebralPlanes({{plane("a", {90, -80, 180}), plane("b", {-7, -70, 100})}});
  filter.createOpenPolygon();
  // (y + 100) / 0.5 and (200 - z) / 2; the distance from the slice is dropped.
  EXPECT_EQ(curvePoints(), (Points{{40, 10}, {60, 50}}));
}

TEST_F(SpineCurve, planesThatTheCurveItselfWouldGiveCountAsStoredOnes) {
  // Without input the planes are computed from the curve, then the curve is refilled from them.
  curveThrough({{100, 0}, {100, 50}, {100, 90}});
  filter.createOpenPolygon();
  EXPECT_EQ(curvePoints(), (Points{{100, 0}, {100, 50}, {100, 90}}));
}

}  // namespace
}  // namespace vertana
