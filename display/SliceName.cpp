#include "display/SliceName.h"

namespace vertana {

namespace {

constexpr double rightAngle = 1.5707963267948966;

SliceNameChoice betweenPlanes(long nearest, float distanceMm, float otherDistanceMm, long towardsOther) {
  const float sum = distanceMm + otherDistanceMm;
  const double third = static_cast<double>(sum) / 3;
  if (static_cast<double>(distanceMm) <= third) return {SliceNameKind::NearestPlane, nearest};
  if (static_cast<double>(otherDistanceMm) <= third) return {SliceNameKind::OtherPlane, nearest + towardsOther};
  // A sum smaller than one of its parts: no finite geometry gets here.
  if (distanceMm > sum) return {SliceNameKind::Vertebra, nearest + towardsOther};
  // In the middle third only a slice whose nearest plane comes first in the list gets the vertebra's name.
  if (towardsOther > 0) return {SliceNameKind::Vertebra, nearest};
  return {SliceNameKind::NearestPlane, nearest};
}

SliceNameChoice beyondEnd(long nearest, float distanceMm, float gapMm, SliceNameKind endVertebra) {
  const auto gap = static_cast<double>(gapMm);
  if (static_cast<double>(distanceMm) < gap / 3) return {SliceNameKind::NearestPlane, nearest};
  if (static_cast<double>(distanceMm) > 2 * gap / 3) return {SliceNameKind::None, nearest};
  return {endVertebra, nearest};
}

}  // namespace

SliceNameChoice chooseSliceName(long nearest, float distanceMm, const NeighbourPlane& previous,
                                const NeighbourPlane& next) {
  if (previous.exists && next.exists) {
    return previous.angleRad > next.angleRad ? betweenPlanes(nearest, distanceMm, previous.distanceMm, -1)
                                             : betweenPlanes(nearest, distanceMm, next.distanceMm, +1);
  }
  if (previous.exists) {
    if (static_cast<double>(previous.angleRad) > rightAngle) {
      return betweenPlanes(nearest, distanceMm, previous.distanceMm, -1);
    }
    return beyondEnd(nearest, distanceMm, previous.distanceMm - distanceMm, SliceNameKind::LowerVertebra);
  }
  if (next.exists) {
    if (static_cast<double>(next.angleRad) > rightAngle) {
      return betweenPlanes(nearest, distanceMm, next.distanceMm, +1);
    }
    return beyondEnd(nearest, distanceMm, next.distanceMm - distanceMm, SliceNameKind::UpperVertebra);
  }
  return {SliceNameKind::NearestPlane, nearest};
}

}  // namespace vertana
