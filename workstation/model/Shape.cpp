#include "workstation/model/Shape.h"

#include <algorithm>
#include <cmath>

#include "workstation/model/Roi.h"
#include "workstation/model/View.h"

namespace workstation {
namespace {

using pelmar::MyPoint;
using pelmar::PixelPoint;
using pelmar::ViewPoint;

/// How near the pointer must be to an annotation's line, points.
constexpr double lineReachPoints = 6;
/// Of an ordinary font: the width of a letter and the height of a line, in font sizes.
constexpr double letterWidth = 0.6;
constexpr double lineHeight = 1.2;

double distanceToSegment(ViewPoint at, ViewPoint a, ViewPoint b) {
  const double alongX = b.x - a.x;
  const double alongY = b.y - a.y;
  const double squared = alongX * alongX + alongY * alongY;
  const double share =
      squared > 0 ? std::clamp(((at.x - a.x) * alongX + (at.y - a.y) * alongY) / squared, 0.0, 1.0) : 0.0;
  return std::hypot(a.x + share * alongX - at.x, a.y + share * alongY - at.y);
}

std::vector<PixelPoint> pixelsOfVertices(const Roi& roi) {
  std::vector<PixelPoint> pixels;
  const auto points = roi.points();
  for (std::size_t index = 0; index < points->count(); ++index) pixels.push_back(points->objectAtIndex(index).point());
  return pixels;
}

/// The line of an annotation as it is seen: its vertices, or a polygon's spline.
std::vector<PixelPoint> lineOf(const Roi& roi) {
  std::vector<PixelPoint> line = pixelsOfVertices(roi);
  if (roi.type() != pelmar::ROITypeOpenPolygon) return line;
  const auto spline = roi.splinePoints();
  if (!spline || spline->empty()) return line;
  line.clear();
  for (const MyPoint& point : *spline) line.push_back(point.point());
  return line;
}

}  // namespace

std::size_t verticesOfStroke(long type) {
  if (type == pelmar::ROITypeLength || type == pelmar::ROITypeArrow) return 2;
  return type == pelmar::ROITypePoint ? 1 : 0;
}

std::vector<PixelPoint> shapeOf(const Roi& roi) {
  if (roi.type() == pelmar::ROITypeText) return {roi.rect().origin};
  return pixelsOfVertices(roi);
}

void setShape(Roi& roi, const std::vector<PixelPoint>& shape) {
  if (roi.type() == pelmar::ROITypeText) {
    if (!shape.empty()) roi.setROIRect({shape.front(), roi.rect().size});
    return;
  }
  std::vector<MyPoint> points;
  points.reserve(shape.size());
  for (const PixelPoint& point : shape) points.push_back(MyPoint::point(point));
  roi.setPoints(points);
}

bool isOnLine(const View& view, const Roi& roi, ViewPoint at) {
  const std::vector<PixelPoint> line = lineOf(roi);
  for (std::size_t index = 0; index < line.size(); ++index) {
    const ViewPoint a = view.ConvertFromGL2NSView(line[index > 0 ? index - 1 : 0]);
    if (distanceToSegment(at, a, view.ConvertFromGL2NSView(line[index])) <= lineReachPoints) return true;
  }
  return false;
}

bool isOnText(const View& view, const Roi& roi, ViewPoint at) {
  double letters = 0;
  double longest = 0;
  double lines = 1;
  for (const char byte : roi.name()) {
    if (byte == '\n') {
      ++lines;
      letters = 0;
    } else if ((static_cast<unsigned char>(byte) & 0xc0U) != 0x80U) {  // no later byte of a letter in UTF-8
      longest = std::max(longest, ++letters);
    }
  }
  const double size = static_cast<double>(roi.thickness());
  const ViewPoint centre = view.ConvertFromGL2NSView(roi.rect().origin);
  return std::abs(at.x - centre.x) <= letterWidth * size * longest / 2 + lineReachPoints &&
         std::abs(at.y - centre.y) <= lineHeight * size * lines / 2;
}

}  // namespace workstation
