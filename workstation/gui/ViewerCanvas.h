#pragma once

#include <QWidget>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "workstation/gui/Desk.h"
#include "workstation/gui/PointerGestures.h"
#include "workstation/gui/ViewerLook.h"
#include "workstation/render/ViewPainter.h"

namespace workstation {

/// What a canvas asks of the window around it; each may be empty.
struct CanvasHooks {
  std::function<void(int viewer)> entered;                               ///< a button went down: brings it to front
  std::function<void(int viewer, const MarkedPoint& point)> marked;      ///< a point of the patient was pointed at
  std::function<void(int viewer, QPoint globalPosition)> menuRequested;  ///< right click
  std::function<void(int viewer)> maximised;  ///< double click with a tool that does not draw
  std::function<void(int viewer)> released;   ///< an annotation was let go
  /// A text is to be written there, with its tool.
  std::function<void(int viewer, pelmar::PixelPoint at)> textWanted;
  /// Double click on a text of the person's, by its id.
  std::function<void(int viewer, int text)> textPicked;
};

/// What is shown besides the image and its annotations.
struct CanvasOptions {
  bool texts = true;
  bool referenceLines = true;
};

/// The image of one viewer: paints it, and passes pointer and keys on.
class ViewerCanvas final : public QWidget {
 public:
  /// The desk and the hooks must outlive the canvas.
  ViewerCanvas(Desk& desk, int viewer, const CanvasHooks& hooks, const CanvasOptions& options, QWidget* parent);

  int viewer() const { return viewer_; }
  ViewerLook& look() { return look_; }
  void setBanners(std::vector<std::string> banners);
  const std::vector<std::string>& banners() const { return banners_; }
  /// Brings it up to date with the model.
  void refresh(bool repaint);
  /// Tells the model where on the screen the image is. The image keeps filling the view as it did; the first time it is
  /// fitted.
  void placeInModel();
  /// What the slice is shown with now; nothing for a colour image and one that cannot be read.
  std::optional<WindowSetting> shownWindow();
  /// Marks the point, scrolls to its slice and brings it into view. False, with nothing moved, when the stack has no
  /// slice there. What is being drawn is not moved.
  bool showPoint(const MarkedPoint& point);
  /// Where the marked point lies on the slice that is shown; nothing when it lies on another.
  std::optional<pelmar::PixelPoint> markedPixel() const;
  /// The pixels of the slice that is shown; null when they cannot be read.
  std::shared_ptr<const PixelData> shownPixels();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void leaveEvent(QEvent* event) override;

 private:
  pelmar::ViewPoint viewPoint(QPointF at) const { return {at.x(), height() - at.y()}; }
  void pressed(QMouseEvent* event, bool doubled);
  void mark(QPointF at);
  /// Whether a click there writes a text.
  bool writesTextAt(QPointF at);
  void updateCursor();
  bool scrollKey(int key);

  Desk& desk_;
  int viewer_;
  const CanvasHooks& hooks_;
  const CanvasOptions& options_;
  ViewerLook look_;
  std::vector<std::string> banners_;
  PointerGestures gestures_;
  ViewPainter painter_;
  std::optional<QPointF> pointer_;  ///< where it was seen last; nothing once it has left
  bool fitted_ = false;
  double wheelRest_ = 0;  ///< eighths of a degree that did not make a whole slice yet
};

}  // namespace workstation
