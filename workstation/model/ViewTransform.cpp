#include "workstation/model/ViewTransform.h"

#include <algorithm>
#include <cmath>

namespace workstation {
namespace {

struct Rotation {
  double cosine = 1;
  double sine = 0;
};

/// Quarter turns are exact, so that an upright image has directions without rounding noise.
Rotation rotationOf(double degrees) {
  if (degrees == 0) return {1, 0};
  if (degrees == 90) return {0, 1};
  if (degrees == 180) return {-1, 0};
  if (degrees == 270) return {0, -1};
  const double angleRad = degrees * std::acos(-1.0) / 180;
  return {std::cos(angleRad), std::sin(angleRad)};
}

}  // namespace

pelmar::ViewPoint ViewTransform::toView(pelmar::PixelPoint pixel) const {
  const double x = (pixel.x - (columns - 1) / 2) * scale * (flippedHorizontally ? -1 : 1);
  const double y = (pixel.y - (rows - 1) / 2) * scale * pixelAspect * (flippedVertically ? -1 : 1);
  const Rotation rotation = rotationOf(rotationDegrees);
  const double right = x * rotation.cosine - y * rotation.sine;
  const double down = x * rotation.sine + y * rotation.cosine;
  return {viewWidth / 2 + origin.x + right, viewHeight / 2 + origin.y - down};
}

pelmar::PixelPoint ViewTransform::toPixel(pelmar::ViewPoint point) const {
  const double right = point.x - viewWidth / 2 - origin.x;
  const double down = -(point.y - viewHeight / 2 - origin.y);
  const Rotation rotation = rotationOf(rotationDegrees);
  const double x = right * rotation.cosine + down * rotation.sine;
  const double y = -right * rotation.sine + down * rotation.cosine;
  return {(columns - 1) / 2 + x / scale * (flippedHorizontally ? -1 : 1),
          (rows - 1) / 2 + y / (scale * pixelAspect) * (flippedVertically ? -1 : 1)};
}

ViewTransform::Direction ViewTransform::displayedRight() const {
  const Rotation rotation = rotationOf(rotationDegrees);
  return {flippedHorizontally ? -rotation.cosine : rotation.cosine, flippedVertically ? rotation.sine : -rotation.sine};
}

ViewTransform::Direction ViewTransform::displayedDown() const {
  const Rotation rotation = rotationOf(rotationDegrees);
  return {flippedHorizontally ? -rotation.sine : rotation.sine, flippedVertically ? -rotation.cosine : rotation.cosine};
}

double ViewTransform::scaleToFit() const {
  if (!(columns > 0) || !(rows > 0) || !(viewWidth > 0) || !(viewHeight > 0)) return 1;
  const Rotation rotation = rotationOf(rotationDegrees);
  const double cosine = std::abs(rotation.cosine);
  const double sine = std::abs(rotation.sine);
  const double height = rows * pixelAspect;
  return std::min(viewWidth / (columns * cosine + height * sine), viewHeight / (columns * sine + height * cosine));
}

}  // namespace workstation
