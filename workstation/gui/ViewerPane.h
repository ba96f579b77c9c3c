#pragma once

#include <QFrame>
#include <QScrollBar>

#include "workstation/gui/ViewerCanvas.h"

namespace workstation {

/// One viewer in the grid: its image, a slider for its slices, and a frame that tells whether it is in front.
class ViewerPane final : public QFrame {
 public:
  ViewerPane(Desk& desk, int viewer, const CanvasHooks& hooks, const CanvasOptions& options, QWidget* parent);

  int viewer() const { return canvas_->viewer(); }
  ViewerCanvas& canvas() { return *canvas_; }
  QScrollBar& slider() { return *slider_; }
  /// Brings slider and frame up to date with the model, and the image if it has changed or `repaint` says so.
  void refresh(bool repaint);

 private:
  Desk& desk_;
  ViewerCanvas* canvas_;
  QScrollBar* slider_;
  bool front_ = false;
};

}  // namespace workstation
