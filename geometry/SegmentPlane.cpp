#include "geometry/SegmentPlane.h"

#include <cmath>

#include "geometry/Vectors.h"

namespace vertana {

using pelmar::Vector3f;

namespace {

float dot(const Vector3f& a, const Vector3f& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

}  // namespace

int intersect3D_SegmentPlane(const Vector3f* segmentStart, const Vector3f* segmentEnd, const Vector3f* planeNormal,
                             const Vector3f* planePoint, Vector3f* outIntersection) {
  const Vector3f u = difference(*segmentEnd, *segmentStart);
  const float D = dot(*planeNormal, u);
  if (std::fabs(static_cast<double>(D)) < 1e-08) return 0;
  const float N = -dot(*planeNormal, difference(*segmentStart, *planePoint));
  const float s = N / D;
  if (s < 0 || s > 1) return 0;
  *outIntersection = {std::fma(s, u.x, segmentStart->x), std::fma(s, u.y, segmentStart->y),
                      std::fma(s, u.z, segmentStart->z)};
  return D > 0 ? 1 : 2;
}

}  // namespace vertana
