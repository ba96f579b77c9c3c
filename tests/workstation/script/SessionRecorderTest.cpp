// What a person does, and the steps that it becomes. There is no plug-in here: what it makes of it is the window's
// tests.
#include "workstation/script/SessionRecorder.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/workstation/model/TestImages.h"

namespace workstation::script {
namespace {

using nlohmann::json;
using pelmar::PixelPoint;

class Recorded : public testing::Test {
 protected:
  Recorded() {
    auto images = test::smallStudy();
    for (ImageRecord image : test::smallStudy()) {
      image.studyInstanceUid = "4.5.6";
      image.file = "/others" + image.file.string();
      images.push_back(std::move(image));
    }
    // A second series with the same number cannot be told from the first, and one without a number cannot be named.
    images.push_back(test::coronal("1.3", 1, 1, 0));
    images.push_back(test::coronal("1.4", 4, 1, 0));
    images.back().seriesNumber.reset();
    workstation.addImages(std::move(images));
    workstation.setPersonLog(&recorder);
  }
  ~Recorded() override { workstation.setPersonLog(nullptr); }

  StackId stackOf(const std::string& seriesUid, const std::string& study = "1.2.3") {
    for (const StackId& id : workstation.stacks(study)) {
      if (workstation.series(id)->uid == seriesUid) return id;
    }
    ADD_FAILURE() << seriesUid;
    return {};
  }
  /// Opens the sagittal series, with the scale that the script's steps would begin with left out.
  int openSagittal() {
    const int viewer = *workstation.openViewer(stackOf("1.1"));
    begun = recorder.script().steps.size() - 1;
    return viewer;
  }
  /// Clicks two points of a polygon; what was written before does not count.
  int beginPolygon() {
    const int viewer = openSagittal();
    EXPECT_TRUE(workstation.selectRoiTool(viewer, pelmar::ROIToolTagOpenPolygon));
    begun += 1;
    click(viewer, {10, 10});
    click(viewer, {20, 40});
    return viewer;
  }
  /// What was written since, without the dump at the end.
  json steps() {
    auto all = json::parse(writeScript(recorder.script()))["steps"];
    EXPECT_EQ(all.back(), json::parse(R"({"do": "dump"})"));
    all.erase(all.size() - 1);
    all.erase(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(begun));
    return all;
  }
  void click(int viewer, PixelPoint at) {
    ASSERT_TRUE(workstation.press(viewer, at));
    ASSERT_TRUE(workstation.release(viewer, at));
  }
  /// Expects these steps, given as JSON.
  void expectSteps(const std::string& expected) { EXPECT_EQ(steps(), json::parse("[" + expected + "]")); }
  static std::string text(double value) { return json(value).dump(); }
  std::string scaleOf(int viewer) { return text(workstation.viewer(viewer)->scale); }

  Workstation workstation;
  std::map<std::string, StudyPlace> places{{"1.2.3", {"/study", false}}, {"4.5.6", {"/database", true}}};
  SessionRecorder recorder{workstation, [this](const std::string& study) {
                             const auto place = places.find(study);
                             return place == places.end() ? std::nullopt : std::optional(place->second);
                           }};
  std::size_t begun = 0;
};

TEST_F(Recorded, AViewerOpensWithTheScaleThatItHadOnTheScreen) {
  const int viewer = *workstation.openViewer(stackOf("1.2"));
  expectSteps(R"({"do": "openViewer", "path": "/study", "series": 2, "stack": 0},
                 {"do": "zoom", "viewer": 0, "scale": )" +
              scaleOf(viewer) + "}");
  EXPECT_TRUE(recorder.gaps().empty());
}

TEST_F(Recorded, AStudyOfADatabaseIsNamedByItsUid) {
  ASSERT_TRUE(workstation.openViewer(stackOf("1.1", "4.5.6")));
  EXPECT_EQ(recorder.script().database, "/database");
  EXPECT_EQ(steps()[0], json::parse(R"({"do": "openViewer", "study": "4.5.6", "series": 1, "stack": 0})"));
}

TEST_F(Recorded, WhatIsShownIsWrittenAsItIsDone) {
  const int viewer = openSagittal();
  ASSERT_TRUE(workstation.scroll(viewer, 1));
  ASSERT_TRUE(workstation.scroll(viewer, 1));
  ASSERT_TRUE(workstation.zoom(viewer, 0.1 + 0.2));
  ASSERT_TRUE(workstation.pan(viewer, 1.0 / 3, -2));
  ASSERT_TRUE(workstation.rotate(viewer, -90));
  ASSERT_TRUE(workstation.flip(viewer, FlipAxis::vertical));
  ASSERT_TRUE(workstation.selectMouseTool(viewer, MouseToolPan));
  ASSERT_TRUE(workstation.selectRoiTool(viewer, pelmar::ROIToolTagLength));
  ASSERT_TRUE(workstation.bringToFront(viewer));
  ASSERT_TRUE(workstation.closeViewer(viewer));
  expectSteps(R"({"do": "scroll", "viewer": 0, "slice": 1},
                 {"do": "zoom", "viewer": 0, "scale": 0.30000000000000004},
                 {"do": "pan", "viewer": 0, "by": [0.3333333333333333, -2]},
                 {"do": "rotate", "viewer": 0, "degrees": -90},
                 {"do": "flip", "viewer": 0, "axis": "vertical"},
                 {"do": "tool", "viewer": 0, "mouse": 1},
                 {"do": "tool", "viewer": 0, "roi": 5},
                 {"do": "front", "viewer": 0},
                 {"do": "closeViewer", "viewer": 0})");
}

TEST_F(Recorded, OfZoomsInARowTheLastOneIsWritten) {
  const int viewer = openSagittal();
  begun = 1;
  ASSERT_TRUE(workstation.zoom(viewer, 2));
  ASSERT_TRUE(workstation.zoom(viewer, 3));
  expectSteps(R"({"do": "zoom", "viewer": 0, "scale": 3})");
}

TEST_F(Recorded, FittingIsAZoomAndTheWayBackToTheMiddle) {
  const int viewer = openSagittal();
  ASSERT_TRUE(workstation.pan(viewer, 5, 7));
  ASSERT_TRUE(workstation.fit(viewer));
  const double scale = workstation.viewer(viewer)->scale;
  expectSteps(R"({"do": "pan", "viewer": 0, "by": [5, 7]},
                 {"do": "zoom", "viewer": 0, "scale": )" +
              text(scale) + R"(}, {"do": "pan", "viewer": 0, "by": [-5, -7]})");
}

TEST_F(Recorded, ARefusedActIsNone) {
  const int viewer = openSagittal();
  EXPECT_FALSE(workstation.scroll(viewer, 9));
  EXPECT_FALSE(workstation.zoom(viewer, 0));
  EXPECT_FALSE(workstation.undo());
  EXPECT_FALSE(workstation.redo());
  EXPECT_FALSE(workstation.closePalette());
  expectSteps("");
}

TEST_F(Recorded, ASwitchToAnotherSeriesBeginsWithItsScale) {
  const int viewer = openSagittal();
  ASSERT_TRUE(workstation.switchSeries(viewer, stackOf("1.2")));
  const double scale = workstation.viewer(viewer)->scale;
  expectSteps(R"({"do": "switchSeries", "viewer": 0, "series": 2, "stack": 0},
                 {"do": "zoom", "viewer": 0, "scale": )" +
              text(scale) + "}");
}

TEST_F(Recorded, ALineHasAsManyMovesAsItHad) {
  const int viewer = openSagittal();
  ASSERT_TRUE(workstation.selectRoiTool(viewer, pelmar::ROIToolTagLength));
  begun += 1;
  ASSERT_TRUE(workstation.press(viewer, PixelPoint{10.25, 5}));
  for (const double y : {7.0, 30.0, 31.5}) ASSERT_TRUE(workstation.move(viewer, PixelPoint{11, y}));
  expectSteps(R"({"do": "draw", "viewer": 0, "slice": 0, "type": "line", "points": [[10.25, 5], [11, 31.5]],
                  "moves": 3, "release": false})");
  ASSERT_TRUE(workstation.release(viewer, PixelPoint{11, 32}));
  ASSERT_TRUE(workstation.undo());
  ASSERT_TRUE(workstation.redo());
  expectSteps(R"({"do": "draw", "viewer": 0, "slice": 0, "type": "line", "points": [[10.25, 5], [11, 32]],
                  "moves": 3, "release": true}, {"do": "undo"}, {"do": "redo"})");
  EXPECT_TRUE(recorder.gaps().empty());
}

TEST_F(Recorded, ALineHasNoMoreMovesThanAScriptMayHave) {
  const int viewer = openSagittal();
  ASSERT_TRUE(workstation.selectRoiTool(viewer, pelmar::ROIToolTagLength));
  begun += 1;
  ASSERT_TRUE(workstation.press(viewer, PixelPoint{10, 5}));
  for (int i = 0; i < mostMoves; ++i) ASSERT_TRUE(workstation.move(viewer, PixelPoint{11, i % 2 + 30.0}));
  EXPECT_EQ(steps()[0]["moves"], 10000);
  ASSERT_TRUE(workstation.move(viewer, PixelPoint{11, 32}));
  EXPECT_EQ(steps()[0]["moves"], 10000);
  EXPECT_EQ(steps()[0]["points"], json::parse("[[10, 5], [11, 32]]"));
}

TEST_F(Recorded, ViewsThatChangeBetweenTheClicksOfAPolygonStandBeforeIt) {
  const int viewer = openSagittal();
  const int other = *workstation.openViewer(stackOf("1.2"));
  ASSERT_TRUE(workstation.selectRoiTool(viewer, pelmar::ROIToolTagOpenPolygon));
  begun = recorder.script().steps.size() - 1;
  click(viewer, {10, 10});
  ASSERT_TRUE(workstation.pan(viewer, 3, 4));
  ASSERT_TRUE(workstation.scroll(other, 2));
  click(viewer, {10, 40});
  ASSERT_TRUE(workstation.doubleClick(viewer, PixelPoint{10, 40}));
  expectSteps(R"({"do": "pan", "viewer": 0, "by": [3, 4]},
                 {"do": "scroll", "viewer": 1, "slice": 2},
                 {"do": "draw", "viewer": 0, "slice": 0, "type": "polygon", "points": [[10, 10], [10, 40]],
                  "moves": 8, "release": true})");
  EXPECT_TRUE(recorder.gaps().empty());
}

TEST_F(Recorded, ReturnEndsAPolygonAsADoubleClickDoes) {
  const int viewer = beginPolygon();
  ASSERT_TRUE(workstation.key(viewer, Key::returnKey));
  expectSteps(R"({"do": "draw", "viewer": 0, "slice": 0, "type": "polygon", "points": [[10, 10], [20, 40]],
                  "moves": 8, "release": true})");
}

TEST_F(Recorded, AToolEndsADrawingThatIsWrittenUnfinished) {
  const int viewer = beginPolygon();
  ASSERT_TRUE(workstation.selectMouseTool(viewer, MouseToolPan));
  expectSteps(R"({"do": "draw", "viewer": 0, "slice": 0, "type": "polygon", "points": [[10, 10], [20, 40]],
                  "moves": 8, "release": false},
                 {"do": "tool", "viewer": 0, "mouse": 1})");
  EXPECT_TRUE(recorder.gaps().empty());
}

TEST_F(Recorded, ALineThatWaitedForAScrollIsReleasedAfterIt) {
  const int viewer = openSagittal();
  ASSERT_TRUE(workstation.selectRoiTool(viewer, pelmar::ROIToolTagLength));
  begun += 1;
  ASSERT_TRUE(workstation.press(viewer, PixelPoint{10, 5}));
  ASSERT_TRUE(workstation.move(viewer, PixelPoint{10, 50}));
  ASSERT_TRUE(workstation.scroll(viewer, 1));
  ASSERT_TRUE(workstation.release(viewer, PixelPoint{10, 50}));
  expectSteps(R"({"do": "draw", "viewer": 0, "slice": 0, "type": "line", "points": [[10, 5], [10, 50]],
                  "moves": 1, "release": false},
                 {"do": "scroll", "viewer": 0, "slice": 1},
                 {"do": "release", "viewer": 0})");
  EXPECT_TRUE(recorder.gaps().empty());
}

TEST_F(Recorded, ADrawingThatGoesOnAfterSomethingElseIsLeftOut) {
  const int viewer = openSagittal();
  ASSERT_TRUE(workstation.selectRoiTool(viewer, pelmar::ROIToolTagOpenPolygon));
  click(viewer, {10, 10});
  ASSERT_TRUE(workstation.scroll(viewer, 1));
  EXPECT_TRUE(recorder.gaps().empty());
  click(viewer, {10, 50});
  EXPECT_EQ(recorder.gaps(),
            (std::set<std::string>{"the rest of a drawing or drag in the middle of which something else was done"}));
  ASSERT_TRUE(workstation.key(viewer, Key::returnKey));
  EXPECT_EQ(steps().back(), json::parse(R"({"do": "release", "viewer": 0})"));
}

TEST_F(Recorded, WhatIsDoneToAnnotationsThatNoScriptCanNameIsLeftOut) {
  const int viewer = openSagittal();
  const int id = *workstation.drawLine(viewer, 0, {20, 20}, {20, 60}, 2);
  ASSERT_TRUE(recorder.gaps().empty());
  const auto written = steps();
  ASSERT_TRUE(workstation.dragVertex(viewer, id, 1, {25, 65}, 2));
  EXPECT_EQ(recorder.gaps(),
            (std::set<std::string>{"the move of a vertex of an annotation that the plug-in does not use"}));
  ASSERT_TRUE(workstation.deselect(viewer));
  EXPECT_TRUE(recorder.gaps().contains("the selection of an annotation"));
  ASSERT_TRUE(workstation.selectMouseTool(viewer, MouseToolPan));
  ASSERT_TRUE(workstation.press(viewer, PixelPoint{21, 30}));
  ASSERT_TRUE(workstation.move(viewer, PixelPoint{22, 30}));
  ASSERT_TRUE(workstation.release(viewer, PixelPoint{22, 30}));
  EXPECT_TRUE(recorder.gaps().contains("the move of a whole annotation"));
  ASSERT_TRUE(workstation.deleteAnnotation(viewer, id));
  EXPECT_TRUE(recorder.gaps().contains("the deletion of an annotation that the plug-in does not use"));
  EXPECT_EQ(recorder.gaps().size(), 4U);
  ASSERT_TRUE(workstation.addText(viewer, {50, 40}, "fracture"));
  EXPECT_TRUE(recorder.gaps().contains("the drawing of a text, an arrow or a point"));
  EXPECT_EQ(steps().size(), written.size() + 1) << "the choice of the tool";
}

TEST_F(Recorded, AControlOfThePaletteThatNoStepNamesIsLeftOut) {
  const std::set<std::string> gap{"a control of the palette that scripts do not know"};
  openSagittal();
  const auto before = steps();
  PersonLog& log = recorder;
  log.palettePressed("measureAgain:");
  EXPECT_EQ(recorder.gaps(), gap);
  EXPECT_EQ(steps(), before);
}

TEST_F(Recorded, SelectingWhatIsSelectedAloneIsNothing) {
  const int viewer = openSagittal();
  ASSERT_TRUE(workstation.drawLine(viewer, 0, {20, 20}, {20, 60}, 2));
  ASSERT_TRUE(workstation.selectMouseTool(viewer, MouseToolPan));
  click(viewer, {20, 40});
  EXPECT_TRUE(recorder.gaps().empty());
  ASSERT_TRUE(workstation.drawLine(viewer, 0, {40, 20}, {40, 60}, 2));
  ASSERT_TRUE(workstation.selectMouseTool(viewer, MouseToolPan));
  click(viewer, {20, 40});
  EXPECT_EQ(recorder.gaps(), (std::set<std::string>{"the selection of an annotation"})) << "the other one ends being";
}

TEST_F(Recorded, ASeriesThatNoScriptCanNameIsLeftOutWithWhatIsDoneToIt) {
  EXPECT_FALSE(recorder.canName(stackOf("1.3"))) << "the second with its number";
  EXPECT_FALSE(recorder.canName(stackOf("1.4"))) << "without a number";
  const int viewer = *workstation.openViewer(stackOf("1.4"));
  EXPECT_EQ(recorder.gaps(), (std::set<std::string>{"the opening of a series that a script cannot name"}));
  ASSERT_TRUE(workstation.zoom(viewer, 2));
  EXPECT_TRUE(recorder.gaps().contains("what was done in a viewer that the script does not open"));
  expectSteps("");
  ASSERT_TRUE(workstation.openViewer(stackOf("1.1")));
  ASSERT_TRUE(workstation.zoom(1, 2));
  EXPECT_EQ(steps().back(), json::parse(R"({"do": "zoom", "viewer": 0, "scale": 2})")) << "numbered as the script does";
}

TEST_F(Recorded, AViewerThatChangesToAnotherStudyIsLostToTheScript) {
  places["4.5.6"] = {"/elsewhere", false};
  const int viewer = openSagittal();
  ASSERT_TRUE(workstation.switchSeries(viewer, stackOf("1.1", "4.5.6")));
  EXPECT_EQ(recorder.gaps(), (std::set<std::string>{"the change of a viewer to another study"}));
  ASSERT_TRUE(workstation.scroll(viewer, 1));
  expectSteps("");
}

TEST_F(Recorded, AScriptOpensInPlaceOrFromADatabaseButNotBoth) {
  openSagittal();
  EXPECT_FALSE(recorder.canName(stackOf("1.1", "4.5.6")));
  ASSERT_TRUE(workstation.openViewer(stackOf("1.1", "4.5.6")));
  EXPECT_EQ(recorder.gaps(), (std::set<std::string>{"the opening of a series that a script cannot name"}));
  EXPECT_FALSE(recorder.script().database);
}

}  // namespace
}  // namespace workstation::script
