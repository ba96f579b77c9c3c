#pragma once
// Single-precision vectors, component by component.

#include "host/Geometry.h"

namespace vertana {

/// a - b; any unit, any frame, both the same.
inline pelmar::Vector3f difference(const pelmar::Vector3f& a, const pelmar::Vector3f& b) {
  return {a.x - b.x, a.y - b.y, a.z - b.z};
}

}  // namespace vertana
