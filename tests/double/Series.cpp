#include "tests/double/Series.h"

#include <cmath>

namespace testhost {
namespace {

using Axis = std::array<double, 3>;

/// Slices centred on the patient's origin; `towardsNext` is the unit step from slice to slice.
Series centredSeries(long code, const Axis& row, const Axis& column, const Axis& towardsNext, std::size_t count,
                     long size, double spacingMm, double gapMm) {
  Series series;
  series.orientationCode = code;
  const double halfExtent = static_cast<double>(size - 1) * spacingMm / 2;
  for (std::size_t index = 0; index < count; ++index) {
    const double offset = (static_cast<double>(index) - (static_cast<double>(count) - 1) / 2) * gapMm;
    SliceGeometry slice{{}, row, column, spacingMm, spacingMm, size, size};
    for (std::size_t i = 0; i < 3; ++i) {
      slice.origin[i] = offset * towardsNext[i] - halfExtent * (row[i] + column[i]);
    }
    series.slices.push_back(slice);
  }
  return series;
}

}  // namespace

Series sagittalSeries(std::size_t count, long size, double spacingMm, double gapMm) {
  return centredSeries(0, {0, 1, 0}, {0, 0, -1}, {1, 0, 0}, count, size, spacingMm, gapMm);
}

Series coronalSeries(std::size_t count, long size, double spacingMm, double gapMm) {
  return centredSeries(2, {1, 0, 0}, {0, 0, -1}, {0, 1, 0}, count, size, spacingMm, gapMm);
}

Series axialSeries(std::size_t count, long size, double spacingMm, double gapMm) {
  return centredSeries(4, {1, 0, 0}, {0, 1, 0}, {0, 0, -1}, count, size, spacingMm, gapMm);
}

long orientationCodeOf(const TestImage& image) {
  const double x = std::abs(image.cosines[6]);
  const double y = std::abs(image.cosines[7]);
  const double z = std::abs(image.cosines[8]);
  if (!(x > 0) && !(y > 0) && !(z > 0)) return -1;
  if (x >= y && x >= z) return 0;
  return y >= z ? 2 : 4;
}

}  // namespace testhost
