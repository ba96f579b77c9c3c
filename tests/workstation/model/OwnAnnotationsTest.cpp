// Arrows, points and texts of a person's.
#include <gtest/gtest.h>

#include "Recorder.h"
#include "TestImages.h"
#include "workstation/model/Workstation.h"

namespace workstation {
namespace {

using pelmar::PixelPoint;
using pelmar::Ref;
using pelmar::ROI;
using test::Lines;

class OwnAnnotations : public testing::Test {
 protected:
  OwnAnnotations() {
    workstation.addImages(test::smallStudy());
    viewer = *workstation.openViewer({"1.2.3", 0, 0});
    // 4 points a pixel.
    EXPECT_TRUE(workstation.setViewerFrame(viewer, {0, 0, 400, 320}));
    EXPECT_TRUE(workstation.zoom(viewer, 4));
    recorder.take();
  }
  void press(PixelPoint at) { ASSERT_TRUE(workstation.press(viewer, at)); }
  void move(PixelPoint at) { ASSERT_TRUE(workstation.move(viewer, at)); }
  void release(PixelPoint at) { ASSERT_TRUE(workstation.release(viewer, at)); }
  void drag(PixelPoint from, PixelPoint to) {
    press(from);
    move(to);
    release(to);
  }
  Ref<ROI> only() const {
    const auto infos = workstation.annotations(viewer);
    return infos.size() == 1 ? infos[0].roi : Ref<ROI>();
  }
  bool holds(PixelPoint at) const { return workstation.wouldHold(viewer, workstation.viewPointAt(viewer, at)); }

  Workstation workstation;
  test::Recorder recorder{workstation.api()};
  int viewer = 0;
};

TEST_F(OwnAnnotations, AnArrowIsDrawnFromItsHeadToItsOtherEnd) {
  ASSERT_TRUE(workstation.selectRoiTool(viewer, pelmar::ROITypeArrow));
  press({10, 20});
  EXPECT_EQ(recorder.take(), Lines{"add"});
  move({30, 40});
  release({30, 50});
  EXPECT_EQ(recorder.take(), (Lines{"change", "change mouseUp"}));
  ASSERT_TRUE(only());
  EXPECT_EQ(only()->type(), pelmar::ROITypeArrow);
  EXPECT_EQ(only()->ROImode(), pelmar::ROIModeSelected);
  EXPECT_EQ(only()->pointAtIndex(0), (PixelPoint{10, 20}));
  EXPECT_EQ(only()->pointAtIndex(1), (PixelPoint{30, 50}));
  drag({30, 50}, {40, 60});
  EXPECT_EQ(only()->pointAtIndex(1), (PixelPoint{40, 60})) << "its ends are dragged";
  ASSERT_TRUE(workstation.undo());
  EXPECT_EQ(only()->pointAtIndex(1), (PixelPoint{30, 50}));
  ASSERT_TRUE(workstation.undo());
  EXPECT_FALSE(only());
  ASSERT_TRUE(workstation.redo());
  EXPECT_EQ(only()->pointAtIndex(1), (PixelPoint{30, 50}));
}

TEST_F(OwnAnnotations, AClickWithTheArrowLeavesNothing) {
  ASSERT_TRUE(workstation.selectRoiTool(viewer, pelmar::ROITypeArrow));
  press({10, 20});
  release({10, 20});
  EXPECT_EQ(recorder.take(), (Lines{"add", "remove"}));
  EXPECT_FALSE(only());
  EXPECT_FALSE(workstation.canUndo());
}

TEST_F(OwnAnnotations, APointStandsWhereTheButtonIsLetGo) {
  ASSERT_TRUE(workstation.selectRoiTool(viewer, pelmar::ROITypePoint));
  press({10, 20});
  EXPECT_EQ(only()->points()->count(), 1U);
  move({12, 22});
  release({13, 23});
  EXPECT_EQ(recorder.take(), (Lines{"add", "change", "change mouseUp"}));
  EXPECT_EQ(only()->type(), pelmar::ROITypePoint);
  EXPECT_EQ(only()->pointAtIndex(0), (PixelPoint{13, 23}));
  ASSERT_TRUE(workstation.selectMouseTool(viewer, MouseToolPan));
  ASSERT_TRUE(workstation.deselect(viewer));
  drag({13, 23}, {33, 13});
  EXPECT_EQ(only()->pointAtIndex(0), (PixelPoint{33, 13})) << "dragged whole";
  ASSERT_TRUE(workstation.deleteAnnotation(viewer, workstation.annotations(viewer)[0].id));
  EXPECT_FALSE(only());
  ASSERT_TRUE(workstation.undo());
  EXPECT_EQ(only()->pointAtIndex(0), (PixelPoint{33, 13}));
}

TEST_F(OwnAnnotations, ATextIsWrittenDraggedRewrittenAndAllOfItTakenBack) {
  ASSERT_TRUE(workstation.selectRoiTool(viewer, pelmar::ROITypeText));
  press({50, 40});
  release({50, 40});
  EXPECT_TRUE(workstation.annotations(viewer).empty()) << "a click alone writes nothing";
  const auto written = workstation.addText(viewer, {50, 40}, "fracture");
  ASSERT_TRUE(written);
  EXPECT_EQ(recorder.take(), Lines{"add"});
  EXPECT_EQ(only()->name(), "fracture");
  EXPECT_EQ(only()->rect().origin, (PixelPoint{50, 40}));
  EXPECT_GE(only()->thickness(), 10) << "its size in points";
  drag({52, 40}, {62, 30});
  EXPECT_EQ(only()->rect().origin, (PixelPoint{60, 30}));
  ASSERT_TRUE(workstation.changeText(viewer, *written, "fracture?"));
  EXPECT_EQ(recorder.take(), (Lines{"change", "change mouseUp", "change mouseUp"}));
  EXPECT_EQ(only()->name(), "fracture?");
  ASSERT_TRUE(workstation.undo());
  EXPECT_EQ(only()->name(), "fracture");
  ASSERT_TRUE(workstation.undo());
  EXPECT_EQ(only()->rect().origin, (PixelPoint{50, 40}));
  ASSERT_TRUE(workstation.undo());
  EXPECT_FALSE(only());
  for (int step = 0; step < 3; ++step) ASSERT_TRUE(workstation.redo());
  EXPECT_EQ(only()->name(), "fracture?");
  EXPECT_EQ(only()->rect().origin, (PixelPoint{60, 30}));
}

TEST_F(OwnAnnotations, ATextIsTakenHoldOfWhereItsLettersAre) {
  ASSERT_TRUE(workstation.addText(viewer, {50, 40}, "abcdefghij"));
  ASSERT_TRUE(workstation.deselect(viewer));
  // Ten letters of 14 points: about 84 points or 21 pixels wide, 4 pixels high.
  EXPECT_TRUE(holds({50, 40}));
  EXPECT_TRUE(holds({42, 40}));
  EXPECT_TRUE(holds({58, 41}));
  EXPECT_FALSE(holds({70, 40}));
  EXPECT_FALSE(holds({50, 46}));
  EXPECT_TRUE(workstation.textAt(viewer, workstation.viewPointAt(viewer, {45, 40})));
  EXPECT_FALSE(workstation.textAt(viewer, workstation.viewPointAt(viewer, {45, 60})));
}

TEST_F(OwnAnnotations, TextsOfThePluginAreNotThePersonsToMoveOrRewrite) {
  const auto controller = workstation.controller(viewer);
  auto label = workstation.api().roiClass().roiWithType(pelmar::ROITypeText, controller->imageView());
  label->setName("L4");
  label->setROIRect({{50, 40}, {}});
  label->setThickness(14);
  controller->roiList()->objectAtIndex(0)->addObject(label);
  EXPECT_FALSE(holds({50, 40}));
  EXPECT_FALSE(workstation.textAt(viewer, workstation.viewPointAt(viewer, {50, 40})));
  EXPECT_FALSE(workstation.changeText(viewer, workstation.annotations(viewer)[0].id, "L5"));
  EXPECT_EQ(label->name(), "L4");
}

TEST_F(OwnAnnotations, AnEmptyTextAndAToolThatIsNoneAreRefused) {
  const std::string noLetter = "A text annotation needs at least one letter.";
  EXPECT_EQ(workstation.addText(viewer, {1, 1}, "").problem, noLetter);
  EXPECT_FALSE(workstation.addText(99, {1, 1}, "a"));
  const auto written = workstation.addText(viewer, {1, 1}, "a");
  EXPECT_EQ(workstation.changeText(viewer, *written, "").problem, noLetter);
  EXPECT_EQ(workstation.changeText(viewer, *written + 1, "b").problem,
            "Viewer " + std::to_string(viewer) + " holds no text of the person's with the id " +
                std::to_string(*written + 1) + ".");
  for (const long tool : {0L, 7L, 12L, 18L, -1L}) EXPECT_FALSE(workstation.selectRoiTool(viewer, tool)) << tool;
}

TEST_F(OwnAnnotations, ComeBackWithTheirSeries) {
  ASSERT_TRUE(workstation.addText(viewer, {50, 40}, "here"));
  ASSERT_TRUE(workstation.switchSeries(viewer, {"1.2.3", 1, 0}));
  EXPECT_TRUE(workstation.annotations(viewer).empty());
  ASSERT_TRUE(workstation.switchSeries(viewer, {"1.2.3", 0, 0}));
  EXPECT_EQ(only()->name(), "here");
}

}  // namespace
}  // namespace workstation
