// Selecting annotations and dragging them whole, with a tool that does not draw.
#include "DrawnOn.h"

namespace workstation {
namespace {

using pelmar::PixelPoint;
using pelmar::Ref;
using pelmar::ROI;
using test::Lines;

class Selecting : public test::DrawnOn {
 protected:
  // 4 points a pixel: 6 points of reach are 1.5 pixels.
  Selecting() { EXPECT_TRUE(workstation.zoom(viewer, 4)); }
  /// A line that is finished and not selected.
  Ref<ROI> line(PixelPoint a, PixelPoint b) {
    const int id = *workstation.drawLine(viewer, 0, a, b);
    EXPECT_TRUE(workstation.deselect(viewer));
    EXPECT_TRUE(workstation.selectMouseTool(viewer, MouseToolWindowLevel));
    recorder.take();
    return annotation(id);
  }
};

TEST_F(Selecting, AClickOnTheLineSelectsItSilently) {
  const auto roi = line({10, 10}, {10, 60});
  press(11, 30);
  EXPECT_TRUE(workstation.holdsAnnotation(viewer));
  release(11, 30);
  EXPECT_FALSE(workstation.holdsAnnotation(viewer));
  EXPECT_EQ(roi->ROImode(), pelmar::ROIModeSelected);
  EXPECT_EQ(roi->pointAtIndex(0), (PixelPoint{10, 10}));
  EXPECT_TRUE(recorder.take().empty());
}

TEST_F(Selecting, APressBesideTheLineDoesNothing) {
  const auto roi = line({10, 10}, {10, 60});
  press(12, 30);
  EXPECT_FALSE(workstation.holdsAnnotation(viewer));
  move(40, 30);
  release(40, 30);
  EXPECT_EQ(roi->ROImode(), pelmar::ROIModeFinished);
  EXPECT_EQ(roi->pointAtIndex(0), (PixelPoint{10, 10}));
}

TEST_F(Selecting, DraggingMovesEveryVertexAndIsToldAsAnEdit) {
  const auto roi = line({10, 10}, {10, 60});
  press(10, 30);
  move(15, 32);
  EXPECT_EQ(roi->ROImode(), pelmar::ROIModeEditing);
  move(20, 33);
  release(21, 33);
  EXPECT_EQ(recorder.take(), (Lines{"change", "change", "change mouseUp"}));
  EXPECT_EQ(roi->ROImode(), pelmar::ROIModeSelected);
  EXPECT_EQ(roi->pointAtIndex(0), (PixelPoint{21, 13}));
  EXPECT_EQ(roi->pointAtIndex(1), (PixelPoint{21, 63}));
}

TEST_F(Selecting, TheMoveOfTheWholeIsTakenBackAndDoneAgain) {
  const auto roi = line({10, 10}, {10, 60});
  press(10, 30);
  move(20, 30);
  release(20, 30);
  recorder.take();
  ASSERT_TRUE(workstation.undo());
  EXPECT_EQ(recorder.take(), Lines{"change mouseUp"});
  EXPECT_EQ(roi->pointAtIndex(1), (PixelPoint{10, 60}));
  ASSERT_TRUE(workstation.redo());
  EXPECT_EQ(roi->pointAtIndex(1), (PixelPoint{20, 60}));
}

TEST_F(Selecting, AMoveWhoseShapeWasChangedSinceIsPassedOver) {
  const auto roi = line({10, 10}, {10, 60});
  press(10, 30);
  move(20, 30);
  release(20, 30);
  roi->setPoints({pelmar::MyPoint::point({1, 1}), pelmar::MyPoint::point({2, 2})});
  ASSERT_TRUE(workstation.undo()) << "what is left to take back is the drawing";
  EXPECT_TRUE(workstation.annotations(viewer).empty());
}

TEST_F(Selecting, OneIsSelectedAtATimeAndTheUpperOneIsTaken) {
  const auto below = line({10, 10}, {10, 60});
  const auto above = line({5, 30}, {50, 30});
  press(10, 30);
  release(10, 30);
  EXPECT_EQ(above->ROImode(), pelmar::ROIModeSelected);
  EXPECT_EQ(below->ROImode(), pelmar::ROIModeFinished);
  press(10, 50);
  release(10, 50);
  EXPECT_EQ(above->ROImode(), pelmar::ROIModeFinished);
  EXPECT_EQ(below->ROImode(), pelmar::ROIModeSelected);
}

TEST_F(Selecting, AVertexOfASelectedOneIsDraggedAlone) {
  const auto roi = line({10, 10}, {10, 60});
  press(10, 30);
  release(10, 30);
  press(10, 60);
  move(15, 65);
  release(15, 65);
  EXPECT_EQ(roi->pointAtIndex(0), (PixelPoint{10, 10}));
  EXPECT_EQ(roi->pointAtIndex(1), (PixelPoint{15, 65}));
}

TEST_F(Selecting, WhatCannotBeSelectedAndWhatOtherSlicesHoldIsPassedOver) {
  const auto roi = line({10, 10}, {10, 60});
  roi->setSelectable(false);
  press(10, 30);
  EXPECT_FALSE(workstation.holdsAnnotation(viewer));
  release(10, 30);
  const int id = workstation.annotations(viewer).at(0).id;
  EXPECT_EQ(workstation.dragVertex(viewer, id, 0, {20, 20}).problem,
            "Annotation " + std::to_string(id) + " in viewer " + std::to_string(viewer) +
                " cannot be selected, so its vertices cannot be dragged.");
  EXPECT_EQ(roi->pointAtIndex(0), (PixelPoint{10, 10}));
  roi->setSelectable(true);
  ASSERT_TRUE(workstation.scroll(viewer, 1));
  press(10, 30);
  EXPECT_FALSE(workstation.holdsAnnotation(viewer));
}

TEST_F(Selecting, WithADrawingToolALineIsBegunOnTheOldOne) {
  const auto roi = line({10, 10}, {10, 60});
  ASSERT_TRUE(workstation.selectRoiTool(viewer, pelmar::ROIToolTagLength));
  EXPECT_FALSE(workstation.wouldHold(viewer, workstation.viewPointAt(viewer, {10, 30})));
  press(10, 30);
  EXPECT_EQ(workstation.annotations(viewer).size(), 2U);
  EXPECT_EQ(roi->ROImode(), pelmar::ROIModeFinished);
  release(10, 31);
}

TEST_F(Selecting, ThePluginMayDeleteWhatIsHeld) {
  const auto roi = line({10, 10}, {10, 60});
  recorder.react = [&](const std::string& told, const pelmar::Notification&) {
    if (told == "change") workstation.api().roiClass().deleteROI(roi);
  };
  press(10, 30);
  move(20, 30);
  move(25, 30);
  release(25, 30);
  EXPECT_TRUE(workstation.annotations(viewer).empty());
  EXPECT_FALSE(workstation.holdsAnnotation(viewer));
}

TEST_F(Selecting, StoppedByCodeTheRestOfTheDragMovesNothing) {
  const auto roi = line({10, 10}, {10, 60});
  press(10, 30);
  move(20, 30);
  workstation.controller(viewer)->imageView()->stopROIEditingForce(true);
  recorder.take();
  move(30, 30);
  EXPECT_EQ(roi->pointAtIndex(0), (PixelPoint{20, 10}));
  EXPECT_EQ(roi->ROImode(), pelmar::ROIModeSelected);
  release(30, 30);
  EXPECT_EQ(roi->pointAtIndex(0), (PixelPoint{20, 10}));
}

TEST_F(Selecting, ATurnedImageIsFittedAsItIsTurned) {
  // 100 x 80 pixels in 400 x 200 points: the height counts; turned by a quarter 80 x 100.
  ASSERT_TRUE(workstation.setViewerFrame(viewer, {0, 0, 400, 200}));
  ASSERT_TRUE(workstation.pan(viewer, 7, 9));
  recorder.take();
  ASSERT_TRUE(workstation.fit(viewer));
  EXPECT_EQ(recorder.take(), (Lines{"scale", "origin"}));
  EXPECT_DOUBLE_EQ(workstation.viewer(viewer)->scale, 2.5);
  EXPECT_DOUBLE_EQ(workstation.viewer(viewer)->origin.x, 0);
  ASSERT_TRUE(workstation.rotate(viewer, 90));
  ASSERT_TRUE(workstation.fit(viewer));
  EXPECT_DOUBLE_EQ(workstation.viewer(viewer)->scale, 2);
}

}  // namespace
}  // namespace workstation
