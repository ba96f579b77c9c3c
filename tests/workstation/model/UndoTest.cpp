#include "workstation/model/Undo.h"

#include "DrawnOn.h"

namespace workstation {
namespace {

using pelmar::PixelPoint;
using pelmar::ROI;
using test::Lines;

/// A second viewer shows the study's axial series.
class TakingBack : public test::DrawnOn {
 protected:
  TakingBack() {
    other = *workstation.openViewer({"1.2.3", 1, 0});
    recorder.take();
  }
  int draw(PixelPoint a, PixelPoint b, int slice = 0) {
    const auto id = workstation.drawLine(viewer, slice, a, b, 1);
    recorder.take();
    return *id;
  }
  void drag(int id, int vertex, PixelPoint to) {
    ASSERT_TRUE(workstation.dragVertex(viewer, id, vertex, to, 2));
    recorder.take();
  }
  std::vector<int> idsOn(int slice) const {
    std::vector<int> ids;
    for (const auto& info : workstation.annotations(viewer, slice)) ids.push_back(info.id);
    return ids;
  }
  void expectNothingToUndo() {
    EXPECT_FALSE(workstation.canUndo());
    const Outcome outcome = workstation.undo();
    ASSERT_FALSE(outcome);
    EXPECT_EQ(*outcome.problem, "There is nothing to undo.");
    EXPECT_TRUE(recorder.take().empty());
  }
  void expectNothingToRedo() {
    EXPECT_FALSE(workstation.canRedo());
    const Outcome outcome = workstation.redo();
    ASSERT_FALSE(outcome);
    EXPECT_EQ(*outcome.problem, "There is nothing to redo.");
    EXPECT_TRUE(recorder.take().empty());
  }

  int other = 0;
};

TEST_F(TakingBack, WithoutAnEditIsRefused) {
  expectNothingToUndo();
  expectNothingToRedo();
}

TEST_F(TakingBack, ADrawingTakesItOutToldAsARemovalAndItComesBackToldAsAChange) {
  const int id = draw({1, 2}, {30, 40}, 1);
  EXPECT_TRUE(workstation.canUndo());
  EXPECT_TRUE(workstation.undo());
  EXPECT_EQ(recorder.take(), Lines{"remove"});
  EXPECT_EQ(idsOn(1), std::vector<int>{});
  expectNothingToUndo();
  EXPECT_TRUE(workstation.canRedo());
  EXPECT_TRUE(workstation.redo());
  EXPECT_EQ(recorder.take(), Lines{"change mouseUp"});
  EXPECT_EQ(idsOn(1), std::vector<int>{id});
  EXPECT_EQ(annotation(id)->curView(), workstation.controller(viewer)->imageView());
  EXPECT_EQ(annotation(id)->pointAtIndex(1), (PixelPoint{30, 40}));
  expectNothingToRedo();
}

TEST_F(TakingBack, AMoveOfAVertexIsToldAsTheEndOfADrag) {
  const int id = draw({1, 2}, {30, 40});
  drag(id, 1, {50, 60});
  EXPECT_TRUE(workstation.undo());
  EXPECT_EQ(recorder.take(), Lines{"change mouseUp"});
  EXPECT_EQ(annotation(id)->pointAtIndex(1), (PixelPoint{30, 40}));
  EXPECT_EQ(annotation(id)->ROImode(), 2);
  EXPECT_TRUE(workstation.redo());
  EXPECT_EQ(recorder.take(), Lines{"change mouseUp"});
  EXPECT_EQ(annotation(id)->pointAtIndex(1), (PixelPoint{50, 60}));
}

TEST_F(TakingBack, EditsGoBackOneByOneLastFirst) {
  const int id = draw({1, 2}, {30, 40});
  drag(id, 0, {5, 6});
  drag(id, 1, {50, 60});
  EXPECT_TRUE(workstation.undo());
  EXPECT_TRUE(workstation.undo());
  EXPECT_EQ(annotation(id)->pointAtIndex(0), (PixelPoint{1, 2}));
  EXPECT_EQ(annotation(id)->pointAtIndex(1), (PixelPoint{30, 40}));
  EXPECT_TRUE(workstation.undo());
  EXPECT_FALSE(annotation(id));
  for (int edit = 0; edit < 3; ++edit) EXPECT_TRUE(workstation.redo());
  EXPECT_EQ(annotation(id)->pointAtIndex(0), (PixelPoint{5, 6}));
  EXPECT_EQ(annotation(id)->pointAtIndex(1), (PixelPoint{50, 60}));
}

TEST_F(TakingBack, ADeletionPutsItBackInItsPlace) {
  const int first = draw({1, 2}, {30, 40});
  const int second = draw({3, 4}, {50, 60});
  const int third = draw({5, 6}, {70, 50});
  ASSERT_TRUE(workstation.deleteAnnotation(viewer, second));
  recorder.take();
  EXPECT_TRUE(workstation.undo());
  EXPECT_EQ(recorder.take(), Lines{"change mouseUp"});
  EXPECT_EQ(idsOn(0), (std::vector<int>{first, second, third}));
  EXPECT_TRUE(workstation.redo());
  EXPECT_EQ(recorder.take(), Lines{"remove"});
  EXPECT_EQ(idsOn(0), (std::vector<int>{first, third}));
}

TEST_F(TakingBack, AFreshEditEndsWhatCouldBeDoneAgain) {
  const int id = draw({1, 2}, {30, 40});
  drag(id, 1, {50, 60});
  EXPECT_TRUE(workstation.undo());
  recorder.take();
  drag(id, 0, {7, 8});
  expectNothingToRedo();
}

TEST_F(TakingBack, ADragToWhereItBeganIsNoEdit) {
  const int id = draw({1, 2}, {30, 40});
  drag(id, 1, {30, 40});
  EXPECT_TRUE(workstation.undo());
  EXPECT_EQ(recorder.take(), Lines{"remove"}) << "the drawing was taken back";
}

TEST_F(TakingBack, APolygonGoesAsAWhole) {
  const auto id = workstation.drawPolygon(viewer, 0, {{1, 1}, {20, 10}, {1, 40}});
  ASSERT_TRUE(id);
  recorder.take();
  EXPECT_TRUE(workstation.undo());
  EXPECT_EQ(recorder.take(), Lines{"remove"});
  EXPECT_TRUE(workstation.redo());
  ASSERT_TRUE(annotation(*id));
  EXPECT_EQ(annotation(*id)->points()->count(), 3u);
  EXPECT_EQ(recorder.take(), Lines{"change mouseUp"});
  expectNothingToRedo();
}

TEST_F(TakingBack, WhatWasDeletedWhileItWasDrawnComesBackFinished) {
  const auto id = workstation.drawLine(viewer, 0, {1, 2}, {30, 40}, 1, false);
  ASSERT_TRUE(workstation.deleteAnnotation(viewer, *id));
  recorder.take();
  EXPECT_TRUE(workstation.undo());
  EXPECT_EQ(annotation(*id)->ROImode(), 2);
  EXPECT_FALSE(workstation.endDrawing(viewer)) << "nobody draws it any more";
}

TEST_F(TakingBack, WhatThePlugInMadeIsNotPutBackButItsVerticesAre) {
  const auto view = workstation.controller(viewer)->imageView();
  const auto made = workstation.api().roiClass().roiWithType(10, view);
  made->setPoints({pelmar::MyPoint::point({1, 1}), pelmar::MyPoint::point({9, 9})});
  view->dcmRoiList()->objectAtIndex(0)->addObject(made);
  const int id = *workstation.annotationId(made);
  drag(id, 0, {3, 3});
  EXPECT_TRUE(workstation.undo());
  EXPECT_EQ(made->pointAtIndex(0), (PixelPoint{1, 1}));
  EXPECT_TRUE(workstation.redo());
  ASSERT_TRUE(workstation.deleteAnnotation(viewer, id));
  recorder.take();
  expectNothingToUndo();
}

TEST_F(TakingBack, AVertexThatIsElsewhereByNowBelongsToAnotherShape) {
  const int id = draw({1, 2}, {30, 40});
  drag(id, 1, {50, 60});
  annotation(id)->setPoints({pelmar::MyPoint::point({2, 2}), pelmar::MyPoint::point({8, 8})});
  EXPECT_TRUE(workstation.undo()) << "the drawing";
  EXPECT_EQ(recorder.take(), Lines{"remove"});
}

TEST_F(TakingBack, WhatThePlugInDeletedIsPassedOver) {
  const int first = draw({1, 2}, {30, 40});
  const int second = draw({3, 4}, {50, 60});
  drag(second, 1, {55, 66});
  workstation.api().roiClass().deleteROI(annotation(second));
  recorder.take();
  EXPECT_TRUE(workstation.undo());
  EXPECT_EQ(recorder.take(), Lines{"remove"});
  EXPECT_FALSE(annotation(first));
  expectNothingToUndo();
}

TEST_F(TakingBack, ThePlugInMayDeleteWhatIsPutBack) {
  const int id = draw({1, 2}, {30, 40});
  ASSERT_TRUE(workstation.deleteAnnotation(viewer, id));
  recorder.react = [&](const std::string& line, const pelmar::Notification& posted) {
    if (line == "change") workstation.api().roiClass().deleteROI(pelmar::ref_cast<ROI>(posted.object));
  };
  EXPECT_TRUE(workstation.undo());
  EXPECT_FALSE(annotation(id));
  recorder.take();
  expectNothingToUndo();
  expectNothingToRedo();
}

TEST_F(TakingBack, ClosingOrSwitchingAViewerForgetsItsEditsAlone) {
  for (const bool close : {true, false}) {
    draw({1, 2}, {30, 40});
    ASSERT_TRUE(workstation.drawLine(other, 0, {1, 2}, {30, 40}, 1));
    recorder.take();
    if (close) {
      ASSERT_TRUE(workstation.closeViewer(other));
      other = *workstation.openViewer({"1.2.3", 1, 0});
    } else {
      ASSERT_TRUE(workstation.switchSeries(other, {"1.2.3", 1, 0}));
    }
    recorder.take();
    EXPECT_TRUE(workstation.undo());
    EXPECT_EQ(recorder.take(), Lines{"remove"});
    EXPECT_TRUE(workstation.annotations(viewer).empty());
    expectNothingToUndo();
    EXPECT_FALSE(workstation.annotations(other).empty()) << "the person's own came back with their series";
  }
}

}  // namespace
}  // namespace workstation
