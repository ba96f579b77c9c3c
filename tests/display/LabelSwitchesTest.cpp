// The two switches that govern the labelling: labels shown or not, and the tool that draws the spine.

#include "VertebraLabels.h"

namespace vertana {
namespace {

using Lines = std::vector<std::string>;

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
