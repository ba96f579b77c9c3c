#pragma once

#include <string>

#include "workstation/model/Stacks.h"

namespace cli::test {

/// Sagittal slices of 4 columns and 3 rows, 2 mm from column to column, 3 mm from row to row and 5 mm apart, right to
/// left. The first pixel of the first slice lies at (-5, 10, 100): rows run to the back, columns to the feet.
inline workstation::Stack sagittalStack(int slices) {
  workstation::Stack stack;
  stack.plane = workstation::Plane::sagittal;
  for (int i = 0; i < slices; ++i) {
    workstation::ImageRecord slice;
    slice.columns = 4;
    slice.rows = 3;
    slice.geometry = workstation::ImageGeometry{{-5.0 + 5 * i, 10, 100}, {0, 1, 0}, {0, 0, -1}, 2, 3};
    stack.slices.push_back(slice);
  }
  return stack;
}

}  // namespace cli::test
