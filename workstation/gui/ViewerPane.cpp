#include "workstation/gui/ViewerPane.h"

#include <QHBoxLayout>
#include <QSignalBlocker>
#include <algorithm>

#include "workstation/gui/Theme.h"

namespace workstation {

ViewerPane::ViewerPane(Desk& desk, int viewer, const CanvasHooks& hooks, const CanvasOptions& options, QWidget* parent)
    : QFrame(parent), desk_(desk), canvas_(new ViewerCanvas(desk, viewer, hooks, options, this)) {
  slider_ = new QScrollBar(Qt::Vertical, this);
  slider_->setFocusPolicy(Qt::NoFocus);
  slider_->setToolTip("Slices of this series");
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(2, 2, 2, 2);
  layout->setSpacing(0);
  layout->addWidget(canvas_, 1);
  layout->addWidget(slider_);
  setAutoFillBackground(true);
  setPalette(viewerFramePalette(false));
  connect(slider_, &QScrollBar::valueChanged, this,
          [this](int slice) { (void)desk_.workstation().scroll(canvas_->viewer(), slice); });
}

void ViewerPane::refresh(bool repaint) {
  const auto info = desk_.workstation().viewer(viewer());
  if (!info) return;
  {
    const QSignalBlocker quiet(slider_);
    slider_->setRange(0, std::max(0, info->slices - 1));
    slider_->setPageStep(std::max(1, info->slices / 10));
    slider_->setValue(info->slice);
    slider_->setEnabled(info->slices > 1);
  }
  if (info->front != front_) {
    front_ = info->front;
    setPalette(viewerFramePalette(front_));
  }
  canvas_->refresh(repaint || info->needsDisplay);
}

}  // namespace workstation
