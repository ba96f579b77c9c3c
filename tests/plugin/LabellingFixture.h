#pragma once
// A plug-in on an in-memory host with one study, and what a person does with it.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "plugin/VertanaFilter.h"
#include "plugin/VertanaWindowController.h"
#include "tests/double/TestHost.h"

namespace testhost {

inline constexpr long stateSeriesNumber = 20170720;
inline constexpr const char* stateSeriesDescription = "Pelmar Vertana Plugin Intervertebral Planes SR";

/// One study with a sagittal viewer ("viewer1", in front) of 3 slices, 256 pixels of 1 mm; pixel y lies at the patient
/// z of 127.5 - y. Nothing in the study tells its region, so the lumbar one is chosen.
class LabellingFixture : public ::testing::Test {
 public:
  TestHost host;
  pelmar::Ref<TestStudy> study = host.addStudy("1.2.3", "MRI SPINE");
  pelmar::Ref<TestViewer> sagittal = host.addViewer(study, sagittalSeries(3));
  vertana::VertanaFilter filter{host};

  void SetUp() override { filter.initPlugin(); }
  void TearDown() override { filter.dealloc(); }

  /// 51 slices, slice i at the patient z of 100 - 4 i.
  pelmar::Ref<TestViewer> addAxial(const pelmar::Ref<TestStudy>& ofStudy) {
    return host.addViewer(ofStudy, axialSeries(51, 256, 1, 4));
  }

  /// Chooses a menu entry on a viewer.
  long choose(const std::string& entry, const pelmar::Ref<TestViewer>& viewer) {
    filter.setViewerController(viewer);
    return filter.filterImage(entry);
  }
  void chooseLabels() { choose("Labels", sagittal); }
  /// The newest palette window, nil when there never was one.
  pelmar::Ref<TestWindow> palette() const { return host.windows.newest(); }
  bool paletteIsVisible() const { return palette()->isVisible(); }

  void postChange(const pelmar::Ref<TestROI>& roi) { host.post(pelmar::PelmarROIChangeNotification, roi); }
  void postMouseUp(const pelmar::Ref<TestROI>& roi) {
    host.post(pelmar::PelmarROIChangeNotification, roi, pelmar::Value::Dictionary{{"action", "mouseUp"}});
  }

  /// Presses the mouse with a drawing tool: the annotation is in its slice's list, in mode 1, and posted as added.
  pelmar::Ref<TestROI> press(long type, const pelmar::Ref<TestViewer>& viewer,
                             const std::vector<pelmar::PixelPoint>& points) {
    const auto roi = host.addROI(type, viewer, static_cast<std::size_t>(viewer->view->current), points);
    roi->mode = pelmar::ROIModeDrawing;
    host.post(pelmar::PelmarAddROINotification, roi);
    return roi;
  }
  void release(const pelmar::Ref<TestROI>& roi) {
    roi->mode = pelmar::ROIModeSelected;
    postMouseUp(roi);
  }
  /// A length line of 20 cm, from head to foot, released: lumbar discs at pixel y 28, 68, ... 228.
  void drawLine() {
    const auto line = press(pelmar::ROITypeLength, sagittal, {{128, 28}, {128, 228}});
    postChange(line);
    release(line);
  }
  /// The same line, still being drawn.
  pelmar::Ref<TestROI> halfDrawLine() {
    const auto line = press(pelmar::ROITypeLength, sagittal, {{128, 28}, {128, 228}});
    postChange(line);
    return line;
  }

  /// Plane records along the patient's z axis, 40 mm apart from z 99.5 downwards: the same levels as drawLine's.
  static pelmar::Value::Array planeRecords(const std::vector<std::string>& names) {
    pelmar::Value::Array records;
    double z = 99.5;
    for (const std::string& name : names) {
      records.emplace_back(
          pelmar::Value::Dictionary{{"name", name}, {"point", makePoint(0, 0.5, z)}, {"vector", makePoint(0, 0, -1)}});
      z -= 40;
    }
    return records;
  }
  static std::vector<std::string> lumbarNames() { return {"T12-L1", "L1-L2", "L2-L3", "L3-L4", "L4-L5", "L5-S1"}; }
  static pelmar::Value::Dictionary lumbarState() {
    return {{"VertanaAnatomicalRegion", 2},
            {"kAdditionalVertebra", false},
            {"intervertebralPlanes", planeRecords(lumbarNames())}};
  }
  /// Puts a state into a study, as an earlier run has left it.
  void storeState(const pelmar::Ref<TestStudy>& inStudy, const pelmar::Value& state) {
    const auto bytes = host.archiving.archivedDataWithRootObject(state);
    host.storeReport(inStudy, stateSeriesNumber, stateSeriesDescription, bytes.value_or(pelmar::Bytes{}));
  }
  /// Puts a state into the study, and lets an earlier run of this session have left the lumbar region: a command then
  /// changes no region, which would store an empty state of its own before the stored one is read.
  void storeStateOfEarlierRun(const pelmar::Value& state) {
    filter.setAnatomicalRegion(2);
    storeState(study, state);
  }
  /// The state that a study holds; nil when it holds none.
  pelmar::Value storedState(const pelmar::Ref<TestStudy>& inStudy) const {
    const auto image = inStudy->SRImageWithSeriesID(stateSeriesNumber, stateSeriesDescription);
    const auto path = image->completePathResolved();
    ReportContent report;
    if (!path || !host.files.contains(*path) || !report.decode(host.files.at(*path))) return {};
    return host.archiving.unarchiveObjectWithData(report.data.value_or(pelmar::Bytes{}));
  }
  static std::size_t planeCount(const pelmar::Value& state) {
    const auto* dictionary = state.dictionary();
    if (!dictionary || !dictionary->contains("intervertebralPlanes")) return 0;
    const auto* planes = dictionary->at("intervertebralPlanes").array();
    return planes ? planes->size() : 0;
  }
  static bool isEmptyState(const pelmar::Value& state) { return state.dictionary() && state.dictionary()->empty(); }
  std::size_t reportsWritten() const { return host.calls.countContaining("report.writeToFileAtPath"); }

  /// Texts of the vertebra labels on a viewer, sorted.
  static std::vector<std::string> labelsOn(const pelmar::Ref<TestViewer>& viewer) {
    std::vector<std::string> names;
    for (const auto& roi : viewer->allROIsTagged("VertanaFilterLabel")) names.push_back(roi->caption);
    std::sort(names.begin(), names.end());
    return names;
  }
  static std::vector<std::string> lumbarLabels() { return {"L1", "L2", "L3", "L4", "L5"}; }
  /// Name of an axial slice, empty when it has none.
  static std::string axialName(const pelmar::Ref<TestViewer>& viewer, std::size_t slice) {
    for (const auto& roi : viewer->roisOnSlice(slice)) {
      if (roi->tags->containsObject("VertanaFilterAxialLabel")) return roi->caption;
    }
    return {};
  }
  static std::size_t axialNameCount(const pelmar::Ref<TestViewer>& viewer) {
    return viewer->allROIsTagged("VertanaFilterAxialLabel").size();
  }
  static std::size_t planeLineCount(const pelmar::Ref<TestViewer>& viewer) {
    return viewer->allROIsTagged("VertanaFilterPlane").size();
  }
  static std::size_t curveCount(const pelmar::Ref<TestViewer>& viewer) {
    return viewer->allROIsTagged("kConstructionOpenPolygonStringTag").size();
  }
};

}  // namespace testhost
