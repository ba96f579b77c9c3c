#pragma once

#include <array>
#include <optional>
#include <string>

#include "host/DCMPix.h"

namespace testhost {

/// Where a slice lies in the patient (LPS, millimetres) and how large it is.
struct SliceGeometry {
  std::array<double, 3> origin{};  ///< centre of the first pixel
  std::array<double, 3> row{};     ///< unit direction along a row (pixel x grows)
  std::array<double, 3> column{};  ///< unit direction down a column (pixel y grows)
  double spacingX = 1;             ///< millimetres from column to column
  double spacingY = 1;             ///< millimetres from row to row
  long width = 0;                  ///< pixels
  long height = 0;                 ///< pixels
};

/// One slice. A test may change any field at any time.
class TestImage : public pelmar::DCMPix {
 public:
  TestImage() = default;
  explicit TestImage(const SliceGeometry& slice);

  SliceGeometry geometry;
  std::array<double, 9> cosines{};  ///< row, column, normal; set from the geometry, may be overwritten
  bool rgb = false;
  bool hasBodyPartExamined = true;  ///< whether the object offers the operation
  std::optional<std::string> bodyPart;
  pelmar::PixelRect content;  ///< the whole image unless a test changes it

  bool supports(pelmar::Capability capability) const override;
  std::array<double, 9> orientation() const override { return cosines; }
  void orientation(std::array<float, 9>& vector) const override;
  void convertPixX(float x, float pixY, pelmar::Vector3f& toDICOMCoords) const override;
  pelmar::SlicePoint convertDICOMCoords(const pelmar::Vector3f& position) const override;
  double pixelSpacingX() const override { return geometry.spacingX; }
  double pixelSpacingY() const override { return geometry.spacingY; }
  long pwidth() const override { return geometry.width; }
  long pheight() const override { return geometry.height; }
  bool isRGB() const override { return rgb; }
  std::optional<std::string> bodyPartExamined() const override { return bodyPart; }
  pelmar::PixelRect contentFrameRect() const override { return content; }
};

}  // namespace testhost
