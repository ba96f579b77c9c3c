// The smoothed curve through an annotation's points, its length, and resampling.
#include <cmath>

#include "ContractHost.h"

namespace contract {
namespace {

using pelmar::MyPoint;
using pelmar::PixelPoint;

using Points = std::vector<MyPoint>;

double distance(const MyPoint& a, const MyPoint& b) {
  return std::hypot(b.point().x - a.point().x, b.point().y - a.point().y);
}

Points pointsAt(const std::vector<PixelPoint>& positions) {
  Points points;
  for (const PixelPoint& position : positions) points.push_back(MyPoint::point(position));
  return points;
}

class Curve : public OnEveryHost {
 protected:
  Curve() : OnEveryHost({{.spacingXMm = 0.5, .spacingYMm = 2}, {}}) {}
};
ON_EVERY_HOST(Curve);

TEST_P(Curve, hasEveryPointAsASampleAtTheStartOfItsSegmentAndTheLastOnTheLastSegment) {
  const std::vector<PixelPoint> vertices{{10, 10}, {14, 30}, {12, 31}, {30, 60}};
  std::vector<long> segments{99};
  const auto samples = annotation(10, {0}, vertices)->splinePoints(5, &segments);
  ASSERT_TRUE(samples.has_value());
  ASSERT_EQ(samples->size(), segments.size());
  EXPECT_EQ(samples->front().point(), vertices.front());
  EXPECT_EQ(samples->back().point(), vertices.back());
  EXPECT_EQ(segments.back(), 2);
  for (long segment = 0; segment < 3; ++segment) {
    const auto first = std::find(segments.begin(), segments.end(), segment);
    ASSERT_NE(first, segments.end());
    EXPECT_EQ((*samples)[static_cast<std::size_t>(first - segments.begin())].point(),
              vertices[static_cast<std::size_t>(segment)]);
    EXPECT_GE(std::count(segments.begin(), segments.end(), segment), 2);
  }
  EXPECT_TRUE(std::is_sorted(segments.begin(), segments.end()));
}

TEST_P(Curve, hasAsManySamplesAPixelAsAskedAndOneWhereNothingIsAsked) {
  const auto roi = annotation(10, {0}, {{10, 10}, {10, 50}});
  // 40 pixels, straight, and the end.
  EXPECT_EQ(roi->splinePoints()->size(), 41U);
  EXPECT_EQ(roi->splinePoints(5, nullptr)->size(), 201U);
  EXPECT_EQ(roi->splinePoints(0.01F, nullptr)->size(), 3U) << "at least two a segment";
  const Points samples = *roi->splinePoints();
  for (const MyPoint& sample : samples) EXPECT_NEAR(sample.point().x, 10, 1e-9);
}

TEST_P(Curve, ofOnePointIsThatPointAndOfNoneEmpty) {
  std::vector<long> segments{99};
  const auto none = annotation(10, {0})->splinePoints(1, &segments);
  ASSERT_TRUE(none.has_value()) << "empty, not absent";
  EXPECT_TRUE(none->empty());
  EXPECT_TRUE(segments.empty());
  const auto one = annotation(10, {0}, {{3, 4}})->splinePoints(1, &segments);
  ASSERT_EQ(one->size(), 1U);
  EXPECT_EQ(one->front().point(), (PixelPoint{3, 4}));
  EXPECT_EQ(segments, std::vector<long>{0});
}

TEST_P(Curve, lengthIsInCentimetresOnThePatient) {
  // 20 columns of 0.5 mm across, and 20 rows of 2 mm down.
  EXPECT_FLOAT_EQ(annotation(5, {0}, {{10, 10}, {30, 10}})->length(), 1);
  EXPECT_FLOAT_EQ(annotation(5, {0}, {{10, 10}, {10, 30}})->length(), 4);
  // 60 columns are 30 mm, 20 rows 40 mm: 50 mm.
  EXPECT_FLOAT_EQ(annotation(5, {0}, {{10, 10}, {70, 30}})->length(), 5);
  EXPECT_EQ(annotation(5, {0})->length(), 0);
}

TEST_P(Curve, lengthOfAPolygonRunsAlongIt) {
  const auto roi = annotation(10, {0}, {{10, 10}, {40, 30}, {20, 60}, {60, 70}});
  const Points curve = *roi->splinePoints();
  double lengthMm = 0;
  for (std::size_t i = 1; i < curve.size(); ++i) {
    const PixelPoint from = curve[i - 1].point();
    const PixelPoint to = curve[i].point();
    lengthMm += std::hypot((to.x - from.x) * 0.5, (to.y - from.y) * 2);
  }
  EXPECT_NEAR(static_cast<double>(roi->length()), lengthMm / 10, 1e-4);
}

TEST_P(Curve, resampledHasTheCountItsEndsExactlyAndEqualSteps) {
  const Points bent = pointsAt({{0.1, 0.2}, {30.1, 0.2}, {30.1, 10.2}});
  const auto resampled = api().roiClass().resamplePoints(bent, 9, false);
  ASSERT_TRUE(resampled.has_value());
  ASSERT_EQ(resampled->size(), 9U);
  EXPECT_EQ(resampled->front(), bent.front());
  EXPECT_EQ(resampled->back(), bent.back());
  // 40 pixels in 8 steps of 5; the corner after 30 is the sixth step.
  for (std::size_t i = 1; i < 9; ++i) EXPECT_NEAR(distance((*resampled)[i - 1], (*resampled)[i]), 5, 1e-9) << i;
  EXPECT_NEAR(distance((*resampled)[6], bent[1]), 0, 1e-9);
}

TEST_P(Curve, resampledEdgesOfCountAndInput) {
  auto& rois = api().roiClass();
  const Points line = pointsAt({{0, 0}, {10, 0}});
  EXPECT_FALSE(rois.resamplePoints(std::nullopt, 5, false).has_value());
  EXPECT_EQ(rois.resamplePoints(Points{}, 5, false), Points{});
  EXPECT_EQ(rois.resamplePoints(line, 0, false), Points{});
  EXPECT_EQ(rois.resamplePoints(line, 1, false), Points{line.front()});
  EXPECT_EQ(rois.resamplePoints(line, 2, false), line);
  EXPECT_EQ(rois.resamplePoints(pointsAt({{3, 4}}), 3, false), pointsAt({{3, 4}, {3, 4}, {3, 4}}));
  EXPECT_EQ(rois.resamplePoints(line, 3, true), pointsAt({{0, 0}, {10, 0}, {0, 0}})) << "there and back";
  EXPECT_EQ(rois.resamplePoints(pointsAt({{0, 0}, {0, 0}, {8, 0}}), 3, false), pointsAt({{0, 0}, {4, 0}, {8, 0}}));
}

TEST_P(Curve, aPointBetweenTwoLiesAtTheRatio) {
  auto& rois = api().roiClass();
  EXPECT_EQ(rois.pointBetweenPoint({10, 20}, {20, 40}, 0.25), (PixelPoint{12.5, 25}));
  EXPECT_EQ(rois.pointBetweenPoint({10, 20}, {20, 40}, 0), (PixelPoint{10, 20}));
  EXPECT_EQ(rois.pointBetweenPoint({10, 20}, {20, 40}, 1), (PixelPoint{20, 40}));
  EXPECT_EQ(rois.pointBetweenPoint({10, 20}, {20, 40}, 2), (PixelPoint{30, 60})) << "beyond the end too";
}

}  // namespace
}  // namespace contract
