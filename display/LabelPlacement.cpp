#include "display/LabelPlacement.h"

#include <cmath>

namespace vertana {

using pelmar::PixelPoint;
using pelmar::Vector3f;

int labelsSideForHorizontalAxis(const Vector3f& axis) {
  if (axis.x == 0 && axis.y == 0 && axis.z == 0) return 1;
  float ax = std::fabs(axis.x);
  const float ay = std::fabs(axis.y);
  float az = std::fabs(axis.z);
  const auto counts = [](float component) { return static_cast<double>(component) > 0.2; };
  for (int pass = 0; pass < 3; ++pass) {
    if (counts(ax) && ax >= ay && ax >= az) {
      ax = 0;
    } else if (counts(ay) && ay >= ax && ay >= az) {
      return 1;
    } else if (counts(az) && az >= ax && az >= ay) {
      az = 0;
    } else {
      break;
    }
  }
  return 0;
}

double labelDistanceMm(long region) {
  switch (region) {
    case 0:
      return 15;
    case 1:
      return 20;
    case 2:
      return 30;
    default:
      return 0;
  }
}

PixelPoint labelPoint(const LabelPlacement& placement) {
  const PixelPoint normal{(placement.upperNormal.x + placement.lowerNormal.x) / 2,
                          (placement.upperNormal.y + placement.lowerNormal.y) / 2};
  const PixelPoint across = placement.footFirst ? PixelPoint{-normal.y, normal.x} : PixelPoint{normal.y, -normal.x};
  const double sign = placement.side == 0 ? 1 : -1;
  return {placement.middle.x + sign * (across.x * placement.distance.width),
          placement.middle.y + sign * (across.y * placement.distance.height)};
}

PixelPoint connectorEnd(PixelPoint middle, PixelPoint label) {
  return {middle.x + 0.8 * (label.x - middle.x), middle.y + 0.8 * (label.y - middle.y)};
}

}  // namespace vertana
