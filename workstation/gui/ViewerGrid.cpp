#include "workstation/gui/ViewerGrid.h"

#include <algorithm>
#include <set>

namespace workstation {
namespace {

constexpr int mostRows = 3;
/// Shares of the width of a viewer with a column for itself, and of another column.
constexpr int tallShare = 3;
constexpr int usualShare = 2;

}  // namespace

GridSize gridFor(std::size_t viewers) {
  for (const GridSize size :
       {GridSize{1, 1}, GridSize{1, 2}, GridSize{2, 2, true}, GridSize{3, 2, true}, GridSize{2, 3}}) {
    if (viewers <= static_cast<std::size_t>(size.cells())) return size;
  }
  return {mostRows, mostRows};
}

ViewerGrid::ViewerGrid(Desk& desk, const CanvasHooks& hooks, const CanvasOptions& options, QWidget* parent)
    : QWidget(parent), desk_(desk), hooks_(hooks), options_(options) {
  layout_ = new QGridLayout(this);
  layout_->setContentsMargins(0, 0, 0, 0);
  layout_->setSpacing(2);
  hint_ = new QLabel("Drop a folder of DICOM files here,\nor choose a study on the left.", this);
  hint_->setAlignment(Qt::AlignCenter);
  hint_->setForegroundRole(QPalette::PlaceholderText);
  QPalette black = palette();
  black.setColor(QPalette::Window, QColor(14, 14, 15));
  setPalette(black);
  setAutoFillBackground(true);
  layOut();
}

ViewerPane* ViewerGrid::pane(int viewer) const {
  const auto found =
      std::find_if(panes_.begin(), panes_.end(), [&](const ViewerPane* pane) { return pane->viewer() == viewer; });
  return found == panes_.end() ? nullptr : *found;
}

ViewerPane* ViewerGrid::frontPane() const {
  const auto front = desk_.workstation().frontViewer();
  return front ? pane(*front) : nullptr;
}

bool ViewerGrid::syncPanes() {
  std::set<int> open;
  bool changed = false;
  for (const ViewerInfo& info : desk_.workstation().viewers()) {
    open.insert(info.number);
    if (pane(info.number)) continue;
    panes_.push_back(new ViewerPane(desk_, info.number, hooks_, options_, this));
    panes_.back()->hide();
    changed = true;
  }
  for (auto pane = panes_.begin(); pane != panes_.end();) {
    if (open.contains((*pane)->viewer())) {
      ++pane;
      continue;
    }
    (*pane)->hide();
    (*pane)->deleteLater();  // an event of its own may be on its way through it
    pane = panes_.erase(pane);
    changed = true;
  }
  return changed;
}

void ViewerGrid::refresh(bool repaintAll) {
  const bool changed = syncPanes();
  const GridSize size = maximised_ ? GridSize{1, 1} : size_;
  if (changed || !(laidOut_ == size) || seenPanes() != seen_) layOut();
  for (ViewerPane* pane : panes_) pane->refresh(repaintAll);
}

void ViewerGrid::setSize(GridSize size, bool maximised) {
  size_ = size;
  maximised_ = maximised;
  refresh(false);
}

void ViewerGrid::setMaximised(bool maximised) {
  maximised_ = maximised;
  refresh(false);
}

std::vector<ViewerPane*> ViewerGrid::seenPanes() const {
  const auto cells = static_cast<std::size_t>(maximised_ ? 1 : size_.cells());
  const auto front = std::find(panes_.begin(), panes_.end(), frontPane());
  const auto index = front == panes_.end() ? 0 : static_cast<std::size_t>(front - panes_.begin());
  const std::size_t first = index / cells * cells;
  const std::size_t end = std::min(first + cells, panes_.size());
  return {panes_.begin() + static_cast<std::ptrdiff_t>(std::min(first, panes_.size())),
          panes_.begin() + static_cast<std::ptrdiff_t>(end)};
}

void ViewerGrid::place(ViewerPane& pane, int cell, GridSize size) {
  if (!size.tallFirst) {
    layout_->addWidget(&pane, cell / size.columns, cell % size.columns);
  } else if (cell == 0) {
    layout_->addWidget(&pane, 0, 0, size.rows, 1);
  } else {
    layout_->addWidget(&pane, (cell - 1) / (size.columns - 1), 1 + (cell - 1) % (size.columns - 1));
  }
}

void ViewerGrid::layOut() {
  const GridSize size = maximised_ ? GridSize{1, 1} : size_;
  seen_ = seenPanes();
  laidOut_ = size;
  while (layout_->count() > 0) delete layout_->takeAt(0);
  for (int index = 0; index < mostRows; ++index) {
    layout_->setRowStretch(index, index < size.rows ? 1 : 0);
    const int share = index == 0 && size.tallFirst ? tallShare : usualShare;
    layout_->setColumnStretch(index, index < size.columns ? share : 0);
  }
  hint_->setVisible(panes_.empty());
  if (panes_.empty()) layout_->addWidget(hint_, 0, 0, size.rows, size.columns);
  for (ViewerPane* pane : panes_) {
    const auto seen = std::find(seen_.begin(), seen_.end(), pane);
    if (seen == seen_.end()) {
      pane->hide();
      continue;
    }
    place(*pane, static_cast<int>(seen - seen_.begin()), size);
    pane->show();
  }
  layout_->activate();
}

void ViewerGrid::placeInModel() {
  for (ViewerPane* pane : panes_) pane->canvas().placeInModel();
}

}  // namespace workstation
