#include "workstation/model/Viewer.h"

#include "workstation/model/Host.h"

namespace workstation {

using pelmar::Ref;

void ViewerWindow::makeKeyAndOrderFront() {
  if (const auto viewer = viewer_.lock()) viewer->host().bringToFront(viewer);
}

void ViewerWindow::close() {
  if (const auto viewer = viewer_.lock()) viewer->host().closeViewer(viewer);
}

bool ViewerWindow::isVisible() const {
  const auto viewer = viewer_.lock();
  return viewer && !viewer->closed();
}

std::shared_ptr<Viewer> Viewer::make(Host& host, int number, const pelmar::FrameRect& frame) {
  auto viewer = std::make_shared<Viewer>(host, number);
  viewer->view_ = std::make_shared<View>(host, viewer);
  viewer->window_ = std::make_shared<ViewerWindow>(viewer);
  viewer->setFrame(frame);
  return viewer;
}

void Viewer::load(const StackId& id, const std::shared_ptr<StudyObject>& study) {
  stackId_ = id;
  study_ = study;
  stack_ = &study->data().series[id.series].stacks[id.stack];
  const auto slices = study->slices(id.series, id.stack);
  view_->load(slices, std::make_shared<SeriesRoiLists>(slices->count(), Ref<pelmar::DCMView>(view_)));
  needsDisplay_ = true;
}

void Viewer::unload() {
  view_->drawing().forget();
  view_->lists().letGoOfView();
}

void Viewer::setFrame(const pelmar::FrameRect& frame) {
  window_->setFrame(frame);
  view_->setSize(frame.width, frame.height);
  needsDisplay_ = true;
}

void Viewer::post(std::string_view notification) {
  host_.defaultCenter().postNotification(
      {std::string(notification), Ref<pelmar::ViewerController>(shared_from_this()), std::nullopt});
}

bool Viewer::supports(pelmar::Capability capability) const {
  return capability == pelmar::Capability::ViewerControllerROIToolTag && host_.supports(capability);
}

long Viewer::ROIToolTag() const {
  return supports(pelmar::Capability::ViewerControllerROIToolTag) ? annotationTool_ : 0;
}

void Viewer::setROIToolTag(long tag) {
  view_->drawing().endForTool();
  annotationTool_ = tag;
  mouseTool_ = MouseToolAnnotate;
}

void Viewer::setToolTag(long tag) {
  view_->drawing().endForTool();
  mouseTool_ = tag;
}

}  // namespace workstation
