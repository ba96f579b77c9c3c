#include "tests/double/TestViewer.h"

#include <algorithm>

namespace testhost {

using pelmar::PixelPoint;
using pelmar::Ref;
using pelmar::ViewPoint;

Ref<pelmar::DCMPix> TestView::curDCM() const {
  return current < 0 ? Ref<pelmar::DCMPix>() : images->objectAtIndex(static_cast<std::size_t>(current));
}

ViewPoint TestView::ConvertFromGL2NSView(PixelPoint point) const {
  if (pixelToView) return pixelToView(point);
  return {pan.x + point.x * zoom, frameRect.height - (pan.y + point.y * zoom)};
}

PixelPoint TestView::ConvertFromNSView2GL(ViewPoint point) const {
  if (viewToPixel) return viewToPixel(point);
  return {(point.x - pan.x) / zoom, (frameRect.height - point.y - pan.y) / zoom};
}

void TestView::orientationCorrectedToView(std::array<float, 9>& vector) const {
  if (displayOrientation) {
    vector = *displayOrientation;
  } else {
    curDCM()->orientation(vector);
  }
}

void TestView::stopROIEditingForce(bool force) {
  record(log, name + ".stopROIEditingForce(" + text(force) + ")");
  if (drawn) drawn->mode = pelmar::ROIModeSelected;
  drawn = nullptr;
}

pelmar::WindowPoint TestView::convertPoint(ViewPoint point, const Ref<DCMView>&) const {
  return {frameRect.x + point.x, frameRect.y + point.y};
}

std::vector<Ref<TestROI>> TestViewer::roisOnSlice(std::size_t slice) const {
  std::vector<Ref<TestROI>> rois;
  if (slice >= sliceLists.size()) return rois;
  for (const auto& roi : sliceLists[slice]->elements()) rois.push_back(pelmar::ref_cast<TestROI>(roi));
  return rois;
}

std::vector<Ref<TestROI>> TestViewer::allROIs() const {
  std::vector<Ref<TestROI>> all;
  for (std::size_t slice = 0; slice < sliceLists.size(); ++slice) {
    for (const auto& roi : roisOnSlice(slice)) {
      if (std::find(all.begin(), all.end(), roi) == all.end()) all.push_back(roi);
    }
  }
  return all;
}

std::vector<Ref<TestROI>> TestViewer::allROIsTagged(std::string_view tag) const {
  std::vector<Ref<TestROI>> all = allROIs();
  std::erase_if(all, [&](const Ref<TestROI>& roi) { return !roi->tags->containsObject(tag); });
  return all;
}

bool TestViewer::supports(pelmar::Capability capability) const {
  return capability == pelmar::Capability::ViewerControllerROIToolTag && hasROIToolTag;
}

void TestViewer::needsDisplayUpdate() { record(log, name + ".needsDisplayUpdate()"); }

void TestViewer::setROIToolTag(long tag) {
  record(log, name + ".setROIToolTag(" + text(static_cast<double>(tag)) + ")");
  if (toolChosen) toolChosen(*this);
  roiToolTag = tag;
  drawsWithLeftButton = true;
}

void TestViewer::setToolTag(long tag) {
  record(log, name + ".setToolTag(" + text(static_cast<double>(tag)) + ")");
  if (toolChosen) toolChosen(*this);
  drawsWithLeftButton = false;
  if (view) view->tool = tag;
}

void loadSeries(TestViewer& viewer, const Ref<TestStudy>& study, const Series& series) {
  viewer.study = study;
  viewer.orientationCode = series.orientationCode;
  viewer.everythingLoaded = series.everythingLoaded;
  viewer.images.clear();
  viewer.sliceLists.clear();
  viewer.lists = pelmar::makeRef<pelmar::VectorList<Ref<pelmar::ROIList>>>();
  TestView& view = *viewer.view;
  view.study = study;
  view.current = 0;
  view.images = pelmar::makeRef<pelmar::VectorList<Ref<pelmar::DCMPix>>>();
  view.roiLists = viewer.lists;
  for (const SliceGeometry& slice : series.slices) {
    const auto image = pelmar::makeRef<TestImage>(slice);
    image->rgb = series.rgb;
    viewer.images.push_back(image);
    view.images->elements().push_back(image);
    const auto list = pelmar::makeRef<TestROIList>(
        viewer.log, viewer.name + ".roiList[" + std::to_string(viewer.sliceLists.size()) + "]");
    list->shownOn(viewer.view);
    viewer.sliceLists.push_back(list);
    viewer.lists->elements().push_back(list);
  }
}

Ref<TestViewer> makeViewer(CallLog* log, const std::string& name, const Ref<TestStudy>& study, const Series& series) {
  const auto viewer = pelmar::makeRef<TestViewer>();
  viewer->log = log;
  viewer->name = name;
  viewer->shownIn = pelmar::makeRef<TestWindow>(log, name + ".window");
  viewer->shownIn->frameRect = {100, 100, 512, 512};
  viewer->shownIn->visible = true;
  viewer->view = pelmar::makeRef<TestView>();
  TestView& view = *viewer->view;
  view.log = log;
  view.name = name + ".imageView";
  view.owner = Ref<pelmar::ViewerController>(viewer);
  view.shownIn = viewer->shownIn;
  loadSeries(*viewer, study, series);
  return viewer;
}

}  // namespace testhost
