// Viewers that close.

#include "ViewerNotification.h"

namespace testhost {
namespace {

using pelmar::Value;

TEST_F(ViewerNotification, closingWhileInactiveDoesNothing) {
  host.calls.clear();
  host.closeViewer(sagittal);
  EXPECT_TRUE(host.calls.lines().empty());
}

TEST_F(ViewerNotification, closingAViewerOfAnotherStudyDoesNothing) {
  const auto foreign = host.addViewer(host.addStudy("9.9.9"), sagittalSeries(3));
  chooseLabels();
  drawLine();
  host.addROI(19, foreign, 0, {}, {"VertanaFilterTemporayROI"});
  host.calls.clear();
  host.closeViewer(foreign);
  EXPECT_TRUE(host.calls.lines().empty());
  EXPECT_EQ(filter.workflow(), 1);
}

TEST_F(ViewerNotification, closingAViewerThatShowsNoImageDoesNothing) {
  chooseLabels();
  sagittal->view->current = 99;
  host.calls.clear();
  host.closeViewer(sagittal);
  EXPECT_TRUE(host.calls.lines().empty());
  EXPECT_EQ(filter.workflow(), 1);
  EXPECT_TRUE(paletteIsVisible());
}

TEST_F(ViewerNotification, closingOneOfSeveralRemovesItsTemporaryAnnotationsAndTheWorkflowGoesOn) {
  const auto second = host.addViewer(study, sagittalSeries(3));
  chooseLabels();
  drawLine();
  clearLists(second);
  host.addROI(19, second, 0, {{1, 1}}, {"VertanaFilterTemporayROI"});
  host.closeViewer(second);
  EXPECT_TRUE(second->allROIsTagged("VertanaFilterTemporayROI").empty());
  EXPECT_EQ(labelsOn(second), lumbarLabels()) << "its labels were made anew while it was still whole";
  EXPECT_EQ(planeLineCount(sagittal), 6U) << "another viewer keeps its own";
  EXPECT_EQ(filter.workflow(), 1);
  EXPECT_TRUE(paletteIsVisible());
  EXPECT_TRUE(filter.study() == study);
}

TEST_F(ViewerNotification, closingTheViewerOfTheCurveMakesLabelsBeforeItRemovesWhatIsTemporary) {
  host.addViewer(study, sagittalSeries(3));
  chooseLabels();
  drawLine();
  clearLists(sagittal);
  host.closeViewer(sagittal);
  EXPECT_EQ(labelsOn(sagittal), lumbarLabels());
  EXPECT_TRUE(sagittal->allROIsTagged("VertanaFilterTemporayROI").empty()) << "also the new labels' connectors go";
}

TEST_F(ViewerNotification, closingAnAxialViewerNamesItsSlicesFirst) {
  const auto axial = addAxial(study);
  chooseLabels();
  drawLine();
  clearLists(axial);
  host.closeViewer(axial);
  EXPECT_EQ(axialName(axial, 10), "L1-L2");
}

TEST_F(ViewerNotification, closingTheLastViewerStopsTheWorkflowSavesAndRestoresTheToolsOnIt) {
  startWithTools();
  drawLine();
  host.calls.clear();
  host.closeViewer(sagittal);
  EXPECT_EQ(planeCount(storedState(study)), 6U);
  EXPECT_EQ(reportsWritten(), 1U);
  EXPECT_EQ(filter.workflow(), -1);
  EXPECT_FALSE(filter.isActive());
  EXPECT_FALSE(filter.study());
  EXPECT_FALSE(filter.intervertebralPlanes());
  EXPECT_FALSE(filter.windowController());
  EXPECT_FALSE(paletteIsVisible());
  EXPECT_EQ(sagittal->roiToolTag, 12);
  EXPECT_EQ(sagittal->view->tool, 4);
}

TEST_F(ViewerNotification, closingTheLastViewerWithoutACurveRestoresTheToolsOnceThroughTheClosingViewer) {
  startWithTools();
  host.calls.clear();
  host.closeViewer(sagittal);
  EXPECT_EQ(host.calls.containing({"ToolTag("}),
            (std::vector<std::string>{"viewer1.setROIToolTag(12)", "viewer1.setToolTag(4)"}));
}

TEST_F(ViewerNotification, closingTheLastViewerLeavesAnUnknownROIToolAlone) {
  sagittal->hasROIToolTag = false;
  chooseLabels();
  host.calls.clear();
  host.closeViewer(sagittal);
  EXPECT_EQ(host.calls.containing({"ToolTag("}), std::vector<std::string>{"viewer1.setToolTag(0)"});
}

TEST_F(ViewerNotification, closingTheLastViewerWithoutAPaletteTouchesNoTool) {
  storeState(study, Value(lumbarState()));
  postLoaded(sagittal);
  ASSERT_TRUE(filter.isActive());
  host.calls.clear();
  host.closeViewer(sagittal);
  EXPECT_EQ(host.calls.countContaining("ToolTag("), 0U);
  EXPECT_FALSE(filter.isActive());
  EXPECT_FALSE(filter.study());
}

TEST_F(ViewerNotification, closingTheLastVerticalViewerClosesThePaletteAndRestoresTheToolsOnIt) {
  const auto axial = addAxial(study);
  startWithTools();
  drawLine();
  host.calls.clear();
  host.closeViewer(sagittal);
  EXPECT_FALSE(paletteIsVisible());
  EXPECT_FALSE(filter.windowController());
  EXPECT_EQ(filter.workflow(), -1);
  EXPECT_EQ(sagittal->roiToolTag, 12);
  EXPECT_EQ(sagittal->view->tool, 4);
  EXPECT_EQ(host.calls.countContaining("viewer2.setToolTag"), 0U) << "not on the viewer that stays";
  EXPECT_EQ(planeCount(storedState(study)), 6U);
}

TEST_F(ViewerNotification, closingTheLastVerticalViewerBeforeAnyDrawingRestoresTheToolsOnItAllTheSame) {
  addAxial(study);
  startWithTools();
  host.calls.clear();
  host.closeViewer(sagittal);
  EXPECT_FALSE(filter.windowController());
  EXPECT_EQ(host.calls.containing({"ToolTag("}),
            (std::vector<std::string>{"viewer1.setROIToolTag(12)", "viewer1.setToolTag(4)"}))
      << "nobody knows the vertical viewer any more, but it is the one that closes";
}

TEST_F(ViewerNotification, closingOneVerticalViewerKeepsThePaletteWhileAnotherIsOpen) {
  const auto coronal = host.addViewer(study, coronalSeries(3));
  chooseLabels();
  host.closeViewer(sagittal);
  EXPECT_TRUE(paletteIsVisible());
  EXPECT_EQ(filter.workflow(), 1);
  EXPECT_TRUE(filter.verticalViewerController() == coronal);
}

}  // namespace
}  // namespace testhost
