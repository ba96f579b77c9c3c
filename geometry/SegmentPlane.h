#pragma once

#include "host/Geometry.h"

namespace vertana {

/// Where a segment crosses a plane, in single precision. Returns 0 when it does not (parallel, or outside the segment
/// whose ends are included) and leaves the output untouched; 1 when the segment runs along the normal, 2 when against
/// it. The normal may have any length. A zero-length segment, and one that lies in the plane, count as parallel.
int intersect3D_SegmentPlane(const pelmar::Vector3f* segmentStart, const pelmar::Vector3f* segmentEnd,
                             const pelmar::Vector3f* planeNormal, const pelmar::Vector3f* planePoint,
                             pelmar::Vector3f* outIntersection);

}  // namespace vertana
