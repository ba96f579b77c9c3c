#include "workstation/render/ReferenceLine.h"

#include <gtest/gtest.h>

#include <cmath>

namespace workstation::test {
namespace {

/// 101 x 81 pixels (columns x rows) of 1 mm.
ImageRecord sliceAt(std::array<double, 3> position, std::array<double, 3> row, std::array<double, 3> column,
                    double spacingX = 1, double spacingY = 1) {
  ImageRecord image;
  image.columns = 101;
  image.rows = 81;
  image.frameOfReferenceUid = "1.2";
  image.geometry = ImageGeometry{position, row, column, spacingX, spacingY};
  return image;
}

/// Pixel (x, y) at the patient's (0, x - 50, 40 - y).
ImageRecord sagittal() { return sliceAt({0, -50, 40}, {0, 1, 0}, {0, 0, -1}); }
/// Pixel (x, y) at the patient's (x - 50, y - 40, z).
ImageRecord axialAt(double zMm) { return sliceAt({-50, -40, zMm}, {1, 0, 0}, {0, 1, 0}); }

void expectLine(const std::optional<PixelSegment>& line, pelmar::PixelPoint a, pelmar::PixelPoint b) {
  ASSERT_TRUE(line);
  const bool turned = std::abs(line->from.x - a.x) + std::abs(line->from.y - a.y) >
                      std::abs(line->to.x - a.x) + std::abs(line->to.y - a.y);
  const pelmar::PixelPoint first = turned ? line->to : line->from;
  const pelmar::PixelPoint last = turned ? line->from : line->to;
  EXPECT_NEAR(first.x, a.x, 1e-9);
  EXPECT_NEAR(first.y, a.y, 1e-9);
  EXPECT_NEAR(last.x, b.x, 1e-9);
  EXPECT_NEAR(last.y, b.y, 1e-9);
}

TEST(ReferenceLine, AxialSliceCutsASagittalOneInARow) {
  // z = 10 is row 30; the axial slice reaches from y = -40.5 to 40.5 mm, the columns 9.5 to 90.5.
  expectLine(referenceLine(sagittal(), axialAt(10)), {9.5, 30}, {90.5, 30});
}

TEST(ReferenceLine, SagittalSliceCutsAnAxialOneInAColumn) {
  // x = 0 is column 50; the sagittal slice reaches beyond the axial one's rows.
  expectLine(referenceLine(axialAt(10), sagittal()), {50, -0.5}, {50, 80.5});
}

TEST(ReferenceLine, TiltedSliceCutsInAnObliqueLine) {
  // Columns run to the back and, 3 for 4, to the feet; the centre pixel (50, 40) lies at the patient's origin.
  const ImageRecord tilted = sliceAt({-50, -32, 24}, {1, 0, 0}, {0, 0.8, -0.6});
  // The rows reach 40.5 mm to both sides of the centre: y = -+32.4, z = +-24.3 mm.
  expectLine(referenceLine(sagittal(), tilted), {17.6, 15.7}, {82.4, 64.3});
}

TEST(ReferenceLine, PixelsThatAreNotSquareAreCountedByTheirOwnSpacing) {
  // The patient's (0, 2x - 50, 40 - 0.5y).
  const ImageRecord shown = sliceAt({0, -50, 40}, {0, 1, 0}, {0, 0, -1}, 2, 0.5);
  expectLine(referenceLine(shown, axialAt(30)), {4.75, 20}, {45.25, 20});
}

TEST(ReferenceLine, NothingWhereSlicesDoNotMeetOrCannotBeCompared) {
  EXPECT_FALSE(referenceLine(sagittal(), axialAt(41)));   // above the first row
  EXPECT_FALSE(referenceLine(sagittal(), axialAt(-41)));  // below the last
  EXPECT_TRUE(referenceLine(sagittal(), axialAt(40.25)));
  ImageRecord beside = axialAt(0);
  beside.geometry->position[0] = 10;  // begins to the left of the sagittal plane
  EXPECT_FALSE(referenceLine(sagittal(), beside));
  EXPECT_FALSE(referenceLine(axialAt(0), axialAt(5)));  // parallel

  ImageRecord elsewhere = axialAt(0);
  elsewhere.frameOfReferenceUid = "9.9";
  EXPECT_FALSE(referenceLine(sagittal(), elsewhere));
  ImageRecord nowhere = axialAt(0);
  ImageRecord shown = sagittal();
  nowhere.frameOfReferenceUid = shown.frameOfReferenceUid = "";
  EXPECT_FALSE(referenceLine(shown, nowhere));
  ImageRecord flat = axialAt(0);
  flat.geometry.reset();
  EXPECT_FALSE(referenceLine(sagittal(), flat));
  EXPECT_FALSE(referenceLine(flat, sagittal()));
}

TEST(ReferenceLine, AlmostParallelSlicesHaveNone) {
  const auto tiltedBy = [](double degrees) {
    const double angleRad = degrees * std::acos(-1.0) / 180;
    return sliceAt({-50, -40 * std::cos(angleRad), 40 * std::sin(angleRad)}, {1, 0, 0},
                   {0, std::cos(angleRad), -std::sin(angleRad)});
  };
  EXPECT_FALSE(referenceLine(axialAt(0), tiltedBy(0.9)));
  EXPECT_TRUE(referenceLine(axialAt(0), tiltedBy(1.1)));
}

}  // namespace
}  // namespace workstation::test
