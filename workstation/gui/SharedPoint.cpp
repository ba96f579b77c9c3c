#include "workstation/gui/SharedPoint.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "workstation/model/Vector3.h"

namespace workstation {
namespace {

/// Slices that lie closer are thin: a point is shown on several.
constexpr double leastReachMm = 2.5;
constexpr double roundingMm = 0.01;
constexpr double leastCosine = 0.9998;  ///< within a degree

bool isComparable(const ImageRecord& image, const MarkedPoint& point) {
  return image.geometry && !point.frameOfReferenceUid.empty() && image.frameOfReferenceUid == point.frameOfReferenceUid;
}

Vector3 normalOf(const ImageGeometry& geometry) { return normalized(cross(geometry.row, geometry.column)); }

/// Half the way to the next slice of the same block: those of other blocks are tilted against it, and between blocks
/// lies what no slice shows.
double reachMm(const std::vector<ImageRecord>& slices, const ImageRecord& slice) {
  double nearest = 2 * leastReachMm;
  bool isKnown = false;
  for (const ImageRecord& other : slices) {
    if (!other.geometry || dot(normalOf(*other.geometry), normalOf(*slice.geometry)) < leastCosine) continue;
    const double distance = distanceMm(slice, {slice.frameOfReferenceUid, other.geometry->position});
    if (distance < roundingMm || (isKnown && distance >= nearest)) continue;
    nearest = distance;
    isKnown = true;
  }
  return std::max(leastReachMm, nearest / 2) + roundingMm;
}

}  // namespace

std::optional<MarkedPoint> markedPointAt(const ImageRecord& image, pelmar::PixelPoint pixel) {
  if (!image.geometry || image.frameOfReferenceUid.empty()) return std::nullopt;
  const ImageGeometry& geometry = *image.geometry;
  return MarkedPoint{image.frameOfReferenceUid, geometry.position + pixel.x * geometry.spacingX * geometry.row +
                                                    pixel.y * geometry.spacingY * geometry.column};
}

std::optional<pelmar::PixelPoint> pixelOf(const ImageRecord& image, const MarkedPoint& point) {
  if (!isComparable(image, point)) return std::nullopt;
  const ImageGeometry& geometry = *image.geometry;
  const Vector3 offset = point.positionMm - geometry.position;
  return pelmar::PixelPoint{dot(offset, geometry.row) / geometry.spacingX,
                            dot(offset, geometry.column) / geometry.spacingY};
}

double distanceMm(const ImageRecord& image, const MarkedPoint& point) {
  if (!isComparable(image, point)) return std::numeric_limits<double>::infinity();
  return std::abs(dot(point.positionMm - image.geometry->position, normalOf(*image.geometry)));
}

bool isOnSlice(const std::vector<ImageRecord>& slices, std::size_t slice, const MarkedPoint& point) {
  return slice < slices.size() && isComparable(slices[slice], point) &&
         distanceMm(slices[slice], point) <= reachMm(slices, slices[slice]);
}

std::optional<std::size_t> sliceAt(const std::vector<ImageRecord>& slices, const MarkedPoint& point) {
  std::optional<std::size_t> nearest;
  double least = std::numeric_limits<double>::infinity();
  for (std::size_t index = 0; index < slices.size(); ++index) {
    const auto pixel = pixelOf(slices[index], point);
    if (!pixel || pixel->x < -0.5 || pixel->y < -0.5 || pixel->x > slices[index].columns - 0.5 ||
        pixel->y > slices[index].rows - 0.5) {
      continue;
    }
    const double distance = distanceMm(slices[index], point);
    if (distance >= least) continue;
    least = distance;
    nearest = index;
  }
  return nearest && isOnSlice(slices, *nearest, point) ? nearest : std::nullopt;
}

}  // namespace workstation
