// Lifetime: what the plug-in registers for, a fresh object, switching on and off, what dealloc lets go.

#include "tests/plugin/LabellingFixture.h"

namespace testhost {
namespace {

using pelmar::Ref;

using Entry = LabellingFixture;

TEST_F(Entry, initPluginObservesTheNineNotificationsInOrder) {
  const std::vector<std::string> nine{"PelmarROIChangeNotification",
                                      "PelmarRemoveROINotification",
                                      "PelmarAddROINotification",
                                      "PelmarCloseViewerNotification",
                                      "PelmarViewerControllerDidLoadImagesNotification",
                                      "PelmarDCMViewIndexChangedNotification",
                                      "PelmarViewerWillChangeNotification",
                                      "PelmarViewOriginChanged",
                                      "PelmarViewScaleChanged"};
  EXPECT_EQ(host.center.observedNames(), nine);
}

TEST_F(Entry, initPluginShowsLabelsAndAssumesNoAdditionalVertebra) {
  EXPECT_TRUE(filter.displayLabels());
  EXPECT_FALSE(filter.additionalVertebra());
}

TEST_F(Entry, commandsRegisterNoFurtherObservers) {
  chooseLabels();
  choose("Other", sagittal);
  EXPECT_EQ(host.center.observedNames().size(), 9U);
}

TEST(EntryOnAnUnfitHost, initPluginRegistersNothingAndSetsNothing) {
  TestHost host;
  host.capabilities.erase(pelmar::Capability::ROIStringTags);
  vertana::VertanaFilter filter(host);
  filter.initPlugin();
  EXPECT_TRUE(host.center.observedNames().empty());
  EXPECT_FALSE(filter.displayLabels());
  EXPECT_TRUE(host.alerts.shown.empty()) << "the error is told at the menu command";
  filter.dealloc();
}

TEST(FreshObject, hasNothingAndEditsNothing) {
  TestHost host;
  vertana::VertanaFilter filter(host);
  EXPECT_EQ(filter.workflow(), 0);
  EXPECT_FALSE(filter.isActive());
  EXPECT_FALSE(filter.isEditingActive());
  EXPECT_FALSE(filter.displayLabels());
  EXPECT_EQ(filter.anatomicalRegion(), 0);
  EXPECT_EQ(filter.drawMode(), 0U);
  EXPECT_EQ(filter.previousTool(), 0);
  EXPECT_EQ(filter.previousROITool(), 0);
  EXPECT_FALSE(filter.study());
  EXPECT_FALSE(filter.inputLengthROI());
  EXPECT_FALSE(filter.inputOpenPolygonROI());
  EXPECT_FALSE(filter.openPolygonROI());
  EXPECT_FALSE(filter.intervertebralPlanes());
  EXPECT_FALSE(filter.windowController());
  EXPECT_FALSE(filter.savedDictionary());
  filter.dealloc();
}

TEST_F(Entry, isEditingActiveFollowsThePaletteUnlessNoWorkflowRuns) {
  EXPECT_FALSE(filter.isEditingActive()) << "no palette";
  chooseLabels();
  EXPECT_TRUE(filter.isEditingActive());
  filter.setWorkflow(-1);
  EXPECT_FALSE(filter.isEditingActive());
  filter.setWorkflow(0);
  EXPECT_TRUE(filter.isEditingActive()) << "0 is the value of a fresh object and does not forbid editing";
  palette()->visible = false;
  EXPECT_FALSE(filter.isEditingActive());
}

class SwitchingTo : public LabellingFixture, public ::testing::WithParamInterface<bool> {};

TEST_P(SwitchingTo, isActiveDeletesHalfDrawnInputsWhateverTheValue) {
  chooseLabels();
  const auto line = press(5, sagittal, {{0, 0}, {10, 0}});
  const auto polygon = press(10, sagittal, {{0, 0}, {10, 0}});
  ASSERT_TRUE(filter.inputLengthROI() == line);
  ASSERT_TRUE(filter.inputOpenPolygonROI() == polygon);
  filter.setIsActive(GetParam());
  EXPECT_EQ(filter.isActive(), GetParam());
  EXPECT_FALSE(filter.inputLengthROI());
  EXPECT_FALSE(filter.inputOpenPolygonROI());
  EXPECT_TRUE(sagittal->allROIs().empty());
}

INSTANTIATE_TEST_SUITE_P(Either, SwitchingTo, ::testing::Bool());

TEST(Dealloc, unregistersAndLetsGoOfStudyCurvePlanesAndState) {
  TestHost host;
  const auto study = host.addStudy("1.2.3", "MRI SPINE");
  const auto viewer = host.addViewer(study, sagittalSeries(3));
  vertana::VertanaFilter filter(host);
  filter.initPlugin();
  filter.setViewerController(viewer);
  filter.filterImage("Labels");
  filter.setOpenPolygonROI(host.addROI(10, viewer, 0, {{0, 0}, {0, 9}}));
  ASSERT_TRUE(filter.intervertebralPlanes());
  ASSERT_TRUE(filter.savedDictionary());
  const auto line = host.addROI(5, viewer, 0, {{0, 0}, {9, 9}});
  filter.setInputLengthROI(line);
  host.calls.clear();

  filter.dealloc();
  EXPECT_TRUE(host.center.observedNames().empty());
  EXPECT_FALSE(filter.study());
  EXPECT_FALSE(filter.openPolygonROI());
  EXPECT_FALSE(filter.intervertebralPlanes());
  EXPECT_FALSE(filter.savedDictionary());
  EXPECT_FALSE(filter.PluginFilter::viewerController()) << "the base class's clean-up";
}

TEST(Dealloc, touchesNeitherPaletteNorInputNorTools) {
  TestHost host;
  const auto viewer = host.addViewer(host.addStudy("1.2.3", "MRI SPINE"), sagittalSeries(3));
  vertana::VertanaFilter filter(host);
  filter.initPlugin();
  filter.setViewerController(viewer);
  filter.filterImage("Labels");
  const auto line = host.addROI(5, viewer, 0, {{0, 0}, {9, 9}});
  filter.setInputLengthROI(line);
  host.calls.clear();

  filter.dealloc();
  EXPECT_TRUE(host.windows.newest()->isVisible());
  EXPECT_TRUE(viewer->sliceLists[0]->containsObject(line));
  EXPECT_EQ(host.calls.countContaining("Tool"), 0U);
  EXPECT_EQ(host.calls.countContaining("close"), 0U);
}

}  // namespace
}  // namespace testhost
