#include "workstation/model/Spline.h"

#include <algorithm>
#include <cmath>

namespace workstation {
namespace {

using pelmar::MyPoint;
using pelmar::PixelPoint;

/// More samples than this on one segment tell no more on any screen, and bound what a wild vertex can cost.
constexpr double mostSamplesOfSegment = 100000;

PixelPoint operator+(PixelPoint a, PixelPoint b) { return {a.x + b.x, a.y + b.y}; }
PixelPoint operator-(PixelPoint a, PixelPoint b) { return {a.x - b.x, a.y - b.y}; }
PixelPoint operator*(double factor, PixelPoint p) { return {factor * p.x, factor * p.y}; }
double distance(PixelPoint a, PixelPoint b) { return std::hypot(b.x - a.x, b.y - a.y); }

/// One segment as a cubic in Hermite form, 0 <= t <= 1.
struct Segment {
  PixelPoint start;
  PixelPoint end;
  PixelPoint startTangent;
  PixelPoint endTangent;

  PixelPoint at(double t) const {
    const double u = 1 - t;
    return (1 + 2 * t) * u * u * start + t * u * u * startTangent + t * t * (3 - 2 * t) * end + -t * t * u * endTangent;
  }

  double length() const {
    constexpr int pieces = 16;
    double sum = 0;
    PixelPoint from = start;
    for (int piece = 1; piece <= pieces; ++piece) {
      const PixelPoint to = at(static_cast<double>(piece) / pieces);
      sum += distance(from, to);
      from = to;
    }
    return sum;
  }
};

/// The tangent at `b` of the curve through a, b, c with centripetal knots, for a segment with the knot span `span`.
PixelPoint tangentAt(PixelPoint a, PixelPoint b, PixelPoint c, double span) {
  const double before = std::sqrt(distance(a, b));
  const double after = std::sqrt(distance(b, c));
  if (!(before > 0) && !(after > 0)) return {};
  if (!(before > 0)) return span / after * (c - b);
  if (!(after > 0)) return span / before * (b - a);
  return span * ((1 / before) * (b - a) - (1 / (before + after)) * (c - a) + (1 / after) * (c - b));
}

Segment segmentAt(const std::vector<MyPoint>& vertices, std::size_t index) {
  const PixelPoint start = vertices[index].point();
  const PixelPoint end = vertices[index + 1].point();
  // Beyond an end the curve goes on as it came: the missing neighbour mirrors the other one.
  const PixelPoint before = index > 0 ? vertices[index - 1].point() : 2 * start - end;
  const PixelPoint after = index + 2 < vertices.size() ? vertices[index + 2].point() : 2 * end - start;
  const double span = std::sqrt(distance(start, end));
  if (!(span > 0)) return {start, end, {}, {}};
  return {start, end, tangentAt(before, start, end, span), tangentAt(start, end, after, span)};
}

long sampleCount(const Segment& segment, double scale) {
  const double wanted = scale * segment.length();
  if (!(wanted > 2)) return 2;
  return std::lround(std::min(wanted, mostSamplesOfSegment));
}

}  // namespace

SplineSamples sampleSpline(const std::vector<MyPoint>& vertices, double scale) {
  SplineSamples samples;
  for (std::size_t index = 0; index + 1 < vertices.size(); ++index) {
    const Segment segment = segmentAt(vertices, index);
    const long count = sampleCount(segment, scale);
    samples.points.push_back(vertices[index]);
    for (long sample = 1; sample < count; ++sample) {
      samples.points.push_back(MyPoint::point(segment.at(static_cast<double>(sample) / static_cast<double>(count))));
    }
    samples.segments.insert(samples.segments.end(), static_cast<std::size_t>(count), static_cast<long>(index));
  }
  if (!vertices.empty()) {
    samples.points.push_back(vertices.back());
    samples.segments.push_back(samples.segments.empty() ? 0 : samples.segments.back());
  }
  return samples;
}

std::vector<MyPoint> resampleEvenly(const std::vector<MyPoint>& points, long number, bool close) {
  if (points.empty() || number < 1) return {};
  std::vector<MyPoint> line = points;
  if (close) line.push_back(points.front());
  std::vector<double> along{0};
  for (std::size_t index = 1; index < line.size(); ++index) {
    along.push_back(along.back() + distance(line[index - 1].point(), line[index].point()));
  }
  std::vector<MyPoint> result{line.front()};
  std::size_t piece = 0;
  for (long index = 1; index + 1 < number; ++index) {
    const double target = along.back() * static_cast<double>(index) / static_cast<double>(number - 1);
    while (piece + 2 < line.size() && along[piece + 1] < target) ++piece;
    const std::size_t next = std::min(piece + 1, line.size() - 1);
    const double span = along[next] - along[piece];
    const double share = span > 0 ? (target - along[piece]) / span : 0;
    const PixelPoint from = line[piece].point();
    result.push_back(MyPoint::point(from + share * (line[next].point() - from)));
  }
  if (number > 1) result.push_back(line.back());
  return result;
}

}  // namespace workstation
