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
  EXPECT_EQ(sliceAt(slices, {"9.9", {0, 0, 6}}), 1U);
  EXPECT_EQ(sliceAt(slices, {"9.9", {0, 0, -2.4}}), 2U);
  EXPECT_FALSE(sliceAt(slices, {"9.9", {0, 0, -50}})) << "beyond the last";
  EXPECT_FALSE(sliceAt(slices, {"9.9", {100, 0, 5}})) << "beside the image";
}

TEST(SharedPoint, APointLiesOnASliceAsFarAsHalfwayToTheNext) {
  const std::vector<ImageRecord> apart{test::axial("1.2", 2, 1, 12), test::axial("1.2", 2, 2, 6),
                                       test::axial("1.2", 2, 3, 0)};
  for (const double z : {3.0, 4.5, 6.0, 8.9}) EXPECT_TRUE(isOnSlice(apart, 1, {"9.9", {0, 0, z}})) << z;
  for (const double z : {2.9, 9.1}) EXPECT_FALSE(isOnSlice(apart, 1, {"9.9", {0, 0, z}})) << z;
  EXPECT_TRUE(isOnSlice(apart, 2, {"9.9", {0, 0, -2.9}})) << "as far beyond the last";
  EXPECT_FALSE(isOnSlice(apart, 3, {"9.9", {0, 0, 0}})) << "there is none";
  const std::vector<ImageRecord> close{test::axial("1.2", 2, 1, 1), test::axial("1.2", 2, 2, 0)};
  EXPECT_TRUE(isOnSlice(close, 0, {"9.9", {0, 0, 3.4}})) << "2.5 mm at least";
  EXPECT_FALSE(isOnSlice(close, 0, {"9.9", {0, 0, 3.6}}));
  const std::vector<ImageRecord> twice{apart[0], apart[0], apart[1], apart[1]};
  EXPECT_TRUE(isOnSlice(twice, 0, {"9.9", {0, 0, 9.5}})) << "a second image in the same place is not the next one";
}

TEST(SharedPoint, BetweenTiltedBlocksLiesNoSlice) {
  // Two blocks of slices 4 mm apart, the second 20 mm lower and turned by 20 degrees about the left-right axis.
  const double cosine = 0.9396926207859084;
  const double sine = 0.3420201433256687;
  std::vector<ImageRecord> slices{test::axial("1.2", 2, 1, 24), test::axial("1.2", 2, 2, 20)};
  for (int index = 0; index < 2; ++index) {
    slices.push_back(test::placed(test::slice("1.2", 2, 3 + index), {-25, -20 - 4 * index * sine, -4 * index * cosine},
                                  {1, 0, 0}, {0, cosine, sine}));
  }
  EXPECT_EQ(sliceAt(slices, {"9.9", {0, 0, 18.1}}), 1U);
  EXPECT_FALSE(sliceAt(slices, {"9.9", {0, 0, 14}}));
  // The point of the third slice that is 20 mm along its columns: y 20 cos - 20, z 20 sin.
  EXPECT_EQ(sliceAt(slices, {"9.9", {0, 20 * cosine - 20, 20 * sine}}), 2U);
  EXPECT_FALSE(isOnSlice(slices, 1, {"9.9", {0, 20 * cosine - 20, 20 * sine}}));
}

TEST(SharedPoint, MeansNothingInAnotherFrameOfReferenceOrWithoutGeometry) {
  ImageRecord image = test::axial("1.2", 2, 1, 5);
  EXPECT_FALSE(pixelOf(image, {"8.8", {0, 0, 5}}));
  EXPECT_EQ(distanceMm(image, {"8.8", {0, 0, 5}}), std::numeric_limits<double>::infinity());
  EXPECT_FALSE(sliceAt({image}, {"8.8", {0, 0, 5}}));
  image.frameOfReferenceUid.clear();
  EXPECT_FALSE(markedPointAt(image, {1, 1}));
  image = test::slice("1.2", 2, 1);
  EXPECT_FALSE(markedPointAt(image, {1, 1}));
}

}  // namespace
}  // namespace workstation
