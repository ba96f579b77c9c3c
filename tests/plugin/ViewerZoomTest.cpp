// Views that zoom or move: the names of axial slices go back to the top centre.

#include "tests/plugin/LabellingFixture.h"

namespace testhost {
namespace {

using pelmar::Ref;

class ZoomOrPan : public LabellingFixture, public ::testing::WithParamInterface<std::string_view> {
 public:
  Ref<TestViewer> axial;
  /// Labels the study; slice 10 of the axial viewer then stands at the top centre: view point (256, 472).
  void label() {
    axial = addAxial(study);
    chooseLabels();
    drawLine();
    filter.updateAxialLabels();
    axial->view->zoom = 2;
  }
  pelmar::PixelPoint namePosition() const {
    for (const auto& roi : axial->roisOnSlice(10)) {
      if (roi->tags->containsObject("VertanaFilterAxialLabel")) return roi->rectangle.origin;
    }
    return {-1, -1};
  }
  static constexpr pelmar::PixelPoint atZoomOne{256, 40};
  static constexpr pelmar::PixelPoint atZoomTwo{128, 20};
};

TEST_P(ZoomOrPan, movesAxialNamesBackToTheTopCentre) {
  label();
  EXPECT_EQ(namePosition(), atZoomOne);
  host.post(GetParam(), axial->view);
  EXPECT_EQ(namePosition(), atZoomTwo);
}

TEST_P(ZoomOrPan, doesNotAskWhetherThePluginIsActive) {
  label();
  filter.setIsActive(false);
  host.post(GetParam(), axial->view);
  EXPECT_EQ(namePosition(), atZoomTwo);
}

TEST_P(ZoomOrPan, waitsUntilAllImagesAreLoaded) {
  label();
  axial->everythingLoaded = false;
  host.post(GetParam(), axial->view);
  EXPECT_EQ(namePosition(), atZoomOne);
}

TEST_P(ZoomOrPan, comparesDatabaseRecordsNotUIDs) {
  label();
  axial->view->study = host.addStudy("1.2.3");
  host.post(GetParam(), axial->view);
  EXPECT_EQ(namePosition(), atZoomOne);
}

TEST_P(ZoomOrPan, withoutAStudyDoesNothing) {
  label();
  filter.setStudy({});
  axial->view->study = nullptr;
  host.post(GetParam(), axial->view);
  EXPECT_EQ(namePosition(), atZoomOne);
}

TEST_P(ZoomOrPan, ofAVerticalViewerDoesNothing) {
  label();
  host.calls.clear();
  host.post(GetParam(), sagittal->view);
  EXPECT_TRUE(host.calls.lines().empty());
}

INSTANTIATE_TEST_SUITE_P(Both, ZoomOrPan,
                         ::testing::Values(pelmar::PelmarViewOriginChanged, pelmar::PelmarViewScaleChanged),
                         [](const auto& row) { return std::string(row.param); });

}  // namespace
}  // namespace testhost
