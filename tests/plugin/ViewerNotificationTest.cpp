// Viewers that load, scroll and change their series.

#include "ViewerNotification.h"

namespace testhost {
namespace {

using pelmar::Value;

// --- Loading ---

TEST_F(ViewerNotification, loadingAStudyLabelledEarlierShowsItsLabelsWithoutThePalette) {
  storeState(study, Value(lumbarState()));
  const auto axial = addAxial(study);
  postLoaded(sagittal);
  EXPECT_TRUE(filter.isActive());
  EXPECT_TRUE(filter.study() == study);
  EXPECT_TRUE(filter.savedDictionary());
  EXPECT_FALSE(filter.windowController());
  EXPECT_EQ(labelsOn(sagittal), lumbarLabels());
  EXPECT_EQ(axialNameCount(axial), 0U) << "only the viewer that loaded";
  postLoaded(axial);
  EXPECT_EQ(axialName(axial, 10), "L1-L2");
}

TEST_F(ViewerNotification, loadingAStudyWithoutAStateLeavesNoStudy) {
  postLoaded(sagittal);
  EXPECT_FALSE(filter.isActive());
  EXPECT_FALSE(filter.study());
  EXPECT_TRUE(sagittal->allROIs().empty());
}

TEST_F(ViewerNotification, loadingAStudyWithAnEmptyStateSwitchesOnAndShowsNothing) {
  storeState(study, Value(Value::Dictionary{}));
  postLoaded(sagittal);
  EXPECT_TRUE(filter.isActive()) << "an empty state is a state";
  EXPECT_TRUE(sagittal->allROIs().empty());
}

TEST_F(ViewerNotification, loadingWhileActiveWithoutStudyTakesTheViewersAndItsState) {
  storeState(study, Value(lumbarState()));
  filter.setIsActive(true);
  postLoaded(sagittal);
  EXPECT_TRUE(filter.study() == study);
  EXPECT_TRUE(filter.savedDictionary());
  EXPECT_EQ(labelsOn(sagittal), lumbarLabels());
}

TEST_F(ViewerNotification, loadingWhileActiveKeepsTheStudy) {
  chooseLabels();
  postLoaded(host.addViewer(host.addStudy("9.9.9"), sagittalSeries(3)));
  EXPECT_TRUE(filter.study() == study);
}

TEST_F(ViewerNotification, loadingWhileActiveReadsTheStateOnlyWhenNoneIsInMemory) {
  storeState(study, Value(lumbarState()));
  filter.setIsActive(true);
  filter.setStudy(study);
  filter.setAnatomicalRegion(2);
  storeState(study, Value(lumbarState()));
  filter.setSavedDictionary(Value::Dictionary{});
  postLoaded(sagittal);
  EXPECT_FALSE(filter.intervertebralPlanes()) << "a state is in memory, though empty";
  filter.setSavedDictionary(std::nullopt);
  postLoaded(sagittal);
  ASSERT_TRUE(filter.intervertebralPlanes());
  EXPECT_EQ(filter.intervertebralPlanes()->size(), 6U);
}

TEST_F(ViewerNotification, aViewerThatLoadsDuringTheRunGetsLabelsAndNames) {
  chooseLabels();
  drawLine();
  const auto coronal = host.addViewer(study, coronalSeries(3));
  const auto axial = addAxial(study);
  postLoaded(coronal);
  postLoaded(axial);
  EXPECT_EQ(labelsOn(coronal), lumbarLabels());
  EXPECT_EQ(axialName(axial, 10), "L1-L2");
}

// --- What is no viewer and no view ---

TEST_F(ViewerNotification, anObjectOfAnotherClassIsIgnoredAndNothingIsForgotten) {
  chooseLabels();
  drawLine();
  filter.stopWorkflow();
  ASSERT_TRUE(filter.intervertebralPlanes());
  const auto names = {pelmar::PelmarViewerControllerDidLoadImagesNotification, pelmar::PelmarCloseViewerNotification,
                      pelmar::PelmarViewScaleChanged, pelmar::PelmarDCMViewIndexChangedNotification};
  const auto ignoresAll = [&](const char* when) {
    host.calls.clear();
    for (const auto& name : names) {
      host.post(name);
      host.post(name, study);
    }
    EXPECT_TRUE(host.calls.lines().empty()) << when;
    EXPECT_TRUE(filter.intervertebralPlanes()) << when;
  };
  ignoresAll("while inactive");
  filter.setIsActive(true);
  filter.setSavedDictionary(std::nullopt);
  ignoresAll("while active");
  EXPECT_FALSE(filter.savedDictionary());
}

// --- Scrolling ---

TEST_F(ViewerNotification, scrollingIsIgnoredUnlessAViewReportsIt) {
  storeState(study, Value(lumbarState()));
  host.post(pelmar::PelmarDCMViewIndexChangedNotification, sagittal);
  host.post(pelmar::PelmarDCMViewIndexChangedNotification);
  EXPECT_FALSE(filter.isActive());
  EXPECT_FALSE(filter.study());
}

TEST_F(ViewerNotification, scrollingAStudyLabelledEarlierSwitchesOn) {
  storeState(study, Value(lumbarState()));
  postIndexChanged(sagittal);
  EXPECT_TRUE(filter.isActive());
  EXPECT_TRUE(filter.study() == study);
  EXPECT_EQ(labelsOn(sagittal), lumbarLabels());
}

TEST_F(ViewerNotification, scrollingAStudyWithoutAStateLeavesNoStudy) {
  postIndexChanged(sagittal);
  EXPECT_FALSE(filter.isActive());
  EXPECT_FALSE(filter.study());
}

TEST_F(ViewerNotification, scrollingAnAxialViewerNamesItsCurrentSliceAlone) {
  const auto axial = addAxial(study);
  chooseLabels();
  drawLine();
  clearLists(axial);
  axial->view->current = 20;
  postIndexChanged(axial);
  EXPECT_EQ(axialName(axial, 20), "L2-L3");
  EXPECT_EQ(axialNameCount(axial), 1U);
}

TEST_F(ViewerNotification, scrollingComputesPlanesThatAreNotThereYet) {
  const auto axial = addAxial(study);
  chooseLabels();
  drawLine();
  filter.setIntervertebralPlanes(std::nullopt);
  axial->view->current = 20;
  postIndexChanged(axial);
  EXPECT_EQ(axialName(axial, 20), "L2-L3");
}

TEST_F(ViewerNotification, scrollingAVerticalViewerMakesItsLabelsAnew) {
  const auto coronal = host.addViewer(study, coronalSeries(3));
  chooseLabels();
  drawLine();
  clearLists(coronal);
  coronal->view->current = 2;
  postIndexChanged(coronal);
  EXPECT_EQ(labelsOn(coronal), lumbarLabels());
}

TEST_F(ViewerNotification, scrollingWithoutPlanesDoesNothing) {
  const auto axial = addAxial(study);
  chooseLabels();
  host.calls.clear();
  postIndexChanged(axial);
  postIndexChanged(sagittal);
  EXPECT_TRUE(host.calls.lines().empty());
}

TEST_F(ViewerNotification, scrollingAnotherStudyWhileActiveDoesNothing) {
  chooseLabels();
  drawLine();
  const auto foreign = addAxial(host.addStudy("9.9.9"));
  postIndexChanged(foreign);
  EXPECT_EQ(axialNameCount(foreign), 0U);
  EXPECT_TRUE(filter.study() == study);
}

// --- Another series in the only viewer ---

TEST_F(ViewerNotification, aSeriesChangeWithTwoViewersOpenDoesNothing) {
  addAxial(study);
  chooseLabels();
  halfDrawLine();
  host.calls.clear();
  host.post(pelmar::PelmarViewerWillChangeNotification);
  EXPECT_TRUE(host.calls.lines().empty());
  EXPECT_TRUE(filter.inputLengthROI());
}

TEST_F(ViewerNotification, aSeriesChangeWithALineHalfDrawnResetsAndClosesThePalette) {
  storeStateOfEarlierRun(Value(lumbarState()));
  chooseLabels();
  ASSERT_EQ(planeCount(storedState(study)), 6U);
  halfDrawLine();
  host.post(pelmar::PelmarViewerWillChangeNotification);
  EXPECT_TRUE(isEmptyState(storedState(study)));
  EXPECT_FALSE(filter.inputLengthROI());
  EXPECT_FALSE(paletteIsVisible());
  EXPECT_FALSE(filter.windowController());
  EXPECT_EQ(filter.workflow(), -1) << "closing the palette ends the workflow";
  EXPECT_TRUE(sagittal->allROIs().empty());
}

TEST_F(ViewerNotification, aSeriesChangeWithAPolygonHalfDrawnResetsToo) {
  storeStateOfEarlierRun(Value(lumbarState()));
  chooseLabels();
  ASSERT_EQ(planeCount(storedState(study)), 6U);
  press(10, sagittal, {{0, 0}, {5, 5}});
  host.post(pelmar::PelmarViewerWillChangeNotification);
  EXPECT_TRUE(isEmptyState(storedState(study)));
  EXPECT_FALSE(filter.inputOpenPolygonROI());
  EXPECT_FALSE(filter.windowController());
}

TEST_F(ViewerNotification, aSeriesChangeRestoresTheToolsOnceWithTheWorkflowAndNotWithThePalette) {
  startWithTools();
  host.calls.clear();
  host.post(pelmar::PelmarViewerWillChangeNotification);
  EXPECT_EQ(host.calls.containing({"ToolTag("}),
            (std::vector<std::string>{"viewer1.setROIToolTag(12)", "viewer1.setToolTag(4)"}));
}

TEST_F(ViewerNotification, aSeriesChangeAfterTheDrawingSavesAndClosesThePalette) {
  chooseLabels();
  drawLine();
  host.post(pelmar::PelmarViewerWillChangeNotification);
  EXPECT_EQ(planeCount(storedState(study)), 6U);
  EXPECT_FALSE(paletteIsVisible());
  EXPECT_FALSE(filter.windowController());
  EXPECT_EQ(filter.workflow(), -1);
}

TEST_F(ViewerNotification, aSeriesChangeWithoutInputOrWorkflowDoesNothing) {
  storeState(study, Value(lumbarState()));
  postLoaded(sagittal);
  ASSERT_TRUE(filter.isActive());
  host.calls.clear();
  host.post(pelmar::PelmarViewerWillChangeNotification);
  EXPECT_TRUE(host.calls.lines().empty());
  EXPECT_TRUE(filter.isActive());
}

}  // namespace
}  // namespace testhost
