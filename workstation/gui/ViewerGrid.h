#pragma once

#include <QGridLayout>
#include <QLabel>
#include <QWidget>
#include <optional>
#include <vector>

#include "workstation/gui/ViewerPane.h"

namespace workstation {

struct GridSize {
  int rows = 1;
  int columns = 1;
  bool tallFirst = false;  ///< the first viewer has the first column for itself
  int cells() const { return tallFirst ? rows * (columns - 1) + 1 : rows * columns; }
  friend bool operator==(const GridSize&, const GridSize&) = default;
};

/// The grid for so many viewers, the first of which is drawn in and needs the most room; 3 x 3 for more than nine.
GridSize gridFor(std::size_t viewers);

/// The viewers of the model, side by side. Where there are more than cells, those of the page with the front viewer are
/// seen.
class ViewerGrid final : public QWidget {
 public:
  /// Everything must outlive the grid.
  ViewerGrid(Desk& desk, const CanvasHooks& hooks, const CanvasOptions& options, QWidget* parent = nullptr);

  /// Makes panes for viewers that were opened and drops those of viewers that were closed, then brings all up to date.
  void refresh(bool repaintAll);
  GridSize size() const { return size_; }
  /// With `maximised`, the front viewer is seen alone until all are shown again.
  void setSize(GridSize size, bool maximised = false);
  /// Shows the front viewer alone, or all again.
  void setMaximised(bool maximised);
  bool isMaximised() const { return maximised_; }
  /// Tells the model where the viewers are on the screen.
  void placeInModel();

  const std::vector<ViewerPane*>& panes() const { return panes_; }
  /// Null when there is no such viewer.
  ViewerPane* pane(int viewer) const;
  /// The pane of the front viewer; null when none is open.
  ViewerPane* frontPane() const;

 private:
  bool syncPanes();
  void layOut();
  void place(ViewerPane& pane, int cell, GridSize size);
  std::vector<ViewerPane*> seenPanes() const;

  Desk& desk_;
  const CanvasHooks& hooks_;
  const CanvasOptions& options_;
  QGridLayout* layout_;
  QLabel* hint_;
  std::vector<ViewerPane*> panes_;  ///< in the order of opening
  std::vector<ViewerPane*> seen_;
  GridSize size_{2, 2};
  GridSize laidOut_{0, 0};
  bool maximised_ = false;
};

}  // namespace workstation
