#include "geometry/DCMPixVertana.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/double/TestHost.h"

namespace vertana {
namespace {

using pelmar::PixelPoint;
using pelmar::Ref;
using testhost::makePoint;
using testhost::TestImage;

/// A sagittal slice at x = 10: rows to the back, columns to the feet; twice 0.5 mm a pixel across, 2 mm down.
Ref<TestImage> sagittalSlice() {
  return pelmar::makeRef<TestImage>(testhost::SliceGeometry{{10, 20, 30}, {0, 1, 0}, {0, 0, -1}, 0.5, 2, 100, 100});
}

/// A slice tilted by the angle whose sine is 0.6, uneven spacing.
Ref<TestImage> tiltedSlice() {
  return pelmar::makeRef<TestImage>(
      testhost::SliceGeometry{{-12.5, 40, 110}, {1, 0, 0}, {0, 0.6, -0.8}, 0.75, 1.25, 64, 64});
}

struct DCMPixVertana : ::testing::Test {
  testhost::TestHost host;
};

TEST_F(DCMPixVertana, imagePointGoesToItsPatientPosition) {
  // 4 pixels of 0.5 mm along (0, 1, 0), 3 pixels of 2 mm along (0, 0, -1).
  const auto position = Point3DFromNSPoint(sagittalSlice(), {4, 3}, host.point3DClass());
  EXPECT_EQ(position->x(), 10);
  EXPECT_EQ(position->y(), 22);
  EXPECT_EQ(position->z(), 24);
}

TEST_F(DCMPixVertana, eachConversionMakesANewPoint) {
  const auto slice = sagittalSlice();
  EXPECT_FALSE(Point3DFromNSPoint(slice, {4, 3}, host.point3DClass()) ==
               Point3DFromNSPoint(slice, {4, 3}, host.point3DClass()));
}

TEST_F(DCMPixVertana, patientPointGoesToItsPixelWithEachAxisItsOwnSpacing) {
  EXPECT_EQ(NSPointFromPoint3D(sagittalSlice(), makePoint(10, 22, 24)), (PixelPoint{4, 3}));
}

TEST_F(DCMPixVertana, slicesFirstPixelIsTheOriginOfItsPixels) {
  EXPECT_EQ(NSPointFromPoint3D(sagittalSlice(), makePoint(10, 20, 30)), (PixelPoint{0, 0}));
}

TEST_F(DCMPixVertana, patientPointOfAnotherSliceIsProjectedOntoThisOne) {
  EXPECT_EQ(NSPointFromPoint3D(sagittalSlice(), makePoint(-77, 22, 24)), (PixelPoint{4, 3}));
  // 5 mm along the normal row x column = (0, 0.8, 0.6) changes nothing but rounding.
  const auto slice = tiltedSlice();
  const auto there = Point3DFromNSPoint(slice, {20, 30}, host.point3DClass());
  const auto beside = makePoint(there->x(), there->y() + 4, there->z() + 3);
  const auto back = NSPointFromPoint3D(slice, beside);
  EXPECT_NEAR(back.x, 20, 1e-4);
  EXPECT_NEAR(back.y, 30, 1e-4);
}

TEST_F(DCMPixVertana, imagePointComesBackFromThePatientAsItself) {
  const auto slice = tiltedSlice();
  for (const PixelPoint& pixel :
       {PixelPoint{0, 0}, PixelPoint{63, 63}, PixelPoint{10.25, 0.5}, PixelPoint{-3, 7}, PixelPoint{500, -90}}) {
    const auto back = NSPointFromPoint3D(slice, Point3DFromNSPoint(slice, pixel, host.point3DClass()));
    EXPECT_NEAR(back.x, pixel.x, 1e-4);
    EXPECT_NEAR(back.y, pixel.y, 1e-4);
  }
}

TEST_F(DCMPixVertana, pixelSpacingOfZeroGivesInfiniteCoordinates) {
  const auto slice = sagittalSlice();
  slice->geometry.spacingX = 0;
  slice->geometry.spacingY = 0;
  const auto pixel = NSPointFromPoint3D(slice, makePoint(10, 22, 24));
  EXPECT_TRUE(std::isinf(pixel.x));
  EXPECT_TRUE(std::isinf(pixel.y));
}

TEST_F(DCMPixVertana, missingImageAnswersNilAndTheOrigin) {
  EXPECT_FALSE(Point3DFromNSPoint(nullptr, {4, 3}, host.point3DClass()));
  EXPECT_EQ(NSPointFromPoint3D(nullptr, makePoint(10, 22, 24)), (PixelPoint{0, 0}));
}

}  // namespace
}  // namespace vertana
