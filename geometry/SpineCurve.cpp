// The plug-in's own curve along the spine: one vertex a disc level, head first.
#include <algorithm>
#include <cmath>

#include "geometry/DCMPixVertana.h"
#include "geometry/LineVertices.h"
#include "plugin/VertanaFilter.h"

namespace vertana {

using pelmar::MyPoint;
using pelmar::Ref;
using pelmar::ROI;

namespace {

bool isUpward(const Ref<ROI>& roi, pelmar::PixelPoint first, pelmar::PixelPoint last, pelmar::Point3DClass& point3D) {
  return Point3DFromNSPoint(roi->pix(), first, point3D)->z() < Point3DFromNSPoint(roi->pix(), last, point3D)->z();
}

std::vector<MyPoint> pointsOf(const Ref<ROI>& roi) {
  const auto list = roi->points();
  std::vector<MyPoint> points;
  points.reserve(list->count());
  for (std::size_t i = 0; i < list->count(); ++i) points.push_back(list->objectAtIndex(i));
  return points;
}

// The same object heads every slice's list, so that it shows on all of them.
void showOnEverySlice(const Ref<ROI>& curve, const Ref<pelmar::ViewerController>& viewer) {
  curve->setOriginalIndexForAlias(viewer->imageView()->curImage());
  curve->setIsAliased(true);
  const auto lists = viewer->roiList();
  for (std::size_t i = 0; i < lists->count(); ++i) {
    const auto list = lists->objectAtIndex(i);
    list->removeObject(curve);
    list->insertObject(curve, 0);
  }
}

}  // namespace

void VertanaFilter::createOpenPolygon() {
  const auto line = inputLengthROI();
  const auto polygon = inputOpenPolygonROI();
  if (!line && !polygon && !intervertebralPlanes()) return;
  const auto viewer = verticalViewerController();
  if (!viewer) return;
  const auto view = viewer->imageView();

  if (!openPolygonROI_) {
    setOpenPolygonROI(api().roiClass().roiWithType(pelmar::ROITypeOpenPolygon, view));
    openPolygonROI_->setDontDisplayInKeyImagesWindow(true);
    openPolygonROI_->setDontSavePreferredWLWW(true);
    openPolygonROI_->stringTags()->addObject("kConstructionOpenPolygonStringTag");
  }
  openPolygonROI_->points()->removeAllObjects();

  // While the person draws, the number of vertebrae grows with the drawn length.
  const auto fullCount = static_cast<long>(currentVertebraeLabels().size());
  long count = fullCount;
  const bool lineGrows = line->ROImode() == pelmar::ROIModeDrawing;
  const bool polygonGrows =
      polygon->ROImode() == pelmar::ROIModeDrawing || polygon->ROImode() == pelmar::ROIModeSelected;
  if (lineGrows || polygonGrows) {
    setIntervertebralPlanes(std::nullopt);
    const double lengthCm = lineGrows ? line->length() : polygon->length();
    const double heightCm = averageVertebraeHeight()[anatomicalRegion()];
    count = static_cast<long>(std::min(static_cast<double>(fullCount), std::round(lengthCm / heightCm)));
  }

  const auto points = openPolygonROI_->points();
  if (line) {
    for (const auto& vertex : verticesFromLine(line, count, fullCount)) points->addObject(vertex);
  } else if (polygon) {
    for (const auto& vertex : verticesFromPolygon(polygon, count + 1)) points->addObject(vertex);
  } else {
    for (const auto& plane : *intervertebralPlanes_) {
      points->addObject(MyPoint::point(NSPointFromPoint3D(view->curDCM(), plane.point)));
    }
  }

  showOnEverySlice(openPolygonROI_, viewer);
  openPolygonROI_->setDisplayTextualData(false);
  openPolygonROI_->setSelectable(true);
  openPolygonROI_->setThickness(1.0F, false);
  openPolygonROI_->setNSColor({0, 1, 0, 1}, false);
  viewer->needsDisplayUpdate();
}

std::vector<MyPoint> VertanaFilter::verticesFromLine(const Ref<ROI>& line, long vertebraCount, long fullCount) const {
  const auto lastIndex = static_cast<long>(line->points()->count()) - 1;
  auto first = line->pointAtIndex(0);
  auto last = line->pointAtIndex(lastIndex);
  const bool upward = isUpward(line, first, last, api().point3DClass());
  const bool beingDrawn = line->ROImode() == pelmar::ROIModeDrawing;
  if (upward && !beingDrawn) std::swap(first, last);

  LineDivision division;
  division.vertebraCount = vertebraCount;
  division.fullVertebraCount = fullCount;
  division.cervical = anatomicalRegion() == AnatomicalRegionCervical;
  division.upwardWhileDrawn = upward && beingDrawn;
  std::vector<MyPoint> vertices;
  for (const auto& vertex : verticesAlongLine(first, last, division)) vertices.push_back(MyPoint::point(vertex));
  return vertices;
}

std::vector<MyPoint> VertanaFilter::verticesFromPolygon(const Ref<ROI>& polygon, long vertexCount) const {
  auto points = pointsOf(polygon);
  const long mode = polygon->ROImode();
  // While it is being drawn or edited the person's own points are shown, in the person's order.
  if (mode == pelmar::ROIModeDrawing || mode == pelmar::ROIModeSelected) return points;
  if (static_cast<long>(points.size()) != vertexCount) {
    points =
        api().roiClass().resamplePoints(polygon->splinePoints(), vertexCount, false).value_or(std::vector<MyPoint>());
  }
  if (!points.empty() && isUpward(polygon, points.front().point(), points.back().point(), api().point3DClass())) {
    std::reverse(points.begin(), points.end());
  }
  return points;
}

}  // namespace vertana
