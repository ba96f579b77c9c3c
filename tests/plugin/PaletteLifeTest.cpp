// The palette's end: what runs in which order when it closes, and that it never outlives what it calls.

#include <functional>
#include <memory>

#include "tests/plugin/LabellingFixture.h"

namespace testhost {
namespace {

using PaletteLife = LabellingFixture;

/// Does something before it passes the closing on.
struct BeforeClosing : pelmar::WindowDelegate {
  pelmar::WindowDelegate* delegate = nullptr;
  std::function<void()> act;
  void windowWillClose() override {
    act();
    delegate->windowWillClose();
  }
};

TEST_F(PaletteLife, theStopButtonStopsTheWorkflowBeforeTheCloseAndTheCloseStopsItAgain) {
  chooseLabels();
  drawLine();
  host.calls.clear();
  BeforeClosing between;
  between.delegate = palette()->delegate;
  bool stoppedBefore = false;
  between.act = [&] {
    stoppedBefore = filter.workflow() == -1 && !filter.study() && planeCount(storedState(study)) == 6;
    filter.setWorkflow(1);
    filter.setDisplayLabels(false);
  };
  palette()->delegate = &between;
  palette()->click("stopWorkFlow:");
  EXPECT_TRUE(stoppedBefore);
  EXPECT_EQ(filter.workflow(), -1) << "set once more by the close";
  EXPECT_TRUE(filter.displayLabels()) << "likewise";
  EXPECT_EQ(reportsWritten(), 1U) << "the second run saves nothing";
}

TEST_F(PaletteLife, theWorkflowStopsWhileTheWindowIsStillVisible) {
  chooseLabels();
  halfDrawLine();
  palette()->close();
  EXPECT_EQ(planeCount(storedState(study)), 6U) << "a half-drawn line is still taken";
}

TEST(PaletteLeftOpen, closesWithThePluginAndCallsItNoMore) {
  TestHost host;
  const auto study = host.addStudy("1.2.3", "MRI SPINE");
  const auto viewer = host.addViewer(study, sagittalSeries(3));
  auto filter = std::make_unique<vertana::VertanaFilter>(host);
  filter->initPlugin();
  filter->setViewerController(viewer);
  filter->filterImage("Labels");
  filter->dealloc();
  const auto window = host.windows.newest();
  ASSERT_TRUE(window->isVisible()) << "deallocation alone leaves it";
  host.calls.clear();
  filter.reset();
  EXPECT_FALSE(window->isVisible());
  EXPECT_EQ(window->owner, nullptr);
  EXPECT_EQ(window->delegate, nullptr);
  EXPECT_FALSE(window->click("reset:"));
  EXPECT_EQ(host.calls.countContaining("writeToFileAtPath"), 0U);
  EXPECT_EQ(host.calls.countContaining("ToolTag("), 0U) << "no workflow is stopped any more";
}

}  // namespace
}  // namespace testhost
