#pragma once
// Where a vertebra's label stands beside the spine. Plain arithmetic on pixels and directions.

#include "host/Geometry.h"

namespace vertana {

/// 1 where the screen's horizontal axis (patient-space direction, any length) runs front to back, as on a sagittal
/// display; 0 where it does not. No direction at all counts as 1. Ties go to x before y and to y before z.
int labelsSideForHorizontalAxis(const pelmar::Vector3f& axis);

/// Distance of a label from the spine by region, in millimetres; 0 where there is no region.
double labelDistanceMm(long region);

struct LabelPlacement {
  pelmar::PixelPoint middle;       ///< of the vertebra on the spine, pixels
  pelmar::PixelPoint upperNormal;  ///< unit normals of the planes above and below, projected into the image
  pelmar::PixelPoint lowerNormal;
  bool footFirst = false;      ///< the curve runs from foot to head
  int side = 0;                ///< see labelsSideForHorizontalAxis
  pelmar::PixelSize distance;  ///< from the spine, pixels in x and in y
};

pelmar::PixelPoint labelPoint(const LabelPlacement& placement);

/// End of the connector line from the spine towards the label: four fifths of the way.
pelmar::PixelPoint connectorEnd(pelmar::PixelPoint middle, pelmar::PixelPoint label);

}  // namespace vertana
