// The menu command: which way it goes, what it does in which order, where the palette is put.

#include <limits>

#include "tests/plugin/LabellingFixture.h"

namespace testhost {
namespace {

using pelmar::Ref;
using pelmar::Value;

using MenuCommand = LabellingFixture;

TEST_F(MenuCommand, onAnUnfitHostShowsTheErrorAtEachCommandAndDoesNothingElse) {
  host.version = "8.5";
  EXPECT_EQ(choose("Labels", sagittal), 0);
  EXPECT_EQ(choose("Other", sagittal), 0);
  ASSERT_EQ(host.alerts.shown.size(), 2U);
  EXPECT_TRUE(host.alerts.shown[0].critical);
  EXPECT_TRUE(host.alerts.shown[1].critical);
  EXPECT_EQ(host.app.opened.size(), 2U) << "the maker's site, every time";
  EXPECT_FALSE(filter.study());
  EXPECT_EQ(filter.workflow(), 0);
  EXPECT_FALSE(filter.windowController());
}

class OtherEntry : public LabellingFixture, public ::testing::WithParamInterface<const char*> {};

TEST_P(OtherEntry, setsTheStudyClearsTheWorkflowAndShowsNothing) {
  filter.setAdditionalVertebra(true);
  EXPECT_EQ(choose(GetParam(), sagittal), 0);
  EXPECT_TRUE(filter.study() == study);
  EXPECT_EQ(filter.workflow(), -1);
  EXPECT_FALSE(filter.additionalVertebra());
  EXPECT_FALSE(filter.isActive());
  EXPECT_FALSE(filter.windowController());
  EXPECT_TRUE(host.alerts.shown.empty());
  EXPECT_TRUE(host.windows.loaded.empty());
  EXPECT_EQ(host.calls.countContaining("setROIToolTag"), 0U);
  EXPECT_EQ(host.calls.countContaining("makeKeyAndOrderFront"), 0U);
}

INSTANTIATE_TEST_SUITE_P(ExactCaseSensitiveComparison, OtherEntry,
                         ::testing::Values("labels", "Labels ", "Label", "", "LABELS", "Vertana"));

TEST_F(MenuCommand, anotherEntryClosesAnOpenPalette) {
  chooseLabels();
  const auto open = palette();
  choose("Other", sagittal);
  EXPECT_FALSE(open->isVisible());
  EXPECT_FALSE(filter.windowController());
  EXPECT_EQ(host.windows.loaded.size(), 1U);
  EXPECT_EQ(filter.workflow(), -1);
}

TEST_F(MenuCommand, labelsStartsTheWorkflowWithAVisiblePalette) {
  EXPECT_EQ(choose("Labels", sagittal), 0);
  EXPECT_EQ(filter.workflow(), 1);
  EXPECT_TRUE(filter.study() == study);
  EXPECT_TRUE(filter.isActive());
  EXPECT_TRUE(filter.isEditingActive());
  ASSERT_TRUE(filter.windowController());
  EXPECT_TRUE(paletteIsVisible());
  EXPECT_EQ(filter.windowController()->plugin(), &filter);
  EXPECT_TRUE(host.alerts.shown.empty());
}

TEST_F(MenuCommand, labelsDoesItsStepsInOrder) {
  chooseLabels();
  const std::vector<std::string> steps{"activateIgnoringOtherApps(true)", "viewer1.window.makeKeyAndOrderFront()",
                                       "viewer1.setROIToolTag(5)", "palette.setFrameOrigin",
                                       "palette.makeKeyAndOrderFront()"};
  std::size_t before = 0;
  for (const std::string& step : steps) {
    const std::size_t at = host.calls.indexOf(step);
    ASSERT_NE(at, CallLog::npos) << step;
    EXPECT_GE(at, before) << step;
    before = at;
  }
}

TEST_F(MenuCommand, labelsAgainStopsAndSavesTheRunBeforeWithAFreshPalette) {
  chooseLabels();
  drawLine();
  const auto first = palette();
  const auto secondStudy = host.addStudy("9.9.9", "MRI SPINE");
  const auto second = host.addViewer(secondStudy, sagittalSeries(3));
  choose("Labels", second);
  EXPECT_FALSE(first->isVisible());
  EXPECT_EQ(host.windows.loaded.size(), 2U);
  EXPECT_TRUE(paletteIsVisible());
  EXPECT_EQ(planeCount(storedState(study)), 6U) << "the first study has its labelling";
  EXPECT_EQ(planeCount(storedState(secondStudy)), 0U);
  EXPECT_TRUE(filter.study() == secondStudy);
  EXPECT_EQ(filter.workflow(), 1);
}

TEST_F(MenuCommand, withOnlyAxialSeriesAndNoStateShowsTheAlertAndGoesOnWithoutPalette) {
  const auto axialStudy = host.addStudy("7.7.7", "MRI SPINE");
  const auto axial = addAxial(axialStudy);
  EXPECT_EQ(choose("Labels", axial), 0);
  ASSERT_EQ(host.alerts.shown.size(), 1U);
  const Alert& alert = host.alerts.shown[0];
  EXPECT_FALSE(alert.critical);
  EXPECT_EQ(alert.title, "Coronal or Sagittal series needed");
  EXPECT_EQ(alert.message, "");
  EXPECT_EQ(alert.defaultButton, "OK");
  EXPECT_EQ(alert.alternateButton, "");
  EXPECT_EQ(alert.otherButton, "");
  EXPECT_FALSE(filter.windowController());
  EXPECT_TRUE(host.windows.loaded.empty());
  EXPECT_TRUE(filter.isActive()) << "going on after the alert is deliberate";
  EXPECT_EQ(filter.workflow(), 1);
  EXPECT_TRUE(filter.study() == axialStudy);
  EXPECT_FALSE(filter.isEditingActive());
  EXPECT_EQ(filter.anatomicalRegion(), 2) << "the region is still set";
}

TEST_F(MenuCommand, afterTheRefusalTheDrawModeIsStillReadForTheRegion) {
  host.defaults.values["VertanaDrawMode-2"] = Value(1);
  choose("Labels", addAxial(host.addStudy("7.7.7", "MRI SPINE")));
  ASSERT_EQ(host.alerts.shown.size(), 1U);
  EXPECT_EQ(filter.drawMode(), 1U);
}

TEST_F(MenuCommand, theExtraVertebraIsClearedOnceTheNewStudyIsTheCurrentOne) {
  // Clearing the flag resets the labelling, and that is the new study's: its stored state becomes the empty one.
  const auto second = host.addStudy("9.9.9", "MRI SPINE");
  const auto viewer = host.addViewer(second, sagittalSeries(3));
  storeState(study, Value(lumbarState()));
  storeState(second, Value(lumbarState()));
  filter.setStudy(study);
  filter.setSavedDictionary(lumbarState());
  filter.setAdditionalVertebra(true);
  storeState(study, Value(lumbarState()));
  filter.setSavedDictionary(lumbarState());
  choose("Other", viewer);
  EXPECT_TRUE(isEmptyState(storedState(second)));
  EXPECT_EQ(planeCount(storedState(study)), 6U);
}

TEST_F(MenuCommand, withOnlyAxialSeriesButAStoredStateOpensThePaletteOnTheViewerInFront) {
  const auto axialStudy = host.addStudy("7.7.7", "MRI SPINE");
  storeState(axialStudy, Value(lumbarState()));
  const auto axial = addAxial(axialStudy);
  axial->shownIn->frameRect = {300, 200, 512, 512};
  host.frontMost = axial;
  choose("Labels", axial);
  EXPECT_TRUE(host.alerts.shown.empty());
  ASSERT_TRUE(paletteIsVisible());
  EXPECT_EQ(palette()->frameRect.x, 300);
  EXPECT_EQ(palette()->frameRect.y, 200 + 512 - 180);
}

TEST_F(MenuCommand, savesTheToolsOfTheVerticalViewerEvenWhenTheCommandCameFromAnother) {
  const auto axial = addAxial(study);
  host.frontMost = axial;
  sagittal->roiToolTag = 12;
  sagittal->view->tool = 4;
  axial->roiToolTag = 99;
  axial->view->tool = 98;
  choose("Labels", axial);
  EXPECT_EQ(filter.previousROITool(), 12);
  EXPECT_EQ(filter.previousTool(), 4);
  EXPECT_EQ(sagittal->roiToolTag, 5);
  EXPECT_EQ(axial->roiToolTag, 99);
  EXPECT_EQ(host.calls.count("viewer1.window.makeKeyAndOrderFront()"), 1U);
  EXPECT_EQ(host.calls.count("viewer2.window.makeKeyAndOrderFront()"), 0U);
}

TEST_F(MenuCommand, onAViewerWithoutROIToolTagKeepsTheOldOne) {
  filter.setPreviousROITool(17);
  sagittal->hasROIToolTag = false;
  sagittal->view->tool = 6;
  chooseLabels();
  EXPECT_EQ(filter.previousROITool(), 17);
  EXPECT_EQ(filter.previousTool(), 6) << "the mouse tool is saved all the same";
}

TEST_F(MenuCommand, withoutAVerticalViewerKeepsTheToolsOfAnEarlierCommand) {
  filter.setPreviousROITool(17);
  filter.setPreviousTool(18);
  choose("Labels", addAxial(host.addStudy("7.7.7", "MRI SPINE")));
  EXPECT_EQ(filter.previousROITool(), 17);
  EXPECT_EQ(filter.previousTool(), 18);
  EXPECT_EQ(host.calls.countContaining("ToolTag("), 0U);
}

// --- Draw mode ---

TEST_F(MenuCommand, aStoredPolygonModeChangesTheToolAfterTheOldModesToolWasSet) {
  host.defaults.values["VertanaDrawMode-2"] = Value(1);
  chooseLabels();
  EXPECT_EQ(host.calls.containing({"setROIToolTag"}),
            (std::vector<std::string>{"viewer1.setROIToolTag(5)", "viewer1.setROIToolTag(10)"}));
  EXPECT_EQ(filter.drawMode(), 1U);
}

TEST_F(MenuCommand, withoutAStoredModeTheLineReplacesAnEarlierPolygonMode) {
  filter.setDrawMode(1);
  host.defaults.values.clear();
  host.calls.clear();
  chooseLabels();
  EXPECT_EQ(host.calls.containing({"setROIToolTag"}),
            (std::vector<std::string>{"viewer1.setROIToolTag(10)", "viewer1.setROIToolTag(5)"}));
  EXPECT_EQ(filter.drawMode(), 0U);
}

TEST_F(MenuCommand, theStoredModeIsThatOfTheRegionJustGuessed) {
  host.defaults.values["VertanaDrawMode-2"] = Value(0);
  host.defaults.values["VertanaDrawMode-0"] = Value(1);
  sagittal->images[0]->bodyPart = "CSPINE";
  chooseLabels();
  EXPECT_EQ(filter.anatomicalRegion(), 0);
  EXPECT_EQ(filter.drawMode(), 1U);
}

TEST_F(MenuCommand, aModeThatIsNeitherLeavesTheTool) {
  filter.setDrawMode(7);
  host.defaults.values["VertanaDrawMode-2"] = Value(7);
  host.calls.clear();
  sagittal->roiToolTag = 12;
  chooseLabels();
  EXPECT_EQ(sagittal->roiToolTag, 12);
  EXPECT_EQ(host.calls.countContaining("setROIToolTag"), 0U);
}

TEST_F(MenuCommand, theStoredModeIsReadAsAThirtyTwoBitNumberAndSignExtended) {
  host.defaults.values["VertanaDrawMode-2"] = Value(std::int64_t{0x100000001});
  chooseLabels();
  EXPECT_EQ(filter.drawMode(), 1U);
  host.defaults.values["VertanaDrawMode-2"] = Value(-1);
  chooseLabels();
  EXPECT_EQ(filter.drawMode(), std::numeric_limits<unsigned long>::max());
}

// --- Region ---

TEST_F(MenuCommand, aRegionThatCannotBeGuessedIsLumbar) {
  chooseLabels();
  EXPECT_EQ(filter.anatomicalRegion(), 2);
}

TEST_F(MenuCommand, theGuessedRegionIsTaken) {
  study->description = "IRM dorsal";
  chooseLabels();
  EXPECT_EQ(filter.anatomicalRegion(), 1);
}

TEST_F(MenuCommand, theStoredRegionReplacesTheGuess) {
  storeStateOfEarlierRun(Value(Value::Dictionary{{"VertanaAnatomicalRegion", 1}, {"kAdditionalVertebra", true}}));
  chooseLabels();
  EXPECT_EQ(filter.anatomicalRegion(), 1);
  EXPECT_TRUE(filter.additionalVertebra());
}

// --- Where the palette is put: its top left corner on the image's, within the view ---

TEST_F(MenuCommand, putsThePalettesTopLeftCornerOnTheFirstPixelOfTheImageInFront) {
  sagittal->view->pan = {30, 50};
  chooseLabels();
  EXPECT_EQ(palette()->frameRect.x, 100 + 30);
  EXPECT_EQ(palette()->frameRect.y, 100 + (512 - 50) - 180);
}

TEST_F(MenuCommand, clampsThePaletteToTheLeftEdge) {
  sagittal->view->pan = {-30, 50};
  chooseLabels();
  EXPECT_EQ(palette()->frameRect.x, 100);
}

TEST_F(MenuCommand, leavesThePaletteBetweenTheLeftEdgeAndTheFirstPoint) {
  sagittal->view->pan = {0.5, 50};
  chooseLabels();
  EXPECT_EQ(palette()->frameRect.x, 100 + 0.5);
}

TEST_F(MenuCommand, clampsThePaletteToTheTopOfTheViewInItsWindow) {
  sagittal->view->frameRect = {8, 10, 512, 400};
  sagittal->view->pan = {0, -40};
  chooseLabels();
  EXPECT_EQ(palette()->frameRect.x, 100 + 8);
  EXPECT_EQ(palette()->frameRect.y, 100 + (10 + 400) - 180);
}

TEST_F(MenuCommand, clampsNeitherToTheRightNorToTheBottom) {
  sagittal->view->pan = {2000, 3000};
  chooseLabels();
  EXPECT_EQ(palette()->frameRect.x, 100 + 2000);
  EXPECT_EQ(palette()->frameRect.y, 100 + (512 - 3000) - 180);
}

TEST_F(MenuCommand, placesThePaletteOnTheViewerInFrontWhichNeedNotBeTheVerticalOne) {
  const auto axial = addAxial(study);
  axial->shownIn->frameRect = {700, 50, 512, 512};
  host.frontMost = axial;
  chooseLabels();
  EXPECT_EQ(palette()->frameRect.x, 700);
  EXPECT_EQ(palette()->frameRect.y, 50 + 512 - 180);
}

TEST_F(MenuCommand, withNoViewerInFrontThePaletteStillOpens) {
  host.frontMost = nullptr;
  chooseLabels();
  EXPECT_TRUE(paletteIsVisible());
  EXPECT_EQ(palette()->frameRect.x, 0);
  EXPECT_EQ(palette()->frameRect.y, -180);
}

TEST_F(MenuCommand, withoutACommandViewerLabelsHasNoStudyAndStaysInactive) {
  filter.setAnatomicalRegion(2);
  choose("Labels", {});
  EXPECT_FALSE(filter.study());
  EXPECT_FALSE(filter.isActive());
  EXPECT_EQ(filter.anatomicalRegion(), 0) << "a missing description is found in the first term";
  EXPECT_EQ(host.alerts.shown.size(), 1U) << "no vertical series of no study";
}

TEST_F(MenuCommand, onAHostThatHasBecomeUnfitAnOpenPaletteStaysAndNothingIsSaved) {
  chooseLabels();
  drawLine();
  host.version = "8.5";
  host.calls.clear();
  chooseLabels();
  EXPECT_TRUE(paletteIsVisible());
  EXPECT_EQ(filter.workflow(), 1);
  EXPECT_EQ(reportsWritten(), 0U);
  EXPECT_EQ(curveCount(sagittal), 1U);
}

}  // namespace
}  // namespace testhost
