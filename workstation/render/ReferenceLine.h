#pragma once
// Where one slice cuts another. Pure geometry.

#include <optional>

#include "host/Geometry.h"
#include "workstation/model/ImageRecord.h"

namespace workstation {

/// A piece of a straight line on a slice, in its pixels.
struct PixelSegment {
  pelmar::PixelPoint from;
  pelmar::PixelPoint to;
};

/// Where the rectangle of the slice `other` (its pixels' outer edges) cuts the slice `shown`, within the image of
/// `shown`. Nothing where they lie in different frames of reference or in none, where one has no geometry, where they
/// are parallel (within 1 degree), and where they do not meet.
std::optional<PixelSegment> referenceLine(const ImageRecord& shown, const ImageRecord& other);

}  // namespace workstation
