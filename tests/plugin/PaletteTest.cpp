// The palette: its actions, and that every way of closing it ends the workflow and lets it go.

#include "tests/plugin/LabellingFixture.h"

namespace testhost {
namespace {

using pelmar::Value;

using Palette = LabellingFixture;

TEST_F(Palette, isLoadedWithItsDelegateAndRemembersItsFrameWithoutCascading) {
  chooseLabels();
  EXPECT_EQ(host.calls.count("loadWindow(VertanaWindowController)"), 1U);
  EXPECT_TRUE(palette()->delegate);
  EXPECT_FALSE(palette()->cascades);
  EXPECT_EQ(palette()->rememberedAs, "VertanaPalette");
}

TEST_F(Palette, resetButtonKeepsPaletteAndWorkflowAndEmptiesTheStoredState) {
  storeStateOfEarlierRun(Value(lumbarState()));
  chooseLabels();
  ASSERT_EQ(planeCount(storedState(study)), 6U);
  EXPECT_TRUE(palette()->click("reset:"));
  EXPECT_TRUE(paletteIsVisible());
  EXPECT_TRUE(filter.windowController());
  EXPECT_EQ(filter.workflow(), 1);
  EXPECT_TRUE(isEmptyState(storedState(study)));
}

TEST_F(Palette, helpButtonOpensOnePageAndChangesNothing) {
  chooseLabels();
  EXPECT_TRUE(palette()->click("openHelp:"));
  EXPECT_EQ(host.app.opened.size(), 1U);
  EXPECT_TRUE(paletteIsVisible());
  EXPECT_EQ(filter.workflow(), 1);
}

TEST_F(Palette, anUnknownActionIsRefused) {
  chooseLabels();
  EXPECT_FALSE(palette()->click("stopWorkflow:")) << "the action has a capital F";
  EXPECT_EQ(filter.workflow(), 1);
}

/// Closes the palette one way or another.
struct Closing {
  const char* how;
  void (*close)(LabellingFixture&);
};

class ClosingThePalette : public LabellingFixture, public ::testing::WithParamInterface<Closing> {};

TEST_P(ClosingThePalette, stopsAndSavesTheRunRestoresTheToolsAndLetsThePaletteGo) {
  sagittal->roiToolTag = 12;
  sagittal->view->tool = 4;
  chooseLabels();
  drawLine();
  host.calls.clear();
  GetParam().close(*this);
  EXPECT_FALSE(paletteIsVisible());
  EXPECT_FALSE(filter.windowController());
  EXPECT_EQ(filter.workflow(), -1);
  EXPECT_FALSE(filter.isActive());
  EXPECT_FALSE(filter.study());
  EXPECT_EQ(planeCount(storedState(study)), 6U);
  EXPECT_EQ(reportsWritten(), 1U);
  EXPECT_EQ(sagittal->roiToolTag, 12);
  EXPECT_EQ(sagittal->view->tool, 4);
  EXPECT_EQ(labelsOn(sagittal), lumbarLabels());
  EXPECT_EQ(sagittal->allROIs().size(), 5U);
}

INSTANTIATE_TEST_SUITE_P(
    EveryWay, ClosingThePalette,
    ::testing::Values(Closing{"closeBox", [](LabellingFixture& fixture) { fixture.palette()->close(); }},
                      Closing{"stopButton",
                              [](LabellingFixture& fixture) { fixture.palette()->click("stopWorkFlow:"); }},
                      Closing{"anotherCommand", [](LabellingFixture& fixture) { fixture.choose("Other", {}); }}),
    [](const auto& row) { return std::string(row.param.how); });

TEST_F(Palette, stopButtonRunsStopWorkflowTwice) {
  // Each run sets the mouse tool once while a vertical viewer is found; the second finds no study.
  chooseLabels();
  host.calls.clear();
  palette()->click("stopWorkFlow:");
  EXPECT_EQ(host.calls.count("viewer1.setToolTag(0)"), 1U);
  EXPECT_EQ(host.calls.countContaining("kVertanaCustomStudyDescriptionSearchTerms"), 1U);
  EXPECT_EQ(filter.workflow(), -1);
}

}  // namespace
}  // namespace testhost
