#include "workstation/gui/SharedPoint.h"

#include <cmath>
#include <limits>

#include "workstation/model/Vector3.h"

namespace workstation {
namespace {

bool isComparable(const ImageRecord& image, const MarkedPoint& point) {
  return image.geometry && !point.frameOfReferenceUid.empty() && image.frameOfReferenceUid == point.frameOfReferenceUid;
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
  const Vector3 normal = normalized(cross(image.geometry->row, image.geometry->column));
  return std::abs(dot(point.positionMm - image.geometry->position, normal));
}

std::optional<std::size_t> nearestSlice(const std::vector<ImageRecord>& slices, const MarkedPoint& point) {
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
  return nearest;
}

}  // namespace workstation
