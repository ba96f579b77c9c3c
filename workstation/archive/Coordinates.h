#pragma once

#include <cmath>
#include <limits>

namespace workstation {

/// Whether a point can have this coordinate: points keep single precision, where larger numbers would become infinite.
inline bool isCoordinate(double number) { return std::abs(number) <= std::numeric_limits<float>::max(); }

}  // namespace workstation
