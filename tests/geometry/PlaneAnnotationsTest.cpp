#include <algorithm>
#include <cmath>

#include "tests/geometry/SpineStudy.h"

namespace vertana {
namespace {

using pelmar::PixelPoint;
using pelmar::Ref;
using testhost::TestROI;
using Lines = std::vector<std::string>;

struct PlaneAnnotations : SpineStudy {
  /// Two planes at pixels (100, 50) and (120, 80), normals straight down the image.
  void holdTwoPlanes() {
    filter.setIntervertebralPlanes({{plane("L4-L5", {0, -100, 150}), plane("L5-S1", {0, -80, 120})}});
  }
  std::vector<Ref<TestROI>> lines() const { return sagittal->allROIsTagged("VertanaFilterPlane"); }
  bool isShown(const Ref<TestROI>& roi) const {
    const auto all = sagittal->allROIs();
    return std::find(all.begin(), all.end(), roi) != all.end();
  }
};

// --- drawing ---

TEST_F(PlaneAnnotations, lineIsThirtyMillimetresByTheHorizontalSpacingWhateverTheVerticalOne) {
  for (const double spacingY : {0.25, 0.5, 3.0}) {
    for (const auto& image : sagittal->images) {
      image->geometry.spacingX = 0.5;
      image->geometry.spacingY = spacingY;
    }
    // 100 mm along the row: pixel 200; 50 mm down.
    filter.setIntervertebralPlanes({{plane("L4-L5", {0, -100, 150})}});
    filter.createPlanesROIs();
    ASSERT_EQ(lines().size(), 1U);
    const auto points = lines()[0]->positions();
    ASSERT_EQ(points.size(), 2U);
    // The normal points towards +y: the first point is on the +x side, 30 pixels away.
    EXPECT_NEAR(points[0].x, 230, 1e-5);
    EXPECT_NEAR(points[1].x, 170, 1e-5);
    EXPECT_NEAR(points[0].y, 50 / spacingY, 1e-5);
    EXPECT_NEAR(points[1].y, 50 / spacingY, 1e-5);
  }
}

TEST_F(PlaneAnnotations, normalTowardsTheHeadTurnsTheLineRound) {
  filter.setIntervertebralPlanes({{plane("L4-L5", {0, -100, 150}, {0, 0, 1})}});
  filter.createPlanesROIs();
  EXPECT_NEAR(lines()[0]->positions()[0].x, 85, 1e-9);
  EXPECT_NEAR(lines()[0]->positions()[1].x, 115, 1e-9);
}

TEST_F(PlaneAnnotations, lineIsPerpendicularInPixelsToTheMillimetreAlongTheNormal) {
  for (const auto& image : sagittal->images) {
    image->geometry.spacingX = 0.5;
    image->geometry.spacingY = 2;
  }
  // One millimetre along (0, 0.6, -0.8) is (1.2, 0.4) pixels, of length sqrt(1.6); u = (0.4, -1.2) / sqrt(1.6).
  filter.setIntervertebralPlanes({{plane("L4-L5", {0, -100, 100}, {0, 0.6F, -0.8F})}});
  filter.createPlanesROIs();
  const auto points = lines()[0]->positions();
  const double length = std::sqrt(1.6);
  EXPECT_NEAR(points[0].x, 200 + 30 * 0.4 / length, 1e-3);
  EXPECT_NEAR(points[0].y, 50 - 30 * 1.2 / length, 1e-3);
  EXPECT_NEAR(points[1].x, 200 - 30 * 0.4 / length, 1e-3);
  EXPECT_NEAR(points[1].y, 50 + 30 * 1.2 / length, 1e-3);
}

TEST_F(PlaneAnnotations, planesPointAndVectorAreNotChangedByDrawing) {
  holdTwoPlanes();
  filter.createPlanesROIs();
  const auto& plane = filter.intervertebralPlanes()->front();
  expectVector(plane.point, 0, -100, 150, 0);
  expectVector(plane.vector, 0, 0, -1, 0);
}

TEST_F(PlaneAnnotations, linesAreGreyUnselectableTemporaryAnnotations) {
  holdTwoPlanes();
  sagittal->view->current = 2;
  filter.createPlanesROIs();
  ASSERT_EQ(lines().size(), 2U);
  for (const auto& line : lines()) {
    EXPECT_EQ(line->kind, 5);
    EXPECT_EQ(line->tags->tags, (Lines{"VertanaFilterPlane", "VertanaFilterTemporayROI"}));
    EXPECT_EQ(line->colour, (pelmar::Colour{0.8, 0.8, 0.8, 0.8}));
    EXPECT_EQ(line->colourGlobally, std::optional<bool>(false));
    EXPECT_EQ(line->width, 2) << "thickness is the host's default";
    EXPECT_FALSE(line->thicknessGlobally);
    EXPECT_FALSE(line->showsText);
    EXPECT_TRUE(line->keepsWindowSettings);
    EXPECT_FALSE(line->isSelectable);
    EXPECT_TRUE(line->hiddenInKeyImages);
    EXPECT_TRUE(line->aliased);
    EXPECT_EQ(line->aliasIndex, 2);
    EXPECT_TRUE(line->view.lock() == sagittal->view);
  }
  EXPECT_EQ(host.calls.lines().back(), "viewer1.needsDisplayUpdate()");
}

TEST_F(PlaneAnnotations, linesStandAtTheEndOfEverySlicesListInPlaneOrder) {
  const auto other = host.addROI(19, sagittal, 1, {{1, 1}});
  holdTwoPlanes();
  filter.createPlanesROIs();
  const auto made = lines();
  ASSERT_EQ(made.size(), 2U);
  EXPECT_EQ(made[0]->positions()[0], (PixelPoint{115, 50}));
  EXPECT_EQ(made[1]->positions()[0], (PixelPoint{135, 80}));
  EXPECT_EQ(sagittal->roisOnSlice(0), made);
  EXPECT_EQ(sagittal->roisOnSlice(1), (std::vector<Ref<TestROI>>{other, made[0], made[1]}));
  EXPECT_EQ(sagittal->roisOnSlice(2), made);
}

TEST_F(PlaneAnnotations, pixelsAreThoseOfTheImageThatIsShown) {
  sagittal->images[2]->geometry.origin = {4, -100, 200};
  sagittal->view->current = 2;
  filter.setIntervertebralPlanes({{plane("L4-L5", {0, -60, 150})}});
  filter.createPlanesROIs();
  EXPECT_EQ(lines()[0]->positions()[0], (PixelPoint{40 + 15, 50}));
}

TEST_F(PlaneAnnotations, creatingTwiceLeavesOneLineAPlane) {
  holdTwoPlanes();
  filter.createPlanesROIs();
  const auto first = lines();
  filter.createPlanesROIs();
  EXPECT_EQ(lines().size(), 2U);
  EXPECT_EQ(sagittal->roisOnSlice(1).size(), 2U);
  EXPECT_FALSE(isShown(first[0])) << "rebuilt from scratch";
}

TEST_F(PlaneAnnotations, planesAreComputedFromTheCurveWhenTheyAreNot) {
  curveThrough({{100, 0}, {100, 10}, {100, 20}});
  filter.createPlanesROIs();
  EXPECT_EQ(lines().size(), 3U);
}

TEST_F(PlaneAnnotations, withoutPlanesTheOldLinesGoAndNoneAreDrawn) {
  holdTwoPlanes();
  filter.createPlanesROIs();
  filter.setIntervertebralPlanes(std::nullopt);
  host.calls.clear();
  filter.createPlanesROIs();
  EXPECT_TRUE(lines().empty());
  EXPECT_EQ(host.calls.lines(), (Lines{"deleteROIs(6,false)", "viewer1.needsDisplayUpdate()"}));
}

TEST_F(PlaneAnnotations, withoutAVerticalViewerNothingIsFoundRemovedOrDrawn) {
  holdTwoPlanes();
  filter.createPlanesROIs();
  sagittal->orientationCode = 4;
  EXPECT_TRUE(filter.planesROIs().empty());
  filter.removePlanesROIs();
  filter.createPlanesROIs();
  EXPECT_EQ(lines().size(), 2U) << "the old ones, untouched";
}

TEST_F(PlaneAnnotations, normalAcrossTheSliceGivesALineOfNonFinitePoints) {
  filter.setIntervertebralPlanes({{plane("L4-L5", {0, -100, 150}, {1, 0, 0}), plane("L5-S1", {0, -80, 120})}});
  filter.createPlanesROIs();
  ASSERT_EQ(lines().size(), 2U);
  EXPECT_FALSE(std::isfinite(lines()[0]->positions()[0].x));
  EXPECT_EQ(lines()[1]->positions()[0], (PixelPoint{135, 80})) << "the next plane is drawn all the same";
}

TEST_F(PlaneAnnotations, linesBelongToTheViewerOfTheCurveNotToTheSagittalOneInFront) {
  const auto coronal = host.addViewer(study, testhost::coronalSeries(2, 401));
  ASSERT_TRUE(host.frontMost == sagittal);
  filter.setOpenPolygonROI(host.addROI(10, coronal, 0, {{100, 50}, {120, 80}}));
  filter.setIntervertebralPlanes({{plane("L4-L5", {-100, 0, 150})}});
  const auto old = host.addROI(5, coronal, 1, {}, {"VertanaFilterPlane"});
  host.calls.clear();
  filter.createPlanesROIs();
  EXPECT_EQ(host.calls.lines().front(), "deleteROIs(1,false)") << "that one is found";
  EXPECT_EQ(host.calls.count("viewer1.needsDisplayUpdate()"), 0U);
  EXPECT_EQ(host.calls.count("viewer2.needsDisplayUpdate()"), 2U) << "for the removal and for the new line";
  EXPECT_TRUE(lines().empty()) << "none on the sagittal viewer";
  const auto made = coronal->allROIsTagged("VertanaFilterPlane");
  ASSERT_EQ(made.size(), 1U);
  EXPECT_FALSE(made[0] == old);
  // x = -100 mm is pixel 100 of the coronal image.
  EXPECT_EQ(made[0]->positions(), (std::vector<PixelPoint>{{115, 50}, {85, 50}}));
  EXPECT_EQ(filter.planesROIs().size(), 2U) << "once for each coronal slice";
}

// --- finding and removing ---

TEST_F(PlaneAnnotations, eachLineIsFoundOnceForEverySliceThatHoldsIt) {
  holdTwoPlanes();
  filter.createPlanesROIs();
  const auto found = filter.planesROIs();
  EXPECT_EQ(found.size(), 6U);
  EXPECT_EQ(std::count(found.begin(), found.end(), lines()[0]), 3);
}

TEST_F(PlaneAnnotations, onlyLengthLinesWithTheTagAreFound) {
  host.addROI(10, sagittal, 0, {}, {"VertanaFilterPlane"});
  host.addROI(5, sagittal, 0, {}, {"VertanaFilterTemporayROI"});
  host.addROI(5, sagittal, 0, {}, {"VertanaFilterPlanes"});
  const auto line = host.addROI(5, sagittal, 2, {}, {"x", "VertanaFilterPlane"});
  const auto found = filter.planesROIs();
  ASSERT_EQ(found.size(), 1U);
  EXPECT_TRUE(found[0] == line);
}

TEST_F(PlaneAnnotations, removingMakesLinesSelectableAndDeletesThemInOneSilentCall) {
  holdTwoPlanes();
  filter.createPlanesROIs();
  const auto removed = lines();
  host.calls.clear();
  filter.removePlanesROIs();
  EXPECT_TRUE(lines().empty());
  for (const auto& line : removed) EXPECT_TRUE(line->isSelectable);
  EXPECT_EQ(host.calls.lines(), (Lines{"deleteROIs(6,false)", "viewer1.needsDisplayUpdate()"}));
  EXPECT_TRUE(host.center.posted.empty());
}

TEST_F(PlaneAnnotations, removingTemporaryAnnotationsRemovesThemToo) {
  holdTwoPlanes();
  filter.createPlanesROIs();
  filter.removeTemporaryROIs();
  EXPECT_TRUE(lines().empty());
}

// --- the whole construction ---

TEST_F(PlaneAnnotations, removingTheConstructionDeletesInputsCurvePlaneLinesAndMarksSilently) {
  holdTwoPlanes();
  filter.createPlanesROIs();
  const auto line = inputLine({100, 0}, {100, 50});
  const auto polygon = inputPolygon({{100, 0}, {100, 50}});
  const auto curve = curveThrough({{100, 0}, {100, 50}});
  const auto mark = host.addROI(19, sagittal, 2, {}, {"VertanaFilterTemporayROI"});
  const auto label = host.addROI(13, sagittal, 1, {}, {"VertanaFilterLabel"});
  const auto persons = host.addROI(5, sagittal, 1, {});
  host.calls.clear();
  filter.removeConstructionROIs();
  EXPECT_EQ(host.calls.lines().front(), "deleteROIs(3,false)") << "inputs and curve in one call, first";
  EXPECT_EQ(host.calls.lines().back(), "viewer1.needsDisplayUpdate()");
  EXPECT_FALSE(filter.inputLengthROI());
  EXPECT_FALSE(filter.inputOpenPolygonROI());
  EXPECT_FALSE(filter.openPolygonROI());
  for (const auto& gone : {line, polygon, curve, mark}) EXPECT_FALSE(isShown(gone));
  EXPECT_TRUE(lines().empty());
  EXPECT_TRUE(isShown(label)) << "labels stay";
  EXPECT_TRUE(isShown(persons)) << "the person's own annotations stay";
  EXPECT_EQ(heldPlaneNames(), (Lines{"L4-L5", "L5-S1"})) << "the planes stay";
  EXPECT_TRUE(host.center.posted.empty());
}

TEST_F(PlaneAnnotations, removingTheConstructionWithNothingHeldStillRemovesPlaneLinesAndMarks) {
  holdTwoPlanes();
  filter.createPlanesROIs();
  const auto mark = host.addROI(19, sagittal, 2, {}, {"VertanaFilterTemporayROI"});
  const auto other = host.addROI(10, sagittal, 0, {});
  const auto removed = lines();
  filter.removeConstructionROIs();
  EXPECT_TRUE(lines().empty());
  for (const auto& line : removed) EXPECT_TRUE(line->isSelectable) << "removed as plane lines, not only as marks";
  EXPECT_FALSE(isShown(mark));
  EXPECT_TRUE(isShown(other));
}

TEST_F(PlaneAnnotations, removingTheConstructionRemovesTheMarksOfEveryViewer) {
  const auto coronal = host.addViewer(study, testhost::coronalSeries(2, 101));
  const auto foreign = host.addViewer(host.addStudy("9.9"), testhost::sagittalSeries(1, 101));
  for (const auto& viewer : {coronal, foreign}) host.addROI(19, viewer, 0, {}, {"VertanaFilterTemporayROI"});
  filter.removeConstructionROIs();
  EXPECT_TRUE(coronal->allROIs().empty());
  EXPECT_TRUE(foreign->allROIs().empty());
}

TEST_F(PlaneAnnotations, onlyWhatIsHeldIsDeletedWithTheConstruction) {
  const auto curve = curveThrough({{100, 0}, {100, 50}});
  host.calls.clear();
  filter.removeConstructionROIs();
  EXPECT_EQ(host.calls.lines().front(), "deleteROIs(1,false)");
  EXPECT_FALSE(isShown(curve));
}

}  // namespace
}  // namespace vertana
