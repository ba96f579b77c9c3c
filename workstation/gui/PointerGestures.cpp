#include "workstation/gui/PointerGestures.h"

#include <algorithm>
#include <cmath>

namespace workstation {
namespace {

/// Farther than a hand shakes during a click, points.
constexpr double clickReach = 4;
/// Dragging so far doubles the zoom, points.
constexpr double doublingDistance = 120;
/// Dragging so far changes the window by its own width, points.
constexpr double windowDistance = 300;
constexpr double smallestScale = 0.02;
constexpr double largestScale = 100;
constexpr double fewestPointsPerSlice = 4;
constexpr double degreesPerRadian = 57.29577951308232;

}  // namespace

PointerGestures::Doing PointerGestures::doingOf(const PointerPress& press) const {
  if (press.button == PointerButton::middle) return Doing::pan;
  if (press.button == PointerButton::right) return Doing::zoom;
  const auto info = workstation_.viewer(viewer_);
  if (!info) return Doing::nothing;
  if (info->tool == MouseToolAnnotate || workstation_.wouldHold(viewer_, press.at)) return Doing::annotation;
  switch (info->tool) {
    case MouseToolPan:
      return Doing::pan;
    case MouseToolZoom:
      return Doing::zoom;
    case MouseToolRotate:
      return Doing::rotate;
    case MouseToolScroll:
      return Doing::scroll;
    case MouseToolWindowLevel:
      return Doing::window;
    default:
      return Doing::nothing;
  }
}

void PointerGestures::press(const PointerPress& press) {
  if (isActive()) return;
  doing_ = doingOf(press);
  button_ = press.button;
  pressedAt_ = press.at;
  last_ = press.at;
  wentFar_ = false;
  const auto info = workstation_.viewer(viewer_);
  sliceAtPress_ = info ? info->slice : 0;
  if (doing_ == Doing::window) windowAtPress_ = shownWindow_();
  if (doing_ != Doing::annotation) return;
  if (press.doubled) return pressTwice(press.at);
  if (!isOnLastVertex(press.at)) (void)workstation_.press(viewer_, press.at);
}

void PointerGestures::pressTwice(pelmar::ViewPoint at) {
  const auto info = workstation_.viewer(viewer_);
  const pelmar::Ref<pelmar::ROI> polygon = drawnPolygon();
  if (!polygon) {
    // The first press may have ended a drawing, or there was none: a double click starts nothing.
    if (workstation_.wouldHold(viewer_, at)) (void)workstation_.press(viewer_, at);
  } else if (polygon->points()->count() < 2) {
    // The first press has begun it: choosing the tool anew ends it and leaves nothing of it.
    (void)workstation_.selectRoiTool(viewer_, info->roiTool);
  } else {
    (void)workstation_.doubleClick(viewer_, at);
  }
}

pelmar::Ref<pelmar::ROI> PointerGestures::drawnPolygon() const {
  if (!workstation_.isDrawing(viewer_)) return {};
  for (const AnnotationInfo& annotation : workstation_.annotations(viewer_)) {
    if (annotation.roi->type() == pelmar::ROITypeOpenPolygon && annotation.roi->ROImode() == pelmar::ROIModeDrawing)
      return annotation.roi;
  }
  return {};
}

bool PointerGestures::isOnLastVertex(pelmar::ViewPoint at) const {
  const pelmar::Ref<pelmar::ROI> polygon = drawnPolygon();
  const auto count = static_cast<long>(polygon->points()->count());
  if (count == 0) return false;
  const pelmar::ViewPoint last = workstation_.viewPointAt(viewer_, polygon->pointAtIndex(count - 1));
  return std::hypot(at.x - last.x, at.y - last.y) <= clickReach;
}

void PointerGestures::move(pelmar::ViewPoint at) {
  if (!isActive()) return;
  wentFar_ = wentFar_ || std::hypot(at.x - pressedAt_.x, at.y - pressedAt_.y) > clickReach;
  const pelmar::ViewPoint from = std::exchange(last_, at);
  switch (doing_) {
    case Doing::annotation:
      (void)workstation_.move(viewer_, at);
      break;
    case Doing::pan:
      (void)workstation_.pan(viewer_, at.x - from.x, at.y - from.y);
      break;
    case Doing::zoom:
      zoomAbout(pressedAt_, std::exp2((at.y - from.y) / doublingDistance));
      break;
    case Doing::rotate:
      last_ = from;
      dragRotation(at);
      break;
    case Doing::scroll:
      dragSlices(at);
      break;
    case Doing::window:
      dragWindow(at);
      break;
    case Doing::nothing:
      break;
  }
}

void PointerGestures::release(PointerButton button, pelmar::ViewPoint at) {
  if (!isActive() || button != button_) return;
  const Doing was = std::exchange(doing_, Doing::nothing);
  if (was == Doing::annotation) (void)workstation_.release(viewer_, at);
}

void PointerGestures::cancel() { release(button_, last_); }

void PointerGestures::zoomAbout(pelmar::ViewPoint at, double factor) {
  const auto info = workstation_.viewer(viewer_);
  if (!info) return;
  const double scale = std::clamp(info->scale * factor, smallestScale, largestScale);
  const pelmar::PixelPoint pixel = workstation_.pixelAt(viewer_, at);
  if (scale == info->scale || !workstation_.zoom(viewer_, scale)) return;
  const pelmar::ViewPoint now = workstation_.viewPointAt(viewer_, pixel);
  if (now.x != at.x || now.y != at.y) (void)workstation_.pan(viewer_, at.x - now.x, at.y - now.y);
}

void PointerGestures::scrollBy(int slices) {
  const auto info = workstation_.viewer(viewer_);
  if (!info) return;
  const int slice = std::clamp(info->slice + slices, 0, info->slices - 1);
  if (slice != info->slice) (void)workstation_.scroll(viewer_, slice);
}

void PointerGestures::dragWindow(pelmar::ViewPoint at) {
  if (!windowAtPress_) return;
  const double perPoint = std::max(windowAtPress_->width, 1.0) / windowDistance;
  WindowSetting window{windowAtPress_->centre - (at.y - pressedAt_.y) * perPoint,
                       std::max(1.0, windowAtPress_->width + (at.x - pressedAt_.x) * perPoint),
                       {}};
  look_.window = window;
  look_.voiTable.reset();
}

void PointerGestures::dragRotation(pelmar::ViewPoint at) {
  const auto info = workstation_.viewer(viewer_);
  if (!info) return;
  const double centreX = info->viewFrame.width / 2;
  const double centreY = info->viewFrame.height / 2;
  const double before = std::atan2(last_.y - centreY, last_.x - centreX);
  const double after = std::atan2(at.y - centreY, at.x - centreX);
  last_ = at;
  // View coordinates have y up: a growing angle is counter-clockwise.
  if (before != after) (void)workstation_.rotate(viewer_, (before - after) * degreesPerRadian);
}

void PointerGestures::dragSlices(pelmar::ViewPoint at) {
  const auto info = workstation_.viewer(viewer_);
  if (!info) return;
  const double perSlice = std::max(fewestPointsPerSlice, info->viewFrame.height / std::max(1, info->slices));
  const int slice = sliceAtPress_ + static_cast<int>(std::lround((pressedAt_.y - at.y) / perSlice));
  scrollBy(slice - info->slice);
}

}  // namespace workstation
