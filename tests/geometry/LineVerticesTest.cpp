#include "geometry/LineVertices.h"

#include <gtest/gtest.h>

#include <string>

namespace vertana {
namespace {

using pelmar::PixelPoint;

struct LineRow {
  std::string name;
  LineDivision division;
  double lengthInSteps;         ///< the line runs from (5, 7) by (1, 10) a step
  std::vector<double> atSteps;  ///< where the vertices stand, in steps from the start
  friend std::ostream& operator<<(std::ostream& out, const LineRow& row) { return out << row.name; }
};

class LineVertices : public ::testing::TestWithParam<LineRow> {};

TEST_P(LineVertices, standWhereTheRegionWantsThem) {
  const LineRow& row = GetParam();
  const PixelPoint a{5, 7};
  const PixelPoint b{5 + row.lengthInSteps, 7 + 10 * row.lengthInSteps};
  std::vector<PixelPoint> expected;
  for (const double step : row.atSteps) expected.push_back({5 + step, 7 + 10 * step});
  EXPECT_EQ(verticesAlongLine(a, b, row.division), expected);
}

// {vertebraCount, fullVertebraCount, cervical, upwardWhileDrawn}
INSTANTIATE_TEST_SUITE_P(
    Regions, LineVertices,
    ::testing::Values(LineRow{"Lumbar", {5, 5, false, false}, 5, {0, 1, 2, 3, 4, 5}},
                      LineRow{"LumbarWithExtraVertebra", {6, 6, false, false}, 6, {0, 1, 2, 3, 4, 5, 6}},
                      LineRow{"Thoracic", {12, 12, false, false}, 12, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}},
                      LineRow{"ThoracicWhileDrawn", {4, 12, false, false}, 4, {0, 1, 2, 3, 4}},
                      LineRow{"ThoracicUpwardWhileDrawn", {4, 12, false, true}, 4, {0, 1, 2, 3, 4}},
                      LineRow{"ThoracicUpwardWhileDrawnFullCount", {2, 2, false, true}, 2, {0, 1, 2}},
                      LineRow{"NoRegion", {1, 1, false, false}, 1, {0, 1}},
                      // Cervical: one step more than vertebrae; the first interval takes two.
                      LineRow{"CervicalFinished", {6, 6, true, false}, 7, {0, 2, 3, 4, 5, 6, 7}},
                      LineRow{"CervicalFinishedWithExtraVertebra", {7, 7, true, false}, 8, {0, 2, 3, 4, 5, 6, 7, 8}},
                      LineRow{"CervicalDownwardWhileDrawn", {4, 6, true, false}, 5, {0, 2, 3, 4, 5}},
                      // Upward the double interval lies at the far end, and only once the full count is reached.
                      LineRow{"CervicalUpwardWhileDrawn", {4, 6, true, true}, 5, {0, 1, 2, 3, 4}},
                      LineRow{"CervicalUpwardOneVertebraShort", {5, 6, true, true}, 6, {0, 1, 2, 3, 4, 5}},
                      LineRow{"CervicalUpwardFullCount", {6, 6, true, true}, 7, {0, 1, 2, 3, 4, 5, 7}}),
    [](const auto& tested) { return tested.param.name; });

TEST(LineVerticesPrecision, stepIsTakenInSinglePrecisionInEachCoordinate) {
  const auto vertices = verticesAlongLine({0, 0}, {1, 3}, {10, 10, false, false});
  ASSERT_EQ(vertices.size(), 11U);
  EXPECT_EQ(vertices[1].x, static_cast<double>(0.1F));
  EXPECT_EQ(vertices[1].y, static_cast<double>(0.3F));
}

TEST(LineVerticesPrecision, firstVertexIsTheStartItself) {
  const auto vertices = verticesAlongLine({0.1, 1.0 / 3}, {10.1, 20}, {5, 5, false, false});
  EXPECT_EQ(vertices.front(), (PixelPoint{0.1, 1.0 / 3}));
}

}  // namespace
}  // namespace vertana
