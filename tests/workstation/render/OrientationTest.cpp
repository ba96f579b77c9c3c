#include "workstation/render/Orientation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace workstation::test {
namespace {

double sine(double degrees) { return std::sin(degrees * std::acos(-1.0) / 180); }
double cosine(double degrees) { return std::cos(degrees * std::acos(-1.0) / 180); }

TEST(Orientation, NamesDirectionsByTheirAxes) {
  struct Row {
    const char* name;
    Vector3 direction;
    const char* letters;
  };
  const Row rows[] = {
      {"to the left", {1, 0, 0}, "L"},
      {"to the right", {-1, 0, 0}, "R"},
      {"to the back", {0, 1, 0}, "P"},
      {"to the front", {0, -1, 0}, "A"},
      {"to the head", {0, 0, 1}, "H"},
      {"to the feet", {0, 0, -1}, "F"},
      {"any length", {0, 0, -250}, "F"},
      {"tilted by 14 degrees keeps one letter", {0, sine(14), cosine(14)}, "H"},
      {"tilted by 16 degrees has two", {0, sine(16), cosine(16)}, "HP"},
      {"the larger component first", {0, -0.8, -0.6}, "AF"},
      {"halfway: y before z", {0, 1, -1}, "PF"},
      {"the diagonal of space", {-1, 1, 1}, "RPH"},
      {"no direction", {0, 0, 0}, ""},
  };
  for (const Row& row : rows) EXPECT_EQ(orientationLetters(row.direction), row.letters) << row.name;
  EXPECT_EQ(orientationLetters({std::numeric_limits<double>::quiet_NaN(), 0, 1}), "");
  EXPECT_EQ(orientationLetters({std::numeric_limits<double>::infinity(), 0, 1}), "");
}

TEST(Orientation, LabelsTheEdgesOfAView) {
  const ImageGeometry sagittal{{0, 0, 0}, {0, 1, 0}, {0, 0, -1}, 0.5, 0.5};
  const ImageGeometry axial{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, 0.5, 0.5};
  struct Row {
    const char* name;
    const ImageGeometry& geometry;
    double rotationDegrees;
    bool flippedHorizontally;
    bool flippedVertically;
    const char* letters;  ///< left, right, top, bottom
  };
  const Row rows[] = {
      {"sagittal as stored", sagittal, 0, false, false, "APHF"},
      {"axial as stored", axial, 0, false, false, "RLAP"},
      {"axial mirrored left to right", axial, 0, true, false, "LRAP"},
      {"axial mirrored top to bottom", axial, 0, false, true, "RLPA"},
      {"axial turned a quarter clockwise: its left edge comes to the top", axial, 90, false, false, "PARL"},
      {"axial turned half round", axial, 180, false, false, "LRPA"},
      {"sagittal turned a quarter anticlockwise: its right edge comes to the top", sagittal, 270, false, false, "HFPA"},
      {"axial mirrored, then turned a quarter clockwise", axial, 90, true, false, "PALR"},
  };
  for (const Row& row : rows) {
    ViewTransform transform;
    transform.rotationDegrees = row.rotationDegrees;
    transform.flippedHorizontally = row.flippedHorizontally;
    transform.flippedVertically = row.flippedVertically;
    const EdgeLetters letters = edgeLetters(row.geometry, transform);
    EXPECT_EQ(letters.left + letters.right + letters.top + letters.bottom, row.letters) << row.name;
  }
}

}  // namespace
}  // namespace workstation::test
