#pragma once
// Arithmetic on patient positions and directions, in double precision.

#include <array>
#include <cmath>

#include "host/Geometry.h"

namespace workstation {

using Vector3 = std::array<double, 3>;

inline Vector3 operator+(const Vector3& a, const Vector3& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }
inline Vector3 operator-(const Vector3& a, const Vector3& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
inline Vector3 operator*(double factor, const Vector3& v) { return {factor * v[0], factor * v[1], factor * v[2]}; }

inline double dot(const Vector3& a, const Vector3& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

inline Vector3 cross(const Vector3& a, const Vector3& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

inline double lengthOf(const Vector3& v) { return std::sqrt(dot(v, v)); }

/// At unit length; a zero vector stays zero.
inline Vector3 normalized(const Vector3& v) {
  const double length = lengthOf(v);
  return length > 0 ? Vector3{v[0] / length, v[1] / length, v[2] / length} : Vector3{};
}

inline Vector3 widened(const pelmar::Vector3f& v) { return {v.x, v.y, v.z}; }

inline pelmar::Vector3f narrowed(const Vector3& v) {
  return {static_cast<float>(v[0]), static_cast<float>(v[1]), static_cast<float>(v[2])};
}

}  // namespace workstation
