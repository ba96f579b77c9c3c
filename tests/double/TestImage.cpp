#include "tests/double/TestImage.h"

namespace testhost {

using pelmar::Capability;
using pelmar::Vector3f;

TestImage::TestImage(const SliceGeometry& slice) : geometry(slice) {
  const auto& r = slice.row;
  const auto& c = slice.column;
  cosines = {r[0],
             r[1],
             r[2],
             c[0],
             c[1],
             c[2],
             r[1] * c[2] - r[2] * c[1],
             r[2] * c[0] - r[0] * c[2],
             r[0] * c[1] - r[1] * c[0]};
  content.size = {static_cast<double>(slice.width), static_cast<double>(slice.height)};
}

bool TestImage::supports(Capability capability) const {
  return capability == Capability::DCMPixBodyPartExamined && hasBodyPartExamined;
}

void TestImage::orientation(std::array<float, 9>& vector) const {
  for (std::size_t i = 0; i < 9; ++i) vector[i] = static_cast<float>(cosines[i]);
}

void TestImage::convertPixX(float x, float pixY, Vector3f& toDICOMCoords) const {
  const double alongRow = static_cast<double>(x) * geometry.spacingX;
  const double alongColumn = static_cast<double>(pixY) * geometry.spacingY;
  const auto component = [&](std::size_t i) {
    return static_cast<float>(geometry.origin[i] + alongRow * geometry.row[i] + alongColumn * geometry.column[i]);
  };
  toDICOMCoords = {component(0), component(1), component(2)};
}

pelmar::SlicePoint TestImage::convertDICOMCoords(const Vector3f& position) const {
  const std::array<double, 3> fromOrigin{static_cast<double>(position.x) - geometry.origin[0],
                                         static_cast<double>(position.y) - geometry.origin[1],
                                         static_cast<double>(position.z) - geometry.origin[2]};
  const auto along = [&](const std::array<double, 3>& axis) {
    return fromOrigin[0] * axis[0] + fromOrigin[1] * axis[1] + fromOrigin[2] * axis[2];
  };
  return {along(geometry.row), along(geometry.column)};
}

}  // namespace testhost
