#include "geometry/SegmentPlane.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cmath>
#include <optional>
#include <string>

namespace vertana {
namespace {

using pelmar::Vector3f;

struct CrossingRow {
  std::string name;
  Vector3f start;
  Vector3f end;
  Vector3f normal;
  Vector3f planePoint;
  int code;
  std::optional<Vector3f> crossing;  ///< absent: the output is left untouched
};

std::ostream& operator<<(std::ostream& out, const CrossingRow& row) { return out << row.name; }

/// The row's name in letters, digits and underscores.
std::string rowName(const ::testing::TestParamInfo<CrossingRow>& tested) {
  std::string name = tested.param.name;
  for (char& c : name) {
    if (std::isalnum(static_cast<unsigned char>(c)) == 0) c = '_';
  }
  return name;
}

class SegmentPlane : public ::testing::TestWithParam<CrossingRow> {};

TEST_P(SegmentPlane, givesSideAndCrossing) {
  const CrossingRow& row = GetParam();
  Vector3f out{7, 8, 9};
  EXPECT_EQ(intersect3D_SegmentPlane(&row.start, &row.end, &row.normal, &row.planePoint, &out), row.code);
  const Vector3f expected = row.crossing.value_or(Vector3f{7, 8, 9});
  EXPECT_EQ(out.x, expected.x);
  EXPECT_EQ(out.y, expected.y);
  EXPECT_EQ(out.z, expected.z);
}

constexpr Vector3f up{0, 0, 1};
constexpr Vector3f origin{0, 0, 0};

INSTANTIATE_TEST_SUITE_P(
    Hits, SegmentPlane,
    ::testing::Values(
        CrossingRow{"along the normal", {3, 4, -1}, {3, 4, 1}, up, origin, 1, Vector3f{3, 4, 0}},
        CrossingRow{"against the normal", {3, 4, 1}, {3, 4, -1}, up, origin, 2, Vector3f{3, 4, 0}},
        // u = (4, 8, 2), D = 12, start - point = (-3, -3, -5), N = 6, s = 1/2.
        CrossingRow{"oblique plane that does not pass through the origin",
                    {0, 0, 0},
                    {4, 8, 2},
                    {1, 1, 0},
                    {3, 3, 5},
                    1,
                    Vector3f{2, 4, 1}},
        CrossingRow{"a quarter of the way", {0, 0, -1}, {8, 0, 3}, up, origin, 1, Vector3f{2, 0, 0}},
        CrossingRow{"ends on the plane, along the normal", {1, 2, -4}, {5, 6, 0}, up, origin, 1, Vector3f{5, 6, 0}},
        CrossingRow{"ends on the plane, against the normal", {1, 2, 4}, {5, 6, 0}, up, origin, 2, Vector3f{5, 6, 0}},
        CrossingRow{"starts on the plane, along the normal", {1, 2, 0}, {5, 6, 4}, up, origin, 1, Vector3f{1, 2, 0}},
        CrossingRow{"starts on the plane, against the normal", {1, 2, 0}, {5, 6, -4}, up, origin, 2, Vector3f{1, 2, 0}},
        CrossingRow{
            "normal a thousand times as long", {3, 4, -1}, {3, 4, 1}, {0, 0, 1000}, origin, 1, Vector3f{3, 4, 0}},
        CrossingRow{"normal a thousandth as long", {3, 4, -1}, {3, 4, 1}, {0, 0, 0.001F}, origin, 1, Vector3f{3, 4, 0}},
        CrossingRow{"normal the other way round", {3, 4, -1}, {3, 4, 1}, {0, 0, -2}, origin, 2, Vector3f{3, 4, 0}}),
    rowName);

INSTANTIATE_TEST_SUITE_P(
    Misses, SegmentPlane,
    ::testing::Values(
        CrossingRow{"stops short of the plane", {0, 0, -4}, {0, 0, -0.5F}, up, origin, 0, {}},
        // s = 1 / 0.999999: above 1 by a millionth.
        CrossingRow{"stops a millionth short", {0, 0, -1}, {0, 0, -1e-6F}, up, origin, 0, {}},
        CrossingRow{"starts beyond the plane", {0, 0, 0.5F}, {0, 0, 4}, up, origin, 0, {}},
        CrossingRow{"starts a millionth beyond", {0, 0, 1e-6F}, {0, 0, 1}, up, origin, 0, {}},
        CrossingRow{"against the normal, stops short", {0, 0, 4}, {0, 0, 0.5F}, up, origin, 0, {}},
        CrossingRow{"parallel beside the plane", {0, 0, 1}, {5, 5, 1}, up, origin, 0, {}},
        CrossingRow{"lies in the plane", {0, 0, 0}, {5, 5, 0}, up, origin, 0, {}},
        CrossingRow{"zero length, on the plane", {1, 1, 0}, {1, 1, 0}, up, origin, 0, {}},
        CrossingRow{"zero length, off the plane", {1, 1, 3}, {1, 1, 3}, up, origin, 0, {}},
        CrossingRow{"n . u of 9.9e-09 counts as parallel", {0, 0, -0.5F}, {0, 0, 0.5F}, {0, 0, 9.9e-9F}, origin, 0, {}},
        CrossingRow{
            "n . u of -9.9e-09 counts as parallel", {0, 0, 0.5F}, {0, 0, -0.5F}, {0, 0, 9.9e-9F}, origin, 0, {}},
        CrossingRow{"n . u of 9.9e-09 in the plane", {1, 0, 0}, {0, 0, 0}, {9.9e-9F, 0, 1}, origin, 0, {}}),
    rowName);

TEST(SegmentPlanePrecision, parallelThresholdIsComparedInDoublePrecision) {
  // The single-precision number nearest to 1e-08 is 9.99999993922529e-09: below 1e-08 once widened, so parallel. The
  // next one up, 1.00000008e-08, is not.
  const Vector3f start{0, 0, -0.5F};
  const Vector3f end{0, 0, 0.5F};
  Vector3f out{7, 8, 9};
  const Vector3f justUnder{0, 0, 1e-8F};
  EXPECT_EQ(intersect3D_SegmentPlane(&start, &end, &justUnder, &origin, &out), 0);
  EXPECT_EQ(out.z, 9);
  const Vector3f justOver{0, 0, std::nextafter(1e-8F, 1.0F)};
  EXPECT_EQ(intersect3D_SegmentPlane(&start, &end, &justOver, &origin, &out), 1);
  EXPECT_EQ(out.z, 0);
  EXPECT_EQ(intersect3D_SegmentPlane(&end, &start, &justUnder, &origin, &out), 0);
  EXPECT_EQ(intersect3D_SegmentPlane(&end, &start, &justOver, &origin, &out), 2);
}

TEST(SegmentPlanePrecision, eachComponentIsOneFusedMultiplyAdd) {
  // s = 1/3 in single precision = 11184811 / 2^25; times 3 is 1 + 2^-25 exactly, which a rounded product would lose.
  const Vector3f start{-1, -1, -1};
  const Vector3f end{2, 2, 2};
  Vector3f out;
  ASSERT_EQ(intersect3D_SegmentPlane(&start, &end, &up, &origin, &out), 1);
  const float lastBit = std::ldexp(1.0F, -25);
  EXPECT_EQ(out.x, lastBit);
  EXPECT_EQ(out.y, lastBit);
  EXPECT_EQ(out.z, lastBit);
}

TEST(SegmentPlanePrecision, directionIsTakenInSinglePrecision) {
  // end - start = 2^24 + 1 rounds to 2^24 (tie to even), as does the distance to the plane: s = 1 and the crossing is
  // start + 2^24, one short of the end.
  const float far = std::ldexp(1.0F, 24);
  const Vector3f start{0, 0, -1};
  const Vector3f end{0, 0, far};
  Vector3f out;
  ASSERT_EQ(intersect3D_SegmentPlane(&start, &end, &up, &end, &out), 1);
  EXPECT_EQ(out.z, far - 1);
}

TEST(SegmentPlanePrecision, scalarProductsAreSummedInSinglePrecision) {
  // n . u = (1e8 + 1) - 1e8: in single precision 1e8 + 1 is 1e8, so the segment counts as parallel. In double precision
  // it would be 1, with the crossing half way.
  const Vector3f end{1e8F, 1, -1e8F};
  const Vector3f normal{1, 1, 1};
  const Vector3f planePoint{0, 0.5F, 0};
  Vector3f out{7, 8, 9};
  EXPECT_EQ(intersect3D_SegmentPlane(&origin, &end, &normal, &planePoint, &out), 0);
  EXPECT_EQ(out.x, 7);
  EXPECT_EQ(out.y, 8);
  EXPECT_EQ(out.z, 9);
}

}  // namespace
}  // namespace vertana
