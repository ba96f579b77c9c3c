// The vertebra labels beside the spine on the vertical views, and the two switches that govern the labelling.
#include "display/LabelPlacement.h"
#include "geometry/DCMPixVertana.h"
#include "geometry/PlaneTrace.h"
#include "plugin/VertanaFilter.h"

namespace vertana {

using pelmar::Colour;
using pelmar::DCMPix;
using pelmar::DCMView;
using pelmar::PixelPoint;
using pelmar::Ref;
using pelmar::ROI;
using pelmar::ViewerController;

namespace {

constexpr std::string_view labelTag = "VertanaFilterLabel";
constexpr std::string_view lineTagPrefix = "kLabelsLinesTagPrefix";
constexpr Colour faintYellow{1.0, 1.0, 0.0, 0.2};

/// The plane's normal as a unit vector in the image; zero where there is no such plane.
PixelPoint projectedNormal(const std::vector<IntervertebralPlane>& planes, std::size_t index, const Ref<DCMPix>& pix,
                           pelmar::Point3DClass& point3D) {
  if (index >= planes.size()) return {};
  const auto alongNormal = point3D.pointWithX(0, 0, 0);
  alongNormal->setPoint3D(planes[index].point);
  alongNormal->add(planes[index].vector);
  return unitVector(NSPointFromPoint3D(pix, planes[index].point), NSPointFromPoint3D(pix, alongNormal));
}

bool isLabel(const Ref<ROI>& roi) {
  return roi->type() == pelmar::ROITypeText && roi->stringTags()->containsObject(labelTag);
}

void appendToEverySlice(const Ref<ROI>& roi, const Ref<DCMView>& view) {
  const auto lists = view->dcmRoiList();
  for (std::size_t i = 0; i < lists->count(); ++i) lists->objectAtIndex(i)->addObject(roi);
}

}  // namespace

int VertanaFilter::labelsSide() const {
  std::array<float, 9> orientation{};
  verticalViewerController()->imageView()->orientationCorrectedToView(orientation);
  return labelsSideForHorizontalAxis({orientation[0], orientation[1], orientation[2]});
}

pelmar::PixelSize VertanaFilter::labelsDistanceOnView(const Ref<DCMView>& view) const {
  const double distanceMm = labelDistanceMm(anatomicalRegion());
  const auto pix = view->curDCM();
  return {distanceMm / pix->pixelSpacingX(), distanceMm / pix->pixelSpacingY()};
}

std::vector<Ref<ROI>> VertanaFilter::labelsOnView(const Ref<DCMView>& view) const {
  std::vector<Ref<ROI>> found;
  const auto lists = view->dcmRoiList();
  for (std::size_t i = 0; i < lists->count(); ++i) {
    const auto list = lists->objectAtIndex(i);
    for (std::size_t j = 0; j < list->count(); ++j) {
      auto roi = list->objectAtIndex(j);
      if (isLabel(roi)) found.push_back(std::move(roi));
    }
  }
  return found;
}

std::vector<Ref<ROI>> VertanaFilter::labels() const {
  std::vector<Ref<ROI>> found;
  const auto viewers = openedViewersWithCurrentStudy();
  if (!viewers) return found;
  for (const auto& viewer : *viewers) {
    const auto onView = labelsOnView(viewer->imageView());
    found.insert(found.end(), onView.begin(), onView.end());
  }
  return found;
}

void VertanaFilter::createLabels() {
  const auto viewers = openedViewersWithCurrentStudy();
  if (!viewers) return;
  for (const auto& viewer : *viewers) createLabelsOnViewer(viewer->imageView());
}

void VertanaFilter::createLabelsOnViewer(const Ref<DCMView>& view) {
  if (!showsCurrentStudy(view->studyObj())) return;
  long orientation = 0;
  api().viewerControllerClass().computeOriginalOrientationForPixArray(view->dcmPixList(), orientation);
  if (static_cast<unsigned long>(orientation) > 3) return;
  createLabelsOnView(view);
}

std::vector<PixelPoint> VertanaFilter::labelAnchorsOnView(const Ref<DCMView>& view) {
  std::vector<PixelPoint> anchors;
  const auto curve = openPolygonROI();
  if (curve && curve->curView() == view) {
    const auto points = curve->points();
    for (std::size_t i = 0; i < points->count(); ++i) anchors.push_back(points->objectAtIndex(i).point());
    // Asked for so that the host smooths the curve now; the labels stand by its vertices.
    if (anchors.size() >= 4) curve->splinePoints(5.0F, nullptr);
    return anchors;
  }
  const auto& planes = intervertebralPlanes();
  if (!planes) return anchors;
  const auto pix = view->curDCM();
  for (const auto& plane : *planes) anchors.push_back(NSPointFromPoint3D(pix, plane.point));
  return anchors;
}

void VertanaFilter::createLabelsOnView(const Ref<DCMView>& view) {
  const auto pix = view->curDCM();
  if (pix->isRGB()) return;
  auto& roiClass = api().roiClass();
  if (!openPolygonROI() && !intervertebralPlanes()) {
    if (isSavedStateEmpty()) roiClass.deleteROIs(labelsOnView(view), false);
    return;
  }
  roiClass.deleteROIs(labelsOnView(view), false);
  if (!displayLabels()) return;

  const auto anchors = labelAnchorsOnView(view);
  const bool onCurveView = openPolygonROI() && openPolygonROI()->curView() == view;
  if (anchors.empty() && !onCurveView) return;
  auto& point3D = api().point3DClass();
  const auto names = currentVertebraeLabels();
  const bool footFirst = anchors.size() >= 2 && Point3DFromNSPoint(pix, anchors.front(), point3D)->z() <
                                                    Point3DFromNSPoint(pix, anchors.back(), point3D)->z();
  const auto middleIndex = view->dcmPixList()->count() / 2;
  const auto middleImage = view->dcmPixList()->objectAtIndex(middleIndex);
  const auto planes = intervertebralPlanes().value_or(std::vector<IntervertebralPlane>());

  for (std::size_t i = 0; i + 1 < anchors.size() && i < names.size(); ++i) {
    const auto& name = names[footFirst ? names.size() - 1 - i : i];
    const auto label = roiClass.roiWithType(pelmar::ROITypeText, view);
    label->setPix(middleImage);
    label->setDontSavePreferredWLWW(true);
    label->setName(name);
    label->setThickness(15.0F);
    label->setDontDisplayInKeyImagesWindow(true);
    label->stringTags()->addObject(labelTag);

    LabelPlacement placement;
    placement.middle = roiClass.pointBetweenPoint(anchors[i], anchors[i + 1], 0.5);
    placement.upperNormal = projectedNormal(planes, i, pix, point3D);
    placement.lowerNormal = projectedNormal(planes, i + 1, pix, point3D);
    placement.footFirst = footFirst;
    placement.side = labelsSide();
    placement.distance = labelsDistanceOnView(view);
    const auto point = labelPoint(placement);
    label->setROIRect({point, label->rect().size});
    if (onCurveView) {
      displayTemporaryVectorFromPoint(placement.middle, connectorEnd(placement.middle, point), false,
                                      view->viewer()->imageView(), std::string(lineTagPrefix) + " " + name,
                                      faintYellow);
    }
    appendToEverySlice(label, view);
    label->setOriginalIndexForAlias(static_cast<long>(middleIndex));
    label->setIsAliased(true);
  }
  view->viewer()->needsDisplayUpdate();
}

void VertanaFilter::removeLabels() {
  api().roiClass().deleteROIs(labels(), false);
  verticalViewerController()->needsDisplayUpdate();
}

void VertanaFilter::removeLabelsLines() {
  std::vector<Ref<ROI>> lines;
  std::vector<Ref<ViewerController>> viewers;
  for (const auto& roi : temporaryROIs()) {
    const auto tags = roi->stringTags()->allObjects();
    const bool isLine = std::any_of(
        tags.begin(), tags.end(), [](const std::string& tag) { return tag.find(lineTagPrefix) != std::string::npos; });
    if (!isLine) continue;
    lines.push_back(roi);
    if (auto viewer = roi->curView()->viewer()) viewers.push_back(std::move(viewer));
  }
  api().roiClass().deleteROIs(lines, false);
  for (const auto& viewer : viewers) viewer->needsDisplayUpdate();
}

void VertanaFilter::setDisplayLabels(bool displayLabelsValue) {
  if (displayLabelsValue == displayLabels()) return;
  displayLabels_ = displayLabelsValue;
  if (!displayLabelsValue) removeLabelsLines();
  createLabels();
  updateAxialLabels();
  settingDidChange("displayLabels");
}

std::string VertanaFilter::drawModeUserDefaultsKey() const {
  return "VertanaDrawMode-" + std::to_string(anatomicalRegion());
}

void VertanaFilter::setDrawMode(unsigned long drawModeValue) {
  if (drawModeValue == drawMode()) return;
  drawMode_ = drawModeValue;
  removeInputLengthROI();
  removeInputOpenPolygonROI();
  removeConstructionROIs();
  removeLabels();
  if (const auto viewer = firstViewerWithVerticalSeries()) {
    if (drawModeValue == DrawModeLength) viewer->setROIToolTag(pelmar::ROIToolTagLength);
    if (drawModeValue == DrawModeOpenPolygon) viewer->setROIToolTag(pelmar::ROIToolTagOpenPolygon);
  }
  api().standardUserDefaults().setObject(static_cast<std::int64_t>(drawModeValue), drawModeUserDefaultsKey());
  settingDidChange("drawMode");
}

}  // namespace vertana
