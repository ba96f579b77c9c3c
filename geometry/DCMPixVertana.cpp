#include "geometry/DCMPixVertana.h"

#include <cmath>

namespace vertana {

using pelmar::DCMPix;
using pelmar::PixelPoint;
using pelmar::Point3D;
using pelmar::Point3DClass;
using pelmar::Ref;
using pelmar::Vector3f;

Ref<Point3D> Point3DFromNSPoint(const Ref<DCMPix>& pix, PixelPoint point, Point3DClass& point3D) {
  if (!pix) return nullptr;
  Vector3f position;
  pix->convertPixX(static_cast<float>(point.x), static_cast<float>(point.y), position);
  return point3D.pointWithX(position.x, position.y, position.z);
}

PixelPoint NSPointFromPoint3D(const Ref<DCMPix>& pix, const Ref<Point3D>& point) {
  if (!pix) return {};
  const Vector3f position{static_cast<float>(point->x()), static_cast<float>(point->y()),
                          static_cast<float>(point->z())};
  const auto onSlice = pix->convertDICOMCoords(position);
  return {onSlice.x / pix->pixelSpacingX(), onSlice.y / pix->pixelSpacingY()};
}

bool isAxial(const Ref<DCMPix>& pix) {
  const auto orientation = pix->orientation();
  const float x = std::fabs(static_cast<float>(orientation[6]));
  const float y = std::fabs(static_cast<float>(orientation[7]));
  const float z = std::fabs(static_cast<float>(orientation[8]));
  if (x >= z && x >= y && static_cast<double>(x) > 0.2) return false;
  if (y >= x && y >= z && static_cast<double>(y) > 0.2) return false;
  return z >= x && z >= y && static_cast<double>(z) > 0.2;
}

}  // namespace vertana
