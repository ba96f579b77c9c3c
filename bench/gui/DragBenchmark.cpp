#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <vector>

#include "Benchmarks.h"
#include "DrivenWindow.h"
#include "phantom/Phantom.h"

namespace guibench {
namespace {

using pelmar::PixelPoint;
using workstation::ViewerInfo;

constexpr double medianLimitMs = 8.3;
constexpr double percentileLimitMs = 16;
constexpr std::size_t viewers = 4;
constexpr int movesADrag = 120;
/// Six discs of the lumbar phantom lie about so on the middle slice of its sagittal series, pixels.
constexpr std::array<PixelPoint, 6> discs{{{198, 45}, {207, 90}, {210, 136}, {208, 182}, {205, 228}, {206, 272}}};
/// So far from its disc a vertex is dragged, pixels.
constexpr double reach = 7;

/// The study of the demonstration.
void writeStudy(const std::filesystem::path& folder) {
  phantom::PhantomOptions options;
  options.angledAxials = true;
  options.outDir = folder;
  if (const auto result = phantom::writePhantom(options); !result.written) giveUp(result.problem);
  age(folder);
}

class Dragging {
 public:
  explicit Dragging(DrivenWindow& driven) : driven_(driven) {
    showFourViewers();
    label();
  }

  void run() {
    for (std::size_t vertex = 0; vertex < discs.size(); ++vertex) drag(vertex);
  }
  const std::vector<Duration>& moves() const { return moves_; }
  const std::vector<Duration>& clicks() const { return clicks_; }
  int paintings() const { return paintings_; }

 private:
  void showFourViewers() {
    auto& model = driven_.model();
    const auto shown = model.viewers();
    std::printf("The window of 1440 x 900 points opens the demo study in %zu viewers:\n", shown.size());
    for (const ViewerInfo& viewer : shown) {
      const auto& canvas = driven_.canvas(viewer.number);
      std::printf("  series %d, %d slices, %d x %d points\n", *model.series(viewer.stack)->number, viewer.slices,
                  canvas.width(), canvas.height());
    }
    if (shown.size() != viewers) giveUp("There should be four.");
    viewer_ = shown.front().number;
    if (shown.front().orientationCode > 1) giveUp("The first should be sagittal.");
  }

  /// As a person does: Labels in the menu, then a click on each disc.
  void label() {
    auto& model = driven_.model();
    driven_.window().chooseMenu("Labels");
    if (!model.setPaletteValue("drawMode", pelmar::Value(1))) giveUp("The palette has no mode of drawing.");
    driven_.settle();
    for (const PixelPoint disc : discs) click(disc);
    if (model.isDrawing(viewer_)) giveUp("The polygon has not ended.");
    if (!driven_.window().palette().isVisible()) giveUp("The palette is not open.");
  }

  /// Axial slices get their names with the first move.
  void checkLabels() {
    for (const ViewerInfo& viewer : driven_.model().viewers()) {
      if (driven_.model().annotations(viewer.number, viewer.slice).empty())
        giveUp("The slice in viewer " + std::to_string(viewer.number) + " has no label.");
    }
  }

  void click(PixelPoint pixel) {
    (void)driven_.mouse(viewer_, QEvent::MouseButtonPress, pixel);
    (void)driven_.mouse(viewer_, QEvent::MouseButtonRelease, pixel);
  }

  void drag(std::size_t vertex) {
    const PixelPoint disc = discs[vertex];
    PixelPoint at = disc;
    clicks_.push_back(driven_.mouse(viewer_, QEvent::MouseButtonPress, at));
    const QImage before = pictureOfDraggedIn();
    for (int move = 1; move <= movesADrag; ++move) {
      at = {disc.x + reach * std::sin(0.07 * move), disc.y + reach * std::sin(0.13 * move)};
      moves_.push_back(driven_.mouse(viewer_, QEvent::MouseMove, at));
      checkPaintings();
    }
    checkLabels();
    if (pictureOfDraggedIn() == before) giveUp("The viewer looks as if nothing had been dragged.");
    clicks_.push_back(driven_.mouse(viewer_, QEvent::MouseButtonRelease, at));
    checkVertex(static_cast<long>(vertex), at);
  }

  QImage pictureOfDraggedIn() { return driven_.canvas(viewer_).grab().toImage(); }

  void checkPaintings() {
    for (const ViewerInfo& viewer : driven_.model().viewers()) {
      if (driven_.paintings(viewer.number) == 0)
        giveUp("Viewer " + std::to_string(viewer.number) + " was not painted after a move.");
      paintings_ += driven_.paintings(viewer.number);
    }
  }

  /// The curve is where it was dragged to.
  void checkVertex(long vertex, PixelPoint expected) {
    const pelmar::Value state = driven_.model().pluginState();
    const auto curve = pelmar::ref_cast<pelmar::ROI>(state.dictionary()->at("openPolygonROI").object());
    const PixelPoint is = curve->pointAtIndex(vertex);
    if (std::hypot(is.x - expected.x, is.y - expected.y) > 0.01)
      giveUp("Vertex " + std::to_string(vertex) + " is not where it was dragged to.");
  }

  DrivenWindow& driven_;
  int viewer_ = 0;
  int paintings_ = 0;
  std::vector<Duration> moves_;
  std::vector<Duration> clicks_;
};

double Duration::*const busy = &Duration::busyMs;
double Duration::*const passed = &Duration::passedMs;

/// The smallest time within which that share of the times lies.
double percentile(const std::vector<Duration>& times, double Duration::*kind, double share) {
  std::vector<double> sorted;
  sorted.reserve(times.size());
  for (const Duration& time : times) sorted.push_back(time.*kind);
  std::sort(sorted.begin(), sorted.end());
  const auto rank = static_cast<std::size_t>(std::ceil(share * static_cast<double>(sorted.size())));
  return sorted[std::max<std::size_t>(rank, 1) - 1];
}

bool judge(const char* what, const std::vector<Duration>& times, double share, double limitMs) {
  const double busyMs = percentile(times, busy, share);
  std::printf("  %s: %.2f ms of the processor (limit %g ms), %.2f ms passed\n", what, busyMs, limitMs,
              percentile(times, passed, share));
  if (busyMs < limitMs) return true;
  std::printf("FAILED: %s is not under %g ms\n", what, limitMs);
  return false;
}

}  // namespace

bool measureDrags() {
  const Folder folder;
  writeStudy(folder / "study");
  DrivenWindow driven(folder / "study");
  Dragging dragging(driven);
  dragging.run();
  std::vector<Duration> all = dragging.moves();
  all.insert(all.end(), dragging.clicks().begin(), dragging.clicks().end());
  std::printf("%zu events of drags, each until all four viewers are painted (%.1f paintings a move):\n", all.size(),
              dragging.paintings() / static_cast<double>(dragging.moves().size()));
  const bool isMedianKept = judge("median", all, 0.5, medianLimitMs);
  const bool isPercentileKept = judge("99th percentile", all, 0.99, percentileLimitMs);
  std::printf("  longest: %.2f ms of the processor, %.2f ms passed; presses and releases: at most %.2f ms\n",
              percentile(all, busy, 1), percentile(all, passed, 1), percentile(dragging.clicks(), busy, 1));
  std::fflush(stdout);
  return isMedianKept && isPercentileKept;
}

}  // namespace guibench
