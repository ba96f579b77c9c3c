// What the plug-in hears while a person draws.
#include "ContractHost.h"

namespace contract {
namespace {

using pelmar::PixelPoint;
using pelmar::Ref;
using pelmar::ROI;

class Drawing : public OnEveryHost {
 protected:
  Recorder recorder{api()};
  void choose(long tool) { viewer()->setROIToolTag(tool); }
  void click(PixelPoint at) {
    host->press(0, at);
    host->release(0, at);
  }
  /// The one annotation of the slice shown; nil when there is none or more.
  Ref<ROI> only() {
    const auto shown = list(static_cast<std::size_t>(view()->curImage()));
    return shown->count() == 1 ? shown->objectAtIndex(0) : Ref<ROI>();
  }
};
ON_EVERY_HOST(Drawing);

TEST_P(Drawing, aLineIsAddedOnPressChangesOnEachMoveAndIsSelectedOnRelease) {
  host->scroll(0, 1);
  choose(5);
  recorder.take();
  host->press(0, {10, 20});
  EXPECT_EQ(recorder.take(), Lines{"AddROI (1)"});
  ASSERT_TRUE(only());
  EXPECT_EQ(only()->type(), 5);
  EXPECT_EQ(only()->ROImode(), 1);
  EXPECT_TRUE(only()->curView() == view());
  EXPECT_TRUE(only()->pix() == view()->curDCM());
  host->move(0, {20, 30});
  EXPECT_EQ(recorder.take(), Lines{"ROIChange (1)"});
  host->move(0, {30, 60});
  EXPECT_EQ(recorder.take(), Lines{"ROIChange (1)"});
  EXPECT_EQ(only()->points()->count(), 2U);
  EXPECT_EQ(only()->pointAtIndex(0), (PixelPoint{10, 20}));
  EXPECT_EQ(only()->pointAtIndex(1), (PixelPoint{30, 60}));
  host->release(0, {30, 60});
  EXPECT_EQ(recorder.take(), Lines{"ROIChange mouseUp (2)"});
  EXPECT_EQ(list(0)->count(), 0U);
}

TEST_P(Drawing, ofALineIsInTheListOfTheSliceBeforeItIsTold) {
  choose(5);
  bool listed = false;
  recorder.react = [&](const std::string&, const pelmar::Notification& posted) {
    listed = list(0)->containsObject(annotationOf(posted));
  };
  host->press(0, {10, 20});
  EXPECT_TRUE(listed);
}

TEST_P(Drawing, aPolygonChangesOnPressAndReleaseOfEachClickAndADoubleClickEndsIt) {
  choose(10);
  recorder.take();
  host->press(0, {10, 10});
  EXPECT_EQ(recorder.take(), (Lines{"AddROI (1)", "ROIChange (1)"}));
  host->release(0, {10, 10});
  EXPECT_EQ(recorder.take(), Lines{"ROIChange mouseUp (1)"});
  click({10, 30});
  EXPECT_EQ(recorder.take(), (Lines{"ROIChange (1)", "ROIChange mouseUp (1)"}));
  click({12, 50});
  EXPECT_EQ(recorder.take(), (Lines{"ROIChange (1)", "ROIChange mouseUp (1)"}));
  host->doubleClick(0, {12, 50});
  EXPECT_EQ(recorder.take(), Lines{"ROIChange mouseUp (2)"});
  ASSERT_TRUE(only());
  EXPECT_EQ(only()->type(), 10);
  EXPECT_EQ(only()->points()->count(), 3U) << "a double click adds no vertex";
  EXPECT_EQ(only()->pointAtIndex(2), (PixelPoint{12, 50}));
  host->release(0, {12, 50});
  EXPECT_EQ(recorder.take(), Lines{});
}

TEST_P(Drawing, aPolygonIsEndedByReturn) {
  choose(10);
  click({10, 10});
  click({10, 40});
  recorder.take();
  host->pressReturn(0);
  EXPECT_EQ(recorder.take(), Lines{"ROIChange mouseUp (2)"});
  EXPECT_EQ(only()->points()->count(), 2U);
}

TEST_P(Drawing, doubleClickAndReturnStartNothing) {
  choose(10);
  host->doubleClick(0, {10, 10});
  host->pressReturn(0);
  EXPECT_EQ(recorder.take(), Lines{});
  EXPECT_EQ(list(0)->count(), 0U);
}

TEST_P(Drawing, stoppedByCodeAPolygonIsFinishedSilentlyAndTheReleaseFindsItSo) {
  choose(10);
  click({10, 10});
  recorder.take();
  recorder.react = [&](const std::string& line, const pelmar::Notification&) {
    if (line == "ROIChange (1)") view()->stopROIEditingForce(true);
  };
  host->press(0, {10, 40});
  EXPECT_EQ(recorder.take(), Lines{"ROIChange (1)"}) << "stopping posts nothing";
  EXPECT_EQ(only()->ROImode(), 2);
  host->release(0, {10, 40});
  EXPECT_EQ(recorder.take(), Lines{"ROIChange mouseUp (2)"});
  host->doubleClick(0, {10, 40});
  EXPECT_EQ(recorder.take(), Lines{});
  EXPECT_EQ(only()->points()->count(), 2U);
}

TEST_P(Drawing, stoppingWithNothingBeingDrawnDoesNothing) {
  const auto roi = annotation(5, {0}, {{1, 1}, {9, 9}});
  view()->stopROIEditingForce(true);
  EXPECT_EQ(roi->ROImode(), 0);
  EXPECT_EQ(recorder.take(), Lines{});
}

TEST_P(Drawing, isEndedByAnyChoiceOfTool) {
  choose(10);
  click({10, 10});
  click({10, 40});
  recorder.take();
  viewer()->setToolTag(1);
  EXPECT_EQ(recorder.take(), Lines{});
  EXPECT_EQ(only()->ROImode(), 2);
  EXPECT_EQ(view()->currentTool(), 1);
  host->press(0, {60, 60});
  host->release(0, {60, 60});
  EXPECT_EQ(list(0)->count(), 1U) << "the left button does not draw any more";
  EXPECT_EQ(recorder.take(), Lines{});
}

TEST_P(Drawing, withFewerThanTwoDistinctPointsIsDeletedByAChoiceOfTool) {
  choose(10);
  click({10, 10});
  click({10, 10});
  recorder.take();
  choose(5);
  EXPECT_EQ(recorder.take(), Lines{"RemoveROI (2)"});
  EXPECT_EQ(list(0)->count(), 0U);
  host->press(0, {30, 30});
  recorder.take();
  viewer()->setToolTag(0);
  EXPECT_EQ(recorder.take(), Lines{"RemoveROI (2)"});
  host->release(0, {30, 30});
  EXPECT_EQ(recorder.take(), Lines{});
}

TEST_P(Drawing, goesOnQuietlyWhenThePluginDeletesTheLine) {
  choose(5);
  recorder.react = [&](const std::string& line, const pelmar::Notification& posted) {
    if (line == "ROIChange (1)") api().roiClass().deleteROI(annotationOf(posted));
  };
  host->press(0, {10, 10});
  host->move(0, {10, 40});
  host->move(0, {10, 50});
  host->release(0, {10, 50});
  EXPECT_EQ(recorder.take(), (Lines{"AddROI (1)", "ROIChange (1)", "RemoveROI (1)"}));
  EXPECT_EQ(list(0)->count(), 0U);
}

TEST_P(Drawing, usesTheToolThatIsChosen) {
  EXPECT_TRUE(viewer()->supports(pelmar::Capability::ViewerControllerROIToolTag));
  choose(5);
  EXPECT_EQ(viewer()->ROIToolTag(), 5);
  choose(10);
  EXPECT_EQ(viewer()->ROIToolTag(), 10);
  viewer()->setToolTag(2);
  EXPECT_EQ(viewer()->ROIToolTag(), 10) << "the annotation tool is another choice than the mouse tool";
}

}  // namespace
}  // namespace contract
