#pragma once

#include <cmath>

namespace phantom {

/// A patient position in millimetres, or a direction in the same axes (LPS: x to the patient's left, y to the back,
/// z to the head).
struct Vec3 {
  double x = 0;
  double y = 0;
  double z = 0;
};

constexpr Vec3 operator+(Vec3 a, Vec3 b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
constexpr Vec3 operator-(Vec3 a, Vec3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
constexpr Vec3 operator*(double k, Vec3 a) { return {k * a.x, k * a.y, k * a.z}; }
constexpr double dot(Vec3 a, Vec3 b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
constexpr Vec3 cross(Vec3 a, Vec3 b) { return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x}; }
inline double length(Vec3 a) { return std::sqrt(dot(a, a)); }
/// `a` must not be zero.
inline Vec3 unit(Vec3 a) { return (1.0 / length(a)) * a; }
/// `a` without its part along the unit vector `along`, of length 1. The two must not be parallel.
inline Vec3 unitAcross(Vec3 a, Vec3 along) { return unit(a - dot(a, along) * along); }

}  // namespace phantom
