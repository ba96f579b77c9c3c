#pragma once

#include <array>
#include <optional>
#include <string>

#include "host/Geometry.h"
#include "host/Ref.h"

namespace pelmar {

/// One image (slice) of a series with its geometry. Owned by the host, shared by the viewers that show it.
class DCMPix : public HostObject {
 public:
  /// Row direction, column direction and slice normal: three unit vectors in patient space, double precision.
  /// An image without geometry has zeros throughout. Nil: zeros.
  virtual std::array<double, 9> orientation() const { return {}; }
  /// The same nine numbers, in single precision, copied into the array. Nil: the array is left as it is.
  virtual void orientation(std::array<float, 9>& /*vector*/) const {}
  /// Patient position (millimetres, LPS) of a pixel position, which need not be whole nor inside the image.
  /// Nil: the output is left as it is.
  virtual void convertPixX(float /*x*/, float /*pixY*/, Vector3f& /*toDICOMCoords*/) const {}
  /// Projects a patient position onto the slice's plane: millimetres from the centre of the first pixel. Nil: (0, 0).
  virtual SlicePoint convertDICOMCoords(const Vector3f&) const { return {}; }
  /// Millimetres per pixel from column to column (the second value of Pixel Spacing, PS3.3 10.7.1.1). Nil: 0.
  virtual double pixelSpacingX() const { return 0; }
  /// Millimetres per pixel from row to row (the first value of Pixel Spacing). Nil: 0.
  virtual double pixelSpacingY() const { return 0; }
  /// Width in pixels. Nil: 0.
  virtual long pwidth() const { return 0; }
  /// Height in pixels. Nil: 0.
  virtual long pheight() const { return 0; }
  /// Whether it is a colour image. Nil: false.
  virtual bool isRGB() const { return false; }
  /// Body Part Examined (0018,0015), absent when the image has none. Only where the object supports
  /// Capability::DCMPixBodyPartExamined. Nil: absent.
  virtual std::optional<std::string> bodyPartExamined() const { return std::nullopt; }
  /// The rectangle of the image's content, in pixels. Nil: empty.
  virtual PixelRect contentFrameRect() const { return {}; }
};

}  // namespace pelmar
