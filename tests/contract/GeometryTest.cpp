// Slices in the patient, points, and the host's vector functions.
#include <cmath>
#include <numbers>

#include "ContractHost.h"

namespace contract {
namespace {

using pelmar::N3Vector;
using pelmar::Ref;
using pelmar::Vector3f;

/// Different spacings, so that rows and columns cannot be mistaken for each other.
class Geometry : public OnEveryHost {
 protected:
  Geometry()
      : OnEveryHost({{.slices = 3,
                      .columns = 64,
                      .rows = 48,
                      .spacingXMm = 0.5,
                      .spacingYMm = 0.75,
                      .gapMm = 4,
                      .firstPixelMm = {-8, -100, 60}},
                     {.slices = 2, .gapMm = 5, .firstPixelMm = {-50, -40, 30}}}) {}
};
ON_EVERY_HOST(Geometry);

TEST_P(Geometry, ofASlice) {
  const auto pix = view()->curDCM();
  EXPECT_EQ(pix->pwidth(), 64);
  EXPECT_EQ(pix->pheight(), 48);
  EXPECT_EQ(pix->pixelSpacingX(), 0.5);
  EXPECT_EQ(pix->pixelSpacingY(), 0.75);
  EXPECT_EQ(pix->contentFrameRect(), (pelmar::PixelRect{{0, 0}, {64, 48}}));
  EXPECT_FALSE(pix->isRGB());
  EXPECT_EQ(pix->orientation(), (std::array<double, 9>{0, 1, 0, 0, 0, -1, -1, 0, 0}));
  std::array<float, 9> copied{};
  pix->orientation(copied);
  EXPECT_EQ(copied, (std::array<float, 9>{0, 1, 0, 0, 0, -1, -1, 0, 0}));
}

TEST_P(Geometry, takesPixelsToThePatient) {
  Vector3f position;
  view()->curDCM()->convertPixX(10, 20, position);
  // 10 columns of 0.5 mm to the back, 20 rows of 0.75 mm to the feet.
  EXPECT_FLOAT_EQ(position.x, -8);
  EXPECT_FLOAT_EQ(position.y, -95);
  EXPECT_FLOAT_EQ(position.z, 45);
  view()->dcmPixList()->objectAtIndex(2)->convertPixX(0, 0, position);
  EXPECT_FLOAT_EQ(position.x, 0) << "two gaps to the left";
}

TEST_P(Geometry, goesToThePatientAndBack) {
  for (const int series : {0, host->open(Plane::axial)}) {
    for (std::size_t slice = 0; slice < 2; ++slice) {
      const auto pix = view(series)->dcmPixList()->objectAtIndex(slice);
      for (const auto& [x, y] : {std::pair{0.0F, 0.0F}, {63.0F, 47.0F}, {12.5F, 30.25F}, {-4.0F, 100.0F}}) {
        Vector3f position;
        pix->convertPixX(x, y, position);
        const pelmar::SlicePoint inSlice = pix->convertDICOMCoords(position);
        EXPECT_NEAR(inSlice.x / pix->pixelSpacingX(), static_cast<double>(x), 1e-4);
        EXPECT_NEAR(inSlice.y / pix->pixelSpacingY(), static_cast<double>(y), 1e-4);
      }
    }
  }
}

TEST_P(Geometry, projectsAPositionOntoTheSlice) {
  Vector3f position;
  view()->curDCM()->convertPixX(10, 20, position);
  const pelmar::SlicePoint inSlice = view()->curDCM()->convertDICOMCoords({position.x + 30, position.y, position.z});
  EXPECT_NEAR(inSlice.x, 5, 1e-5);
  EXPECT_NEAR(inSlice.y, 15, 1e-5);
}

TEST_P(Geometry, codesOfTheOrientations) {
  const int axial = host->open(Plane::axial);
  EXPECT_EQ(viewer()->orientationVector(), 0);
  EXPECT_EQ(viewer(axial)->orientationVector(), 4);
  long code = 77;
  api().viewerControllerClass().computeOriginalOrientationForPixArray(view()->dcmPixList(), code);
  EXPECT_EQ(code, 0);
  api().viewerControllerClass().computeOriginalOrientationForPixArray(view(axial)->dcmPixList(), code);
  EXPECT_EQ(code, 4);
  api().viewerControllerClass().computeOriginalOrientationForPixArray({}, code);
  EXPECT_EQ(code, 4) << "nil writes nothing";
}

TEST_P(Geometry, pointsAreSinglePrecision) {
  const auto point = api().point3DClass().pointWithX(0.1, 1e8 + 1, -2.5);
  EXPECT_EQ(point->x(), static_cast<double>(0.1F));
  EXPECT_NE(point->x(), 0.1);
  EXPECT_EQ(point->y(), 1e8);
  EXPECT_EQ(point->z(), -2.5);
  const auto copy = api().point3DClass().pointWithN3Vector({0.1, 1e8 + 1, -2.5});
  EXPECT_EQ(copy->x(), point->x());
  EXPECT_EQ(copy->N3VectorValue().y, 1e8);
  EXPECT_FALSE(copy == point) << "equal numbers, two objects";
}

TEST_P(Geometry, pointsAreComputedInPlaceInSinglePrecision) {
  const auto point = api().point3DClass().pointWithX(1e8, 0.1, 1);
  point->add(api().point3DClass().pointWithX(1, 0.2, 2));
  EXPECT_EQ(point->x(), 1e8) << "the next single is 8 further";
  EXPECT_EQ(point->y(), static_cast<double>(0.1F + 0.2F));
  EXPECT_EQ(point->z(), 3);
  point->subtract(api().point3DClass().pointWithX(1e8, 0, 1));
  EXPECT_EQ(point->x(), 0);
  EXPECT_EQ(point->z(), 2);
  point->multiply(0.1);
  EXPECT_EQ(point->z(), static_cast<double>(static_cast<float>(2 * 0.1)));
  const auto three = api().point3DClass().pointWithX(3, 3, 3);
  three->multiply(0.7);  // a factor in double precision: 3 * 0.7F would be another single
  EXPECT_EQ(three->x(), static_cast<double>(static_cast<float>(3 * 0.7)));
  point->setPoint3D(three);
  EXPECT_EQ(point->y(), three->y());
  point->add({});
  EXPECT_EQ(point->y(), three->y()) << "nil adds nothing";
  point->setPoint3D({});
  EXPECT_EQ(point->x(), 0) << "nil is the origin";
}

TEST_P(Geometry, normalisesVectorsAndLeavesZeroZero) {
  const N3Vector unit = api().N3VectorNormalize({3, 0, -4});
  EXPECT_DOUBLE_EQ(unit.x, 0.6);
  EXPECT_EQ(unit.y, 0);
  EXPECT_DOUBLE_EQ(unit.z, -0.8);
  const N3Vector zero = api().N3VectorNormalize({0, 0, 0});
  EXPECT_EQ(zero.x, 0);
  EXPECT_EQ(zero.y, 0);
  EXPECT_EQ(zero.z, 0);
}

TEST_P(Geometry, distanceToAPlaneIsUnsignedAndItsFootLiesInIt) {
  for (const float above : {7.0F, -7.0F}) {
    Vector3f foot{9, 9, 9};
    // A normal of any length and either sign.
    const float distance = api().dcmViewClass().pbase_Plane({1, 2, 3 + above}, {5, 6, 3}, {0, 0, -2.5F}, foot);
    EXPECT_FLOAT_EQ(distance, 7);
    EXPECT_FLOAT_EQ(foot.x, 1);
    EXPECT_FLOAT_EQ(foot.y, 2);
    EXPECT_FLOAT_EQ(foot.z, 3);
  }
  Vector3f foot;
  // The plane x + y = 2, from the origin: sqrt(2) away, nearest at (1, 1, 0).
  EXPECT_FLOAT_EQ(api().dcmViewClass().pbase_Plane({0, 0, 0}, {2, 0, 5}, {1, 1, 0}, foot),
                  std::numbers::sqrt2_v<float>);
  EXPECT_FLOAT_EQ(foot.x, 1);
  EXPECT_FLOAT_EQ(foot.y, 1);
  EXPECT_NEAR(foot.z, 0, 1e-6);
}

TEST_P(Geometry, pointLiesOnAPlaneWithoutANormal) {
  Vector3f foot{9, 9, 9};
  EXPECT_EQ(api().dcmViewClass().pbase_Plane({1, 2, 3}, {5, 6, 7}, {0, 0, 0}, foot), 0);
  EXPECT_EQ(foot.x, 1);
  EXPECT_EQ(foot.y, 2);
  EXPECT_EQ(foot.z, 3);
}

TEST_P(Geometry, angleWithAZeroVectorIsZero) {
  auto& views = api().dcmViewClass();
  EXPECT_EQ(views.angleBetweenVector({0, 0, 0}, {1, 2, -3}), 0);
  EXPECT_EQ(views.angleBetweenVector({-1, 2, 3}, {0, 0, 0}), 0);
  EXPECT_EQ(views.angleBetweenVector({0, 0, 0}, {0, 0, 0}), 0);
}

TEST_P(Geometry, anglesAreUnsignedRadiansWhateverTheLengths) {
  auto& views = api().dcmViewClass();
  constexpr float pi = std::numbers::pi_v<float>;
  EXPECT_NEAR(views.angleBetweenVector({1, 0, 0}, {5, 0, 0}), 0, 1e-6);
  EXPECT_NEAR(views.angleBetweenVector({1, 0, 0}, {0, 0, -3}), pi / 2, 1e-6);
  EXPECT_NEAR(views.angleBetweenVector({2, 0, 0}, {-1, 0, 0}), pi, 1e-6);
  EXPECT_NEAR(views.angleBetweenVector({1, 1, 0}, {0, 2, 0}), pi / 4, 1e-6);
  EXPECT_NEAR(views.angleBetweenVector({0, 2, 0}, {1, 1, 0}), pi / 4, 1e-6);
}

}  // namespace
}  // namespace contract
