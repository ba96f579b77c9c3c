// The grey lines that show each disc plane across the spine, and the removal of the whole construction.
#include "geometry/DCMPixVertana.h"
#include "geometry/PlaneTrace.h"
#include "plugin/VertanaFilter.h"

namespace vertana {

using pelmar::MyPoint;
using pelmar::Ref;
using pelmar::ROI;

void VertanaFilter::createPlanesROIs() {
  removePlanesROIs();
  const auto& planes = intervertebralPlanes();
  const auto viewer = verticalViewerController();
  if (!planes || !viewer) return;
  const auto view = viewer->imageView();
  const auto pix = view->curDCM();
  auto& point3D = api().point3DClass();
  for (const auto& plane : *planes) {
    const auto roi = api().roiClass().roiWithType(pelmar::ROITypeLength, view);
    roi->stringTags()->addObject("VertanaFilterPlane");
    const auto alongNormal = point3D.pointWithX(0, 0, 0);
    alongNormal->setPoint3D(plane.point);
    alongNormal->add(plane.vector);
    const auto trace =
        planeTrace(NSPointFromPoint3D(pix, plane.point), NSPointFromPoint3D(pix, alongNormal), pix->pixelSpacingX());
    roi->points()->removeAllObjects();
    roi->points()->addObject(MyPoint::point(trace.first));
    roi->points()->addObject(MyPoint::point(trace.second));
    roi->setNSColor({0.8, 0.8, 0.8, 0.8}, false);
    roi->setDisplayTextualData(false);
    roi->setDontSavePreferredWLWW(true);
    roi->setSelectable(false);
    roi->setDontDisplayInKeyImagesWindow(true);
    roi->stringTags()->addObject("VertanaFilterTemporayROI");
    roi->setOriginalIndexForAlias(view->curImage());
    roi->setIsAliased(true);
    const auto lists = view->dcmRoiList();
    for (std::size_t i = 0; i < lists->count(); ++i) lists->objectAtIndex(i)->addObject(roi);
  }
  viewer->needsDisplayUpdate();
}

std::vector<Ref<ROI>> VertanaFilter::planesROIs() const {
  std::vector<Ref<ROI>> found;
  const auto lists = verticalViewerController()->imageView()->dcmRoiList();
  for (std::size_t i = 0; i < lists->count(); ++i) {
    const auto list = lists->objectAtIndex(i);
    for (std::size_t j = 0; j < list->count(); ++j) {
      auto roi = list->objectAtIndex(j);
      if (roi->type() == pelmar::ROITypeLength && roi->stringTags()->containsObject("VertanaFilterPlane")) {
        found.push_back(std::move(roi));
      }
    }
  }
  return found;
}

void VertanaFilter::removePlanesROIs() {
  const auto planes = planesROIs();
  for (const auto& roi : planes) roi->setSelectable(true);
  api().roiClass().deleteROIs(planes, false);
  verticalViewerController()->needsDisplayUpdate();
}

void VertanaFilter::removeConstructionROIs() {
  std::vector<Ref<ROI>> held;
  for (const auto& roi : {inputLengthROI(), inputOpenPolygonROI(), openPolygonROI()}) {
    if (roi) held.push_back(roi);
  }
  api().roiClass().deleteROIs(held, false);
  setInputLengthROI(nullptr);
  setInputOpenPolygonROI(nullptr);
  setOpenPolygonROI(nullptr);
  removePlanesROIs();
  removeTemporaryROIs();
  verticalViewerController()->needsDisplayUpdate();
}

}  // namespace vertana
