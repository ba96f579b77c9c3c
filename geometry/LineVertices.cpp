#include "geometry/LineVertices.h"

namespace vertana {

using pelmar::PixelPoint;

namespace {

float stepOf(double from, double to, long divisor) {
  return (static_cast<float>(to) - static_cast<float>(from)) / static_cast<float>(divisor);
}

long stepsToVertex(long k, const LineDivision& division) {
  if (!division.cervical) return k;
  if (division.upwardWhileDrawn) return k == division.fullVertebraCount ? k + 1 : k;
  return k == 0 ? 0 : k + 1;
}

}  // namespace

std::vector<PixelPoint> verticesAlongLine(PixelPoint a, PixelPoint b, const LineDivision& division) {
  const long divisor = division.cervical ? division.vertebraCount + 1 : division.vertebraCount;
  const float stepX = stepOf(a.x, b.x, divisor);
  const float stepY = stepOf(a.y, b.y, divisor);
  std::vector<PixelPoint> vertices;
  for (long k = 0; k <= division.vertebraCount; ++k) {
    const auto steps = static_cast<float>(stepsToVertex(k, division));
    vertices.push_back({a.x + static_cast<double>(steps * stepX), a.y + static_cast<double>(steps * stepY)});
  }
  return vertices;
}

}  // namespace vertana
