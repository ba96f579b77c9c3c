#include "workstation/render/Orientation.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace workstation {
namespace {

/// Cosine of 75 degrees.
constexpr double smallestComponent = 0.25881904510252074;

}  // namespace

std::string orientationLetters(const Vector3& direction) {
  const Vector3 unit = normalized(direction);
  if (!std::isfinite(dot(unit, unit))) return {};
  struct Axis {
    std::size_t component;
    char negative;
    char positive;
  };
  std::array<Axis, 3> axes{{{0, 'R', 'L'}, {1, 'A', 'P'}, {2, 'F', 'H'}}};
  std::stable_sort(axes.begin(), axes.end(), [&](const Axis& a, const Axis& b) {
    return std::abs(unit[a.component]) > std::abs(unit[b.component]);
  });
  std::string letters;
  for (const Axis& axis : axes) {
    const double component = unit[axis.component];
    if (std::abs(component) >= smallestComponent) letters += component < 0 ? axis.negative : axis.positive;
  }
  return letters;
}

EdgeLetters edgeLetters(const ImageGeometry& geometry, const ViewTransform& transform) {
  const auto inPatient = [&](ViewTransform::Direction direction) {
    return direction.alongRow * geometry.row + direction.alongColumn * geometry.column;
  };
  const Vector3 right = inPatient(transform.displayedRight());
  const Vector3 down = inPatient(transform.displayedDown());
  return {orientationLetters(-1 * right), orientationLetters(right), orientationLetters(-1 * down),
          orientationLetters(down)};
}

}  // namespace workstation
