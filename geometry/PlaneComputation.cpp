// One plane a disc level, from the vertices of the spine curve.
#include <algorithm>

#include "geometry/DCMPixVertana.h"
#include "plugin/VertanaFilter.h"

namespace vertana {

using pelmar::MyPoint;
using pelmar::PixelPoint;
using pelmar::Ref;
using pelmar::ROI;

namespace {

/// For each segment index below `segments`, the position of its first sample; -1 where it has none.
std::vector<long> firstSamples(const std::vector<long>& segmentOfSample, std::size_t segments) {
  std::vector<long> first(segments, -1);
  for (std::size_t j = 0; j < segmentOfSample.size(); ++j) {
    const long segment = segmentOfSample[j];
    if (segment < 0 || static_cast<std::size_t>(segment) >= segments) continue;
    auto& position = first[static_cast<std::size_t>(segment)];
    if (position < 0) position = static_cast<long>(j);
  }
  return first;
}

struct Chord {
  PixelPoint from;
  PixelPoint to;
};

/// From a vertex to the next one; from the last to the one before.
Chord chordAtVertex(const Ref<ROI>& curve, long index, bool isLast) {
  return {curve->pointAtIndex(index), curve->pointAtIndex(isLast ? index - 1 : index + 1)};
}

/// Across the samples beside sample j, which gives the curve's own tangent there.
Chord chordAcrossSample(const std::vector<MyPoint>& samples, std::size_t j) {
  const std::size_t after = j + 1 < samples.size() ? j + 1 : j;
  return {samples[j == 0 ? 0 : j - 1].point(), samples[after].point()};
}

}  // namespace

std::map<long, double> VertanaFilter::averageVertebraeHeight() const {
  return {{AnatomicalRegionNone, 1.0},
          {AnatomicalRegionCervical, 1.5},
          {AnatomicalRegionThoracic, 2.0},
          {AnatomicalRegionLumbar, 3.0}};
}

const IntervertebralPlanes& VertanaFilter::intervertebralPlanes() {
  if (!intervertebralPlanes_) computeIntervertebralPlanes();
  return intervertebralPlanes_;
}

void VertanaFilter::computeIntervertebralPlanes() {
  const auto curve = openPolygonROI();
  if (!curve) return;
  const auto labelsOfDiscs = currentIntervertebralPlanesLabels();
  const std::size_t vertexCount = curve->points()->count();

  // While a polygon is clicked, drawing ends by itself once there is a vertex for every label.
  const long mode = curve->ROImode();
  if (drawMode() == DrawModeOpenPolygon && vertexCount >= labelsOfDiscs.size() && mode != pelmar::ROIModeSelected &&
      mode != pelmar::ROIModeEditing) {
    curve->curView()->stopROIEditingForce(true);
  }

  std::vector<long> segmentOfSample;
  const auto samples = curve->splinePoints(5.0F, &segmentOfSample).value_or(std::vector<MyPoint>());
  segmentOfSample.resize(std::min(segmentOfSample.size(), samples.size()));
  const auto firstSample = firstSamples(segmentOfSample, vertexCount);

  auto& point3D = api().point3DClass();
  std::vector<IntervertebralPlane> planes;
  for (std::size_t i = 0; i < vertexCount && i < labelsOfDiscs.size(); ++i) {
    const bool isLast = i + 1 == vertexCount;
    const bool useSpline = vertexCount > 3 && firstSample[i] >= 0;
    const Chord chord = useSpline ? chordAcrossSample(samples, static_cast<std::size_t>(firstSample[i]))
                                  : chordAtVertex(curve, static_cast<long>(i), isLast);
    const auto from = Point3DFromNSPoint(curve->pix(), chord.from, point3D);
    const auto to = Point3DFromNSPoint(curve->pix(), chord.to, point3D);
    const auto direction = point3D.pointWithX(0, 0, 0);
    direction->setPoint3D(to);
    direction->subtract(from);
    // Whichever chord was taken: without the spline this turns the last direction onward; with it, backwards.
    if (isLast) direction->multiply(-1.0);
    const auto unit = point3D.pointWithN3Vector(api().N3VectorNormalize(direction->N3VectorValue()));
    planes.push_back({labelsOfDiscs[i], from, unit});
  }
  setIntervertebralPlanes(std::move(planes));
}

}  // namespace vertana
