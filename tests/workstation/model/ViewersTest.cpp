#include "workstation/model/Viewer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "Recorder.h"
#include "TestImages.h"
#include "workstation/model/EventLoop.h"
#include "workstation/model/Workstation.h"

namespace workstation {
namespace {

using pelmar::Ref;
using test::Lines;

class Viewers : public testing::Test {
 protected:
  Viewers() { workstation.addImages(test::smallStudy()); }

  Workstation workstation;
  test::Recorder recorder{workstation.api()};
};

const StackId sagittalStack{"1.2.3", 0, 0};
const StackId axialStack{"1.2.3", 1, 0};

TEST_F(Viewers, OpeningAStudyOpensEachStackInOrderAndPostsEachLoading) {
  std::vector<std::size_t> listed;
  recorder.react = [&](const std::string&, const pelmar::Notification& posted) {
    const auto viewer = pelmar::ref_cast<pelmar::ViewerController>(posted.object);
    EXPECT_TRUE(viewer->isEverythingLoaded());
    EXPECT_EQ(viewer, workstation.api().viewerControllerClass().frontMostDisplayed2DViewer());
    listed.push_back(workstation.api().viewerControllersList().size());
  };
  const auto numbers = workstation.openStudy("1.2.3");
  ASSERT_TRUE(numbers);
  EXPECT_EQ(*numbers, (std::vector<int>{0, 1}));
  EXPECT_EQ(recorder.lines, (Lines{"loaded", "loaded"}));
  EXPECT_EQ(listed, (std::vector<std::size_t>{1, 2}));
  EXPECT_EQ(workstation.viewer(0)->stack, sagittalStack);
  EXPECT_EQ(workstation.viewer(1)->orientationCode, 4);
  EXPECT_EQ(workstation.viewer(1)->slices, 3);
}

TEST_F(Viewers, AStudyOrStackThatIsNotThereIsRefusedByName) {
  const auto unknown = workstation.openStudy("7");
  ASSERT_FALSE(unknown);
  EXPECT_EQ(unknown.problem, "The study \"7\" cannot be opened: it was not added.");
  EXPECT_EQ(workstation.openViewer({"1.2.3", 0, 1}).problem,
            "There is no stack 1 in series 0 (counted from 0) of the study \"1.2.3\".");
  EXPECT_FALSE(workstation.findStack("1.2.3", 3).has_value());
  EXPECT_EQ(workstation.findStack("1.2.3", 2), axialStack);
  EXPECT_FALSE(workstation.closeViewer(0));
}

TEST_F(Viewers, WhatNoImageCanBeDoneToIsRefusedAndChangesNothing) {
  const int viewer = *workstation.openViewer(sagittalStack);
  const ViewerInfo before = *workstation.viewer(viewer);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();
  for (const double scale : {0.0, -1.0, nan, infinity}) {
    EXPECT_EQ(workstation.zoom(viewer, scale).problem, "The zoom of viewer 0 must be a finite number above 0.");
  }
  const std::string moved = "The image of viewer 0 can only be moved by finite numbers.";
  EXPECT_EQ(workstation.pan(viewer, nan, 0).problem, moved);
  EXPECT_EQ(workstation.pan(viewer, 0, infinity).problem, moved);
  EXPECT_EQ(workstation.rotate(viewer, nan).problem, "The image of viewer 0 can only be turned by a finite angle.");
  const std::string tooSmall = "A viewer's window must have a width and a height above 0.";
  EXPECT_EQ(workstation.setViewerFrame(viewer, {0, 0, 0, 100}).problem, tooSmall);
  EXPECT_EQ(workstation.setViewerFrame(viewer, {0, 0, 100, nan}).problem, tooSmall);
  EXPECT_EQ(workstation.chooseMenu(viewer, "Labels").problem,
            "The menu entry \"Labels\" cannot be chosen: no plug-in is loaded.");
  const ViewerInfo after = *workstation.viewer(viewer);
  EXPECT_EQ(after.scale, before.scale);
  EXPECT_EQ(after.origin.x, before.origin.x);
  EXPECT_EQ(after.origin.y, before.origin.y);
  EXPECT_EQ(after.rotationDegrees, before.rotationDegrees);
  EXPECT_EQ(after.frame.width, before.frame.width);
  EXPECT_EQ(after.frame.height, before.frame.height);
}

TEST_F(Viewers, AViewerLeavesTheListBeforeItsClosingIsPostedAndIsStillWholeThen) {
  const int viewer = *workstation.openViewer(sagittalStack);
  const int other = *workstation.openViewer(axialStack);
  ASSERT_TRUE(workstation.bringToFront(viewer));
  ASSERT_TRUE(workstation.drawLine(viewer, 0, {1, 1}, {1, 50}));
  const Ref<pelmar::ROI> line = workstation.annotations(viewer).at(0).roi;
  recorder.take();
  bool whole = false;
  recorder.react = [&](const std::string&, const pelmar::Notification& posted) {
    const auto closing = pelmar::ref_cast<pelmar::ViewerController>(posted.object);
    whole = workstation.api().viewerControllersList().size() == 1 && closing->imageView()->curDCM() &&
            closing->currentStudy()->studyInstanceUID() == "1.2.3" && line->curView() == closing->imageView() &&
            workstation.api().viewerControllerClass().frontMostDisplayed2DViewer() == workstation.controller(other);
  };
  ASSERT_TRUE(workstation.closeViewer(viewer));
  EXPECT_EQ(recorder.lines, Lines{"close"});
  EXPECT_TRUE(whole);
  EXPECT_FALSE(line->curView());
  EXPECT_EQ(workstation.frontViewer(), other);
}

TEST_F(Viewers, WhatIsBeingDrawnGoesWithItsViewerAndWhatIsDrawnComesBack) {
  const int viewer = *workstation.openViewer(sagittalStack);
  ASSERT_TRUE(workstation.drawLine(viewer, 0, {1, 1}, {1, 50}));
  ASSERT_TRUE(workstation.drawPolygon(viewer, 0, {{9, 9}, {9, 30}}, false));
  pelmar::WeakRef<pelmar::ROI> line;
  pelmar::WeakRef<pelmar::ROI> polygon;
  {
    const auto drawn = workstation.annotations(viewer, 0);
    ASSERT_EQ(drawn.size(), 2u);
    line = drawn[0].roi;
    polygon = drawn[1].roi;
  }
  ASSERT_EQ(polygon.lock()->ROImode(), pelmar::ROIModeDrawing);
  ASSERT_TRUE(workstation.closeViewer(viewer));
  EXPECT_FALSE(polygon.lock());
  const auto back = workstation.annotations(*workstation.openViewer(sagittalStack));
  ASSERT_EQ(back.size(), 1u);
  EXPECT_TRUE(back[0].roi == line.lock());
}

TEST_F(Viewers, NumbersAreNeverUsedAgain) {
  EXPECT_EQ(*workstation.openViewer(sagittalStack), 0);
  ASSERT_TRUE(workstation.closeViewer(0));
  EXPECT_EQ(*workstation.openViewer(sagittalStack), 1);
}

TEST_F(Viewers, SwitchingTheSeriesPostsWillChangeWhileTheOldOneIsWholeThenLoaded) {
  const int viewer = *workstation.openViewer(sagittalStack);
  ASSERT_TRUE(workstation.drawLine(viewer, 0, {1, 1}, {1, 50}));
  const Ref<pelmar::ROI> line = workstation.annotations(viewer).at(0).roi;
  recorder.take();
  bool shownBefore = false;
  std::size_t slicesAfter = 0;
  recorder.react = [&](const std::string& posting, const pelmar::Notification&) {
    if (posting == "willChange") shownBefore = line->curView() == workstation.controller(viewer)->imageView();
    if (posting == "loaded") slicesAfter = workstation.controller(viewer)->imageView()->dcmPixList()->count();
  };
  ASSERT_TRUE(workstation.switchSeries(viewer, axialStack));
  EXPECT_EQ(recorder.lines, (Lines{"willChange", "loaded"}));
  EXPECT_TRUE(shownBefore);
  EXPECT_EQ(slicesAfter, 3u);
  EXPECT_FALSE(line->curView());
  EXPECT_TRUE(workstation.annotations(viewer).empty());
  EXPECT_EQ(workstation.viewer(viewer)->orientationCode, 4);
}

TEST_F(Viewers, ThePersonsOwnAnnotationsReturnWithTheSeriesAndThePluginsDoNot) {
  const int viewer = *workstation.openViewer(sagittalStack);
  const auto drawn = workstation.drawLine(viewer, 1, {1, 1}, {1, 50});
  ASSERT_TRUE(drawn);
  const auto deleted = workstation.drawLine(viewer, 1, {9, 1}, {9, 50});
  ASSERT_TRUE(deleted);
  const Ref<pelmar::ROI> gone = workstation.annotations(viewer, 1).at(1).roi;
  const auto view = workstation.controller(viewer)->imageView();
  view->dcmRoiList()->objectAtIndex(0)->addObject(workstation.api().roiClass().roiWithType(13, view));
  ASSERT_TRUE(workstation.switchSeries(viewer, axialStack));
  workstation.api().roiClass().deleteROI(gone);  // while its series is not shown
  ASSERT_TRUE(workstation.switchSeries(viewer, sagittalStack));
  const auto back = workstation.annotations(viewer);
  ASSERT_EQ(back.size(), 1u);
  EXPECT_EQ(back[0].id, *drawn);
  EXPECT_EQ(back[0].slices, std::vector<int>{1});
  EXPECT_EQ(back[0].roi->curView(), view);
  ASSERT_TRUE(workstation.closeViewer(viewer));
  const int again = *workstation.openViewer(sagittalStack);
  EXPECT_EQ(workstation.annotations(again).at(0).id, *drawn);
}

TEST_F(Viewers, APolygonThatIsBeingDrawnEndsWithItsSeries) {
  const int viewer = *workstation.openViewer(sagittalStack);
  ASSERT_TRUE(workstation.drawPolygon(viewer, 0, {{1, 1}, {1, 30}}, false));
  const Ref<pelmar::ROI> polygon = workstation.annotations(viewer).at(0).roi;
  ASSERT_TRUE(workstation.switchSeries(viewer, axialStack));
  EXPECT_EQ(polygon->ROImode(), 2);
  EXPECT_FALSE(workstation.endDrawing(viewer));
}

TEST_F(Viewers, ScrollingPostsOnlyWhenAnotherSliceIsShown) {
  const int viewer = *workstation.openViewer(axialStack);
  recorder.take();
  ASSERT_TRUE(workstation.scroll(viewer, 2));
  EXPECT_EQ(recorder.take(), Lines{"index"});
  EXPECT_EQ(workstation.controller(viewer)->imageView()->curImage(), 2);
  EXPECT_EQ(workstation.sliceRecord(viewer, 2)->sopInstanceUid, "1.2.3");
  ASSERT_TRUE(workstation.scroll(viewer, 2));
  EXPECT_TRUE(recorder.take().empty());
  const Outcome beyond = workstation.scroll(viewer, 3);
  ASSERT_FALSE(beyond);
  EXPECT_EQ(*beyond.problem, "Viewer 0 has no slice 3: its slices are 0 to 2.");
  EXPECT_FALSE(workstation.scroll(viewer, -1));
}

TEST_F(Viewers, ZoomAndPanPostAndRotationAndFlipsDoNot) {
  const int viewer = *workstation.openViewer(axialStack);
  recorder.take();
  ASSERT_TRUE(workstation.zoom(viewer, 2.5));
  ASSERT_TRUE(workstation.pan(viewer, 3, -4));
  ASSERT_TRUE(workstation.pan(viewer, 1, 1));
  EXPECT_EQ(recorder.take(), (Lines{"scale", "origin", "origin"}));
  ASSERT_TRUE(workstation.rotate(viewer, 90));
  ASSERT_TRUE(workstation.flip(viewer, FlipAxis::vertical));
  EXPECT_TRUE(recorder.take().empty());
  const auto info = workstation.viewer(viewer);
  EXPECT_EQ(info->scale, 2.5);
  EXPECT_EQ(info->origin.x, 4);
  EXPECT_EQ(info->origin.y, -3);
  EXPECT_TRUE(info->flippedVertically);
  EXPECT_FALSE(workstation.zoom(viewer, 0));
}

TEST_F(Viewers, EachHasItsOwnZoomPanRotationAndFlipsWhichLastUntilItsSeriesChanges) {
  const int viewer = *workstation.openViewer(axialStack);
  const int other = *workstation.openViewer(axialStack);
  const double fitted = workstation.viewer(other)->scale;
  ASSERT_TRUE(workstation.zoom(viewer, 2.5));
  ASSERT_TRUE(workstation.pan(viewer, 3, -4));
  ASSERT_TRUE(workstation.rotate(viewer, 90));
  ASSERT_TRUE(workstation.flip(viewer, FlipAxis::horizontal));
  const auto expectView = [&](int number, double scale, double panX, double rotation, bool flipped) {
    const auto info = workstation.viewer(number);
    EXPECT_EQ(info->scale, scale);
    EXPECT_EQ(info->origin.x, panX);
    EXPECT_EQ(info->rotationDegrees, rotation);
    EXPECT_EQ(info->flippedHorizontally, flipped);
  };
  ASSERT_TRUE(workstation.scroll(viewer, 1));
  expectView(viewer, 2.5, 3, 90, true);
  expectView(other, fitted, 0, 0, false);
  ASSERT_TRUE(workstation.switchSeries(viewer, sagittalStack));
  expectView(viewer, fitted, 0, 0, false);  // both series have 100 x 80 pixels
}

TEST(ViewersOfMixedSizes, ConvertWithTheImageThatIsShown) {
  Workstation workstation;
  ImageRecord small = test::axial("1.2", 2, 2, 5);
  small.columns = 50;
  small.rows = 40;
  small.geometry->spacingY = 1;  // pixels twice as high as wide
  workstation.addImages({test::axial("1.2", 2, 1, 10), small});
  const int viewer = *workstation.openViewer({"1.2.3", 0, 0});
  const pelmar::FrameRect frame = workstation.viewer(viewer)->viewFrame;
  const pelmar::ViewPoint middle{frame.width / 2, frame.height / 2};
  const double scale = workstation.viewer(viewer)->scale;
  EXPECT_EQ(workstation.pixelAt(viewer, middle), (pelmar::PixelPoint{49.5, 39.5}));
  ASSERT_TRUE(workstation.scroll(viewer, 1));
  EXPECT_EQ(workstation.pixelAt(viewer, middle), (pelmar::PixelPoint{24.5, 19.5}));
  const pelmar::ViewPoint below = workstation.viewPointAt(viewer, {24.5, 29.5});
  EXPECT_DOUBLE_EQ(middle.y - below.y, 10 * scale * 2);
}

TEST_F(Viewers, EveryNotificationIsPostedWithinAnEventAndEachOperationIsOne) {
  Lines heard;
  recorder.react = [&](const std::string& posting, const pelmar::Notification&) {
    EXPECT_TRUE(workstation.events().busy()) << posting;
    if (std::find(heard.begin(), heard.end(), posting) == heard.end()) heard.push_back(posting);
  };
  int finished = 0;
  workstation.events().setFinished([&] { ++finished; });
  const int viewer = *workstation.openViewer(axialStack);
  ASSERT_TRUE(workstation.scroll(viewer, 1));
  ASSERT_TRUE(workstation.zoom(viewer, 2));
  ASSERT_TRUE(workstation.pan(viewer, 1, 1));
  EXPECT_EQ(finished, 4);
  const auto line = workstation.drawLine(viewer, 1, {1, 1}, {1, 50}, 3);
  ASSERT_TRUE(line);
  EXPECT_EQ(finished, 4 + 7) << "a scroll, the choice of the tool, a press, three moves and a release";
  ASSERT_TRUE(workstation.deleteAnnotation(viewer, *line));
  ASSERT_TRUE(workstation.switchSeries(viewer, sagittalStack));
  ASSERT_TRUE(workstation.closeViewer(viewer));
  EXPECT_EQ(finished, 4 + 7 + 3);
  EXPECT_EQ(heard, (Lines{"loaded", "index", "scale", "origin", "add", "change", "remove", "willChange", "close"}));
  EXPECT_FALSE(workstation.events().busy());
  workstation.events().setFinished(nullptr);
}

TEST_F(Viewers, StandSideBySideOnTheScreenAndFillItFromTheTopLeft) {
  ASSERT_TRUE(workstation.openStudy("1.2.3"));
  const auto all = workstation.viewers();
  EXPECT_EQ(all[0].frame.x, 0);
  EXPECT_EQ(all[0].frame.y, 600);  // the upper half of 1200 points
  EXPECT_EQ(all[0].frame.width, 640);
  EXPECT_EQ(all[1].frame.x, 640);
  // The axial image is 100 x 80 pixels in 640 x 600 points: 6.4 points a pixel.
  EXPECT_DOUBLE_EQ(all[1].scale, 6.4);
  const auto view = workstation.controller(1)->imageView();
  const auto onScreen = view->window()->convertBaseToScreen(view->convertPoint({10, 20}, nullptr));
  EXPECT_EQ(onScreen.x, 650);
  EXPECT_EQ(onScreen.y, 620);
}

TEST_F(Viewers, OneThatCloseFreesItsPlace) {
  ASSERT_TRUE(workstation.openStudy("1.2.3"));
  ASSERT_TRUE(workstation.closeViewer(0));
  EXPECT_EQ(workstation.viewer(*workstation.openViewer(axialStack))->frame.x, 0);
}

TEST_F(Viewers, ThePluginBringsOneToTheFrontThroughItsWindow) {
  ASSERT_TRUE(workstation.openStudy("1.2.3"));
  EXPECT_EQ(workstation.frontViewer(), 1);
  workstation.controller(0)->window()->makeKeyAndOrderFront();
  EXPECT_EQ(workstation.frontViewer(), 0);
  EXPECT_EQ(workstation.api().viewerControllersList().at(0), workstation.controller(0));
}

TEST_F(Viewers, ToolsAreKeptAViewer) {
  ASSERT_TRUE(workstation.openStudy("1.2.3"));
  const auto controller = workstation.controller(0);
  EXPECT_EQ(controller->ROIToolTag(), 0);
  EXPECT_EQ(controller->imageView()->currentTool(), MouseToolWindowLevel);
  controller->setROIToolTag(10);
  EXPECT_EQ(controller->ROIToolTag(), 10);
  EXPECT_EQ(controller->imageView()->currentTool(), MouseToolAnnotate);
  controller->setToolTag(MouseToolZoom);
  EXPECT_EQ(controller->ROIToolTag(), 10);
  EXPECT_EQ(controller->imageView()->currentTool(), MouseToolZoom);
  EXPECT_EQ(workstation.controller(1)->ROIToolTag(), 0);
}

TEST(ViewersOfAnOldHost, HaveNoAnnotationToolTag) {
  Options options;
  options.lacking = {pelmar::Capability::ViewerControllerROIToolTag};
  Workstation workstation(options);
  workstation.addImages(test::smallStudy());
  const int viewer = *workstation.openViewer(sagittalStack);
  ASSERT_TRUE(workstation.selectRoiTool(viewer, 10));
  EXPECT_FALSE(workstation.controller(viewer)->supports(pelmar::Capability::ViewerControllerROIToolTag));
  EXPECT_EQ(workstation.controller(viewer)->ROIToolTag(), 0);
  EXPECT_EQ(workstation.viewer(viewer)->roiTool, 10);
}

TEST_F(Viewers, TheSlicesAreTheSameObjectsInEveryViewerOfTheStack) {
  const int first = *workstation.openViewer(axialStack);
  const int second = *workstation.openViewer(axialStack);
  EXPECT_EQ(workstation.controller(first)->imageView()->curDCM(),
            workstation.controller(second)->imageView()->curDCM());
}

TEST_F(Viewers, OrientationOfAListOfSlicesIsThatOfTheStack) {
  const int viewer = *workstation.openViewer(axialStack);
  auto& functions = workstation.api().viewerControllerClass();
  long code = 77;
  functions.computeOriginalOrientationForPixArray(nullptr, code);
  EXPECT_EQ(code, 77);
  functions.computeOriginalOrientationForPixArray(workstation.controller(viewer)->imageView()->dcmPixList(), code);
  EXPECT_EQ(code, 4);
}

TEST_F(Viewers, StudiesTellTheirIdentityAndWhatIsAbsent) {
  ImageRecord bare = test::axial("5", 1, 1, 0);
  bare.studyInstanceUid = "8";
  bare.studyDescription.reset();
  workstation.addImages({bare});
  const int one = *workstation.openViewer(sagittalStack);
  const int same = *workstation.openViewer(axialStack);
  const int other = *workstation.openViewer({"8", 0, 0});
  const auto study = [&](int viewer) { return workstation.controller(viewer)->currentStudy(); };
  EXPECT_TRUE(study(one)->objectID()->isEqual(study(same)->objectID()));
  EXPECT_FALSE(study(one)->objectID()->isEqual(study(other)->objectID()));
  EXPECT_FALSE(study(one)->objectID()->isEqual(nullptr));
  EXPECT_EQ(study(one)->studyName(), "Spine");
  EXPECT_FALSE(study(other)->studyName().has_value());
  EXPECT_EQ(study(one)->series()->size(), 2u);
  EXPECT_EQ(study(one)->series()->at(1)->images()->size(), 3u);
  ASSERT_TRUE(study(one)->PelmarSRSeries().has_value());
  EXPECT_TRUE(study(one)->PelmarSRSeries()->empty());
  EXPECT_FALSE(study(one)->SRImageWithSeriesID(1, "x"));
}

TEST_F(Viewers, AddingAStudyAgainKeepsTheOneThatIsThere) {
  const Study* before = workstation.study("1.2.3");
  EXPECT_EQ(workstation.addImages(test::smallStudy()), std::vector<std::string>{"1.2.3"});
  EXPECT_EQ(workstation.study("1.2.3"), before);
}

TEST_F(Viewers, QuittingClosesThemInTheOrderOfOpening) {
  ASSERT_TRUE(workstation.openStudy("1.2.3"));
  ASSERT_TRUE(workstation.bringToFront(0));
  recorder.take();
  std::vector<long> codes;
  recorder.react = [&](const std::string&, const pelmar::Notification& posted) {
    codes.push_back(pelmar::ref_cast<pelmar::ViewerController>(posted.object)->orientationVector());
  };
  workstation.quit();
  EXPECT_EQ(recorder.lines, (Lines{"close", "close"}));
  EXPECT_EQ(codes, (std::vector<long>{0, 4}));
  EXPECT_TRUE(workstation.viewers().empty());
}

}  // namespace
}  // namespace workstation
