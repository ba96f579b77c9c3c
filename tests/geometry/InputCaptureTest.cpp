#include <cmath>

#include "plugin/VertanaWindowController.h"
#include "tests/geometry/SpineStudy.h"

namespace vertana {
namespace {

using pelmar::PixelPoint;
using Points = std::vector<PixelPoint>;
using Lines = std::vector<std::string>;

constexpr PixelPoint head{100, 50};
constexpr PixelPoint foot{100, 150};

/// The line of the fixture is 10 cm long unless its length is set.
struct InputCapture : SpineStudy {
  bool isOnAnySlice(const pelmar::Ref<testhost::TestROI>& roi) const {
    for (const auto& shown : sagittal->allROIs()) {
      if (shown == roi) return true;
    }
    return false;
  }
  /// Both are there, and on every slice the last label stands before the first plane line.
  void expectLabelsBeforePlaneLines() const {
    ASSERT_FALSE(sagittal->allROIsTagged("VertanaFilterLabel").empty());
    ASSERT_FALSE(sagittal->allROIsTagged("VertanaFilterPlane").empty());
    for (std::size_t slice = 0; slice < sagittal->sliceLists.size(); ++slice) {
      bool planeLinesBegan = false;
      for (const auto& roi : sagittal->roisOnSlice(slice)) {
        planeLinesBegan = planeLinesBegan || roi->tags->containsObject("VertanaFilterPlane");
        EXPECT_FALSE(planeLinesBegan && roi->tags->containsObject("VertanaFilterLabel")) << slice;
      }
    }
  }
};

// --- length line, while it is drawn ---

TEST_F(InputCapture, lineJustBelowSevenCentimetresShowsNothingLive) {
  inputLine(head, foot, pelmar::ROIModeDrawing, std::nextafter(7.0F, 0.0F));
  filter.inputLengthROIDrawingEvent();
  EXPECT_FALSE(filter.openPolygonROI());
  EXPECT_EQ(host.calls.lines(), Lines());
}

TEST_F(InputCapture, lineOfExactlySevenCentimetresIsShownLive) {
  inputLine(head, foot, pelmar::ROIModeDrawing, 7.0F);
  filter.inputLengthROIDrawingEvent();
  EXPECT_TRUE(filter.openPolygonROI());
}

TEST_F(InputCapture, lineIsNotShownLiveInPolygonMode) {
  filter.setDrawMode(DrawModeOpenPolygon);
  inputLine(head, foot, pelmar::ROIModeDrawing);
  host.calls.clear();
  filter.inputLengthROIDrawingEvent();
  EXPECT_FALSE(filter.openPolygonROI());
  EXPECT_EQ(host.calls.lines(), Lines());
}

TEST_F(InputCapture, liveRebuildRemovesTemporaryAnnotationsThenDrawsCurveLabelsAndPlaneLines) {
  filter.setDisplayLabels(true);
  const auto mark = host.addROI(pelmar::ROITypePoint, sagittal, 1, {{1, 1}}, {"VertanaFilterTemporayROI"});
  inputLine(head, foot, pelmar::ROIModeDrawing);
  host.calls.clear();
  filter.inputLengthROIDrawingEvent();
  EXPECT_FALSE(isOnAnySlice(mark));
  const auto& calls = host.calls;
  const auto removal = calls.indexOf("deleteROIs(1,false)");
  ASSERT_NE(removal, testhost::CallLog::npos);
  ASSERT_NE(calls.indexOf("roiWithType(5)"), testhost::CallLog::npos);
  EXPECT_LT(removal, calls.indexOf("roiWithType(10)"));
  EXPECT_LT(calls.indexOf("roiWithType(10)"), calls.indexOf("roiWithType(13)"));
  // The last label comes before the first plane line; connector lines of the labels are of type 5 too.
  expectLabelsBeforePlaneLines();
}

TEST_F(InputCapture, liveRebuildRemovesTheTemporaryAnnotationsOfEveryViewer) {
  const auto coronal = host.addViewer(study, testhost::coronalSeries(2, 101));
  const auto foreign = host.addViewer(host.addStudy("9.9"), testhost::sagittalSeries(1, 101));
  for (const auto& viewer : {coronal, foreign}) {
    host.addROI(pelmar::ROITypePoint, viewer, 0, {{1, 1}}, {"VertanaFilterTemporayROI"});
  }
  inputLine(head, foot, pelmar::ROIModeDrawing);
  filter.inputLengthROIDrawingEvent();
  EXPECT_TRUE(coronal->allROIs().empty());
  EXPECT_TRUE(foreign->allROIs().empty());
}

TEST_F(InputCapture, liveRebuildOfALineForgetsOldPlanesEvenWhenTheCurveDoesNot) {
  // Mode 2: the construction of the curve itself clears planes only for a line in mode 1.
  inputLine(head, foot, pelmar::ROIModeSelected);
  holdForeignPlane();
  filter.inputLengthROIDrawingEvent();
  EXPECT_EQ(heldPlaneNames(), (Lines{"T12-L1", "L1-L2", "L2-L3", "L3-L4", "L4-L5", "L5-S1"}));
}

// --- length line, when the mouse is let go ---

TEST_F(InputCapture, lineShorterThanSevenCentimetresIsDeletedOnMouseUpAndNothingElse) {
  const auto line = inputLine(head, foot, pelmar::ROIModeDrawing, 6.99F);
  holdForeignPlane();
  filter.inputLengthROICreatedEvent();
  EXPECT_FALSE(filter.inputLengthROI());
  EXPECT_FALSE(isOnAnySlice(line));
  EXPECT_FALSE(filter.openPolygonROI());
  EXPECT_TRUE(holdsForeignPlane());
  EXPECT_EQ(host.calls.count("deleteROI(5)"), 1U);
}

TEST_F(InputCapture, lineOfExactlySevenCentimetresIsAcceptedOnMouseUp) {
  const auto line = inputLine(head, foot, pelmar::ROIModeFinished, 7.0F);
  filter.inputLengthROICreatedEvent();
  ASSERT_TRUE(filter.openPolygonROI());
  EXPECT_EQ(filter.openPolygonROI()->ROImode(), pelmar::ROIModeSelected);
  EXPECT_FALSE(isOnAnySlice(line));
}

TEST_F(InputCapture, lineIsFinalisedOnItsFirstMouseUpEvenInDrawingMode) {
  inputLine(head, foot, pelmar::ROIModeDrawing);
  filter.inputLengthROICreatedEvent();
  EXPECT_FALSE(filter.inputLengthROI());
  // Finished: the full count of the region, not 10 cm / 3 cm.
  EXPECT_EQ(curvePoints().size(), 6U);
}

TEST_F(InputCapture, lineInPolygonModeIsNotFinalisedOnMouseUp) {
  filter.setDrawMode(DrawModeOpenPolygon);
  const auto line = inputLine(head, foot);
  filter.inputLengthROICreatedEvent();
  EXPECT_TRUE(filter.inputLengthROI() == line);
  EXPECT_FALSE(filter.openPolygonROI());
}

TEST_F(InputCapture, tooShortLineInPolygonModeIsDeletedAllTheSame) {
  filter.setDrawMode(DrawModeOpenPolygon);
  const auto line = inputLine(head, foot, pelmar::ROIModeFinished, 6.9F);
  filter.inputLengthROICreatedEvent();
  EXPECT_FALSE(filter.inputLengthROI());
  EXPECT_FALSE(isOnAnySlice(line));
}

// --- open polygon, while it is drawn ---

struct PolygonInput : InputCapture {
  PolygonInput() {
    filter.setDrawMode(DrawModeOpenPolygon);
    host.calls.clear();
  }
};

TEST_F(PolygonInput, polygonOfTwoPointsBelowSevenCentimetresShowsNothingLive) {
  inputPolygon({head, foot}, pelmar::ROIModeDrawing, 6.9F);
  filter.inputOpenPolygonROIDrawingEvent();
  EXPECT_FALSE(filter.openPolygonROI());
  EXPECT_EQ(host.calls.lines(), Lines());
}

TEST_F(PolygonInput, polygonOfTwoPointsAndExactlySevenCentimetresIsShownLive) {
  inputPolygon({head, foot}, pelmar::ROIModeDrawing, 7.0F);
  filter.inputOpenPolygonROIDrawingEvent();
  EXPECT_TRUE(filter.openPolygonROI());
}

TEST_F(PolygonInput, polygonOfThreePointsIsShownLiveWhateverItsLength) {
  inputPolygon({head, {101, 51}, {102, 52}}, pelmar::ROIModeDrawing, 0.2F);
  filter.inputOpenPolygonROIDrawingEvent();
  EXPECT_EQ(curvePoints(), (Points{head, {101, 51}, {102, 52}}));
}

TEST_F(PolygonInput, polygonIsNotShownLiveInLineMode) {
  filter.setDrawMode(DrawModeLength);
  inputPolygon({head, {100, 100}, foot}, pelmar::ROIModeDrawing);
  host.calls.clear();
  filter.inputOpenPolygonROIDrawingEvent();
  EXPECT_FALSE(filter.openPolygonROI());
  EXPECT_EQ(host.calls.lines(), Lines());
}

TEST_F(PolygonInput, liveRebuildOfAPolygonForgetsOldPlanesAndTemporaryAnnotations) {
  const auto mark = host.addROI(pelmar::ROITypePoint, sagittal, 1, {{1, 1}}, {"VertanaFilterTemporayROI"});
  inputPolygon({head, {100, 100}, foot}, pelmar::ROIModeFinished);
  holdForeignPlane();
  filter.inputOpenPolygonROIDrawingEvent();
  EXPECT_FALSE(isOnAnySlice(mark));
  EXPECT_FALSE(holdsForeignPlane());
  EXPECT_EQ(sagittal->allROIsTagged("VertanaFilterPlane").size(), 6U);
}

// --- open polygon, when the mouse is let go ---

TEST_F(PolygonInput, mouseUpWhileThePolygonIsStillBeingDrawnFinalisesNothing) {
  const auto polygon = inputPolygon({head, {100, 100}, foot}, pelmar::ROIModeDrawing);
  filter.inputOpenPolygonROICreatedEvent();
  EXPECT_TRUE(filter.inputOpenPolygonROI() == polygon);
  EXPECT_FALSE(filter.openPolygonROI());
  EXPECT_EQ(host.calls.lines(), Lines());
}

TEST_F(PolygonInput, shortPolygonStillBeingDrawnIsNotRejectedYet) {
  const auto polygon = inputPolygon({head, foot}, pelmar::ROIModeDrawing, 1.0F);
  filter.inputOpenPolygonROICreatedEvent();
  EXPECT_TRUE(filter.inputOpenPolygonROI() == polygon);
}

TEST_F(PolygonInput, shortPolygonIsRejectedOnceItIsNotBeingDrawnAnyMore) {
  for (const long mode : {pelmar::ROIModeFinished, pelmar::ROIModeSelected, pelmar::ROIModeEditing}) {
    const auto polygon = inputPolygon({head, {101, 60}, foot}, mode, std::nextafter(7.0F, 0.0F));
    filter.inputOpenPolygonROICreatedEvent();
    EXPECT_FALSE(filter.inputOpenPolygonROI()) << mode;
    EXPECT_FALSE(isOnAnySlice(polygon)) << mode;
    EXPECT_FALSE(filter.openPolygonROI()) << mode;
  }
  EXPECT_EQ(host.calls.count("deleteROI(10)"), 3U);
}

TEST_F(PolygonInput, polygonOfExactlySevenCentimetresIsFinalised) {
  inputPolygon({head, {100, 100}, foot}, pelmar::ROIModeSelected, 7.0F);
  filter.inputOpenPolygonROICreatedEvent();
  ASSERT_TRUE(filter.openPolygonROI());
  EXPECT_FALSE(filter.inputOpenPolygonROI());
  EXPECT_EQ(curvePoints().size(), 6U) << "mode 0 when the curve is built: resampled to the region's count";
}

TEST_F(PolygonInput, finishedPolygonInLineModeIsKeptAndNotFinalised) {
  filter.setDrawMode(DrawModeLength);
  const auto polygon = inputPolygon({head, {100, 100}, foot});
  filter.inputOpenPolygonROICreatedEvent();
  EXPECT_TRUE(filter.inputOpenPolygonROI() == polygon);
  EXPECT_FALSE(filter.openPolygonROI());
}

TEST_F(PolygonInput, heldLineIsWhatThePolygonsLiveRebuildAndFinalisationDrawFrom) {
  inputLine({10, 0}, {10, 100});
  inputPolygon({{300, 0}, {310, 50}, {300, 100}}, pelmar::ROIModeFinished, 10.0F);
  filter.inputOpenPolygonROIDrawingEvent();
  const Points alongTheLine{{10, 0}, {10, 20}, {10, 40}, {10, 60}, {10, 80}, {10, 100}};
  EXPECT_EQ(curvePoints(), alongTheLine);
  filter.inputOpenPolygonROICreatedEvent();
  EXPECT_EQ(curvePoints(), alongTheLine);
  EXPECT_FALSE(filter.inputLengthROI());
  EXPECT_FALSE(filter.inputOpenPolygonROI());
}

// --- finalising and removing ---

TEST_F(InputCapture, finalisingForgetsOldPlanesAndComputesThemFromTheCurve) {
  inputLine(head, foot);
  holdForeignPlane();
  filter.finalizeInputROI();
  EXPECT_EQ(heldPlaneNames(), (Lines{"T12-L1", "L1-L2", "L2-L3", "L3-L4", "L4-L5", "L5-S1"}));
}

TEST_F(InputCapture, finalisingGoesThroughItsStepsInOrder) {
  filter.setDisplayLabels(true);
  const auto line = inputLine(head, foot, pelmar::ROIModeDrawing);
  const auto polygon = inputPolygon({head, foot}, pelmar::ROIModeSelected);
  host.calls.clear();
  filter.finalizeInputROI();
  EXPECT_EQ(line->mode, pelmar::ROIModeFinished);
  EXPECT_EQ(polygon->mode, pelmar::ROIModeFinished);
  // Both inputs are finished first; then curve, labels (whose connector lines are type 5 with mode 0), plane lines;
  // then the inputs go, and at last the curve is selected.
  const auto steps = host.calls.containing({"setROIMode(", "roiWithType(10)", "roiWithType(13)", "deleteROI("});
  ASSERT_GE(steps.size(), 8U);
  EXPECT_EQ(steps[0], "setROIMode(0)");
  EXPECT_EQ(steps[1], "setROIMode(0)");
  EXPECT_EQ(steps[2], "roiWithType(10)");
  EXPECT_EQ(steps[3], "roiWithType(13)");
  EXPECT_EQ(Lines(steps.end() - 3, steps.end()), (Lines{"deleteROI(5)", "deleteROI(10)", "setROIMode(2)"}));
  EXPECT_EQ(curve()->mode, pelmar::ROIModeSelected);
  EXPECT_EQ(sagittal->allROIsTagged("VertanaFilterLabel").size(), 5U);
  EXPECT_EQ(sagittal->allROIsTagged("VertanaFilterPlane").size(), 6U);
  expectLabelsBeforePlaneLines();
  EXPECT_FALSE(isOnAnySlice(line));
  EXPECT_FALSE(isOnAnySlice(polygon));
  EXPECT_FALSE(filter.inputLengthROI());
  EXPECT_FALSE(filter.inputOpenPolygonROI());
}

TEST_F(InputCapture, removingAnInputThatIsNotHeldDoesNothing) {
  filter.removeInputLengthROI();
  filter.removeInputOpenPolygonROI();
  EXPECT_EQ(host.calls.lines(), Lines());
}

TEST_F(InputCapture, removingAnInputDeletesOnlyThatOneAndPostsItsRemoval) {
  const auto line = inputLine(head, foot);
  const auto polygon = inputPolygon({head, foot});
  filter.removeInputLengthROI();
  EXPECT_FALSE(filter.inputLengthROI());
  EXPECT_TRUE(filter.inputOpenPolygonROI() == polygon);
  EXPECT_FALSE(isOnAnySlice(line));
  EXPECT_EQ(host.calls.count("deleteROI(5)"), 1U);
  filter.removeInputOpenPolygonROI();
  EXPECT_FALSE(filter.inputOpenPolygonROI());
  EXPECT_FALSE(isOnAnySlice(polygon));
  EXPECT_EQ(host.calls.count("deleteROI(10)"), 1U);
  EXPECT_EQ(host.center.posted, Lines(2, std::string(pelmar::PelmarRemoveROINotification)));
}

TEST_F(InputCapture, removingTheLineRedrawsTheViewerThatIsVerticalOnceTheLineIsGone) {
  // The polygon still binds the vertical viewer while the line's own view has gone with its deletion.
  filter.initPlugin();
  filter.setIsActive(true);
  filter.setWorkflow(1);
  filter.setWindowController(std::make_shared<VertanaWindowController>(host));
  filter.windowController()->window()->makeKeyAndOrderFront();
  ASSERT_TRUE(filter.isEditingActive());
  inputLine(head, foot);
  host.calls.clear();
  filter.removeInputLengthROI();
  EXPECT_EQ(host.calls.lines(), (Lines{"deleteROI(5)", "viewer1.needsDisplayUpdate()"}));
  inputPolygon({head, foot});
  host.calls.clear();
  filter.removeInputOpenPolygonROI();
  EXPECT_EQ(host.calls.lines(), (Lines{"deleteROI(10)", "viewer1.needsDisplayUpdate()"}));
}

TEST_F(InputCapture, withNoVerticalViewerTheRebuildDrawsNothing) {
  const auto line = inputLine(head, foot, pelmar::ROIModeDrawing, 10.0F);
  line->view = nullptr;
  filter.inputLengthROIDrawingEvent();
  EXPECT_FALSE(filter.openPolygonROI());
  EXPECT_EQ(host.calls.countContaining("roiWithType"), 0U);
}

}  // namespace
}  // namespace vertana
