// The person's drawing as the host reports it: annotations added, changed and removed.

#include "tests/plugin/LabellingFixture.h"

namespace testhost {
namespace {

using pelmar::Notification;
using pelmar::Ref;
using pelmar::Value;

/// The labelling workflow runs on the sagittal viewer; an axial one of the study ("viewer2") is open too.
class RoiNotification : public LabellingFixture {
 public:
  Ref<TestViewer> axial = addAxial(study);
  void SetUp() override {
    LabellingFixture::SetUp();
    chooseLabels();
    host.calls.clear();
  }
  void postRemoval(const Ref<TestROI>& roi) { host.post(pelmar::PelmarRemoveROINotification, roi); }
  /// Deletes the spine curve as a person does.
  void deleteCurve() { host.rois.deleteROI(filter.openPolygonROI()); }
};

// --- Finding the annotation ---

TEST_F(RoiNotification, theAnnotationIsTheObjectItself) {
  const auto roi = host.addROI(5, sagittal, 0, {});
  EXPECT_TRUE(filter.ROIFromNotification({"n", roi, std::nullopt}) == roi);
}

TEST_F(RoiNotification, theAnnotationIsInTheInformationOfAView) {
  const auto roi = host.addROI(5, sagittal, 0, {});
  EXPECT_TRUE(filter.ROIFromNotification({"n", sagittal->view, Value::Dictionary{{"ROI", roi}}}) == roi);
  EXPECT_FALSE(filter.ROIFromNotification({"n", sagittal->view, Value::Dictionary{}}));
  EXPECT_FALSE(filter.ROIFromNotification({"n", sagittal->view, std::nullopt}));
}

TEST_F(RoiNotification, anObjectOfAnotherClassHasNone) {
  const auto roi = host.addROI(5, sagittal, 0, {});
  EXPECT_FALSE(filter.ROIFromNotification({"n", sagittal, Value::Dictionary{{"ROI", roi}}}));
  EXPECT_FALSE(filter.ROIFromNotification({"n", {}, Value::Dictionary{{"ROI", roi}}}));
}

TEST_F(RoiNotification, withoutAnAnnotationNothingHappens) {
  drawLine();
  host.calls.clear();
  for (const auto& name :
       {pelmar::PelmarAddROINotification, pelmar::PelmarROIChangeNotification, pelmar::PelmarRemoveROINotification}) {
    host.post(name);
    host.post(name, sagittal->view);
    host.post(name, sagittal->view, Value::Dictionary{{"ROI", sagittal}, {"action", "mouseUp"}});
    host.post(name, sagittal, Value::Dictionary{{"ROI", filter.openPolygonROI()}, {"action", "mouseUp"}});
  }
  EXPECT_TRUE(host.calls.lines().empty());
  EXPECT_TRUE(filter.openPolygonROI());
  EXPECT_TRUE(filter.intervertebralPlanes());
}

// --- Adding: adoption as input ---

TEST_F(RoiNotification, aLineOnTheVerticalViewerIsAdopted) {
  const auto line = press(5, sagittal, {{0, 0}});
  EXPECT_TRUE(filter.inputLengthROI() == line);
  EXPECT_FALSE(filter.inputOpenPolygonROI());
  EXPECT_TRUE(line->hiddenInKeyImages);
  EXPECT_TRUE(line->keepsWindowSettings);
  EXPECT_FALSE(line->showsText);
}

TEST_F(RoiNotification, aPolygonIsAdoptedAlthoughALineIsAskedFor) {
  ASSERT_EQ(filter.drawMode(), 0U);
  const auto polygon = press(10, sagittal, {{0, 0}});
  EXPECT_TRUE(filter.inputOpenPolygonROI() == polygon);
  EXPECT_TRUE(polygon->hiddenInKeyImages);
  EXPECT_TRUE(polygon->keepsWindowSettings);
  EXPECT_FALSE(polygon->showsText);
}

TEST_F(RoiNotification, aLineIsAdoptedAlthoughAPolygonIsAskedFor) {
  filter.setDrawMode(1);
  const auto line = press(5, sagittal, {{0, 0}});
  EXPECT_TRUE(filter.inputLengthROI() == line);
}

TEST_F(RoiNotification, anAnnotationReportedThroughItsViewIsAdopted) {
  const auto line = host.addROI(5, sagittal, 0, {});
  host.post(pelmar::PelmarAddROINotification, sagittal->view, Value::Dictionary{{"ROI", line}});
  EXPECT_TRUE(filter.inputLengthROI() == line);
}

TEST_F(RoiNotification, aLineOnAnAxialViewerIsNotAdopted) {
  const auto line = press(5, axial, {{0, 0}});
  EXPECT_FALSE(filter.inputLengthROI());
  EXPECT_TRUE(line->showsText) << "it stays the person's own";
  EXPECT_FALSE(line->hiddenInKeyImages);
}

TEST_F(RoiNotification, aLineOnAViewerOfAnotherStudyIsNotAdopted) {
  const auto foreign = host.addViewer(host.addStudy("9.9.9"), sagittalSeries(3));
  press(5, foreign, {{0, 0}});
  EXPECT_FALSE(filter.inputLengthROI());
}

TEST_F(RoiNotification, aLineOnAViewerOfTheSameStudyUIDIsAdopted) {
  const auto twin = host.addViewer(host.addStudy("1.2.3"), coronalSeries(3));
  const auto line = press(5, twin, {{0, 0}});
  EXPECT_TRUE(filter.inputLengthROI() == line);
}

TEST_F(RoiNotification, adoptionFollowsTheViewersOrientationCode) {
  for (const long code : {-1L, 4L, 5L}) {
    sagittal->orientationCode = code;
    press(5, sagittal, {{0, 0}});
    EXPECT_FALSE(filter.inputLengthROI()) << code;
  }
  for (const long code : {0L, 1L, 2L, 3L}) {
    sagittal->orientationCode = code;
    filter.setInputLengthROI({});
    const auto line = press(5, sagittal, {{0, 0}});
    EXPECT_TRUE(filter.inputLengthROI() == line) << code;
  }
}

TEST_F(RoiNotification, aSecondLineIsIgnoredWhileOneIsBeingDrawn) {
  const auto first = press(5, sagittal, {{0, 0}});
  const auto second = press(5, sagittal, {{9, 9}});
  EXPECT_TRUE(filter.inputLengthROI() == first);
  EXPECT_TRUE(second->showsText);
}

TEST_F(RoiNotification, aSecondPolygonIsIgnoredWhileOneIsBeingDrawn) {
  const auto first = press(10, sagittal, {{0, 0}});
  const auto second = press(10, sagittal, {{9, 9}});
  EXPECT_TRUE(filter.inputOpenPolygonROI() == first);
  EXPECT_TRUE(second->showsText);
}

TEST_F(RoiNotification, thePluginsOwnCurveIsNeverTakenAsInput) {
  const auto curve = host.addROI(10, sagittal, 0, {}, {"kConstructionOpenPolygonStringTag"});
  host.post(pelmar::PelmarAddROINotification, curve);
  EXPECT_FALSE(filter.inputOpenPolygonROI());
  EXPECT_TRUE(curve->showsText);
}

TEST_F(RoiNotification, annotationsOfOtherTypesAreIgnored) {
  for (const long type : {13L, 14L, 19L, 0L}) {
    const auto roi = press(type, sagittal, {{0, 0}});
    EXPECT_FALSE(filter.inputLengthROI());
    EXPECT_FALSE(filter.inputOpenPolygonROI());
    EXPECT_TRUE(roi->showsText);
  }
}

// --- The guard of all three ---

TEST_F(RoiNotification, anAnnotationThatIsNotShownIsIgnored) {
  const auto line = host.addROI(5, sagittal, 0, {});
  line->view = nullptr;
  host.post(pelmar::PelmarAddROINotification, line);
  EXPECT_FALSE(filter.inputLengthROI());
}

TEST_F(RoiNotification, anAnnotationOnAViewWithoutViewerIsIgnored) {
  const auto line = host.addROI(5, sagittal, 0, {});
  sagittal->view->owner = nullptr;
  host.post(pelmar::PelmarAddROINotification, line);
  EXPECT_FALSE(filter.inputLengthROI());
}

TEST_F(RoiNotification, nothingIsAdoptedWhileInactive) {
  filter.setIsActive(false);
  press(5, sagittal, {{0, 0}});
  EXPECT_FALSE(filter.inputLengthROI());
}

TEST_F(RoiNotification, nothingIsAdoptedWhileThePaletteIsHidden) {
  palette()->visible = false;
  press(5, sagittal, {{0, 0}});
  EXPECT_FALSE(filter.inputLengthROI());
}

TEST_F(RoiNotification, changesAndRemovalsAreIgnoredWhileThePaletteIsHidden) {
  const auto line = press(5, sagittal, {{128, 28}, {128, 228}});
  palette()->visible = false;
  release(line);
  EXPECT_TRUE(filter.inputLengthROI() == line);
  EXPECT_FALSE(filter.openPolygonROI());
  postRemoval(line);
  EXPECT_TRUE(filter.inputLengthROI() == line);
}

TEST_F(RoiNotification, changesAndRemovalsAreIgnoredWhileNotShown) {
  const auto line = press(5, sagittal, {{128, 28}, {128, 228}});
  line->view = nullptr;
  release(line);
  postRemoval(line);
  EXPECT_TRUE(filter.inputLengthROI() == line);
  EXPECT_FALSE(filter.openPolygonROI());
}

// --- Changing ---

TEST_F(RoiNotification, draggingTheLineBuildsTheCurveLive) {
  const auto line = press(5, sagittal, {{128, 28}, {128, 228}});
  EXPECT_FALSE(filter.openPolygonROI()) << "nothing before the first change";
  postChange(line);
  EXPECT_EQ(curveCount(sagittal), 1U);
  EXPECT_TRUE(filter.inputLengthROI() == line) << "not finished yet";
  EXPECT_EQ(labelsOn(sagittal), lumbarLabels());
}

TEST_F(RoiNotification, releasingTheLineTakesItAsInputAndSelectsTheCurve) {
  const auto line = halfDrawLine();
  release(line);
  EXPECT_FALSE(filter.inputLengthROI());
  EXPECT_FALSE(sagittal->sliceLists[0]->containsObject(line));
  EXPECT_EQ(filter.openPolygonROI()->ROImode(), 2);
  EXPECT_EQ(filter.openPolygonROI()->points()->count(), 6U);
}

TEST_F(RoiNotification, theDrawingEventComesBeforeTheCreatedEvent) {
  // The drawing event alone removes the temporary annotations before it rebuilds; finalising does not. So a
  // temporary mark that stood there is gone after a release that no other change preceded.
  const auto line = press(5, sagittal, {{128, 28}, {128, 228}});
  host.addROI(19, sagittal, 0, {{1, 1}}, {"VertanaFilterTemporayROI"});
  release(line);
  for (const auto& roi : sagittal->allROIs()) EXPECT_NE(roi->type(), 19);
  EXPECT_FALSE(filter.inputLengthROI());
}

struct ActionRow {
  const char* name;
  std::optional<Value::Dictionary> userInfo;
  friend std::ostream& operator<<(std::ostream& out, const ActionRow& row) { return out << row.name; }
};

class ActionThatIsNoMouseUp : public RoiNotification, public ::testing::WithParamInterface<ActionRow> {};

TEST_P(ActionThatIsNoMouseUp, countsAsAMouseThatIsStillHeld) {
  const auto line = press(5, sagittal, {{128, 28}, {128, 228}});
  host.post(pelmar::PelmarROIChangeNotification, line, GetParam().userInfo);
  EXPECT_TRUE(filter.inputLengthROI() == line);
  EXPECT_EQ(curveCount(sagittal), 1U) << "the drawing event runs all the same";
}

INSTANTIATE_TEST_SUITE_P(Rows, ActionThatIsNoMouseUp,
                         ::testing::Values(ActionRow{"noInformation", std::nullopt},
                                           ActionRow{"noAction", Value::Dictionary{}},
                                           ActionRow{"anotherWord", Value::Dictionary{{"action", "mouseDown"}}},
                                           ActionRow{"anotherCase", Value::Dictionary{{"action", "mouseup"}}},
                                           ActionRow{"aNumber", Value::Dictionary{{"action", 1}}},
                                           ActionRow{"aList", Value::Dictionary{{"action", Value::Array{"mouseUp"}}}}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(RoiNotification, aReleaseReportedThroughTheViewIsAReleaseToo) {
  const auto line = halfDrawLine();
  line->mode = 2;
  host.post(pelmar::PelmarROIChangeNotification, sagittal->view,
            Value::Dictionary{{"ROI", line}, {"action", "mouseUp"}});
  EXPECT_FALSE(filter.inputLengthROI());
  EXPECT_TRUE(filter.openPolygonROI());
}

TEST_F(RoiNotification, releasingAPolygonThatIsNoLongerDrawnTakesItAsInput) {
  filter.setDrawMode(1);
  const auto polygon = press(10, sagittal, {{128, 28}, {128, 128}, {128, 228}});
  postMouseUp(polygon);
  EXPECT_TRUE(filter.inputOpenPolygonROI() == polygon) << "still drawn: the person goes on clicking";
  EXPECT_EQ(curveCount(sagittal), 1U);
  release(polygon);
  EXPECT_FALSE(filter.inputOpenPolygonROI());
  EXPECT_EQ(filter.openPolygonROI()->points()->count(), 6U);
}

TEST_F(RoiNotification, aChangeOfAnyOtherAnnotationIsIgnored) {
  drawLine();
  const auto stranger = host.addROI(5, sagittal, 0, {{0, 0}, {100, 100}});
  host.calls.clear();
  postMouseUp(stranger);
  EXPECT_TRUE(host.calls.lines().empty());
}

TEST_F(RoiNotification, editingTheCurveRecomputesPlanesLabelsLinesAndAxialNamesInThisOrder) {
  drawLine();
  const auto curve = pelmar::ref_cast<TestROI>(filter.openPolygonROI());
  host.calls.clear();
  postChange(curve);
  const std::size_t planes = host.calls.indexOf("splinePoints(5)");
  const std::size_t labels = host.calls.indexOf("roiWithType(13)");
  const std::size_t lines = host.calls.indexOf("roiWithType(5)");
  const std::size_t names = host.calls.indexOf("viewer2.needsDisplayUpdate()");
  ASSERT_NE(names, CallLog::npos);
  EXPECT_LT(planes, labels);
  EXPECT_LT(labels, lines);
  EXPECT_LT(lines, names);
}

TEST_F(RoiNotification, movingTheWholeCurveMovesTheAxialNames) {
  drawLine();
  const auto curve = pelmar::ref_cast<TestROI>(filter.openPolygonROI());
  postChange(curve);
  // Slice 20 lies at z 20, that is at pixel y 107.5, next to the third disc (y 108).
  EXPECT_EQ(axialName(axial, 20), "L2-L3");
  std::vector<pelmar::MyPoint> moved;
  for (const auto& point : curve->positions()) moved.push_back(pelmar::MyPoint::point({point.x, point.y + 40}));
  curve->setPoints(moved);
  postChange(curve);
  EXPECT_EQ(axialName(axial, 20), "L1-L2") << "the disc above has come down to that slice";
}

TEST_F(RoiNotification, withALineAndACurveTheChangedOneDecides) {
  drawLine();
  const auto curve = pelmar::ref_cast<TestROI>(filter.openPolygonROI());
  const auto line = press(5, sagittal, {{0, 0}, {10, 0}});
  ASSERT_TRUE(filter.inputLengthROI() == line);
  postChange(curve);
  EXPECT_TRUE(filter.inputLengthROI() == line) << "the short line was not rejected by the curve's change";
  release(line);
  EXPECT_FALSE(filter.inputLengthROI()) << "1 cm is too short";
}

// --- Removing ---

TEST_F(RoiNotification, removingTheLineForgetsIt) {
  const auto line = halfDrawLine();
  host.rois.deleteROI(line);
  EXPECT_FALSE(filter.inputLengthROI());
  EXPECT_EQ(filter.workflow(), 1);
  // 20 cm are 20 / 3.0 vertebrae while the line is drawn, rounded to 7, of which the lumbar region has 5.
  ASSERT_TRUE(filter.openPolygonROI()) << "what came of it so far stays";
  EXPECT_EQ(filter.openPolygonROI()->points()->count(), 6U);
  EXPECT_EQ(labelsOn(sagittal), lumbarLabels());
}

TEST_F(RoiNotification, removingThePolygonForgetsIt) {
  const auto polygon = press(10, sagittal, {{0, 0}});
  host.post(pelmar::PelmarRemoveROINotification, sagittal->view, Value::Dictionary{{"ROI", polygon}});
  EXPECT_FALSE(filter.inputOpenPolygonROI());
}

TEST_F(RoiNotification, removingTheCurveClearsPlanesConstructionAndLabelsAndTheWorkflowGoesOn) {
  drawLine();
  deleteCurve();
  EXPECT_FALSE(filter.openPolygonROI());
  EXPECT_FALSE(filter.intervertebralPlanes());
  EXPECT_TRUE(sagittal->allROIs().empty()) << "no plane lines, connectors or labels are left";
  EXPECT_EQ(filter.workflow(), 1);
  EXPECT_TRUE(filter.isActive());
  EXPECT_TRUE(filter.isEditingActive());
}

TEST_F(RoiNotification, removingTheCurveDoesNotTouchTheSavedState) {
  palette()->close();
  storeState(study, Value(lumbarState()));
  chooseLabels();
  ASSERT_TRUE(filter.openPolygonROI());
  ASSERT_TRUE(filter.savedDictionary());
  const std::size_t before = filter.savedDictionary()->size();
  host.calls.clear();
  deleteCurve();
  EXPECT_EQ(reportsWritten(), 0U);
  EXPECT_EQ(filter.savedDictionary()->size(), before);
  EXPECT_EQ(planeCount(storedState(study)), 6U);
}

TEST_F(RoiNotification, removingAnyOtherAnnotationIsIgnored) {
  drawLine();
  const auto stranger = host.addROI(5, sagittal, 0, {});
  host.rois.deleteROI(stranger);
  EXPECT_TRUE(filter.openPolygonROI());
  EXPECT_TRUE(filter.intervertebralPlanes());
  EXPECT_EQ(labelsOn(sagittal), lumbarLabels());
}

}  // namespace
}  // namespace testhost
