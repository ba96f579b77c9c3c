#include <cmath>

#include "tests/geometry/SpineStudy.h"

namespace vertana {
namespace {

using pelmar::MyPoint;
using pelmar::PixelPoint;
using Points = std::vector<PixelPoint>;
using Names = std::vector<std::string>;

std::vector<MyPoint> samplesAt(const Points& points) {
  std::vector<MyPoint> samples;
  for (const auto& point : points) samples.push_back(MyPoint::point(point));
  return samples;
}

/// On slice 0, x = -4: pixel (x, y) lies at (-4, x - 200, 200 - y).
struct PlaneComputation : SpineStudy {
  const std::vector<IntervertebralPlane>& planes() {
    const auto& computed = filter.intervertebralPlanes();
    EXPECT_TRUE(computed);
    static const std::vector<IntervertebralPlane> none;
    return computed ? *computed : none;
  }
  /// Where a plane stands, as a pixel of slice 0.
  PixelPoint pixelOf(std::size_t index) {
    const auto& point = planes().at(index).point;
    return {point->y() + 200, 200 - point->z()};
  }
  /// A plane's direction along the image's axes: to the right and down.
  PixelPoint directionOf(std::size_t index) {
    const auto& vector = planes().at(index).vector;
    EXPECT_NEAR(vector->x(), 0, 1e-6);
    return {vector->y(), -vector->z()};
  }
  void expectPlane(std::size_t index, PixelPoint pixel, PixelPoint direction) {
    EXPECT_NEAR(pixelOf(index).x, pixel.x, 1e-4) << index;
    EXPECT_NEAR(pixelOf(index).y, pixel.y, 1e-4) << index;
    EXPECT_NEAR(directionOf(index).x, direction.x, 1e-6) << index;
    EXPECT_NEAR(directionOf(index).y, direction.y, 1e-6) << index;
  }
};

TEST_F(PlaneComputation, averageHeightsByRegion) {
  EXPECT_EQ(filter.averageVertebraeHeight(), (std::map<long, double>{{-1, 1.0}, {0, 1.5}, {1, 2.0}, {2, 3.0}}));
}

// --- lazy and eager ---

TEST_F(PlaneComputation, withoutACurveThereAreNoPlanes) {
  EXPECT_FALSE(filter.intervertebralPlanes());
  EXPECT_TRUE(host.calls.lines().empty());
}

TEST_F(PlaneComputation, withoutACurveStoredPlanesAreLeftAsTheyAre) {
  holdForeignPlane();
  filter.computeIntervertebralPlanes();
  EXPECT_TRUE(holdsForeignPlane());
}

TEST_F(PlaneComputation, readingTwiceWithoutAnEditComputesOnce) {
  curveThrough({{100, 0}, {100, 50}, {100, 90}});
  const auto first = planes().front().point;
  EXPECT_TRUE(planes().front().point == first);
  EXPECT_EQ(host.calls.count("splinePoints(5)"), 1U);
}

TEST_F(PlaneComputation, storedPlanesAreNotComputedAgainUntilTheyAreCleared) {
  curveThrough({{100, 0}, {100, 50}, {100, 90}});
  holdForeignPlane();
  filter.intervertebralPlanes();
  EXPECT_TRUE(holdsForeignPlane());
  filter.setIntervertebralPlanes(std::nullopt);
  filter.intervertebralPlanes();
  EXPECT_EQ(heldPlaneNames(), (Names{"T12-L1", "L1-L2", "L2-L3"}));
}

TEST_F(PlaneComputation, computingReplacesTheStoredPlanes) {
  curveThrough({{100, 0}, {100, 50}, {100, 90}});
  holdForeignPlane();
  filter.computeIntervertebralPlanes();
  EXPECT_EQ(heldPlaneNames(), (Names{"T12-L1", "L1-L2", "L2-L3"}));
}

TEST_F(PlaneComputation, curveWithoutPointsGivesAnEmptyListNotNone) {
  curveThrough({});
  filter.computeIntervertebralPlanes();
  EXPECT_TRUE(holdsPlanes());
  EXPECT_TRUE(planes().empty());
}

// --- names ---

TEST_F(PlaneComputation, planesStopAtTheLastLabel) {
  curveThrough({{100, 0}, {100, 10}, {100, 20}, {100, 30}, {100, 40}, {100, 50}, {100, 60}, {100, 70}});
  filter.computeIntervertebralPlanes();
  EXPECT_EQ(heldPlaneNames(), (Names{"T12-L1", "L1-L2", "L2-L3", "L3-L4", "L4-L5", "L5-S1"}));
}

TEST_F(PlaneComputation, labelsWithoutAVertexGetNoPlane) {
  filter.setAnatomicalRegion(AnatomicalRegionThoracic);
  curveThrough({{100, 0}, {100, 10}});
  filter.computeIntervertebralPlanes();
  EXPECT_EQ(heldPlaneNames(), (Names{"C7-T1", "T1-T2"}));
}

// --- directions without the spline ---

TEST_F(PlaneComputation, curveOfThreeVerticesNeverUsesTheSpline) {
  const auto curve = curveThrough({{100, 0}, {103, 4}, {103, 14}});
  curve->splineOverride = samplesAt({{0, 0}, {10, 0}, {20, 0}, {30, 0}, {40, 0}, {50, 0}});
  curve->segmentOverride = std::vector<long>{0, 0, 1, 1, 2, 2};
  ASSERT_EQ(planes().size(), 3U);
  expectPlane(0, {100, 0}, {0.6, 0.8});
  expectPlane(1, {103, 4}, {0, 1});
  // From the second-to-last vertex towards the last.
  expectPlane(2, {103, 14}, {0, 1});
}

TEST_F(PlaneComputation, lastDirectionPointsFromTheVertexBeforeTowardsTheLast) {
  curveThrough({{100, 0}, {100, 10}, {108, 16}});
  expectPlane(2, {108, 16}, {0.8, 0.6});
}

TEST_F(PlaneComputation, directionsAreUnitVectorsInMillimetres) {
  for (const auto& image : sagittal->images) {
    image->geometry.spacingX = 0.5;
    image->geometry.spacingY = 2;
  }
  // 12 columns of 0.5 mm, 4 rows of 2 mm: (6, 8) mm, a length of 10.
  curveThrough({{100, 0}, {112, 4}});
  const auto& first = planes().front();
  expectVector(first.vector, 0, 0.6, -0.8, 1e-6);
  expectVector(first.point, -4, -200 + 50, 200, 1e-6);
}

TEST_F(PlaneComputation, positionsAreThoseOfTheCurvesOwnImage) {
  const auto curve = curveThrough({{100, 0}, {100, 10}});
  curve->image = sagittal->images[1];
  sagittal->view->current = 2;
  expectVector(planes().front().point, 0, -100, 200);
}

TEST_F(PlaneComputation, singleVertexAsksTheHostForTheOneBeforeIt) {
  // The host answers (0, 0) for index -1: q - p = 100 up and 100 to the left, turned round.
  curveThrough({{100, 100}});
  ASSERT_EQ(planes().size(), 1U);
  expectPlane(0, {100, 100}, {std::sqrt(0.5), std::sqrt(0.5)});
}

TEST_F(PlaneComputation, coincidentVerticesGiveTheZeroVector) {
  curveThrough({{100, 50}, {100, 50}, {100, 60}});
  expectVector(planes().front().vector, 0, 0, 0, 0);
}

// --- directions from the spline ---

/// Four vertices down the image, and a spline whose samples stand elsewhere so that its use shows.
struct SplinePlanes : PlaneComputation {
  const Points vertices{{100, 0}, {100, 10}, {100, 20}, {100, 30}};
  const Points samples{{200, 0}, {203, 4}, {203, 12}, {206, 16}, {206, 24}, {209, 28}, {215, 36}};
};

TEST_F(SplinePlanes, eachPlaneStandsJustBeforeItsVertexAndPointsAcrossIt) {
  const auto curve = curveThrough(vertices);
  curve->splineOverride = samplesAt(samples);
  curve->segmentOverride = std::vector<long>{0, 0, 1, 1, 2, 2, 2};
  ASSERT_EQ(planes().size(), 4U);
  // Vertex 0 at sample 0: from sample 0 itself to sample 1.
  expectPlane(0, {200, 0}, {0.6, 0.8});
  // Vertex 1 at sample 2: from sample 1 to sample 3, (3, 12).
  expectPlane(1, {203, 4}, {3 / std::sqrt(153), 12 / std::sqrt(153)});
  // Vertex 2 at sample 4: from sample 3 to sample 5, (3, 12) again.
  expectPlane(2, {206, 16}, {3 / std::sqrt(153), 12 / std::sqrt(153)});
  // No sample belongs to the last vertex: the vertices themselves, onward.
  expectPlane(3, {100, 30}, {0, 1});
  EXPECT_EQ(host.calls.count("splinePoints(5)"), 1U);
}

TEST_F(SplinePlanes, whereTheSplineHoldsTheLastVertexItsVectorPointsBackUpTheCurve) {
  const auto curve = curveThrough(vertices);
  curve->splineOverride = samplesAt(samples);
  curve->segmentOverride = std::vector<long>{0, 0, 1, 1, 2, 2, 3};
  // Vertex 3 at the last sample: from sample 5 to sample 6, (6, 8), times -1.
  expectPlane(3, {209, 28}, {-0.6, -0.8});
}

TEST_F(SplinePlanes, theFirstSampleOfASegmentIsTheOneThatCounts) {
  const auto curve = curveThrough(vertices);
  curve->splineOverride = samplesAt(samples);
  curve->segmentOverride = std::vector<long>{2, 0, 1, 0, 2, 1, 1};
  // Vertex 0 first at sample 1: from sample 0 to sample 2, (3, 12). Vertex 2 first at sample 0: (3, 4).
  expectPlane(0, {200, 0}, {3 / std::sqrt(153), 12 / std::sqrt(153)});
  expectPlane(2, {200, 0}, {0.6, 0.8});
}

TEST_F(SplinePlanes, vertexThatTheSplineDoesNotNameKeepsItsChord) {
  const auto curve = curveThrough(vertices);
  curve->splineOverride = samplesAt(samples);
  curve->segmentOverride = std::vector<long>{0, 0, 0, 0, 2, 2, 2};
  expectPlane(1, {100, 10}, {0, 1});
  expectPlane(2, {206, 16}, {3 / std::sqrt(153), 12 / std::sqrt(153)});
}

TEST_F(SplinePlanes, segmentIndicesBeyondTheVerticesAreOfNoVertex) {
  const auto curve = curveThrough(vertices);
  curve->splineOverride = samplesAt(samples);
  curve->segmentOverride = std::vector<long>{-1, 0, 99, 1, 4, 2, 2};
  // Vertex 0 at sample 1: from sample 0 to sample 2.
  expectPlane(0, {200, 0}, {3 / std::sqrt(153), 12 / std::sqrt(153)});
  expectPlane(3, {100, 30}, {0, 1});
}

TEST_F(SplinePlanes, surplusVerticesTakeTheTurnFromTheLastPlane) {
  // Eight vertices, six labels: the sixth plane is not the curve's last vertex, so nothing is turned round.
  const auto curve =
      curveThrough({{100, 0}, {100, 10}, {100, 20}, {100, 30}, {100, 40}, {100, 50}, {100, 60}, {100, 70}});
  curve->splineOverride = samplesAt(samples);
  curve->segmentOverride = std::vector<long>{};
  expectPlane(5, {100, 50}, {0, 1});
}

TEST_F(SplinePlanes, hostWithoutASplineLeavesTheChords) {
  const auto curve = curveThrough(vertices);
  curve->splineOverride = std::vector<MyPoint>{};
  curve->segmentOverride = std::vector<long>{0, 1, 2, 3};
  for (std::size_t i = 0; i < 4; ++i) expectPlane(i, vertices[i], {0, 1});
}

// --- ending the drawing of a polygon ---

struct StopRow {
  std::string name;
  unsigned long drawMode;
  std::size_t vertices;
  long mode;
  bool stops;
  friend std::ostream& operator<<(std::ostream& out, const StopRow& row) { return out << row.name; }
};

struct DrawingStop : PlaneComputation, ::testing::WithParamInterface<StopRow> {};

TEST_P(DrawingStop, whenThereIsAVertexForEveryLabel) {
  const auto& row = GetParam();
  filter.setDrawMode(row.drawMode);
  Points points;
  for (std::size_t i = 0; i < row.vertices; ++i) points.push_back({100, 10 * static_cast<double>(i)});
  curveThrough(points)->mode = row.mode;
  host.calls.clear();
  filter.computeIntervertebralPlanes();
  EXPECT_EQ(host.calls.count("viewer1.imageView.stopROIEditingForce(true)"), row.stops ? 1U : 0U);
}

// The lumbar region has six disc labels.
INSTANTIATE_TEST_SUITE_P(
    Cases, DrawingStop,
    ::testing::Values(StopRow{"AsManyVerticesAsLabels", 1, 6, 0, true}, StopRow{"MoreVertices", 1, 7, 0, true},
                      StopRow{"OneVertexShort", 1, 5, 0, false}, StopRow{"CurveStillDrawn", 1, 6, 1, true},
                      StopRow{"CurveSelected", 1, 6, 2, false}, StopRow{"CurveVertexDragged", 1, 6, 3, false},
                      StopRow{"LineMode", 0, 6, 0, false}, StopRow{"AnotherDrawMode", 2, 6, 0, false}),
    [](const auto& tested) { return tested.param.name; });

}  // namespace
}  // namespace vertana
