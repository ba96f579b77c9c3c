#pragma once

#include <vector>

#include "tests/double/TestImage.h"

namespace testhost {

/// What TestHost::addViewer makes a viewer from.
struct Series {
  long orientationCode = -1;  ///< 0/1 sagittal, 2/3 coronal, 4/5 axial, -1 unknown
  std::vector<SliceGeometry> slices;
  bool rgb = false;
  bool everythingLoaded = true;
};

/// `count` square slices of `size` pixels, centred on the patient's origin, `gapMm` apart, in-plane `spacingMm`.
/// Rows run to the patient's back and columns to the feet, slices from right to left: code 0.
Series sagittalSeries(std::size_t count, long size = 256, double spacingMm = 1, double gapMm = 4);
/// Rows run to the patient's left and columns to the feet, slices from front to back: code 2.
Series coronalSeries(std::size_t count, long size = 256, double spacingMm = 1, double gapMm = 4);
/// Rows run to the patient's left and columns to the back, slices from head to feet: code 4.
Series axialSeries(std::size_t count, long size = 256, double spacingMm = 1, double gapMm = 4);

/// Orientation code by the largest component of the first slice's normal (0, 2 or 4); -1 without geometry.
long orientationCodeOf(const TestImage& image);

}  // namespace testhost
