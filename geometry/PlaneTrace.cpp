#include "geometry/PlaneTrace.h"

#include <cmath>

namespace vertana {

using pelmar::PixelPoint;

PixelPoint unitVector(PixelPoint from, PixelPoint to) {
  const double dx = to.x - from.x;
  const double dy = to.y - from.y;
  const double length = std::sqrt(static_cast<float>(dx * dx + dy * dy));
  return {dx / length, dy / length};
}

PlaneTrace planeTrace(PixelPoint point, PixelPoint alongNormal, double pixelSpacingXMm) {
  const auto normal = unitVector(point, alongNormal);
  const double halfWidth = 0.5 * static_cast<double>(static_cast<float>(30.0 / pixelSpacingXMm));
  const PixelPoint across{normal.y, -normal.x};
  return {{point.x + halfWidth * across.x, point.y + halfWidth * across.y},
          {point.x - halfWidth * across.x, point.y - halfWidth * across.y}};
}

}  // namespace vertana
