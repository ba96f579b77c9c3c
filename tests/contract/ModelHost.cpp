// The workstation's model under the contract's tests.
#include "ContractHost.h"
#include "workstation/model/Workstation.h"

namespace contract {
namespace {

using pelmar::PixelPoint;
using workstation::Outcome;

std::vector<workstation::ImageRecord> recordsOf(const SeriesGeometry& series, Plane plane) {
  const std::string number = plane == Plane::sagittal ? "1" : "2";
  std::vector<workstation::ImageRecord> records;
  for (std::size_t slice = 0; slice < series.slices; ++slice) {
    const SlicePlacement placement = placementOf(series, plane, slice);
    workstation::ImageRecord record;
    record.instanceNumber = static_cast<int>(slice) + 1;
    record.sopInstanceUid = "1.2.3." + number + "." + std::to_string(slice + 1);
    record.file = "/images/" + record.sopInstanceUid;
    record.studyInstanceUid = "1.2.3";
    record.studyDescription = "Spine";
    record.seriesInstanceUid = "1.2.3." + number;
    record.seriesNumber = plane == Plane::sagittal ? 1 : 2;
    record.modality = "MR";
    record.frameOfReferenceUid = "1.2.3.9";
    record.imageType = {"ORIGINAL", "PRIMARY"};
    record.rows = series.rows;
    record.columns = series.columns;
    record.geometry = workstation::ImageGeometry{placement.firstPixelMm, placement.row, placement.column,
                                                 series.spacingXMm, series.spacingYMm};
    records.push_back(record);
  }
  return records;
}

class ModelHost final : public ContractHost {
 public:
  explicit ModelHost(const Study& study) {
    auto both = recordsOf(study.sagittal, Plane::sagittal);
    const auto axial = recordsOf(study.axial, Plane::axial);
    both.insert(both.end(), axial.begin(), axial.end());
    workstation_.addImages(both);
  }

  pelmar::PelmarAPI& api() override { return workstation_.api(); }
  pelmar::Ref<pelmar::ViewerController> viewer(int number) override { return workstation_.controller(number); }

  int open(Plane series) override {
    const auto opened = workstation_.openViewer(stackOf(series));
    EXPECT_TRUE(opened) << opened.problem;
    return opened.value.value_or(-1);
  }
  void close(int viewer) override { expect(workstation_.closeViewer(viewer)); }
  void switchSeries(int viewer, Plane to) override { expect(workstation_.switchSeries(viewer, stackOf(to))); }
  void scroll(int viewer, int slice) override { expect(workstation_.scroll(viewer, slice)); }
  void zoom(int viewer, double pointsPerPixel) override { expect(workstation_.zoom(viewer, pointsPerPixel)); }
  void placeWindow(int viewer, const pelmar::FrameRect& frame) override {
    expect(workstation_.setViewerFrame(viewer, frame));
  }
  void press(int viewer, PixelPoint at) override { expect(workstation_.press(viewer, at)); }
  void move(int viewer, PixelPoint at) override { expect(workstation_.move(viewer, at)); }
  void release(int viewer, PixelPoint at) override { expect(workstation_.release(viewer, at)); }
  void doubleClick(int viewer, PixelPoint at) override { expect(workstation_.doubleClick(viewer, at)); }
  void pressReturn(int viewer) override { expect(workstation_.key(viewer, workstation::Key::returnKey)); }

 private:
  static workstation::StackId stackOf(Plane plane) { return {"1.2.3", plane == Plane::sagittal ? 0U : 1U, 0}; }
  static void expect(const Outcome& outcome) { EXPECT_TRUE(outcome) << outcome.problem.value_or(""); }

  workstation::Workstation workstation_;
};

}  // namespace

std::unique_ptr<ContractHost> makeModel(const Study& study) { return std::make_unique<ModelHost>(study); }

}  // namespace contract
