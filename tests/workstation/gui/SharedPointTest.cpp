#include "workstation/gui/SharedPoint.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/workstation/model/TestImages.h"

namespace workstation {
namespace {

using pelmar::PixelPoint;

TEST(SharedPoint, APixelIsAPointOfThePatientAndBack) {
  // Rows run to the back (+y), columns to the feet (-z), 0.5 mm a pixel, first pixel at (-2, -25, 20).
  const ImageRecord image = test::sagittal("1.1", 1, 1, -2);
  const auto point = markedPointAt(image, {10, 30});
  ASSERT_TRUE(point);
  EXPECT_EQ(point->positionMm, (std::array<double, 3>{-2, -20, 5}));
  EXPECT_EQ(point->frameOfReferenceUid, "9.9");
  EXPECT_EQ(*pixelOf(image, *point), (PixelPoint{10, 30}));
}

TEST(SharedPoint, FallsOnAnotherPlaneWhereItLies) {
  // Rows run to the left (+x), columns to the back (+y), first pixel at (-25, -20, z).
  const MarkedPoint point{"9.9", {-2, -18, 5}};
  EXPECT_EQ(*pixelOf(test::axial("1.2", 2, 1, 5), point), (PixelPoint{46, 4}));
  EXPECT_DOUBLE_EQ(distanceMm(test::axial("1.2", 2, 1, 12), point), 7);
}

TEST(SharedPoint, TheNearestSliceIsTakenOfThoseThatHoldIt) {
  const std::vector<ImageRecord> slices{test::axial("1.2", 2, 1, 10), test::axial("1.2", 2, 2, 5),
                                        test::axial("1.2", 2, 3, 0)};
  EXPECT_EQ(nearestSlice(slices, {"9.9", {0, 0, 6}}), 1U);
  EXPECT_EQ(nearestSlice(slices, {"9.9", {0, 0, -50}}), 2U);
  EXPECT_FALSE(nearestSlice(slices, {"9.9", {100, 0, 5}})) << "beside the image";
}

TEST(SharedPoint, MeansNothingInAnotherFrameOfReferenceOrWithoutGeometry) {
  ImageRecord image = test::axial("1.2", 2, 1, 5);
  EXPECT_FALSE(pixelOf(image, {"8.8", {0, 0, 5}}));
  EXPECT_EQ(distanceMm(image, {"8.8", {0, 0, 5}}), std::numeric_limits<double>::infinity());
  EXPECT_FALSE(nearestSlice({image}, {"8.8", {0, 0, 5}}));
  image.frameOfReferenceUid.clear();
  EXPECT_FALSE(markedPointAt(image, {1, 1}));
  image = test::slice("1.2", 2, 1);
  EXPECT_FALSE(markedPointAt(image, {1, 1}));
}

}  // namespace
}  // namespace workstation
