#include "workstation/gui/PointerGestures.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/workstation/model/TestImages.h"

namespace workstation {
namespace {

using pelmar::PixelPoint;

class Gestures : public testing::Test {
 protected:
  Gestures() {
    workstation.addImages(test::smallStudy());
    viewer = *workstation.openViewer({"1.2.3", 1, 0});
    EXPECT_TRUE(workstation.setViewerFrame(viewer, {0, 0, 400, 300}));
  }
  void choose(long tool) { ASSERT_TRUE(workstation.selectMouseTool(viewer, tool)); }
  ViewerInfo info() const { return *workstation.viewer(viewer); }

  void click(PixelPoint at, bool doubled = false) {
    const auto point = workstation.viewPointAt(viewer, at);
    gestures.press({point, PointerButton::left, doubled});
    gestures.release(PointerButton::left, point);
  }
  /// As a window system tells it: a click, then a press that is called the second of two.
  void doubleClick(PixelPoint at) {
    click(at);
    click(at, true);
  }
  std::vector<double> columnsOfPolygon() {
    std::vector<double> columns;
    const auto all = workstation.annotations(viewer);
    if (all.size() != 1) return columns;
    for (std::size_t vertex = 0; vertex < all[0].roi->points()->count(); ++vertex)
      columns.push_back(std::round(all[0].roi->pointAtIndex(static_cast<long>(vertex)).x));
    return columns;
  }

  Workstation workstation;
  int viewer = 0;
  ViewerLook look;
  std::optional<WindowSetting> shown = WindowSetting{500, 600, {}};
  PointerGestures gestures{workstation, 0, look, [this] { return shown; }};
};

TEST_F(Gestures, TheWindowToolWidensToTheRightAndDarkensDownwards) {
  gestures.press({{100, 100}});
  gestures.move({250, 85});  // 150 to the right; 15 down, since y points up
  ASSERT_TRUE(look.window);
  EXPECT_DOUBLE_EQ(look.window->width, 600 + 150 * 2.0);
  EXPECT_DOUBLE_EQ(look.window->centre, 500 + 15 * 2.0);
  gestures.move({-1000, 100});
  EXPECT_DOUBLE_EQ(look.window->width, 1) << "never narrower";
}

TEST_F(Gestures, InAColourImageTheWindowToolDoesNothing) {
  shown.reset();
  gestures.press({{100, 100}});
  gestures.move({200, 100});
  EXPECT_FALSE(look.window);
}

TEST_F(Gestures, ThePanToolMovesTheImageWithThePointer) {
  choose(MouseToolPan);
  const auto was = info().origin;
  gestures.press({{10, 10}});
  gestures.move({15, 30});
  gestures.move({22, 41});
  EXPECT_DOUBLE_EQ(info().origin.x - was.x, 12);
  EXPECT_DOUBLE_EQ(info().origin.y - was.y, 31);
}

TEST_F(Gestures, TheZoomToolKeepsThePixelUnderThePressInPlace) {
  choose(MouseToolZoom);
  const double scale = info().scale;
  const auto pixel = workstation.pixelAt(viewer, {320, 40});
  gestures.press({{320, 40}});
  gestures.move({320, 160});
  EXPECT_NEAR(info().scale, 2 * scale, 1e-9) << "120 points up double it";
  EXPECT_NEAR(workstation.pixelAt(viewer, {320, 40}).x, pixel.x, 1e-9);
  EXPECT_NEAR(workstation.pixelAt(viewer, {320, 40}).y, pixel.y, 1e-9);
}

TEST_F(Gestures, TheZoomHasBounds) {
  for (int step = 0; step < 100; ++step) gestures.zoomAbout({200, 150}, 4);
  EXPECT_DOUBLE_EQ(info().scale, 100);
  for (int step = 0; step < 100; ++step) gestures.zoomAbout({200, 150}, 0.25);
  EXPECT_DOUBLE_EQ(info().scale, 0.02);
}

TEST_F(Gestures, TheRotateToolTurnsWithThePointerAboutTheMiddle) {
  choose(MouseToolRotate);
  gestures.press({{300, 150}});  // to the right of the middle
  gestures.move({200, 50});      // below it: a quarter clockwise
  EXPECT_NEAR(info().rotationDegrees, 90, 1e-9);
  gestures.move({100, 150});
  EXPECT_NEAR(info().rotationDegrees, 180, 1e-9);
}

TEST_F(Gestures, TheScrollToolGoesThroughTheSlicesAndStopsAtTheEnds) {
  choose(MouseToolScroll);
  gestures.press({{200, 290}});
  gestures.move({200, 190});  // a third of the view's height: one of the three slices
  EXPECT_EQ(info().slice, 1);
  gestures.move({200, -500});
  EXPECT_EQ(info().slice, 2);
  gestures.move({200, 290});
  EXPECT_EQ(info().slice, 0);
}

TEST_F(Gestures, OnlyTheButtonThatWentDownFirstCounts) {
  choose(MouseToolPan);
  const auto was = info().origin;
  gestures.press({{10, 10}});
  gestures.press({{10, 10}, PointerButton::right});
  gestures.move({20, 10});
  gestures.release(PointerButton::right, {20, 10});
  EXPECT_TRUE(gestures.isActive());
  gestures.move({30, 10});
  gestures.release(PointerButton::left, {30, 10});
  EXPECT_FALSE(gestures.isActive());
  EXPECT_DOUBLE_EQ(info().origin.x - was.x, 20);
}

TEST_F(Gestures, ALineIsDrawnFromPressToRelease) {
  ASSERT_TRUE(workstation.selectRoiTool(viewer, pelmar::ROIToolTagLength));
  gestures.press({workstation.viewPointAt(viewer, {20, 20})});
  EXPECT_TRUE(workstation.isDrawing(viewer));
  gestures.move(workstation.viewPointAt(viewer, {60, 50}));
  gestures.release(PointerButton::left, workstation.viewPointAt(viewer, {70, 50}));
  EXPECT_FALSE(workstation.isDrawing(viewer));
  const auto line = workstation.annotations(viewer).at(0).roi;
  EXPECT_NEAR(line->pointAtIndex(0).x, 20, 1e-9);
  EXPECT_NEAR(line->pointAtIndex(1).x, 70, 1e-9);
}

TEST_F(Gestures, CancellingLetsTheLineGoWhereItWas) {
  ASSERT_TRUE(workstation.selectRoiTool(viewer, pelmar::ROIToolTagLength));
  gestures.press({workstation.viewPointAt(viewer, {20, 20})});
  gestures.move(workstation.viewPointAt(viewer, {60, 50}));
  gestures.cancel();
  EXPECT_FALSE(workstation.isDrawing(viewer));
  EXPECT_NEAR(workstation.annotations(viewer).at(0).roi->pointAtIndex(1).x, 60, 1e-9);
}

TEST_F(Gestures, ADoubleClickSetsTheLastVertexOfAPolygonAndEndsIt) {
  ASSERT_TRUE(workstation.selectRoiTool(viewer, pelmar::ROIToolTagOpenPolygon));
  click({10, 10});
  click({20, 30});
  doubleClick({40, 30});
  EXPECT_FALSE(workstation.isDrawing(viewer));
  EXPECT_EQ(columnsOfPolygon(), (std::vector<double>{10, 20, 40}));
}

TEST_F(Gestures, ADoubleClickOnTheLastVertexAddsNone) {
  ASSERT_TRUE(workstation.selectRoiTool(viewer, pelmar::ROIToolTagOpenPolygon));
  click({10, 10});
  click({20, 30});
  doubleClick({20, 30});
  EXPECT_FALSE(workstation.isDrawing(viewer));
  EXPECT_EQ(columnsOfPolygon(), (std::vector<double>{10, 20}));
}

TEST_F(Gestures, ADoubleClickBesideAPolygonThatHasEndedStartsNone) {
  ASSERT_TRUE(workstation.selectRoiTool(viewer, pelmar::ROIToolTagOpenPolygon));
  click({10, 10});
  click({20, 30});
  ASSERT_TRUE(workstation.key(viewer, Key::returnKey));
  click({80, 30}, true);
  EXPECT_FALSE(workstation.isDrawing(viewer));
  EXPECT_EQ(columnsOfPolygon(), (std::vector<double>{10, 20}));
}

TEST_F(Gestures, ADoubleClickWithNothingBeingDrawnLeavesNothing) {
  ASSERT_TRUE(workstation.selectRoiTool(viewer, pelmar::ROIToolTagOpenPolygon));
  doubleClick({40, 30});
  EXPECT_FALSE(workstation.isDrawing(viewer));
  EXPECT_TRUE(workstation.annotations(viewer).empty());
  EXPECT_FALSE(workstation.canUndo());
  click({10, 10});
  click({20, 30});
  EXPECT_EQ(columnsOfPolygon(), (std::vector<double>{10, 20})) << "the tool draws on";
}

TEST_F(Gestures, InAViewerThatHasClosedNothingHappens) {
  choose(MouseToolPan);
  gestures.press({{10, 10}});
  ASSERT_TRUE(workstation.closeViewer(viewer));
  gestures.move({20, 20});
  gestures.release(PointerButton::left, {20, 20});
  gestures.press({{10, 10}});
  EXPECT_FALSE(gestures.isActive());
}

}  // namespace
}  // namespace workstation
