// The facade's viewers: opening, closing, and how images are shown in them.
#include <algorithm>
#include <cmath>
#include <utility>

#include "workstation/model/Interior.h"

namespace workstation {
namespace {

std::string sentence(const StackId& id) {
  return "There is no stack " + std::to_string(id.stack) + " in series " + std::to_string(id.series) +
         " (counted from 0) of the study \"" + id.studyUid + "\".";
}

ViewerInfo infoOf(const Viewer& viewer, bool front) {
  const ViewTransform& transform = viewer.view().transform();
  ViewerInfo info;
  info.number = viewer.number();
  info.stack = viewer.stackId();
  info.orientationCode = viewer.orientationVector();
  info.slice = static_cast<int>(viewer.view().curImage());
  info.slices = static_cast<int>(viewer.stack().slices.size());
  info.tool = viewer.mouseTool();
  info.roiTool = viewer.annotationTool();
  info.front = front;
  info.frame = viewer.window()->frame();
  info.viewFrame = viewer.view().frame();
  info.scale = transform.scale;
  info.origin = transform.origin;
  info.rotationDegrees = transform.rotationDegrees;
  info.flippedHorizontally = transform.flippedHorizontally;
  info.flippedVertically = transform.flippedVertically;
  info.needsDisplay = viewer.needsDisplay();
  return info;
}

}  // namespace

std::shared_ptr<Viewer> Workstation::Interior::find(int number) const {
  for (const auto& viewer : host.viewers()) {
    if (viewer->number() == number) return viewer;
  }
  return nullptr;
}

Outcome Workstation::Interior::notOpen(int number) {
  return Outcome::refused("No viewer with the number " + std::to_string(number) + " is open.");
}

int Workstation::Interior::open(const StackId& id) {
  return run([&] {
    const int number = host.openViewer(id)->number();
    host.log().viewerOpened(number);
    return number;
  });
}

Result<std::vector<int>> Workstation::openStudy(const std::string& studyUid) {
  using Opened = Result<std::vector<int>>;
  if (!study(studyUid)) return Opened::refused("The study \"" + studyUid + "\" cannot be opened: it was not added.");
  std::vector<int> numbers;
  for (const StackId& id : stacks(studyUid)) {
    numbers.push_back(interior_->open(id));
  }
  return Opened::of(std::move(numbers));
}

Result<int> Workstation::openViewer(const StackId& id) {
  if (!stack(id)) return Result<int>::refused(sentence(id));
  return Result<int>::of(interior_->open(id));
}

Outcome Workstation::closeViewer(int viewer) {
  return interior_->withViewer(viewer, [&](Viewer& closing) {
    interior_->host.closeViewer(closing.shared_from_this());
    interior_->host.log().viewerClosed(viewer);
    return Outcome::done();
  });
}

Outcome Workstation::switchSeries(int viewer, const StackId& id) {
  if (!stack(id)) return Outcome::refused(sentence(id));
  return interior_->withViewer(viewer, [&](Viewer& changing) {
    interior_->host.switchSeries(changing, id);
    interior_->host.log().seriesSwitched(viewer);
    return Outcome::done();
  });
}

Outcome Workstation::bringToFront(int viewer) {
  return interior_->withViewer(viewer, [&](Viewer& front) {
    interior_->host.bringToFront(front.shared_from_this());
    interior_->host.log().broughtToFront(viewer);
    return Outcome::done();
  });
}

std::vector<ViewerInfo> Workstation::viewers() const {
  std::vector<ViewerInfo> result;
  for (const auto& open : interior_->host.viewers()) {
    result.push_back(infoOf(*open, open == interior_->host.frontViewer()));
  }
  return result;
}

std::optional<ViewerInfo> Workstation::viewer(int number) const {
  const auto found = interior_->find(number);
  if (!found) return std::nullopt;
  return infoOf(*found, found == interior_->host.frontViewer());
}

std::optional<int> Workstation::frontViewer() const {
  const auto front = interior_->host.frontViewer();
  return front ? std::optional<int>(front->number()) : std::nullopt;
}

const ImageRecord* Workstation::sliceRecord(int viewer, int slice) const {
  const auto found = interior_->find(viewer);
  if (!found || slice < 0 || static_cast<std::size_t>(slice) >= found->stack().slices.size()) return nullptr;
  return &found->stack().slices[static_cast<std::size_t>(slice)];
}

pelmar::Ref<pelmar::ViewerController> Workstation::controller(int viewer) const {
  return pelmar::Ref<pelmar::ViewerController>(interior_->find(viewer));
}

Outcome Workstation::setViewerFrame(int viewer, const pelmar::FrameRect& frame) {
  return interior_->withViewer(viewer, [&](Viewer& placed) -> Outcome {
    if (!(frame.width > 0) || !(frame.height > 0)) {
      return Outcome::refused("A viewer's window must have a width and a height above 0.");
    }
    placed.setFrame(frame);
    return Outcome::done();
  });
}

void Workstation::markDisplayed(int viewer) {
  if (const auto found = interior_->find(viewer)) found->setNeedsDisplay(false);
}

Outcome Workstation::scroll(int viewer, int slice) {
  return interior_->withViewer(viewer, [&](Viewer& shown) -> Outcome {
    if (!sliceRecord(viewer, slice)) {
      return Outcome::refused("Viewer " + std::to_string(viewer) + " has no slice " + std::to_string(slice) +
                              ": its slices are 0 to " + std::to_string(shown.stack().slices.size() - 1) + ".");
    }
    if (shown.view().curImage() == slice) return Outcome::done();
    shown.view().setCurImage(static_cast<std::size_t>(slice));
    shown.needsDisplayUpdate();
    shown.view().post(pelmar::PelmarDCMViewIndexChangedNotification);
    interior_->host.log().scrolled(viewer, slice);
    return Outcome::done();
  });
}

Outcome Workstation::zoom(int viewer, double scale) {
  return interior_->withViewer(viewer, [&](Viewer& shown) -> Outcome {
    if (!(scale > 0) || !std::isfinite(scale)) {
      return Outcome::refused("The zoom of viewer " + std::to_string(viewer) + " must be a finite number above 0.");
    }
    shown.view().transform().scale = scale;
    shown.needsDisplayUpdate();
    shown.view().post(pelmar::PelmarViewScaleChanged);
    interior_->host.log().zoomed(viewer, scale);
    return Outcome::done();
  });
}

Outcome Workstation::pan(int viewer, double dx, double dy) {
  return interior_->withViewer(viewer, [&](Viewer& shown) -> Outcome {
    if (!std::isfinite(dx) || !std::isfinite(dy)) {
      return Outcome::refused("The image of viewer " + std::to_string(viewer) +
                              " can only be moved by finite numbers.");
    }
    pelmar::ViewPoint& origin = shown.view().transform().origin;
    origin = {origin.x + dx, origin.y + dy};
    shown.needsDisplayUpdate();
    shown.view().post(pelmar::PelmarViewOriginChanged);
    interior_->host.log().panned(viewer, dx, dy);
    return Outcome::done();
  });
}

Outcome Workstation::fit(int viewer) {
  return interior_->withViewer(viewer, [&](Viewer& shown) {
    ViewTransform& transform = shown.view().transform();
    transform.scale = transform.scaleToFit();
    const pelmar::ViewPoint was = std::exchange(transform.origin, {});
    shown.needsDisplayUpdate();
    shown.view().post(pelmar::PelmarViewScaleChanged);
    shown.view().post(pelmar::PelmarViewOriginChanged);
    interior_->host.log().zoomed(viewer, transform.scale);
    interior_->host.log().panned(viewer, -was.x, -was.y);
    return Outcome::done();
  });
}

Outcome Workstation::rotate(int viewer, double degrees) {
  return interior_->withViewer(viewer, [&](Viewer& shown) -> Outcome {
    if (!std::isfinite(degrees)) {
      return Outcome::refused("The image of viewer " + std::to_string(viewer) +
                              " can only be turned by a finite angle.");
    }
    double& rotation = shown.view().transform().rotationDegrees;
    rotation = std::fmod(rotation + degrees, 360);
    if (rotation < 0) rotation += 360;
    if (rotation >= 360) rotation = 0;  // a tiny negative angle rounds up to the full turn
    shown.needsDisplayUpdate();
    interior_->host.log().rotated(viewer, degrees);
    return Outcome::done();
  });
}

Outcome Workstation::flip(int viewer, FlipAxis axis) {
  return interior_->withViewer(viewer, [&](Viewer& shown) {
    ViewTransform& transform = shown.view().transform();
    bool& flipped = axis == FlipAxis::horizontal ? transform.flippedHorizontally : transform.flippedVertically;
    flipped = !flipped;
    shown.needsDisplayUpdate();
    interior_->host.log().flipped(viewer, axis);
    return Outcome::done();
  });
}

pelmar::PixelPoint Workstation::pixelAt(int viewer, pelmar::ViewPoint point) const {
  const auto found = interior_->find(viewer);
  return found ? found->view().ConvertFromNSView2GL(point) : pelmar::PixelPoint{};
}

pelmar::ViewPoint Workstation::viewPointAt(int viewer, pelmar::PixelPoint pixel) const {
  const auto found = interior_->find(viewer);
  return found ? found->view().ConvertFromGL2NSView(pixel) : pelmar::ViewPoint{};
}

}  // namespace workstation
