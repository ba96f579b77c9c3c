// Which views get vertebra labels, and how the labels are found and removed.

#include <algorithm>
#include <cmath>

#include "VertebraLabels.h"

namespace vertana {
namespace {

using pelmar::Ref;
using testhost::TestROI;
using Lines = std::vector<std::string>;
using Points = std::vector<pelmar::PixelPoint>;

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
  const auto text = host.addROI(13, sagittal, 0, {}, {"VertanaFilterAxialLabel"});
  const auto line = host.addROI(5, sagittal, 0, {}, {"VertanaFilterLabel"});
  holdPlanes(2);
  filter.createLabels();
  const auto shown = sagittal->roisOnSlice(0);
  EXPECT_EQ(std::count(shown.begin(), shown.end(), text), 1) << "a text that is no label is not removed with them";
  EXPECT_EQ(std::count(shown.begin(), shown.end(), line), 1) << "nor is what is no text";
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

}  // namespace
}  // namespace vertana
