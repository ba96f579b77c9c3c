#include "workstation/model/Drawing.h"

#include "DrawnOn.h"

namespace workstation {
namespace {

using pelmar::PixelPoint;
using pelmar::Ref;
using pelmar::ROI;
using test::Lines;

class DrawingByHand : public test::DrawnOn {
 protected:
  void choose(long tool) { ASSERT_TRUE(workstation.selectRoiTool(viewer, tool)); }
  void doubleClick(double x, double y) { ASSERT_TRUE(workstation.doubleClick(viewer, PixelPoint{x, y})); }
  void click(double x, double y) {
    press(x, y);
    release(x, y);
  }
  Ref<ROI> only() const {
    const auto infos = workstation.annotations(viewer);
    return infos.size() == 1 ? infos[0].roi : Ref<ROI>();
  }
};

TEST_F(DrawingByHand, ALineIsAddedOnPressChangesOnMovesAndIsSelectedOnRelease) {
  choose(5);
  press(10, 20);
  EXPECT_EQ(recorder.take(), Lines{"add"});
  ASSERT_TRUE(only());
  EXPECT_EQ(only()->ROImode(), 1);
  EXPECT_EQ(only()->type(), 5);
  EXPECT_EQ(only()->points()->count(), 2u);
  EXPECT_EQ(only()->curView(), workstation.controller(viewer)->imageView());
  move(10, 30);
  move(12, 60);
  EXPECT_EQ(recorder.take(), (Lines{"change", "change"}));
  EXPECT_EQ(only()->ROImode(), 1);
  EXPECT_EQ(only()->pointAtIndex(1), (PixelPoint{12, 60}));
  release(12, 60);
  EXPECT_EQ(recorder.take(), Lines{"change mouseUp"});
  EXPECT_EQ(only()->ROImode(), 2);
  EXPECT_EQ(only()->pointAtIndex(0), (PixelPoint{10, 20}));
  move(50, 50);
  EXPECT_TRUE(recorder.take().empty());
}

TEST_F(DrawingByHand, ALineLiesInTheListOfTheSliceThatIsShown) {
  ASSERT_TRUE(workstation.scroll(viewer, 1));
  choose(5);
  press(10, 20);
  EXPECT_EQ(workstation.annotations(viewer).at(0).slices, std::vector<int>{1});
  EXPECT_EQ(only()->pix(), workstation.controller(viewer)->imageView()->curDCM());
}

TEST_F(DrawingByHand, APolygonGetsAVertexAClickAndIsEndedByADoubleClickWithoutAnother) {
  choose(10);
  press(10, 10);
  EXPECT_EQ(recorder.take(), (Lines{"add", "change"}));
  release(10, 10);
  EXPECT_EQ(recorder.take(), Lines{"change mouseUp"});
  EXPECT_EQ(only()->ROImode(), 1);
  press(10, 30);
  EXPECT_EQ(recorder.take(), Lines{"change"});
  release(10, 30);
  EXPECT_EQ(recorder.take(), Lines{"change mouseUp"});
  EXPECT_EQ(only()->points()->count(), 2u);
  EXPECT_EQ(only()->ROImode(), 1);
  doubleClick(10, 30);
  EXPECT_EQ(recorder.take(), Lines{"change mouseUp"});
  EXPECT_EQ(only()->ROImode(), 2);
  EXPECT_EQ(only()->points()->count(), 2u);
  release(10, 30);
  EXPECT_TRUE(recorder.take().empty());
}

TEST_F(DrawingByHand, ReturnEndsAPolygonToo) {
  choose(10);
  click(10, 10);
  click(10, 40);
  recorder.take();
  ASSERT_TRUE(workstation.key(viewer, Key::returnKey));
  EXPECT_EQ(recorder.take(), Lines{"change mouseUp"});
  EXPECT_EQ(only()->ROImode(), 2);
}

TEST_F(DrawingByHand, ADoubleClickOrReturnWithNothingBeingDrawnStartsNothing) {
  choose(10);
  doubleClick(10, 10);
  ASSERT_TRUE(workstation.key(viewer, Key::returnKey));
  EXPECT_TRUE(recorder.lines.empty());
  EXPECT_TRUE(workstation.annotations(viewer).empty());
}

TEST_F(DrawingByHand, StoppedByCodeThePolygonIsFinishedSilentlyAndTheReleaseThatFollowsFindsItSo) {
  choose(10);
  click(10, 10);
  recorder.take();
  long modeOnRelease = -1;
  recorder.react = [&](const std::string& line, const pelmar::Notification&) {
    if (line == "change" && only()->points()->count() == 2) {
      if (recorder.lines.back() == "change") workstation.controller(viewer)->imageView()->stopROIEditingForce(true);
    }
    if (recorder.lines.back() == "change mouseUp") modeOnRelease = only()->ROImode();
  };
  press(10, 40);
  EXPECT_EQ(recorder.take(), Lines{"change"});
  EXPECT_EQ(only()->ROImode(), 2);
  release(10, 40);
  EXPECT_EQ(recorder.take(), Lines{"change mouseUp"});
  EXPECT_EQ(modeOnRelease, 2);
}

TEST_F(DrawingByHand, ChoosingAToolEndsAPolygonWithoutANotification) {
  choose(10);
  click(10, 10);
  click(10, 40);
  recorder.take();
  ASSERT_TRUE(workstation.selectMouseTool(viewer, MouseToolPan));
  EXPECT_TRUE(recorder.take().empty());
  EXPECT_EQ(only()->ROImode(), 2);
  press(60, 60);
  EXPECT_EQ(workstation.annotations(viewer).size(), 1u);  // panning draws nothing
}

TEST_F(DrawingByHand, ChoosingAToolDeletesWhatHasFewerThanTwoDistinctPoints) {
  choose(10);
  click(10, 10);
  click(10, 10);
  recorder.take();
  choose(10);
  EXPECT_EQ(recorder.take(), Lines{"remove"});
  EXPECT_TRUE(workstation.annotations(viewer).empty());
  choose(5);
  press(30, 30);
  recorder.take();
  workstation.controller(viewer)->setToolTag(0);  // the plug-in's choice ends a drawing like a person's
  EXPECT_EQ(recorder.take(), Lines{"remove"});
  release(30, 30);
  EXPECT_TRUE(recorder.take().empty());
}

TEST_F(DrawingByHand, ThePluginMayDeleteTheLineWhileItIsDrawn) {
  choose(5);
  press(10, 10);
  recorder.react = [&](const std::string& line, const pelmar::Notification& posted) {
    if (line == "change") workstation.api().roiClass().deleteROI(pelmar::ref_cast<ROI>(posted.object));
  };
  move(10, 40);
  move(10, 50);
  release(10, 50);
  EXPECT_EQ(recorder.take(), (Lines{"add", "change", "remove"}));
  EXPECT_TRUE(workstation.annotations(viewer).empty());
}

TEST_F(DrawingByHand, APressWithinReachOfAVertexOfASelectedAnnotationDragsItWhateverTheTool) {
  ASSERT_TRUE(workstation.drawLine(viewer, 0, {10, 10}, {10, 60}));
  ASSERT_TRUE(workstation.zoom(viewer, 4));  // 8 points are 2 pixels
  ASSERT_TRUE(workstation.selectMouseTool(viewer, MouseToolWindowLevel));
  recorder.take();
  press(10, 62);
  EXPECT_TRUE(recorder.take().empty());
  EXPECT_EQ(only()->ROImode(), 3);
  move(20, 62);
  EXPECT_EQ(recorder.take(), Lines{"change"});
  EXPECT_EQ(only()->pointAtIndex(1), (PixelPoint{20, 60}));  // it keeps its distance from the pointer
  release(20, 66);
  EXPECT_EQ(recorder.take(), Lines{"change mouseUp"});
  EXPECT_EQ(only()->pointAtIndex(1), (PixelPoint{20, 64}));
  EXPECT_EQ(only()->ROImode(), 2);
}

TEST_F(DrawingByHand, OutOfReachNoVertexIsDraggedAndOfWhatIsNotSelectedTheWholeIs) {
  ASSERT_TRUE(workstation.drawLine(viewer, 0, {10, 10}, {10, 60}));
  ASSERT_TRUE(workstation.zoom(viewer, 4));
  ASSERT_TRUE(workstation.selectMouseTool(viewer, MouseToolWindowLevel));
  press(10, 62.1);
  EXPECT_EQ(only()->ROImode(), 2);
  release(10, 62.1);
  only()->setROIMode(0);
  press(10, 60);
  move(15, 60);
  EXPECT_EQ(only()->pointAtIndex(0), (PixelPoint{15, 10}));
  EXPECT_EQ(only()->pointAtIndex(1), (PixelPoint{15, 60}));
}

TEST_F(DrawingByHand, APressGoesToThePolygonThatIsBeingDrawnAlsoWhereAVertexIsWithinReach) {
  ASSERT_TRUE(workstation.drawLine(viewer, 0, {10, 10}, {10, 60}));
  const Ref<ROI> line = only();
  choose(10);
  click(60, 20);
  press(10, 60);
  move(40, 60);
  release(40, 60);
  const auto infos = workstation.annotations(viewer);
  ASSERT_EQ(infos.size(), 2u);
  EXPECT_EQ(infos[1].roi->points()->count(), 2u);
  EXPECT_EQ(infos[1].roi->pointAtIndex(1), (PixelPoint{10, 60}));
  EXPECT_EQ(line->pointAtIndex(1), (PixelPoint{10, 60}));
  EXPECT_EQ(line->ROImode(), 2);
}

TEST_F(DrawingByHand, AReleaseIsToldAlsoWhenAToolWasChosenMeanwhile) {
  choose(5);
  press(10, 10);
  move(10, 60);
  ASSERT_TRUE(workstation.selectMouseTool(viewer, MouseToolPan));
  recorder.take();
  release(30, 70);
  EXPECT_EQ(recorder.take(), Lines{"change mouseUp"});
  EXPECT_EQ(only()->ROImode(), 2);
  EXPECT_EQ(only()->pointAtIndex(1), (PixelPoint{10, 60})) << "but it draws no more";
}

TEST_F(DrawingByHand, ADragThatCodeStopsMovesNoMore) {
  ASSERT_TRUE(workstation.drawLine(viewer, 0, {10, 10}, {10, 60}));
  press(10, 60);
  workstation.controller(viewer)->imageView()->stopROIEditingForce(true);
  move(40, 60);
  EXPECT_EQ(only()->pointAtIndex(1), (PixelPoint{10, 60}));
  EXPECT_EQ(only()->ROImode(), 2);
}

TEST_F(DrawingByHand, WithAToolOfTheMouseOrNoneChosenYetAPressDrawsNothing) {
  press(10, 10);
  release(20, 20);
  EXPECT_TRUE(workstation.annotations(viewer).empty());
  EXPECT_FALSE(workstation.selectRoiTool(viewer, 7));
}

TEST_F(DrawingByHand, AWholeLineIsAPressEvenMovesAndARelease) {
  std::vector<PixelPoint> ends;
  recorder.react = [&](const std::string&, const pelmar::Notification& posted) {
    ends.push_back(pelmar::ref_cast<ROI>(posted.object)->pointAtIndex(1));
  };
  const auto id = workstation.drawLine(viewer, 1, {10, 0}, {10, 40}, 4);
  ASSERT_TRUE(id);
  EXPECT_EQ(recorder.take(), (Lines{"index", "add", "change", "change", "change", "change", "change mouseUp"}));
  EXPECT_EQ(ends.at(2), (PixelPoint{10, 10}));
  EXPECT_EQ(ends.at(5), (PixelPoint{10, 40}));
  EXPECT_EQ(workstation.annotations(viewer).at(0).id, *id);
  EXPECT_EQ(workstation.annotations(viewer).at(0).slices, std::vector<int>{1});
  EXPECT_TRUE(workstation.annotations(viewer).at(0).drawnByPerson);
}

TEST_F(DrawingByHand, AWholeLineDrawsEvenWhereAVertexIsWithinReach) {
  ASSERT_TRUE(workstation.drawLine(viewer, 0, {10, 10}, {10, 60}));
  ASSERT_TRUE(workstation.drawLine(viewer, 0, {10, 60}, {50, 60}));
  EXPECT_EQ(workstation.annotations(viewer).size(), 2u);
}

TEST_F(DrawingByHand, ALineWithoutReleaseIsEndedLater) {
  ASSERT_TRUE(workstation.drawLine(viewer, 0, {10, 10}, {10, 60}, 2, false));
  EXPECT_EQ(only()->ROImode(), 1);
  recorder.take();
  ASSERT_TRUE(workstation.endDrawing(viewer));
  EXPECT_EQ(recorder.take(), Lines{"change mouseUp"});
  EXPECT_EQ(only()->pointAtIndex(1), (PixelPoint{10, 60}));
  EXPECT_FALSE(workstation.endDrawing(viewer));
}

TEST_F(DrawingByHand, NothingMoreIsSentOnceTheHostHasEndedThePolygon) {
  recorder.react = [&](const std::string&, const pelmar::Notification& posted) {
    const auto roi = pelmar::ref_cast<ROI>(posted.object);
    if (roi->points()->count() == 3 && roi->ROImode() == 1) {
      workstation.controller(viewer)->imageView()->stopROIEditingForce(true);
    }
  };
  ASSERT_TRUE(workstation.drawPolygon(viewer, 0, {{10, 10}, {10, 20}, {10, 30}, {10, 40}, {10, 50}}));
  EXPECT_EQ(recorder.take(),
            (Lines{"add", "change", "change mouseUp", "change", "change mouseUp", "change", "change mouseUp"}));
  EXPECT_EQ(only()->points()->count(), 3u);
  EXPECT_EQ(only()->ROImode(), 2);
}

TEST_F(DrawingByHand, AVertexIsDraggedInEvenMoves) {
  const auto id = workstation.drawLine(viewer, 0, {10, 10}, {10, 60});
  ASSERT_TRUE(id);
  recorder.take();
  ASSERT_TRUE(workstation.dragVertex(viewer, *id, 1, {18, 60}, 2));
  EXPECT_EQ(recorder.take(), (Lines{"change", "change", "change mouseUp"}));
  EXPECT_EQ(only()->pointAtIndex(1), (PixelPoint{18, 60}));
  EXPECT_EQ(workstation.drawLine(viewer, 0, {1, 1}, {1, 50}, 0).problem,
            "A line is drawn with at least one move of the mouse.");
  EXPECT_EQ(workstation.dragVertex(viewer, *id, 1, {0, 0}, 0).problem,
            "A vertex is dragged with at least one move of the mouse.");
  const Outcome wrong = workstation.dragVertex(viewer, *id, 2, {0, 0});
  ASSERT_FALSE(wrong);
  EXPECT_EQ(*wrong.problem, "Annotation " + std::to_string(*id) + " in viewer " + std::to_string(viewer) +
                                " has no vertex 2: it has 2, counted from 0.");
}

TEST_F(DrawingByHand, DeletingAsAPersonPostsTheRemoval) {
  const auto id = workstation.drawLine(viewer, 0, {10, 10}, {10, 60});
  ASSERT_TRUE(id);
  recorder.take();
  ASSERT_TRUE(workstation.deleteAnnotation(viewer, *id));
  EXPECT_EQ(recorder.take(), Lines{"remove"});
  EXPECT_FALSE(workstation.deleteAnnotation(viewer, *id));
}

TEST_F(DrawingByHand, PointsOfTheViewAreTakenToPixels) {
  choose(5);
  const pelmar::ViewPoint from = workstation.viewPointAt(viewer, {10, 20});
  const pelmar::ViewPoint to = workstation.viewPointAt(viewer, {30, 70});
  ASSERT_TRUE(workstation.press(viewer, from));
  ASSERT_TRUE(workstation.move(viewer, to));
  ASSERT_TRUE(workstation.release(viewer, to));
  EXPECT_NEAR(only()->pointAtIndex(0).x, 10, 1e-9);
  EXPECT_NEAR(only()->pointAtIndex(1).y, 70, 1e-9);
}

}  // namespace
}  // namespace workstation
