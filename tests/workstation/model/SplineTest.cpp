#include "workstation/model/Spline.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace workstation {
namespace {

using pelmar::MyPoint;

MyPoint at(double x, double y) { return MyPoint::point({x, y}); }

TEST(Spline, AStraightLineHasOneSampleAPixelAndStaysStraight) {
  const SplineSamples samples = sampleSpline({at(2, 3), at(12, 3)}, 1);
  ASSERT_EQ(samples.points.size(), 11u);
  for (std::size_t index = 0; index < 11; ++index) {
    // With no curvature the two tangents equal the chord and the cubic is linear in its parameter.
    EXPECT_NEAR(samples.points[index].point().x, 2 + static_cast<double>(index), 1e-12);
    EXPECT_DOUBLE_EQ(samples.points[index].point().y, 3);
    EXPECT_EQ(samples.segments[index], 0);
  }
}

TEST(Spline, ScaleIsSamplesAPixel) {
  EXPECT_EQ(sampleSpline({at(0, 0), at(6, 8)}, 5).points.size(), 51u);  // length 10
  EXPECT_EQ(sampleSpline({at(0, 0), at(6, 8)}, 0.5).points.size(), 6u);
}

TEST(Spline, EverySegmentHasAtLeastTwoSamples) {
  const SplineSamples samples = sampleSpline({at(0, 0), at(0.1, 0), at(0.2, 0)}, 1);
  EXPECT_EQ(samples.points.size(), 5u);
  EXPECT_EQ(samples.segments, (std::vector<long>{0, 0, 1, 1, 1}));
}

TEST(Spline, EveryVertexIsASampleOfTheSegmentThatItStarts) {
  const std::vector<MyPoint> vertices = {at(10, 0), at(14, 30), at(9, 61), at(3, 88)};
  const SplineSamples samples = sampleSpline(vertices, 5);
  for (std::size_t vertex = 0; vertex + 1 < vertices.size(); ++vertex) {
    const auto first = std::find(samples.segments.begin(), samples.segments.end(), static_cast<long>(vertex));
    ASSERT_NE(first, samples.segments.end());
    EXPECT_EQ(samples.points[static_cast<std::size_t>(first - samples.segments.begin())], vertices[vertex]);
  }
  EXPECT_EQ(samples.points.back(), vertices.back());
  EXPECT_EQ(samples.segments.back(), 2);
  EXPECT_TRUE(std::is_sorted(samples.segments.begin(), samples.segments.end()));
  EXPECT_EQ(samples.points.size(), samples.segments.size());
}

TEST(Spline, UnevenlySpacedVerticesOnALineStayOnTheLineAndNeverTurnBack) {
  const SplineSamples samples = sampleSpline({at(0, 0), at(1, 1), at(40, 40), at(42, 42)}, 1);
  double last = -1;
  for (const MyPoint& sample : samples.points) {
    EXPECT_NEAR(sample.point().x, sample.point().y, 1e-9);
    EXPECT_GT(sample.point().x, last);
    last = sample.point().x;
  }
}

TEST(Spline, TheTangentOfEvenlySpacedVerticesIsParallelToTheChordOfTheNeighbours) {
  // Equal chords have equal knots, for which the tangent at a vertex is half the chord of its neighbours: here
  // horizontal at the top of a symmetric arch.
  const SplineSamples samples = sampleSpline({at(0, 0), at(30, -40), at(60, 0)}, 5);
  const auto top = std::find(samples.points.begin(), samples.points.end(), at(30, -40));
  ASSERT_NE(top, samples.points.end());
  const double rise = (top + 1)->point().y - (top - 1)->point().y;
  const double run = (top + 1)->point().x - (top - 1)->point().x;
  EXPECT_NEAR(rise / run, 0, 1e-9);
}

using pelmar::PixelPoint;

/// A point of the segment from b to c by Barry and Goldman's pyramid, with knots at the square roots of the chords.
PixelPoint pyramid(const std::array<PixelPoint, 4>& control, double share) {
  std::array<double, 4> knots{};
  for (std::size_t i = 1; i < 4; ++i) {
    const double chord = std::hypot(control[i].x - control[i - 1].x, control[i].y - control[i - 1].y);
    knots[i] = knots[i - 1] + std::sqrt(chord);
  }
  const double knot = knots[1] + share * (knots[2] - knots[1]);
  const auto blend = [&](PixelPoint p, PixelPoint q, double low, double high) {
    const double part = (knot - low) / (high - low);
    return PixelPoint{p.x + part * (q.x - p.x), p.y + part * (q.y - p.y)};
  };
  std::array<PixelPoint, 3> first;
  for (std::size_t i = 0; i < 3; ++i) first[i] = blend(control[i], control[i + 1], knots[i], knots[i + 1]);
  const PixelPoint left = blend(first[0], first[1], knots[0], knots[2]);
  const PixelPoint right = blend(first[1], first[2], knots[1], knots[3]);
  return blend(left, right, knots[1], knots[2]);
}

TEST(Spline, IsTheCentripetalOneAndGoesOnAtItsEndsAsItCame) {
  // Uneven chords: 5, 50 and 13 pixels, so that uniform and chordal knots give other curves.
  const std::vector<PixelPoint> v = {{0, 0}, {3, 4}, {33, 44}, {38, 56}};
  const PixelPoint beforeFirst{2 * v[0].x - v[1].x, 2 * v[0].y - v[1].y};
  const PixelPoint afterLast{2 * v[3].x - v[2].x, 2 * v[3].y - v[2].y};
  const std::vector<std::array<PixelPoint, 4>> controls = {
      {beforeFirst, v[0], v[1], v[2]}, {v[0], v[1], v[2], v[3]}, {v[1], v[2], v[3], afterLast}};
  std::vector<MyPoint> vertices;
  for (const PixelPoint& vertex : v) vertices.push_back(MyPoint::point(vertex));
  const SplineSamples samples = sampleSpline(vertices, 2);
  for (std::size_t segment = 0; segment < 3; ++segment) {
    const auto number = static_cast<long>(segment);
    const auto count = std::count(samples.segments.begin(), samples.segments.end(), number) - (segment == 2 ? 1 : 0);
    const auto first = std::find(samples.segments.begin(), samples.segments.end(), number) - samples.segments.begin();
    for (std::ptrdiff_t sample = 0; sample < count; ++sample) {
      const PixelPoint found = samples.points[static_cast<std::size_t>(first + sample)].point();
      const PixelPoint wanted = pyramid(controls[segment], static_cast<double>(sample) / static_cast<double>(count));
      EXPECT_NEAR(found.x, wanted.x, 1e-9) << "segment " << segment << ", sample " << sample;
      EXPECT_NEAR(found.y, wanted.y, 1e-9) << "segment " << segment << ", sample " << sample;
    }
  }
}

TEST(Spline, CoincidentVerticesGiveFiniteSamples) {
  const SplineSamples samples = sampleSpline({at(5, 5), at(5, 5), at(9, 5), at(9, 5)}, 1);
  for (const MyPoint& sample : samples.points) {
    EXPECT_TRUE(std::isfinite(sample.point().x));
    EXPECT_DOUBLE_EQ(sample.point().y, 5);
  }
  EXPECT_EQ(samples.points.size(), 2u + 4u + 2u + 1u);
}

TEST(Spline, OneVertexIsItselfAndNoneIsNothing) {
  EXPECT_EQ(sampleSpline({at(1, 2)}, 5).points, std::vector<MyPoint>{at(1, 2)});
  EXPECT_EQ(sampleSpline({at(1, 2)}, 5).segments, std::vector<long>{0});
  EXPECT_TRUE(sampleSpline({}, 5).points.empty());
}

TEST(Spline, AWildVertexDoesNotCostMoreThanABoundedNumberOfSamples) {
  EXPECT_LE(sampleSpline({at(0, 0), at(1e30, 0)}, 5).points.size(), 100001u);
}

TEST(Resample, PointsLieAtEqualDistancesAlongTheLineAndEndsAreExact) {
  // An L of 6 + 6: five points lie 3 apart.
  const auto points = resampleEvenly({at(0, 0), at(6, 0), at(6, 6)}, 5, false);
  EXPECT_EQ(points, (std::vector<MyPoint>{at(0, 0), at(3, 0), at(6, 0), at(6, 3), at(6, 6)}));
}

TEST(Resample, UnevenPointsOfAStraightLineBecomeEven) {
  const auto points = resampleEvenly({at(0, 0), at(0, 1), at(0, 8)}, 3, false);
  EXPECT_EQ(points, (std::vector<MyPoint>{at(0, 0), at(0, 4), at(0, 8)}));
}

TEST(Resample, ClosingReturnsToTheFirstPoint) {
  const auto points = resampleEvenly({at(0, 0), at(4, 0), at(4, 4), at(0, 4)}, 5, true);
  EXPECT_EQ(points, (std::vector<MyPoint>{at(0, 0), at(4, 0), at(4, 4), at(0, 4), at(0, 0)}));
}

TEST(Resample, OddNumbersAndPointsAreHarmless) {
  EXPECT_TRUE(resampleEvenly({}, 4, false).empty());
  EXPECT_TRUE(resampleEvenly({at(0, 0), at(4, 0)}, 0, false).empty());
  EXPECT_TRUE(resampleEvenly({at(0, 0), at(4, 0)}, -3, false).empty());
  EXPECT_EQ(resampleEvenly({at(0, 0), at(4, 0)}, 1, false), std::vector<MyPoint>{at(0, 0)});
  EXPECT_EQ(resampleEvenly({at(7, 7)}, 3, false), (std::vector<MyPoint>{at(7, 7), at(7, 7), at(7, 7)}));
}

}  // namespace
}  // namespace workstation
