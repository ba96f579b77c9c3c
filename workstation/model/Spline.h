#pragma once
// The smooth curve through the vertices of an annotation: interpolating centripetal Catmull-Rom (Barry and Goldman's
// knots at the square roots of the chords, so that no segment overshoots or loops). Pure functions on pixels.

#include <vector>

#include "host/MyPoint.h"

namespace workstation {

struct SplineSamples {
  std::vector<pelmar::MyPoint> points;
  std::vector<long> segments;  ///< for each sample the segment it lies on; segment i starts at vertex i
};

/// Samples the curve, `scale` samples a pixel of its length and at least two a segment, from the first vertex to the
/// last. Every vertex is a sample, exactly, and belongs to the segment that it starts; the last one belongs to the
/// last segment. One vertex: itself, on segment 0. No vertices: nothing.
SplineSamples sampleSpline(const std::vector<pelmar::MyPoint>& vertices, double scale);

/// `number` points at equal distances along a polyline from its first to its last point, both exactly. `close` would
/// first return to the first point. One of the points only when `number` is 1; nothing when `number` is below 1 or
/// there are no points.
std::vector<pelmar::MyPoint> resampleEvenly(const std::vector<pelmar::MyPoint>& points, long number, bool close);

}  // namespace workstation
