#include "workstation/render/ReferenceLine.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "workstation/model/Vector3.h"

namespace workstation {
namespace {

using pelmar::PixelPoint;

/// Sine of 1 degree.
constexpr double parallelSine = 0.017452406437283512;

Vector3 patientPoint(const ImageGeometry& geometry, double x, double y) {
  return geometry.position + x * geometry.spacingX * geometry.row + y * geometry.spacingY * geometry.column;
}

PixelPoint pixelPoint(const ImageGeometry& geometry, const Vector3& point) {
  const Vector3 offset = point - geometry.position;
  return {dot(offset, geometry.row) / geometry.spacingX, dot(offset, geometry.column) / geometry.spacingY};
}

/// The outer corners of a slice, around it.
std::array<Vector3, 4> cornersOf(const ImageRecord& image) {
  const double right = image.columns - 0.5;
  const double bottom = image.rows - 0.5;
  const ImageGeometry& geometry = *image.geometry;
  return {patientPoint(geometry, -0.5, -0.5), patientPoint(geometry, right, -0.5),
          patientPoint(geometry, right, bottom), patientPoint(geometry, -0.5, bottom)};
}

/// The two points in which the edges of a quadrilateral cross a plane; fewer where they do not.
std::vector<Vector3> crossings(const std::array<Vector3, 4>& corners, const Vector3& origin, const Vector3& normal) {
  std::vector<Vector3> points;
  for (std::size_t index = 0; index < corners.size(); ++index) {
    const Vector3& a = corners[index];
    const Vector3& b = corners[(index + 1) % corners.size()];
    const double heightA = dot(a - origin, normal);
    const double heightB = dot(b - origin, normal);
    // A corner on the plane belongs to the upper side, so that it is not met twice.
    if ((heightA >= 0) == (heightB >= 0)) continue;
    points.push_back(a + heightA / (heightA - heightB) * (b - a));
  }
  return points;
}

/// The part of a segment within lower <= coordinate <= upper, where from + t * step runs through it.
bool clipTo(double lower, double upper, double from, double step, double& first, double& last) {
  if (step == 0) return from >= lower && from <= upper;
  const double a = (lower - from) / step;
  const double b = (upper - from) / step;
  first = std::max(first, std::min(a, b));
  last = std::min(last, std::max(a, b));
  return first < last;
}

std::optional<PixelSegment> clippedToImage(const PixelSegment& segment, const ImageRecord& image) {
  const double stepX = segment.to.x - segment.from.x;
  const double stepY = segment.to.y - segment.from.y;
  double first = 0;
  double last = 1;
  if (!clipTo(-0.5, image.columns - 0.5, segment.from.x, stepX, first, last)) return std::nullopt;
  if (!clipTo(-0.5, image.rows - 0.5, segment.from.y, stepY, first, last)) return std::nullopt;
  const auto at = [&](double t) { return PixelPoint{segment.from.x + t * stepX, segment.from.y + t * stepY}; };
  return PixelSegment{at(first), at(last)};
}

}  // namespace

std::optional<PixelSegment> referenceLine(const ImageRecord& shown, const ImageRecord& other) {
  if (!shown.geometry || !other.geometry) return std::nullopt;
  if (shown.frameOfReferenceUid.empty() || shown.frameOfReferenceUid != other.frameOfReferenceUid) return std::nullopt;
  const Vector3 normal = normalized(cross(shown.geometry->row, shown.geometry->column));
  const Vector3 otherNormal = normalized(cross(other.geometry->row, other.geometry->column));
  if (lengthOf(cross(normal, otherNormal)) < parallelSine) return std::nullopt;
  const auto points = crossings(cornersOf(other), shown.geometry->position, normal);
  if (points.size() != 2) return std::nullopt;
  return clippedToImage({pixelPoint(*shown.geometry, points[0]), pixelPoint(*shown.geometry, points[1])}, shown);
}

}  // namespace workstation
