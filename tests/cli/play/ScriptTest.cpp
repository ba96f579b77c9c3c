#include "cli/play/ScriptReader.h"

#include <gtest/gtest.h>

namespace cli {
namespace {

/// The first step of a script with these steps.
template <class StepType>
StepType only(const std::string& steps) {
  const auto script = readScript("{\"steps\": [" + steps + "]}");
  EXPECT_TRUE(script) << script.failure.sentence;
  if (!script || script->steps.size() != 1) return {};
  const auto* step = std::get_if<StepType>(&script->steps[0]);
  EXPECT_NE(step, nullptr) << steps;
  return step ? *step : StepType{};
}

TEST(Script, WithoutStepsHasWhatIsUsual) {
  const auto script = readScript(R"({"steps": []})");
  ASSERT_TRUE(script);
  EXPECT_EQ(script->database, std::nullopt);
  EXPECT_TRUE(script->defaults.empty());
  EXPECT_EQ(script->hostVersion, "9.0");
  EXPECT_TRUE(script->hostLacks.empty());
  EXPECT_TRUE(script->steps.empty());
}

TEST(Script, SaysWhatTheSessionStartsWith) {
  const auto script = readScript(R"({"database": "d", "defaults": {"a": 1, "b": [2.5, null]},
      "host": {"version": "8.10", "lacks": ["stringTags", "ROIToolTag"]}, "steps": []})");
  ASSERT_TRUE(script);
  EXPECT_EQ(script->database, "d");
  EXPECT_EQ(script->defaults.at("a").intValue(), 1);
  ASSERT_TRUE(script->defaults.at("b").array());
  EXPECT_EQ(script->defaults.at("b").array()->at(0).doubleValue(), 2.5);
  EXPECT_TRUE(script->defaults.at("b").array()->at(1).isNil());
  EXPECT_EQ(script->hostVersion, "8.10");
  EXPECT_EQ(script->hostLacks, (std::vector<std::string>{"stringTags", "ROIToolTag"}));
}

TEST(Script, TakesAnyTextAsAVersion) {
  for (const std::string version : {"9", "9.0", "10.12.3", "00.1", "", "9.", ".9", "abc", "x.y"}) {
    const auto script = readScript("{\"host\": {\"version\": \"" + version + "\"}, \"steps\": []}");
    ASSERT_TRUE(script) << version;
    EXPECT_EQ(script->hostVersion, version);
  }
}

TEST(Script, KnowsEveryCapabilityThatAHostMayLack) {
  for (const std::string name : {"bodyPartExamined", "stringTags", "dontDisplayInKeyImagesWindow", "resamplePoints",
                                 "Point3DCoding", "ROIToolTag"}) {
    EXPECT_TRUE(readScript("{\"host\": {\"lacks\": [\"" + name + "\"]}, \"steps\": []}")) << name;
  }
}

TEST(Steps, HaveTheirValues) {
  EXPECT_EQ(only<OpenStudyStep>(R"({"do": "openStudy", "path": "p"})").path, "p");
  EXPECT_EQ(only<OpenStudyStep>(R"({"do": "openStudy", "study": "1.2"})").study, "1.2");
  const auto viewer = only<OpenViewerStep>(R"({"do": "openViewer", "path": "p", "series": -3, "stack": 2})");
  EXPECT_EQ(viewer.series, -3);
  EXPECT_EQ(viewer.stack, 2);
  EXPECT_EQ(only<CloseViewerStep>(R"({"do": "closeViewer", "viewer": 4})").viewer, 4);
  EXPECT_EQ(only<SwitchSeriesStep>(R"({"do": "switchSeries", "viewer": 1, "series": 5})").series, 5);
  EXPECT_EQ(only<FrontStep>(R"({"do": "front", "viewer": 2})").viewer, 2);
  EXPECT_EQ(only<MenuStep>(R"({"do": "menu", "viewer": 0, "title": "Labels"})").title, "Labels");
  EXPECT_EQ(only<ReleaseStep>(R"({"do": "release", "viewer": 3})").viewer, 3);
  EXPECT_EQ(only<RotateStep>(R"({"do": "rotate", "viewer": 0, "degrees": -12.5})").degrees, -12.5);
  EXPECT_EQ(only<FlipStep>(R"({"do": "flip", "viewer": 0, "axis": "vertical"})").axis, workstation::FlipAxis::vertical);
  EXPECT_TRUE(only<FailSavesStep>(R"({"do": "failSaves", "on": true})").on);
  EXPECT_EQ(only<ScrollStep>(R"({"do": "scroll", "viewer": 0, "slice": 7})").slice, 7);
  EXPECT_EQ(only<ZoomStep>(R"({"do": "zoom", "viewer": 0, "scale": 2})").scale, 2);
  EXPECT_EQ(only<PanStep>(R"({"do": "pan", "viewer": 0, "by": [1.5, -2]})").by.y, -2);
  EXPECT_EQ(only<AddReportStep>(R"({"do": "addReport", "path": "p", "file": "f"})").file, "f");
  EXPECT_EQ(only<DumpStep>(R"({"do": "dump", "name": "n"})").name, "n");
  EXPECT_EQ(only<DumpStep>(R"({"do": "dump"})").name, std::nullopt);
  only<UndoStep>(R"({"do": "undo"})");
  only<RedoStep>(R"({"do": "redo"})");
  only<RestartStep>(R"({"do": "restart"})");
  only<CrashStep>(R"({"do": "crash"})");
}

TEST(Steps, ThatDrawHaveTheirValues) {
  const auto line = only<DrawStep>(R"({"do": "draw", "viewer": 1, "type": "line", "points": [[1, 2.5], [3, 4]]})");
  EXPECT_EQ(line.type, DrawnType::line);
  EXPECT_EQ(line.slice, std::nullopt);
  EXPECT_EQ(line.points, (std::vector<pelmar::PixelPoint>{{1, 2.5}, {3, 4}}));
  EXPECT_EQ(line.moves, 8);
  EXPECT_TRUE(line.release);
  const auto polygon = only<DrawStep>(
      R"({"do": "draw", "viewer": 1, "slice": 6, "type": "polygon", "points": [[1, 2]], "moves": 3, "release": false})");
  EXPECT_EQ(polygon.type, DrawnType::polygon);
  EXPECT_EQ(polygon.slice, 6);
  EXPECT_EQ(polygon.moves, 3);
  EXPECT_FALSE(polygon.release);
  const auto drag =
      only<DragVertexStep>(R"({"do": "dragVertex", "viewer": 0, "roi": "input", "vertex": 2, "to": [5, 6]})");
  EXPECT_EQ(drag.roi, NamedRoi::input);
  EXPECT_EQ(drag.vertex, 2);
  EXPECT_EQ(drag.to, (pelmar::PixelPoint{5, 6}));
  EXPECT_EQ(drag.moves, 4);
  EXPECT_EQ(only<DeleteRoiStep>(R"({"do": "deleteROI", "viewer": 0, "roi": "curve"})").roi, NamedRoi::curve);
  EXPECT_EQ(only<DeleteRoiStep>(R"({"do": "deleteROI", "viewer": 0, "id": 9})").id, 9);
  EXPECT_EQ(only<ToolStep>(R"({"do": "tool", "viewer": 0, "mouse": 2})").mouse, 2);
  EXPECT_EQ(only<ToolStep>(R"({"do": "tool", "viewer": 0, "roi": 10})").roi, 10);
}

TEST(Steps, OfThePaletteHaveTheirValues) {
  EXPECT_EQ(only<PaletteStep>(R"({"do": "palette", "press": "stopWorkFlow"})").press, PaletteButton::stopWorkFlow);
  EXPECT_EQ(only<PaletteStep>(R"({"do": "palette", "press": "reset"})").press, PaletteButton::reset);
  EXPECT_EQ(only<PaletteStep>(R"({"do": "palette", "press": "openHelp"})").press, PaletteButton::openHelp);
  EXPECT_EQ(only<PaletteStep>(R"({"do": "palette", "press": "close"})").press, PaletteButton::close);
  const auto step = only<PaletteStep>(R"({"do": "palette", "set": {"displayLabels": false, "anatomicalRegion": 1}})");
  ASSERT_TRUE(step.set);
  EXPECT_EQ(step.set->anatomicalRegion, 1);
  EXPECT_EQ(step.set->additionalVertebra, std::nullopt);
  EXPECT_EQ(step.set->drawMode, std::nullopt);
  EXPECT_EQ(step.set->displayLabels, false);
}

TEST(Steps, MayGoToTheirBounds) {
  EXPECT_EQ(only<PaletteStep>(R"({"do": "palette", "set": {"anatomicalRegion": -1}})").set->anatomicalRegion, -1);
  EXPECT_EQ(only<PaletteStep>(R"({"do": "palette", "set": {"anatomicalRegion": 2}})").set->anatomicalRegion, 2);
  const auto draw = R"({"do": "draw", "viewer": 0, "type": "line", "points": [[0, 0], [1, 1]], "moves": 10000})";
  EXPECT_EQ(only<DrawStep>(draw).moves, 10000);
  const auto drag = R"({"do": "dragVertex", "viewer": 0, "roi": "curve", "vertex": 0, "to": [1, 1], "moves": 10000})";
  EXPECT_EQ(only<DragVertexStep>(drag).moves, 10000);
}

TEST(WritingAScript, GivesTheTextThatIsReadAsTheSame) {
  Script script;
  script.database = "folder";
  script.defaults["a"] = pelmar::Value::Array{1, 0.1, "x", true};
  script.hostVersion = "10.2";
  script.hostLacks = {"ROIToolTag"};
  DrawStep draw;
  draw.type = DrawnType::polygon;
  draw.points = {{0.1, 1e-300}, {1.0 / 3, 2}};
  PaletteStep set;
  set.set.emplace().additionalVertebra = true;
  PaletteStep press;
  press.press = PaletteButton::openHelp;
  DeleteRoiStep remove;
  remove.roi = NamedRoi::input;
  script.steps = {
      OpenStudyStep{"p \"q\"", std::nullopt}, draw, set, press, remove, FlipStep{1, {}}, UndoStep{}, DumpStep{}};
  const auto read = readScript(writeScript(script));
  ASSERT_TRUE(read) << read.failure.sentence;
  EXPECT_EQ(read->database, script.database);
  EXPECT_EQ(read->hostVersion, "10.2");
  EXPECT_EQ(read->hostLacks, script.hostLacks);
  EXPECT_EQ(pelmar::Value(read->defaults), pelmar::Value(script.defaults));
  ASSERT_EQ(read->steps.size(), script.steps.size());
  EXPECT_EQ(std::get<OpenStudyStep>(read->steps[0]).path, "p \"q\"");
  EXPECT_EQ(std::get<DrawStep>(read->steps[1]).points, draw.points);
  EXPECT_EQ(std::get<PaletteStep>(read->steps[2]).set->additionalVertebra, true);
  EXPECT_EQ(std::get<PaletteStep>(read->steps[3]).press, PaletteButton::openHelp);
  EXPECT_EQ(std::get<DeleteRoiStep>(read->steps[4]).roi, NamedRoi::input);
  EXPECT_EQ(writeScript(*read), writeScript(script));
}

}  // namespace
}  // namespace cli
