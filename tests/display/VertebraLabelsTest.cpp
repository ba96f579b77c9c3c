#include <array>
#include <cmath>

#include "tests/geometry/SpineStudy.h"

namespace vertana {
namespace {

using pelmar::Colour;
using pelmar::PixelPoint;
using pelmar::Ref;
using testhost::TestROI;
using testhost::TestViewer;
using Lines = std::vector<std::string>;
using Points = std::vector<PixelPoint>;

/// The sagittal display's horizontal axis runs front to back, so labels go to side 1. Lumbar: 30 mm from the spine.
struct VertebraLabels : SpineStudy {
  VertebraLabels() {
    filter.setDisplayLabels(true);
    host.calls.clear();
  }

  static std::vector<Ref<TestROI>> labelsOn(const Ref<TestViewer>& viewer) {
    return viewer->allROIsTagged("VertanaFilterLabel");
  }
  static Lines namesOn(const Ref<TestViewer>& viewer) {
    Lines names;
    for (const auto& label : labelsOn(viewer)) names.push_back(label->caption);
    return names;
  }
  static Points originsOn(const Ref<TestViewer>& viewer) {
    Points origins;
    for (const auto& label : labelsOn(viewer)) origins.push_back(label->rectangle.origin);
    return origins;
  }
  Ref<TestROI> lineOf(const std::string& label) {
    return pelmar::ref_cast<TestROI>(filter.temporaryROIWithUID("kLabelsLinesTagPrefix " + label));
  }
  /// Planes without a curve, 40 mm apart, straight down.
  void holdPlanes(std::size_t count) {
    std::vector<IntervertebralPlane> planes;
    for (std::size_t i = 0; i < count; ++i) {
      planes.push_back(plane("p", {0, -100, 200 - 40 * static_cast<float>(i)}));
    }
    filter.setIntervertebralPlanes(planes);
  }
};

// --- side and distance ---

TEST_F(VertebraLabels, sideFollowsTheVerticalViewAsDisplayed) {
  EXPECT_EQ(filter.labelsSide(), 1);
  sagittal->view->displayOrientation = std::array<float, 9>{1, 0, 0, 0, 0, -1, 0, 1, 0};
  EXPECT_EQ(filter.labelsSide(), 0);
  // Only the first three numbers count.
  sagittal->view->displayOrientation = std::array<float, 9>{0, -0.5F, 0, 1, 0, 0, 1, 0, 0};
  EXPECT_EQ(filter.labelsSide(), 1);
  sagittal->view->displayOrientation = std::array<float, 9>{0, 0, 0, 1, 0, 0, 1, 0, 0};
  EXPECT_EQ(filter.labelsSide(), 1);
}

TEST_F(VertebraLabels, sideWithoutAVerticalViewerIsThatOfASagittalOne) {
  sagittal->view->displayOrientation = std::array<float, 9>{1, 0, 0, 0, 0, -1, 0, 1, 0};
  sagittal->orientationCode = 4;
  EXPECT_EQ(filter.labelsSide(), 1);
}

TEST_F(VertebraLabels, verticalViewerIsThatOfTheCurveNotTheSagittalOneInFront) {
  const auto coronal = host.addViewer(study, testhost::coronalSeries(2, 401));
  ASSERT_TRUE(host.frontMost == sagittal);
  EXPECT_EQ(filter.labelsSide(), 1) << "without a curve";
  filter.setOpenPolygonROI(host.addROI(10, coronal, 0, {{100, 0}, {100, 40}}));
  EXPECT_EQ(filter.labelsSide(), 0);
  filter.createLabels();
  // 30 pixels to the other side of the spine, on the sagittal view too: x = -100, y = -2 mm are its pixel column 198.
  EXPECT_EQ(originsOn(coronal), (Points{{130, 20}}));
  EXPECT_EQ(originsOn(sagittal), (Points{{228, 20}}));
  host.calls.clear();
  filter.removeLabels();
  EXPECT_EQ(host.calls.lines(), (Lines{"deleteROIs(5,false)", "viewer2.needsDisplayUpdate()"}));
}

TEST_F(VertebraLabels, distanceIsTheRegionsInPixelsOfTheShownImageInEachDirection) {
  sagittal->images[2]->geometry.spacingX = 0.5;
  sagittal->images[2]->geometry.spacingY = 2;
  sagittal->view->current = 2;
  for (const auto& [region, mm] : std::map<long, double>{{0, 15}, {1, 20}, {2, 30}, {-1, 0}}) {
    filter.setAnatomicalRegion(region);
    const auto distance = filter.labelsDistanceOnView(sagittal->view);
    EXPECT_EQ(distance.width, mm / 0.5) << region;
    EXPECT_EQ(distance.height, mm / 2) << region;
  }
}

// --- labels on the view of the curve ---

TEST_F(VertebraLabels, eachGapOfTheCurveGetsItsVertebraBesideTheSpine) {
  curveThrough({{100, 0}, {100, 40}, {110, 80}});
  filter.createLabelsOnView(sagittal->view);
  EXPECT_EQ(namesOn(sagittal), (Lines{"L1", "L2"}));
  // Gap 0: middle (100, 20); normals (0, 1) and (10, 40) / sqrt(1700); w = (n.y, -n.x), side 1 subtracts 30 w.
  const double length = std::sqrt(1700.0);
  const double nx = (0 + 10 / length) / 2;
  const double ny = (1 + 40 / length) / 2;
  const auto origins = originsOn(sagittal);
  EXPECT_NEAR(origins[0].x, 100 - 30 * ny, 1e-3);
  EXPECT_NEAR(origins[0].y, 20 + 30 * nx, 1e-3);
  // Gap 1: middle (105, 60); the last plane points onward, so both normals are (10, 40) / sqrt(1700).
  EXPECT_NEAR(origins[1].x, 105 - 30 * 40 / length, 1e-3);
  EXPECT_NEAR(origins[1].y, 60 + 30 * 10 / length, 1e-3);
}

TEST_F(VertebraLabels, onACoronalDisplayTheyGoToTheOtherSide) {
  curveThrough({{100, 0}, {100, 40}});
  sagittal->view->displayOrientation = std::array<float, 9>{1, 0, 0, 0, 0, -1, 0, 1, 0};
  filter.createLabelsOnView(sagittal->view);
  EXPECT_EQ(originsOn(sagittal), (Points{{130, 20}}));
}

TEST_F(VertebraLabels, curveFromFootToHeadIsNamedFromTheLastVertebraOnTheSameSide) {
  curveThrough({{100, 80}, {100, 40}, {100, 0}});
  filter.createLabelsOnView(sagittal->view);
  EXPECT_EQ(namesOn(sagittal), (Lines{"L5", "L4"}));
  // n = (0, -1), w = (-n.y, n.x) = (1, 0), side 1: 30 pixels to the left.
  EXPECT_EQ(originsOn(sagittal), (Points{{70, 60}, {70, 20}}));
}

TEST_F(VertebraLabels, footToHeadIsJudgedByThePatientNotByTheImage) {
  // Columns run to the head: further down the image is further towards the head.
  for (const auto& image : sagittal->images) image->geometry.column = {0, 0, 1};
  curveThrough({{100, 0}, {100, 40}, {100, 80}});
  filter.createLabelsOnView(sagittal->view);
  EXPECT_EQ(namesOn(sagittal), (Lines{"L5", "L4"}));
  // n = (0, 1), w = (-n.y, n.x) = (-1, 0), side 1: 30 pixels to the right.
  EXPECT_EQ(originsOn(sagittal), (Points{{130, 20}, {130, 60}}));
}

TEST_F(VertebraLabels, curveWithEndsAtTheSameHeightIsNamedFromTheFirstVertebra) {
  curveThrough({{100, 40}, {140, 40}});
  filter.createLabelsOnView(sagittal->view);
  EXPECT_EQ(namesOn(sagittal), Lines{"L1"});
}

TEST_F(VertebraLabels, labelIsATextOfTheMiddleImageOnEverySlice) {
  curveThrough({{100, 0}, {100, 40}});
  filter.createLabelsOnView(sagittal->view);
  const auto all = labelsOn(sagittal);
  ASSERT_EQ(all.size(), 1U);
  const auto& label = all[0];
  EXPECT_EQ(label->kind, 13);
  EXPECT_EQ(label->tags->tags, Lines{"VertanaFilterLabel"});
  EXPECT_EQ(label->width, 15.0F);
  EXPECT_FALSE(label->thicknessGlobally) << "set without the global flag";
  EXPECT_TRUE(label->keepsWindowSettings);
  EXPECT_TRUE(label->hiddenInKeyImages);
  EXPECT_TRUE(label->image == sagittal->images[1]) << "three images: index 1";
  EXPECT_TRUE(label->aliased);
  EXPECT_EQ(label->aliasIndex, 1);
  for (std::size_t slice = 0; slice < 3; ++slice) {
    const auto rois = sagittal->roisOnSlice(slice);
    EXPECT_TRUE(rois.back() == label) << slice;
  }
  EXPECT_EQ(host.calls.lines().back(), "viewer1.needsDisplayUpdate()");
}

TEST_F(VertebraLabels, middleImageOfAnEvenCountIsTheOneAfterTheMiddle) {
  const auto four = host.addViewer(study, testhost::sagittalSeries(4, 401));
  holdPlanes(2);
  filter.createLabelsOnView(four->view);
  ASSERT_EQ(labelsOn(four).size(), 1U);
  EXPECT_TRUE(labelsOn(four)[0]->image == four->images[2]);
  EXPECT_EQ(labelsOn(four)[0]->aliasIndex, 2);
}

TEST_F(VertebraLabels, labelKeepsTheSizeOfItsRectangle) {
  curveThrough({{100, 0}, {100, 40}});
  filter.createLabelsOnView(sagittal->view);
  EXPECT_EQ(labelsOn(sagittal)[0]->rectangle.size, (pelmar::PixelSize{0, 0})) << "a fresh one is empty";
}

TEST_F(VertebraLabels, connectorLineRunsFourFifthsOfTheWayFromTheSpineToTheLabel) {
  curveThrough({{100, 0}, {100, 40}, {100, 80}});
  filter.createLabelsOnView(sagittal->view);
  const auto line = lineOf("L2");
  ASSERT_TRUE(line);
  EXPECT_EQ(line->kind, 5) << "no arrow";
  EXPECT_EQ(line->positions(), (Points{{76, 60}, {100, 60}})) << "end first";
  EXPECT_EQ(line->colour, (Colour{1.0, 1.0, 0.0, 0.2}));
  EXPECT_EQ(line->tags->tags, (Lines{"kLabelsLinesTagPrefix L2", "VertanaFilterTemporayROI"}));
  EXPECT_TRUE(lineOf("L1"));
  EXPECT_FALSE(lineOf("L3"));
}

TEST_F(VertebraLabels, redrawingMovesTheConnectorLineInsteadOfAddingOne) {
  const auto curve = curveThrough({{100, 0}, {100, 40}});
  filter.createLabelsOnView(sagittal->view);
  const auto line = lineOf("L1");
  curve->pointList->elements() = {pelmar::MyPoint::point({200, 0}), pelmar::MyPoint::point({200, 40})};
  filter.computeIntervertebralPlanes();
  filter.createLabelsOnView(sagittal->view);
  EXPECT_TRUE(lineOf("L1") == line);
  EXPECT_EQ(line->positions(), (Points{{176, 20}, {200, 20}}));
  EXPECT_EQ(sagittal->allROIsTagged("kLabelsLinesTagPrefix L1").size(), 1U);
}

TEST_F(VertebraLabels, splineOfTheCurveIsAskedForFromFourPointsOn) {
  curveThrough({{100, 0}, {100, 40}, {100, 80}});
  filter.intervertebralPlanes();
  host.calls.clear();
  filter.createLabelsOnView(sagittal->view);
  EXPECT_EQ(host.calls.count("splinePoints(5)"), 0U);
  curveThrough({{100, 0}, {100, 40}, {100, 80}, {100, 120}});
  filter.computeIntervertebralPlanes();
  host.calls.clear();
  filter.createLabelsOnView(sagittal->view);
  EXPECT_EQ(host.calls.count("splinePoints(5)"), 1U);
}

TEST_F(VertebraLabels, splineThatIsAskedForDoesNotMoveTheLabels) {
  const auto curve = curveThrough({{100, 0}, {100, 40}, {100, 80}, {100, 120}});
  filter.intervertebralPlanes();
  curve->splineOverride = TestROI::Points(9, pelmar::MyPoint::point({5, 5}));
  filter.createLabelsOnView(sagittal->view);
  EXPECT_EQ(originsOn(sagittal)[1], (PixelPoint{70, 60}));
}

TEST_F(VertebraLabels, whenNoRegionIsSetLabelsSitOnTheSpineItself) {
  filter.setAnatomicalRegion(AnatomicalRegionNone);
  curveThrough({{100, 0}, {100, 40}});
  filter.setIntervertebralPlanes({{plane("", {-4, -100, 200}), plane("", {-4, -100, 160})}});
  filter.createLabelsOnView(sagittal->view);
  EXPECT_EQ(namesOn(sagittal), Lines{""});
  EXPECT_EQ(originsOn(sagittal), (Points{{100, 20}}));
}

// --- more or fewer gaps than labels ---

TEST_F(VertebraLabels, singleAnchorGetsNoLabelButTheOldOnesAreDeleted) {
  const auto old = host.addROI(13, sagittal, 2, {}, {"VertanaFilterLabel"});
  curveThrough({{100, 0}});
  filter.createLabelsOnView(sagittal->view);
  EXPECT_TRUE(labelsOn(sagittal).empty());
  EXPECT_EQ(host.calls.lines().back(), "viewer1.needsDisplayUpdate()");
}

TEST_F(VertebraLabels, gapsBeyondTheLabelListStayUnlabelled) {
  curveThrough({{100, 0}, {100, 10}, {100, 20}, {100, 30}, {100, 40}, {100, 50}, {100, 60}, {100, 70}});
  filter.createLabelsOnView(sagittal->view);
  EXPECT_EQ(namesOn(sagittal), (Lines{"L1", "L2", "L3", "L4", "L5"}));
}

TEST_F(VertebraLabels, fromFootToHeadTheSurplusGapsAreTheHeadMostOnes) {
  curveThrough({{100, 70}, {100, 60}, {100, 50}, {100, 40}, {100, 30}, {100, 20}, {100, 10}, {100, 0}});
  filter.createLabelsOnView(sagittal->view);
  EXPECT_EQ(namesOn(sagittal), (Lines{"L5", "L4", "L3", "L2", "L1"}));
  EXPECT_NEAR(originsOn(sagittal)[4].y, 25, 1e-3);
}

// --- labels on other views ---

TEST_F(VertebraLabels, otherViewsGetLabelsFromThePlanesWithoutConnectorLines) {
  const auto coronal = host.addViewer(study, testhost::coronalSeries(2, 401));
  curveThrough({{100, 0}, {100, 40}});
  filter.createLabelsOnView(coronal->view);
  EXPECT_EQ(namesOn(coronal), Lines{"L1"});
  // x = -4 mm is pixel 196 of the coronal view. The side is that of the vertical viewer, 1: 30 pixels to the left.
  EXPECT_EQ(originsOn(coronal), (Points{{166, 20}}));
  EXPECT_FALSE(lineOf("L1"));
  EXPECT_EQ(host.calls.lines().back(), "viewer2.needsDisplayUpdate()");
}

TEST_F(VertebraLabels, otherViewIsMeasuredByTheImageThatItShows) {
  const auto coronal = host.addViewer(study, testhost::coronalSeries(2, 401));
  auto& geometry = coronal->images[1]->geometry;
  geometry.origin = {-50, 2, 220};
  geometry.spacingX = 0.5;
  geometry.spacingY = 2;
  coronal->view->current = 1;
  const pelmar::Vector3f normal{0.6F, 0, -0.8F};
  filter.setIntervertebralPlanes({{plane("a", {10, -100, 200}, normal), plane("b", {40, -100, 160}, normal)}});
  filter.createLabelsOnView(coronal->view);
  EXPECT_EQ(namesOn(coronal), Lines{"L1"});
  ASSERT_EQ(originsOn(coronal).size(), 1U);
  // The planes lie at pixels (60 / 0.5, 20 / 2) and (90 / 0.5, 60 / 2), half way (150, 20). One millimetre along the
  // normal is (1.2, 0.4) pixels, of length sqrt(1.6): w = (0.4, -1.2) / sqrt(1.6). 30 mm are 60 pixels across and 15
  // down; side 1 subtracts.
  EXPECT_NEAR(originsOn(coronal)[0].x, 150 - 60 * 0.4 / std::sqrt(1.6), 1e-3);
  EXPECT_NEAR(originsOn(coronal)[0].y, 20 + 15 * 1.2 / std::sqrt(1.6), 1e-3);
}

TEST_F(VertebraLabels, storedPlanesAloneGiveLabels) {
  holdPlanes(3);
  filter.createLabelsOnView(sagittal->view);
  EXPECT_EQ(namesOn(sagittal), (Lines{"L1", "L2"}));
  EXPECT_EQ(originsOn(sagittal), (Points{{70, 20}, {70, 60}}));
  EXPECT_FALSE(lineOf("L1"));
}

TEST_F(VertebraLabels, planesFromFootToHeadAreNamedFromTheLastVertebra) {
  filter.setIntervertebralPlanes({{plane("a", {0, -100, 100}, {0, 0, 1}), plane("b", {0, -100, 140}, {0, 0, 1})}});
  filter.createLabelsOnView(sagittal->view);
  EXPECT_EQ(namesOn(sagittal), Lines{"L5"});
  EXPECT_EQ(originsOn(sagittal), (Points{{70, 80}}));
}

TEST_F(VertebraLabels, emptyPlaneListDeletesTheLabelsAndStops) {
  host.addROI(13, sagittal, 0, {}, {"VertanaFilterLabel"});
  filter.setIntervertebralPlanes(std::vector<IntervertebralPlane>{});
  host.calls.clear();
  filter.createLabelsOnView(sagittal->view);
  EXPECT_TRUE(labelsOn(sagittal).empty());
  EXPECT_EQ(host.calls.countContaining("needsDisplayUpdate"), 0U);
}

TEST_F(VertebraLabels, curveWithoutPointsIsRedrawnWithoutLabels) {
  // The stop for want of points is only for views that are labelled from the planes.
  curveThrough({});
  filter.createLabelsOnView(sagittal->view);
  EXPECT_EQ(host.calls.lines().back(), "viewer1.needsDisplayUpdate()");
}

// --- nothing to label, or nothing to be shown ---

TEST_F(VertebraLabels, colourImagesAreLeftAlone) {
  holdPlanes(3);
  host.addROI(13, sagittal, 0, {}, {"VertanaFilterLabel"});
  sagittal->images[0]->rgb = true;
  host.calls.clear();
  filter.createLabelsOnView(sagittal->view);
  EXPECT_TRUE(host.calls.lines().empty());
  EXPECT_EQ(labelsOn(sagittal).size(), 1U);
}

TEST_F(VertebraLabels, withoutCurveAndPlanesAnEmptySavedStateDeletesTheLabels) {
  host.addROI(13, sagittal, 0, {}, {"VertanaFilterLabel"});
  filter.setSavedDictionary(pelmar::Value::Dictionary{});
  filter.createLabelsOnView(sagittal->view);
  EXPECT_TRUE(labelsOn(sagittal).empty());
  EXPECT_TRUE(host.center.posted.empty());
}

TEST_F(VertebraLabels, withoutCurveAndPlanesASavedLabellingKeepsTheLabels) {
  host.addROI(13, sagittal, 0, {}, {"VertanaFilterLabel"});
  filter.setSavedDictionary(pelmar::Value::Dictionary{{"kAdditionalVertebra", false}});
  filter.createLabelsOnView(sagittal->view);
  EXPECT_EQ(labelsOn(sagittal).size(), 1U);
}

TEST_F(VertebraLabels, switchedOffTheLabelsGoAndTheLinesAreLeftAsTheyAre) {
  curveThrough({{100, 0}, {100, 40}});
  filter.createLabelsOnView(sagittal->view);
  filter.setDisplayLabels(false);
  const auto line = host.addROI(5, sagittal, 0, {}, {"kLabelsLinesTagPrefix L1", "VertanaFilterTemporayROI"});
  host.addROI(13, sagittal, 1, {}, {"VertanaFilterLabel"});
  filter.createLabelsOnView(sagittal->view);
  EXPECT_TRUE(labelsOn(sagittal).empty());
  EXPECT_TRUE(lineOf("L1") == line);
}

TEST_F(VertebraLabels, rebuildingReplacesTheLabelsOfThatViewOnlyAndSilently) {
  const auto coronal = host.addViewer(study, testhost::coronalSeries(2, 401));
  host.addROI(13, coronal, 0, {}, {"VertanaFilterLabel"});
  holdPlanes(3);
  filter.createLabelsOnView(sagittal->view);
  const auto first = labelsOn(sagittal);
  filter.createLabelsOnView(sagittal->view);
  EXPECT_EQ(labelsOn(sagittal).size(), 2U);
  EXPECT_FALSE(labelsOn(sagittal)[0] == first[0]);
  EXPECT_EQ(labelsOn(coronal).size(), 1U);
  EXPECT_TRUE(host.center.posted.empty());
}

// --- which views ---

TEST_F(VertebraLabels, viewsOfTheStudyWithCodesUpToThreeAreLabelled) {
  holdPlanes(2);
  for (const long code : {0, 1, 2, 3}) {
    filter.removeLabels();
    host.orientationOfPixArray = code;
    filter.createLabelsOnViewer(sagittal->view);
    EXPECT_EQ(labelsOn(sagittal).size(), 1U) << code;
  }
  for (const long code : {4, 5, -1}) {
    filter.removeLabels();
    host.orientationOfPixArray = code;
    filter.createLabelsOnViewer(sagittal->view);
    EXPECT_TRUE(labelsOn(sagittal).empty()) << code;
  }
}

TEST_F(VertebraLabels, viewOfAnotherStudyIsNotLabelled) {
  holdPlanes(2);
  sagittal->view->study = host.addStudy("9.9");
  filter.createLabelsOnViewer(sagittal->view);
  EXPECT_TRUE(labelsOn(sagittal).empty());
  // Another record of the same study counts as the same.
  sagittal->view->study = host.addStudy("1.2.3");
  filter.createLabelsOnViewer(sagittal->view);
  EXPECT_EQ(labelsOn(sagittal).size(), 1U);
}

TEST_F(VertebraLabels, createLabelsCoversEveryOpenViewerOfTheStudy) {
  const auto coronal = host.addViewer(study, testhost::coronalSeries(2, 401));
  const auto axial = host.addViewer(study, testhost::axialSeries(3, 101));
  const auto foreign = host.addViewer(host.addStudy("9.9"), testhost::sagittalSeries(1, 401));
  holdPlanes(2);
  filter.createLabels();
  EXPECT_EQ(labelsOn(sagittal).size(), 1U);
  EXPECT_EQ(labelsOn(coronal).size(), 1U);
  EXPECT_TRUE(labelsOn(axial).empty());
  EXPECT_TRUE(labelsOn(foreign).empty());
}

// --- finding and removing ---

TEST_F(VertebraLabels, labelIsFoundOnceForEveryImageThatHoldsIt) {
  const auto coronal = host.addViewer(study, testhost::coronalSeries(2, 401));
  const auto foreign = host.addViewer(host.addStudy("9.9"), testhost::sagittalSeries(1, 401));
  host.addROI(13, foreign, 0, {}, {"VertanaFilterLabel"});
  host.addROI(13, sagittal, 0, {}, {"VertanaFilterAxialLabel"});
  host.addROI(5, sagittal, 0, {}, {"VertanaFilterLabel"});
  holdPlanes(2);
  filter.createLabels();
  EXPECT_EQ(filter.labelsOnView(sagittal->view).size(), 3U);
  EXPECT_EQ(filter.labelsOnView(coronal->view).size(), 2U);
  EXPECT_EQ(filter.labels().size(), 5U) << "viewers of the study only";
}

TEST_F(VertebraLabels, removingLabelsDeletesAllOfTheStudySilentlyAndRedrawsTheVerticalViewer) {
  const auto coronal = host.addViewer(study, testhost::coronalSeries(2, 401));
  holdPlanes(2);
  filter.createLabels();
  host.calls.clear();
  filter.removeLabels();
  EXPECT_TRUE(labelsOn(sagittal).empty());
  EXPECT_TRUE(labelsOn(coronal).empty());
  EXPECT_EQ(host.calls.lines(), (Lines{"deleteROIs(5,false)", "viewer1.needsDisplayUpdate()"}));
}

TEST_F(VertebraLabels, linesAreFoundByTheirTagAnywhereInATag) {
  host.addROI(5, sagittal, 0, {}, {"x kLabelsLinesTagPrefix y", "VertanaFilterTemporayROI"});
  host.addROI(5, sagittal, 1, {}, {"kLabelsLinesTagPrefix L4", "VertanaFilterTemporayROI"});
  const auto unmarked = host.addROI(5, sagittal, 1, {}, {"kLabelsLinesTagPrefix L5"});
  const auto mark = host.addROI(19, sagittal, 2, {}, {"kLabelsLinesTag", "VertanaFilterTemporayROI"});
  const auto coronal = host.addViewer(study, testhost::coronalSeries(2, 401));
  host.addROI(5, coronal, 0, {}, {"kLabelsLinesTagPrefix L3", "VertanaFilterTemporayROI"})->view = nullptr;
  host.calls.clear();
  filter.removeLabelsLines();
  EXPECT_EQ(sagittal->allROIs(), (std::vector<Ref<TestROI>>{unmarked, mark}));
  EXPECT_TRUE(coronal->allROIs().empty());
  EXPECT_EQ(host.calls.lines(),
            (Lines{"deleteROIs(3,false)", "viewer1.needsDisplayUpdate()", "viewer1.needsDisplayUpdate()"}))
      << "once for each line; that of the second viewer lay on no view";
}

// --- the switch for labels ---

TEST_F(VertebraLabels, switchingOffRemovesLinesAndLabelsAndSwitchingOnRebuildsBoth) {
  curveThrough({{100, 0}, {100, 40}, {100, 80}});
  filter.createLabels();
  filter.setDisplayLabels(false);
  EXPECT_FALSE(filter.displayLabels());
  EXPECT_TRUE(labelsOn(sagittal).empty());
  EXPECT_FALSE(lineOf("L1"));
  filter.setDisplayLabels(true);
  EXPECT_EQ(labelsOn(sagittal).size(), 2U);
  EXPECT_TRUE(lineOf("L1"));
  EXPECT_TRUE(lineOf("L2"));
}

TEST_F(VertebraLabels, switchingToTheValueAlreadySetDoesNothing) {
  holdPlanes(2);
  filter.setDisplayLabels(true);
  EXPECT_TRUE(host.calls.lines().empty());
}

TEST_F(VertebraLabels, switchAlsoGovernsTheAxialNames) {
  const auto axial = host.addViewer(study, testhost::axialSeries(1, 101));
  filter.setIntervertebralPlanes({{plane("L4-L5", {0, 0, 0})}});
  filter.setDisplayLabels(false);
  filter.setDisplayLabels(true);
  EXPECT_EQ(axial->allROIsTagged("VertanaFilterAxialLabel").size(), 1U);
  filter.setDisplayLabels(false);
  EXPECT_TRUE(axial->allROIsTagged("VertanaFilterAxialLabel").empty());
}

// --- the switch for the tool ---

TEST_F(VertebraLabels, drawModeKeyFollowsTheRegion) {
  const std::map<long, std::string> keys{
      {0, "VertanaDrawMode-0"}, {1, "VertanaDrawMode-1"}, {2, "VertanaDrawMode-2"}, {-1, "VertanaDrawMode--1"}};
  for (const auto& [region, key] : keys) {
    filter.setAnatomicalRegion(region);
    EXPECT_EQ(filter.drawModeUserDefaultsKey(), key);
  }
}

TEST_F(VertebraLabels, drawModeIsStoredForTheCurrentRegionOnly) {
  filter.setAnatomicalRegion(AnatomicalRegionThoracic);
  filter.setDrawMode(DrawModeOpenPolygon);
  ASSERT_EQ(host.defaults.values.size(), 1U);
  EXPECT_EQ(host.defaults.values.begin()->first, "VertanaDrawMode-1");
  EXPECT_EQ(host.defaults.values.begin()->second, pelmar::Value(1));
  EXPECT_TRUE(host.defaults.values.begin()->second.isInteger());
}

TEST_F(VertebraLabels, drawModeAlreadySetDoesNothing) {
  filter.setDrawMode(DrawModeLength);
  EXPECT_TRUE(host.calls.lines().empty());
  EXPECT_TRUE(host.defaults.values.empty());
}

TEST_F(VertebraLabels, drawModeSelectsItsToolOnTheFirstVerticalViewer) {
  const auto other = host.addViewer(study, testhost::sagittalSeries(1, 401));
  filter.setDrawMode(1);
  EXPECT_EQ(sagittal->roiToolTag, 10);
  filter.setDrawMode(0);
  EXPECT_EQ(sagittal->roiToolTag, 5);
  filter.setDrawMode(2);
  EXPECT_EQ(sagittal->roiToolTag, 5) << "other values select no tool";
  EXPECT_EQ(host.defaults.values.at("VertanaDrawMode-2"), pelmar::Value(2));
  EXPECT_EQ(other->roiToolTag, 0);
}

TEST_F(VertebraLabels, anotherDrawModeThrowsEverythingAwayThenSelectsTheToolThenStoresTheDefault) {
  inputLine({100, 0}, {100, 50});
  inputPolygon({{100, 0}, {100, 50}});
  curveThrough({{100, 0}, {100, 40}});
  filter.createLabels();
  filter.createPlanesROIs();
  host.calls.clear();
  std::vector<unsigned long> modesAtRemovals;
  host.center.addObserver(this, pelmar::PelmarRemoveROINotification, {},
                          [&](const auto&) { modesAtRemovals.push_back(filter.drawMode()); });
  filter.setDrawMode(1);
  host.center.removeObserver(this);
  EXPECT_TRUE(sagittal->allROIs().empty());
  EXPECT_FALSE(filter.inputLengthROI());
  EXPECT_FALSE(filter.inputOpenPolygonROI());
  EXPECT_FALSE(filter.openPolygonROI());
  // Line, polygon, curve, two plane lines on three slices, the label's connector line, one label on three slices; then
  // the tool, and last the default.
  EXPECT_EQ(host.calls.containing({"deleteROI", "setROIToolTag", "setObject"}),
            (Lines{"deleteROI(5)", "deleteROI(10)", "deleteROIs(1,false)", "deleteROIs(6,false)", "deleteROIs(1,false)",
                   "deleteROIs(3,false)", "viewer1.setROIToolTag(10)", "userDefaults.setObject(VertanaDrawMode-2)"}));
  EXPECT_EQ(modesAtRemovals, (std::vector<unsigned long>{1, 1})) << "the mode is set before anything is removed";
}

TEST_F(VertebraLabels, drawModeWithoutAVerticalViewerIsStoredAllTheSame) {
  sagittal->orientationCode = 4;
  filter.setDrawMode(1);
  EXPECT_EQ(filter.drawMode(), 1U);
  EXPECT_EQ(host.calls.countContaining("setROIToolTag"), 0U);
  EXPECT_EQ(host.defaults.values.at("VertanaDrawMode-2"), pelmar::Value(1));
}

}  // namespace
}  // namespace vertana
