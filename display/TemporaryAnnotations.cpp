// The plug-in's own annotations, found in the host's lists by their tags; nothing else remembers them.
#include "plugin/VertanaFilter.h"

namespace vertana {

using pelmar::Colour;
using pelmar::DCMView;
using pelmar::MyPoint;
using pelmar::PixelPoint;
using pelmar::Ref;
using pelmar::ROI;
using pelmar::ViewerController;

namespace {

constexpr std::string_view temporaryTag = "VertanaFilterTemporayROI";
constexpr Colour halfTransparentOrange{1.0, 0.5, 0.0, 0.5};

/// Calls `visit` for every temporary annotation of the viewer, list by list; stops when it returns true.
template <class Visit>
bool visitTemporaryROIs(const Ref<ViewerController>& viewer, const Visit& visit) {
  const auto lists = viewer->imageView()->dcmRoiList();
  for (std::size_t i = 0; i < lists->count(); ++i) {
    const auto list = lists->objectAtIndex(i);
    for (std::size_t j = 0; j < list->count(); ++j) {
      const auto roi = list->objectAtIndex(j);
      if (roi->stringTags()->containsObject(temporaryTag) && visit(roi)) return true;
    }
  }
  return false;
}

}  // namespace

std::vector<Ref<ROI>> VertanaFilter::temporaryROIsForViewer(const Ref<ViewerController>& viewer) const {
  std::vector<Ref<ROI>> found;
  visitTemporaryROIs(viewer, [&](const Ref<ROI>& roi) {
    found.push_back(roi);
    return false;
  });
  return found;
}

std::vector<Ref<ROI>> VertanaFilter::temporaryROIs() const {
  std::vector<Ref<ROI>> found;
  for (const auto& viewer : viewerControllersList()) {
    const auto ofViewer = temporaryROIsForViewer(viewer);
    found.insert(found.end(), ofViewer.begin(), ofViewer.end());
  }
  return found;
}

Ref<ROI> VertanaFilter::temporaryROIWithUID(std::string_view uid) const {
  Ref<ROI> found;
  const auto hasUID = [&](const Ref<ROI>& roi) {
    if (!roi->stringTags()->containsObject(uid)) return false;
    found = roi;
    return true;
  };
  for (const auto& viewer : viewerControllersList()) {
    if (visitTemporaryROIs(viewer, hasUID)) break;
  }
  return found;
}

void VertanaFilter::addTemporaryROI(const Ref<ROI>& roi, const Ref<DCMView>& onView, std::string_view withUID,
                                    const Colour& color) {
  if (!roi) return;
  if (!temporaryROIWithUID(withUID)) {
    roi->stringTags()->addObject(withUID);
    roi->stringTags()->addObject(temporaryTag);
  }
  const auto viewer = onView->viewer();
  const auto list = viewer->roiList()->objectAtIndex(static_cast<std::size_t>(onView->curImage()));
  if (list->containsObject(roi)) list->removeObject(roi);
  list->addObject(roi);
  roi->setROIMode(pelmar::ROIModeFinished);
  roi->setDisplayTextualData(false);
  roi->setSelectable(false);
  roi->setNSColor(color, false);
  roi->setDontDisplayInKeyImagesWindow(true);
  viewer->needsDisplayUpdate();
}

void VertanaFilter::displayTemporaryPoint(PixelPoint point, const Ref<DCMView>& onView, std::string_view withUID) {
  displayTemporaryPoint(point, onView, withUID, halfTransparentOrange);
}

void VertanaFilter::displayTemporaryPoint(PixelPoint point, const Ref<DCMView>& onView, std::string_view withUID,
                                          const Colour& color) {
  auto roi = temporaryROIWithUID(withUID);
  if (!roi) {
    roi = api().roiClass().roiWithType(pelmar::ROITypePoint, onView);
    roi->setDontDisplayInKeyImagesWindow(true);
    roi->setDontSavePreferredWLWW(true);
    if (!roi) return;
  }
  roi->setPoints({MyPoint::point(point)});
  roi->setROIRect({point, roi->rect().size});
  addTemporaryROI(roi, onView, withUID, color);
}

void VertanaFilter::displayTemporaryVectorFromPoint(PixelPoint fromPoint, PixelPoint toPoint,
                                                    const Ref<DCMView>& onView, std::string_view withUID) {
  displayTemporaryVectorFromPoint(fromPoint, toPoint, true, onView, withUID, halfTransparentOrange);
}

void VertanaFilter::displayTemporaryVectorFromPoint(PixelPoint fromPoint, PixelPoint toPoint, bool withArrow,
                                                    const Ref<DCMView>& onView, std::string_view withUID,
                                                    const Colour& color) {
  auto roi = temporaryROIWithUID(withUID);
  if (!roi) {
    roi = api().roiClass().roiWithType(withArrow ? pelmar::ROITypeArrow : pelmar::ROITypeLength, onView);
    roi->setDontDisplayInKeyImagesWindow(true);
    roi->setDontSavePreferredWLWW(true);
    if (!roi) return;
  }
  const auto points = roi->points();
  points->removeAllObjects();
  points->addObject(MyPoint::point(toPoint));
  points->addObject(MyPoint::point(fromPoint));
  roi->setThickness(2.0F, false);
  addTemporaryROI(roi, onView, withUID, color);
}

void VertanaFilter::removeTemporaryROIs() {
  const auto rois = temporaryROIs();
  std::vector<Ref<ViewerController>> viewers;
  for (const auto& roi : rois) {
    // Once for every list that holds the annotation: hosts gather the requests of one event into one redraw.
    if (auto viewer = roi->curView()->viewer()) viewers.push_back(std::move(viewer));
  }
  api().roiClass().deleteROIs(rois, false);
  for (const auto& viewer : viewers) viewer->needsDisplayUpdate();
}

void VertanaFilter::removeTemporaryROIsForViewer(const Ref<ViewerController>& viewer) {
  api().roiClass().deleteROIs(temporaryROIsForViewer(viewer), false);
  viewer->needsDisplayUpdate();
}

}  // namespace vertana
