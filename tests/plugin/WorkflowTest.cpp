// startWorkflow, stopWorkflow and reset: what they do, in which order, and what they leave.

#include "tests/double/TestPerson.h"
#include "tests/plugin/LabellingFixture.h"

namespace testhost {
namespace {

using pelmar::Ref;
using pelmar::Value;

using Workflow = LabellingFixture;

// --- startWorkflow ---

TEST_F(Workflow, doesNotStartUnlessTheLabellingWorkflowRuns) {
  filter.setStudy(study);
  for (const int value : {-1, 0, 2}) {
    filter.setWorkflow(value);
    filter.startWorkflow();
    EXPECT_FALSE(filter.isActive()) << value;
  }
}

TEST_F(Workflow, doesNotStartWithoutAStudy) {
  filter.setWorkflow(1);
  filter.startWorkflow();
  EXPECT_FALSE(filter.isActive());
}

TEST_F(Workflow, withoutAStoredStateWaitsForThePersonsDrawing) {
  chooseLabels();
  EXPECT_TRUE(sagittal->allROIs().empty());
  EXPECT_FALSE(filter.intervertebralPlanes());
}

TEST_F(Workflow, redrawsAStoredLabelling) {
  storeStateOfEarlierRun(Value(lumbarState()));
  chooseLabels();
  EXPECT_EQ(curveCount(sagittal), 1U);
  EXPECT_EQ(filter.openPolygonROI()->points()->count(), 6U) << "one vertex a stored plane";
  EXPECT_EQ(labelsOn(sagittal), lumbarLabels());
  EXPECT_EQ(planeLineCount(sagittal), 6U);
  EXPECT_LT(host.calls.indexOf("roiWithType(10)"), host.calls.indexOf("roiWithType(13)")) << "the curve comes first";
  const auto made = host.calls.containing({"roiWithType(13)", "roiWithType(5)"});
  const auto lastLabel = std::find(made.rbegin(), made.rend(), "roiWithType(13)");
  EXPECT_GE(std::distance(made.rbegin(), lastLabel), 6) << "the six plane lines come last";
}

TEST_F(Workflow, redrawsAStoredLabellingAfterItTookTheDrawMode) {
  storeStateOfEarlierRun(Value(lumbarState()));
  host.defaults.values["VertanaDrawMode-2"] = Value(1);
  chooseLabels();
  ASSERT_EQ(filter.drawMode(), 1U);
  EXPECT_EQ(curveCount(sagittal), 1U) << "a change of the draw mode discards what is drawn";
  EXPECT_EQ(labelsOn(sagittal), lumbarLabels());
  EXPECT_EQ(planeLineCount(sagittal), 6U);
}

// --- stopWorkflow ---

TEST_F(Workflow, stoppingRestoresTheROIToolAndThenTheMouseTool) {
  sagittal->roiToolTag = 12;
  sagittal->view->tool = 4;
  chooseLabels();
  host.calls.clear();
  filter.stopWorkflow();
  EXPECT_EQ(host.calls.containing({"ToolTag("}),
            (std::vector<std::string>{"viewer1.setROIToolTag(12)", "viewer1.setToolTag(4)"}));
}

TEST_F(Workflow, stoppingLeavesAnUnknownROIToolAlone) {
  sagittal->hasROIToolTag = false;
  chooseLabels();
  host.calls.clear();
  filter.stopWorkflow();
  EXPECT_EQ(host.calls.countContaining("setROIToolTag"), 0U);
  EXPECT_EQ(host.calls.count("viewer1.setToolTag(0)"), 1U);
}

TEST_F(Workflow, stoppingSetsTheMouseToolEvenWhenItWasNeverStored) {
  sagittal->view->tool = 4;
  filter.setStudy(study);
  filter.stopWorkflow();
  EXPECT_EQ(host.calls.containing({"ToolTag("}), std::vector<std::string>{"viewer1.setToolTag(0)"});
}

TEST_F(Workflow, stoppingTakesAHalfDrawnLineAsInputBeforeItSaves) {
  chooseLabels();
  halfDrawLine();
  filter.stopWorkflow();
  const Value state = storedState(study);
  ASSERT_EQ(planeCount(state), 6U) << "all lumbar discs: the line counts as finished";
  EXPECT_EQ(*state.dictionary()->at("intervertebralPlanes").array()->at(5).dictionary()->at("name").string(), "L5-S1");
  EXPECT_EQ(state.dictionary()->at("VertanaAnatomicalRegion"), Value(2));
  EXPECT_EQ(state.dictionary()->at("kAdditionalVertebra"), Value(false));
}

TEST_F(Workflow, stoppingTakesAHalfDrawnPolygonAsInputBeforeItSaves) {
  host.defaults.values["VertanaDrawMode-2"] = Value(1);
  chooseLabels();
  const auto polygon = press(10, sagittal, {{128, 28}, {128, 128}, {128, 228}});
  postChange(polygon);
  filter.stopWorkflow();
  EXPECT_EQ(planeCount(storedState(study)), 6U);
  EXPECT_FALSE(filter.inputOpenPolygonROI());
}

TEST_F(Workflow, stoppingChoosesTheToolsBeforeItTakesTheInput) {
  // A host ends a drawing when another tool is chosen, and a polygon of one point is then none.
  sagittal->roiToolTag = 12;
  host.defaults.values["VertanaDrawMode-2"] = Value(1);
  chooseLabels();
  TestPerson person(host);
  person.press(sagittal, {128, 28});
  ASSERT_TRUE(filter.inputOpenPolygonROI());
  host.calls.clear();
  filter.stopWorkflow();
  EXPECT_FALSE(filter.inputOpenPolygonROI());
  EXPECT_FALSE(filter.intervertebralPlanes());
  EXPECT_EQ(reportsWritten(), 0U);
  EXPECT_TRUE(sagittal->allROIs().empty());
}

TEST_F(Workflow, stoppingSavesBeforeItRemovesTheConstruction) {
  chooseLabels();
  drawLine();
  host.calls.clear();
  filter.stopWorkflow();
  const std::size_t saved = host.calls.indexOf("addFilesAtPaths");
  const std::size_t learnt = host.calls.indexOf("setObject(kVertanaCustomStudyDescriptionSearchTerms)");
  ASSERT_NE(saved, CallLog::npos);
  ASSERT_NE(learnt, CallLog::npos);
  EXPECT_LT(learnt, saved);
  EXPECT_EQ(curveCount(sagittal), 0U);
  const std::size_t removed = host.calls.indexOf("deleteROIs(1,false)");
  ASSERT_NE(removed, CallLog::npos) << "the curve alone is held";
  EXPECT_LT(saved, removed);
}

TEST_F(Workflow, stoppingLeavesLabelsAndAxialNamesAndNothingElse) {
  const auto axial = addAxial(study);
  chooseLabels();
  drawLine();
  filter.updateAxialLabels();
  filter.stopWorkflow();
  EXPECT_EQ(labelsOn(sagittal), lumbarLabels());
  EXPECT_EQ(sagittal->allROIs().size(), 5U) << "no curve, no plane lines, no connectors";
  EXPECT_EQ(axialName(axial, 10), "L1-L2");
  EXPECT_FALSE(filter.openPolygonROI());
  EXPECT_FALSE(filter.study());
  EXPECT_EQ(filter.workflow(), -1);
  EXPECT_FALSE(filter.isActive());
}

TEST_F(Workflow, stoppingSwitchesLabelsOnAgain) {
  chooseLabels();
  drawLine();
  filter.setDisplayLabels(false);
  ASSERT_TRUE(labelsOn(sagittal).empty());
  filter.stopWorkflow();
  EXPECT_TRUE(filter.displayLabels());
  EXPECT_EQ(labelsOn(sagittal), lumbarLabels());
}

TEST_F(Workflow, stoppingWithoutAVerticalViewerSavesAllTheSame) {
  chooseLabels();
  drawLine();
  host.viewers.clear();
  pelmar::ref_cast<TestROI>(filter.openPolygonROI())->view = nullptr;
  host.calls.clear();
  filter.stopWorkflow();
  EXPECT_EQ(host.calls.countContaining("ToolTag("), 0U);
  EXPECT_EQ(reportsWritten(), 1U);
  EXPECT_EQ(filter.workflow(), -1);
}

TEST_F(Workflow, stoppingTwiceEndsAsStoppingOnce) {
  sagittal->roiToolTag = 12;
  sagittal->view->tool = 4;
  chooseLabels();
  drawLine();
  filter.stopWorkflow();
  const std::size_t written = reportsWritten();
  const auto labels = labelsOn(sagittal);
  filter.stopWorkflow();
  EXPECT_EQ(reportsWritten(), written);
  EXPECT_EQ(labelsOn(sagittal), labels);
  EXPECT_EQ(planeCount(storedState(study)), 6U);
  EXPECT_EQ(sagittal->roiToolTag, 12);
  EXPECT_EQ(sagittal->view->tool, 4);
  EXPECT_EQ(filter.workflow(), -1);
  EXPECT_FALSE(filter.isActive());
}

TEST_F(Workflow, stoppingLearnsTheStudysDescriptionForTheRegionEvenWhenNothingWasDrawn) {
  chooseLabels();
  filter.stopWorkflow();
  const Value terms = host.defaults.objectForKey("kVertanaCustomStudyDescriptionSearchTerms");
  ASSERT_TRUE(terms.array());
  ASSERT_EQ(terms.array()->size(), 3U);
  const auto& lumbar = *terms.array()->at(2).dictionary();
  EXPECT_EQ(lumbar.at("anatomicalRegion"), Value(2));
  EXPECT_EQ(lumbar.at("terms"), Value(Value::Array{Value("MRI SPINE")}));
}

// --- reset ---

TEST_F(Workflow, resetEmptiesTheLabellingAndItsStoredStateAndGoesOn) {
  const auto axial = addAxial(study);
  storeStateOfEarlierRun(Value(lumbarState()));
  chooseLabels();
  filter.updateAxialLabels();
  ASSERT_EQ(axialName(axial, 10), "L1-L2");
  filter.reset();
  EXPECT_TRUE(isEmptyState(storedState(study)));
  EXPECT_TRUE(sagittal->allROIs().empty());
  EXPECT_EQ(axialNameCount(axial), 0U) << "the slices' names follow the cleared planes";
  EXPECT_FALSE(filter.intervertebralPlanes());
  EXPECT_FALSE(filter.openPolygonROI());
  EXPECT_EQ(filter.workflow(), 1);
  EXPECT_TRUE(filter.isActive());
  EXPECT_TRUE(filter.isEditingActive());
}

TEST_F(Workflow, resetStoresTheEmptyStateBeforeItRemovesAnything) {
  storeStateOfEarlierRun(Value(lumbarState()));
  chooseLabels();
  host.calls.clear();
  filter.reset();
  ASSERT_EQ(reportsWritten(), 1U);
  EXPECT_LT(host.calls.indexOf("addFilesAtPaths"), host.calls.indexOf("deleteROIs("));
}

TEST_F(Workflow, afterAResetANewLineIsTakenAtOnce) {
  chooseLabels();
  drawLine();
  filter.reset();
  drawLine();
  EXPECT_EQ(labelsOn(sagittal), lumbarLabels());
  ASSERT_TRUE(filter.intervertebralPlanes());
  EXPECT_EQ(filter.intervertebralPlanes()->size(), 6U);
}

TEST_F(Workflow, resetDropsAHalfDrawnInput) {
  chooseLabels();
  halfDrawLine();
  filter.reset();
  EXPECT_FALSE(filter.inputLengthROI());
  EXPECT_TRUE(sagittal->allROIs().empty());
}

}  // namespace
}  // namespace testhost
