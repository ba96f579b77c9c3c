// Where the vertebra labels stand, and what they are.

#include <array>
#include <cmath>

#include "VertebraLabels.h"

namespace vertana {
namespace {

using pelmar::Colour;
using pelmar::PixelPoint;
using testhost::TestROI;
using Lines = std::vector<std::string>;
using Points = std::vector<PixelPoint>;

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
  // Each of the three in its place: the second component is found once the first has been set aside.
  sagittal->view->displayOrientation = std::array<float, 9>{0.9F, 0.3F, 0, 0, 0, 1, 0, 1, 0};
  EXPECT_EQ(filter.labelsSide(), 1);
  sagittal->view->displayOrientation = std::array<float, 9>{0.9F, 0, 0.3F, 0, 0, 1, 0, 1, 0};
  EXPECT_EQ(filter.labelsSide(), 0);
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
  host.rois.freshSize = {30, 11};
  curveThrough({{100, 0}, {100, 40}});
  filter.createLabelsOnView(sagittal->view);
  EXPECT_EQ(labelsOn(sagittal)[0]->rectangle.size, (pelmar::PixelSize{30, 11}));
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

TEST_F(VertebraLabels, whenNoRegionIsSetTheCurvesOnePlaneIsEnoughForALabel) {
  // Without a region there is one disc, and so one plane for the curve's two vertices.
  filter.setAnatomicalRegion(AnatomicalRegionNone);
  curveThrough({{100, 0}, {100, 40}});
  ASSERT_EQ(filter.intervertebralPlanes()->size(), 1U);
  filter.createLabelsOnView(sagittal->view);
  EXPECT_EQ(namesOn(sagittal), Lines{""});
  EXPECT_EQ(originsOn(sagittal), (Points{{100, 20}}));
}

// --- more or fewer gaps than labels ---

TEST_F(VertebraLabels, gapWhoseLowerPlaneIsMissingIsPlacedByTheUpperOneAlone) {
  curveThrough({{100, 0}, {100, 40}, {100, 80}});
  filter.setIntervertebralPlanes({{plane("a", {-4, -100, 200}), plane("b", {-4, -100, 160})}});
  filter.createLabelsOnView(sagittal->view);
  // The normals are (0, 1) and, of the third plane, nothing: their mean is half as long, and so is the distance.
  EXPECT_EQ(originsOn(sagittal), (Points{{70, 20}, {85, 60}}));
}

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

}  // namespace
}  // namespace vertana
