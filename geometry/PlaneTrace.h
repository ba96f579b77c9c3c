#pragma once

#include "host/Geometry.h"

namespace vertana {

/// The unit vector from one image point to another: the length is a square root in single precision, so equal points
/// give a vector that is not finite.
pelmar::PixelPoint unitVector(pelmar::PixelPoint from, pelmar::PixelPoint to);

/// The two ends of a disc plane's trace on the vertical slice.
struct PlaneTrace {
  pelmar::PixelPoint first;
  pelmar::PixelPoint second;
};

/// The trace, 30 mm long by the horizontal spacing, centred on `point` and perpendicular to the direction from it to
/// `alongNormal`. With the normal pointing down the image, the first end is on the right.
PlaneTrace planeTrace(pelmar::PixelPoint point, pelmar::PixelPoint alongNormal, double pixelSpacingXMm);

}  // namespace vertana
