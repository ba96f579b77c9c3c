#pragma once

#include <vector>

#include "host/Geometry.h"

namespace vertana {

/// How a length line is divided into curve vertices.
struct LineDivision {
  long vertebraCount = 0;         ///< vertebrae that the line spans now: one vertex more
  long fullVertebraCount = 0;     ///< vertebrae of the whole region
  bool cervical = false;          ///< the topmost interval (atlas and axis) is twice as long as the others
  bool upwardWhileDrawn = false;  ///< still being drawn, from foot to head: the long interval is at the far end
};

/// The vertices from a to b, pixels. The step between them is taken in single precision.
std::vector<pelmar::PixelPoint> verticesAlongLine(pelmar::PixelPoint a, pelmar::PixelPoint b,
                                                  const LineDivision& division);

}  // namespace vertana
