#include "workstation/gui/ViewerCanvas.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "workstation/gui/SharedPoint.h"
#include "workstation/render/ViewPicture.h"

namespace workstation {
namespace {

/// One notch of a usual wheel, eighths of a degree.
constexpr double wheelNotch = 120;
/// A point that is brought into view lies at least so far from the edge, points: the cross is seen whole.
constexpr double crossRoom = 16;

std::optional<PointerButton> buttonOf(Qt::MouseButton button) {
  switch (button) {
    case Qt::LeftButton:
      return PointerButton::left;
    case Qt::MiddleButton:
      return PointerButton::middle;
    case Qt::RightButton:
      return PointerButton::right;
    default:
      return std::nullopt;
  }
}

double fittingScale(const ImageRecord& image, const ViewerInfo& info, double width, double height) {
  ViewTransform transform;
  transform.viewWidth = width;
  transform.viewHeight = height;
  transform.columns = image.columns;
  transform.rows = image.rows;
  transform.pixelAspect = paintedPixelAspect(image);
  transform.rotationDegrees = info.rotationDegrees;
  return transform.scaleToFit();
}

}  // namespace

ViewerCanvas::ViewerCanvas(Desk& desk, int viewer, const CanvasHooks& hooks, const CanvasOptions& options,
                           QWidget* parent)
    : QWidget(parent),
      desk_(desk),
      viewer_(viewer),
      hooks_(hooks),
      options_(options),
      gestures_(desk.workstation(), viewer, look_, [this] { return shownWindow(); }) {
  setFocusPolicy(Qt::StrongFocus);
  setContextMenuPolicy(Qt::PreventContextMenu);  // a right click is told from a right drag on release
  setAttribute(Qt::WA_OpaquePaintEvent);
  setMouseTracking(true);
  setMinimumSize(120, 120);
}

void ViewerCanvas::setBanners(std::vector<std::string> banners) {
  if (banners == banners_) return;
  banners_ = std::move(banners);
  update();
}

std::shared_ptr<const PixelData> ViewerCanvas::shownPixels() {
  const auto info = desk_.workstation().viewer(viewer_);
  const ImageRecord* record = info ? desk_.workstation().sliceRecord(viewer_, info->slice) : nullptr;
  std::string problem;
  return record ? desk_.pixels().pixels(*record, problem) : nullptr;
}

std::optional<WindowSetting> ViewerCanvas::shownWindow() {
  const auto pixels = shownPixels();
  if (!pixels || pixels->samplesPerPixel != 1) return std::nullopt;
  return voiTransformOf(*pixels, storedRange(*pixels), look_.window, look_.voiTable).window;
}

void ViewerCanvas::placeInModel() {
  Workstation& workstation = desk_.workstation();
  const auto info = workstation.viewer(viewer_);
  if (!info || !isVisible() || width() < 1 || height() < 1) return;
  const QPoint corner = mapToGlobal(QPoint(0, 0));
  const pelmar::FrameRect frame{static_cast<double>(corner.x()), desk_.screenHeight() - corner.y() - height(),
                                static_cast<double>(width()), static_cast<double>(height())};
  const bool sameSize = frame.width == info->viewFrame.width && frame.height == info->viewFrame.height;
  const bool samePlace = frame.x == info->frame.x && frame.y == info->frame.y;
  if (sameSize && samePlace && fitted_) return;
  (void)workstation.setViewerFrame(viewer_, frame);
  if (!fitted_) {
    fitted_ = true;
    (void)workstation.fit(viewer_);
  } else if (const ImageRecord* image = workstation.sliceRecord(viewer_, info->slice); image && !sameSize) {
    // By what fits before and after, so that it comes to the same by whichever sizes it went.
    const double factor = fittingScale(*image, *info, frame.width, frame.height) /
                          fittingScale(*image, *info, info->viewFrame.width, info->viewFrame.height);
    (void)workstation.zoom(viewer_, info->scale * factor);
    const double dx = info->origin.x * (factor - 1);
    const double dy = info->origin.y * (factor - 1);
    if (dx != 0 || dy != 0) (void)workstation.pan(viewer_, dx, dy);
  }
}

void ViewerCanvas::refresh(bool repaint) {
  if (repaint) update();
  // What lies under the pointer may be another thing now.
  updateCursor();
}

void ViewerCanvas::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  PictureOptions what;
  what.window = look_.window;
  what.voiTable = look_.voiTable;
  what.banners = banners_;
  what.texts = options_.texts;
  what.referenceLines = options_.referenceLines;
  auto picture = pictureOf(desk_.workstation(), viewer_, what);
  if (!picture) {
    painter.fillRect(rect(), Qt::black);
    return;
  }
  // The model learns of a new size a moment later than the widget.
  if (picture->transform.viewWidth != width() || picture->transform.viewHeight != height())
    workstation::resize(*picture, width(), height());
  if (const auto cross = markedPixel()) picture->crosses.push_back(*cross);
  std::string problem;
  painter_.paint(painter, *picture, desk_.pixels().pixels(picture->image, problem), problem);
  desk_.workstation().markDisplayed(viewer_);
}

void ViewerCanvas::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  placeInModel();
}

void ViewerCanvas::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  placeInModel();
}

void ViewerCanvas::hideEvent(QHideEvent* event) {
  gestures_.cancel();
  QWidget::hideEvent(event);
}

// --- pointer -------------------------------------------------------------------------------------------------------

void ViewerCanvas::pressed(QMouseEvent* event, bool doubled) {
  const auto button = buttonOf(event->button());
  if (!button) return;
  if (hooks_.entered) hooks_.entered(viewer_);
  if (*button == PointerButton::left && event->modifiers().testFlag(Qt::ShiftModifier)) return mark(event->position());
  gestures_.press({viewPoint(event->position()), *button, doubled});
  update();
}

void ViewerCanvas::mousePressEvent(QMouseEvent* event) { pressed(event, false); }

void ViewerCanvas::mouseDoubleClickEvent(QMouseEvent* event) {
  const auto info = desk_.workstation().viewer(viewer_);
  const bool draws = info && info->tool == MouseToolAnnotate;
  const bool holds = desk_.workstation().wouldHold(viewer_, viewPoint(event->position()));
  const auto text = desk_.workstation().textAt(viewer_, viewPoint(event->position()));
  if (event->button() == Qt::LeftButton && text && !desk_.workstation().isDrawing(viewer_)) {
    if (hooks_.textPicked) hooks_.textPicked(viewer_, text->id);
    return;
  }
  if (event->button() == Qt::LeftButton && !draws && !holds) {
    if (hooks_.maximised) hooks_.maximised(viewer_);
    return;
  }
  pressed(event, true);
}

void ViewerCanvas::mouseMoveEvent(QMouseEvent* event) {
  pointer_ = event->position();
  if (!gestures_.isActive()) return updateCursor();
  gestures_.move(viewPoint(event->position()));
  update();
}

void ViewerCanvas::leaveEvent(QEvent* event) {
  pointer_.reset();
  QWidget::leaveEvent(event);
}

void ViewerCanvas::mouseReleaseEvent(QMouseEvent* event) {
  const auto button = buttonOf(event->button());
  if (!button || !gestures_.isActive()) return;
  const bool clicked = !gestures_.wentFar();
  const bool held = desk_.workstation().holdsAnnotation(viewer_);
  const bool writes = *button == PointerButton::left && clicked && !held && writesTextAt(event->position());
  gestures_.release(*button, viewPoint(event->position()));
  update();
  if (held && hooks_.released) hooks_.released(viewer_);
  if (*button == PointerButton::right && clicked && hooks_.menuRequested)
    hooks_.menuRequested(viewer_, event->globalPosition().toPoint());
  if (writes && hooks_.textWanted)
    hooks_.textWanted(viewer_, desk_.workstation().pixelAt(viewer_, viewPoint(event->position())));
}

bool ViewerCanvas::writesTextAt(QPointF at) {
  const auto info = desk_.workstation().viewer(viewer_);
  return info && info->tool == MouseToolAnnotate && info->roiTool == pelmar::ROITypeText &&
         !desk_.workstation().textAt(viewer_, viewPoint(at));
}

void ViewerCanvas::mark(QPointF at) {
  const auto info = desk_.workstation().viewer(viewer_);
  const ImageRecord* record = info ? desk_.workstation().sliceRecord(viewer_, info->slice) : nullptr;
  if (!record) return;
  const auto point = markedPointAt(*record, desk_.workstation().pixelAt(viewer_, viewPoint(at)));
  if (point && hooks_.marked) hooks_.marked(viewer_, *point);
}

std::optional<pelmar::PixelPoint> ViewerCanvas::markedPixel() const {
  const auto info = desk_.workstation().viewer(viewer_);
  const Stack* stack = info && look_.marked ? desk_.workstation().stack(info->stack) : nullptr;
  const auto slice = info ? static_cast<std::size_t>(info->slice) : 0;
  if (!stack || !isOnSlice(stack->slices, slice, *look_.marked)) return std::nullopt;
  return pixelOf(stack->slices[slice], *look_.marked);
}

bool ViewerCanvas::showPoint(const MarkedPoint& point) {
  look_.marked = point;
  update();
  Workstation& workstation = desk_.workstation();
  const auto info = workstation.viewer(viewer_);
  const Stack* stack = info ? workstation.stack(info->stack) : nullptr;
  const auto slice = stack ? sliceAt(stack->slices, point) : std::nullopt;
  // What is being drawn stays where the hand is.
  if (!slice || workstation.isDrawing(viewer_)) return slice.has_value();
  if (static_cast<int>(*slice) != info->slice) (void)workstation.scroll(viewer_, static_cast<int>(*slice));
  const auto pixel = markedPixel();
  if (!pixel) return false;
  const pelmar::ViewPoint at = workstation.viewPointAt(viewer_, *pixel);
  const bool isSeen = at.x >= crossRoom && at.y >= crossRoom && at.x <= info->viewFrame.width - crossRoom &&
                      at.y <= info->viewFrame.height - crossRoom;
  if (!isSeen) (void)workstation.pan(viewer_, info->viewFrame.width / 2 - at.x, info->viewFrame.height / 2 - at.y);
  return true;
}

void ViewerCanvas::updateCursor() {
  if (!pointer_ || gestures_.isActive()) return;
  const auto info = desk_.workstation().viewer(viewer_);
  const bool draws = info && info->tool == MouseToolAnnotate;
  const bool writes = draws && info->roiTool == pelmar::ROITypeText;
  const bool holds = desk_.workstation().wouldHold(viewer_, viewPoint(*pointer_));
  const Qt::CursorShape shape = holds    ? Qt::PointingHandCursor
                                : writes ? Qt::IBeamCursor
                                : draws  ? Qt::CrossCursor
                                         : Qt::ArrowCursor;
  if (cursor().shape() != shape) setCursor(shape);
}

void ViewerCanvas::wheelEvent(QWheelEvent* event) {
  const double turned = event->angleDelta().y();
  if (event->modifiers().testFlag(Qt::ControlModifier)) {
    gestures_.zoomAbout(viewPoint(event->position()), std::exp2(turned / wheelNotch / 4));
  } else {
    wheelRest_ -= turned;
    const int slices = static_cast<int>(std::trunc(wheelRest_ / wheelNotch));
    wheelRest_ -= slices * wheelNotch;
    if (slices != 0) gestures_.scrollBy(slices);
  }
  event->accept();
  update();
}

// --- keys ----------------------------------------------------------------------------------------------------------

bool ViewerCanvas::scrollKey(int key) {
  const auto info = desk_.workstation().viewer(viewer_);
  const int slices = info ? info->slices : 0;
  const int page = std::max(1, slices / 10);
  switch (key) {
    case Qt::Key_Up:
    case Qt::Key_Left:
      gestures_.scrollBy(-1);
      return true;
    case Qt::Key_Down:
    case Qt::Key_Right:
      gestures_.scrollBy(1);
      return true;
    case Qt::Key_PageUp:
      gestures_.scrollBy(-page);
      return true;
    case Qt::Key_PageDown:
      gestures_.scrollBy(page);
      return true;
    case Qt::Key_Home:
      gestures_.scrollBy(-slices);
      return true;
    case Qt::Key_End:
      gestures_.scrollBy(slices);
      return true;
    default:
      return false;
  }
}

void ViewerCanvas::focusInEvent(QFocusEvent* event) {
  QWidget::focusInEvent(event);
  const bool byKey = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
  if (byKey && hooks_.entered) hooks_.entered(viewer_);
}

void ViewerCanvas::keyPressEvent(QKeyEvent* event) {
  Workstation& workstation = desk_.workstation();
  const bool wantsMenu =
      event->key() == Qt::Key_Menu || (event->key() == Qt::Key_F10 && event->modifiers().testFlag(Qt::ShiftModifier));
  if (wantsMenu && hooks_.menuRequested) return hooks_.menuRequested(viewer_, mapToGlobal(rect().center()));
  if (event->modifiers().testFlag(Qt::ControlModifier)) return QWidget::keyPressEvent(event);
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    (void)workstation.key(viewer_, Key::returnKey);
    if (hooks_.released) hooks_.released(viewer_);
  } else if (event->key() == Qt::Key_Escape && !workstation.isDrawing(viewer_)) {
    (void)workstation.deselect(viewer_);
  } else if (!scrollKey(event->key())) {
    return QWidget::keyPressEvent(event);
  }
  update();
}

}  // namespace workstation
