// The in-memory host under the contract's tests.
#include "ContractHost.h"
#include "tests/double/TestPerson.h"

namespace contract {
namespace {

using pelmar::PixelPoint;
using pelmar::Ref;
using testhost::TestViewer;

class DoubleHost final : public ContractHost {
 public:
  explicit DoubleHost(const Study& study) : geometry_(study) {}

  pelmar::PelmarAPI& api() override { return host_; }
  Ref<pelmar::ViewerController> viewer(int number) override {
    const Ref<TestViewer> found = viewers_.at(static_cast<std::size_t>(number)).lock();
    const bool open = std::find(host_.viewers.begin(), host_.viewers.end(), found) != host_.viewers.end();
    return open ? found : Ref<TestViewer>();
  }

  int open(Plane series) override {
    viewers_.emplace_back(person_.open(study_, seriesOf(series)));
    return static_cast<int>(viewers_.size()) - 1;
  }
  void close(int viewer) override { host_.closeViewer(at(viewer)); }
  void switchSeries(int viewer, Plane to) override { host_.switchSeries(at(viewer), study_, seriesOf(to)); }
  void scroll(int viewer, int slice) override { person_.scroll(at(viewer), slice); }
  void zoom(int viewer, double pointsPerPixel) override { person_.zoom(at(viewer), pointsPerPixel); }
  void placeWindow(int viewer, const pelmar::FrameRect& frame) override {
    at(viewer)->shownIn->frameRect = frame;
    at(viewer)->view->frameRect = {0, 0, frame.width, frame.height};
  }
  void press(int viewer, PixelPoint pixel) override { person_.press(at(viewer), pixel); }
  void move(int viewer, PixelPoint pixel) override { person_.move(at(viewer), pixel); }
  void release(int viewer, PixelPoint pixel) override { person_.release(at(viewer), pixel); }
  void doubleClick(int viewer, PixelPoint) override { person_.finishPolygon(at(viewer)); }
  void pressReturn(int viewer) override { person_.finishPolygon(at(viewer)); }
  void letGo() override {
    host_.everyViewer = host_.viewers;
    host_.rois.made.clear();
  }

 private:
  Ref<TestViewer> at(int number) const { return viewers_.at(static_cast<std::size_t>(number)).lock(); }
  testhost::Series seriesOf(Plane plane) const {
    const SeriesGeometry& geometry = plane == Plane::sagittal ? geometry_.sagittal : geometry_.axial;
    testhost::Series series;
    series.orientationCode = plane == Plane::sagittal ? 0 : 4;
    for (std::size_t slice = 0; slice < geometry.slices; ++slice) {
      const SlicePlacement placement = placementOf(geometry, plane, slice);
      series.slices.push_back({placement.firstPixelMm, placement.row, placement.column, geometry.spacingXMm,
                               geometry.spacingYMm, geometry.columns, geometry.rows});
    }
    return series;
  }

  Study geometry_;
  testhost::TestHost host_;
  testhost::TestPerson person_{host_};
  Ref<testhost::TestStudy> study_ = host_.addStudy("1.2.3", "Spine");
  std::vector<pelmar::WeakRef<TestViewer>> viewers_;
};

}  // namespace

std::unique_ptr<ContractHost> makeDouble(const Study& study) { return std::make_unique<DoubleHost>(study); }

}  // namespace contract
