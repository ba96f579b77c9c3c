// The palette: its actions and settings, its description, and that every way of closing it ends the workflow and lets
// it go.

#include <algorithm>
#include <cctype>
#include <fstream>
#include <functional>
#include <sstream>

#include "tests/plugin/LabellingFixture.h"

namespace testhost {
namespace {

using pelmar::Value;

using Palette = LabellingFixture;

TEST_F(Palette, isLoadedWithItsDelegateAndRemembersItsFrameWithoutCascading) {
  chooseLabels();
  EXPECT_EQ(host.calls.count("loadWindow(VertanaWindowController)"), 1U);
  EXPECT_TRUE(palette()->delegate);
  EXPECT_FALSE(palette()->cascades);
  EXPECT_EQ(palette()->rememberedAs, "VertanaPalette");
}

TEST_F(Palette, resetButtonKeepsPaletteAndWorkflowAndEmptiesTheStoredState) {
  storeStateOfEarlierRun(Value(lumbarState()));
  chooseLabels();
  ASSERT_EQ(planeCount(storedState(study)), 6U);
  EXPECT_TRUE(palette()->click("reset:"));
  EXPECT_TRUE(paletteIsVisible());
  EXPECT_TRUE(filter.windowController());
  EXPECT_EQ(filter.workflow(), 1);
  EXPECT_TRUE(isEmptyState(storedState(study)));
}

TEST_F(Palette, helpButtonOpensOnePageAndChangesNothing) {
  chooseLabels();
  EXPECT_TRUE(palette()->click("openHelp:"));
  EXPECT_EQ(host.app.opened, std::vector<std::string>{"https://vertana.example/manual/"});
  EXPECT_TRUE(paletteIsVisible());
  EXPECT_EQ(filter.workflow(), 1);
}

TEST_F(Palette, anUnknownActionIsRefused) {
  chooseLabels();
  EXPECT_FALSE(palette()->click("stopWorkflow:")) << "the action has a capital F";
  EXPECT_EQ(filter.workflow(), 1);
}

/// Closes the palette one way or another.
struct Closing {
  const char* how;
  void (*close)(LabellingFixture&);
};

class ClosingThePalette : public LabellingFixture, public ::testing::WithParamInterface<Closing> {};

TEST_P(ClosingThePalette, stopsAndSavesTheRunRestoresTheToolsAndLetsThePaletteGo) {
  sagittal->roiToolTag = 12;
  sagittal->view->tool = 4;
  chooseLabels();
  drawLine();
  host.calls.clear();
  GetParam().close(*this);
  EXPECT_FALSE(paletteIsVisible());
  EXPECT_FALSE(filter.windowController());
  EXPECT_EQ(filter.workflow(), -1);
  EXPECT_FALSE(filter.isActive());
  EXPECT_FALSE(filter.study());
  EXPECT_EQ(planeCount(storedState(study)), 6U);
  EXPECT_EQ(reportsWritten(), 1U);
  EXPECT_EQ(sagittal->roiToolTag, 12);
  EXPECT_EQ(sagittal->view->tool, 4);
  EXPECT_EQ(labelsOn(sagittal), lumbarLabels());
  EXPECT_EQ(sagittal->allROIs().size(), 5U);
}

INSTANTIATE_TEST_SUITE_P(
    EveryWay, ClosingThePalette,
    ::testing::Values(Closing{"closeBox", [](LabellingFixture& fixture) { fixture.palette()->close(); }},
                      Closing{"stopButton",
                              [](LabellingFixture& fixture) { fixture.palette()->click("stopWorkFlow:"); }},
                      Closing{"anotherCommand", [](LabellingFixture& fixture) { fixture.choose("Other", {}); }}),
    [](const auto& row) { return std::string(row.param.how); });

TEST_F(Palette, theSecondStopOfTheStopButtonFindsNoViewerAndNoStudy) {
  chooseLabels();
  host.calls.clear();
  palette()->click("stopWorkFlow:");
  EXPECT_EQ(host.calls.count("viewer1.setToolTag(0)"), 1U);
  EXPECT_EQ(host.calls.countContaining("kVertanaCustomStudyDescriptionSearchTerms"), 1U);
  EXPECT_EQ(filter.workflow(), -1);
}

TEST_F(Palette, knowsItsControllerOnceItIsPlaced) {
  chooseLabels();
  EXPECT_EQ(filter.windowController()->plugin(), &filter);
}

TEST_F(Palette, withoutAControllerItsActionsAndSettingsChangeNothing) {
  const auto orphan = std::make_shared<vertana::VertanaWindowController>(host);
  ASSERT_TRUE(orphan->window());
  EXPECT_EQ(orphan->plugin(), nullptr);
  EXPECT_TRUE(orphan->performAction("reset:"));
  orphan->windowWillClose();
  EXPECT_TRUE(orphan->valueForKey("drawMode").isNil());
  EXPECT_FALSE(orphan->setValue(1, "drawMode"));
  orphan->window()->makeKeyAndOrderFront();
  EXPECT_TRUE(orphan->performAction("stopWorkFlow:"));
  EXPECT_FALSE(orphan->window()->isVisible());
  EXPECT_EQ(reportsWritten(), 0U);
}

TEST_F(Palette, aBundleWithoutTheDescriptionGivesNoWindow) {
  host.windows.descriptions.clear();
  const auto orphan = std::make_shared<vertana::VertanaWindowController>(host);
  EXPECT_FALSE(orphan->window());
  EXPECT_FALSE(orphan->window());
  EXPECT_EQ(host.calls.count("loadWindow(VertanaWindowController)"), 1U) << "asked for once";
  orphan->settingDidChange("drawMode");
  orphan->close();
  EXPECT_TRUE(host.windows.loaded.empty());
}

TEST_F(Palette, closingAPaletteThatWasReplacedLeavesTheNewOneInPlace) {
  chooseLabels();
  const auto old = filter.windowController();
  const auto other = std::make_shared<vertana::VertanaWindowController>(host);
  filter.setWindowController(other);
  old->close();
  EXPECT_EQ(filter.windowController(), other);
}

// --- settings ---

TEST_F(Palette, controlsShowTheSettings) {
  chooseLabels();
  const auto controller = filter.windowController();
  EXPECT_EQ(controller->valueForKey("anatomicalRegion"), Value(2));
  EXPECT_EQ(controller->valueForKey("drawMode"), Value(0));
  EXPECT_EQ(controller->valueForKey("displayLabels"), Value(true));
  EXPECT_EQ(controller->valueForKey("additionalVertebra"), Value(false));
  EXPECT_TRUE(controller->valueForKey("workflow").isNil()) << "not a setting of the palette";
}

TEST_F(Palette, controlsSetTheSettings) {
  chooseLabels();
  const auto controller = filter.windowController();
  EXPECT_TRUE(controller->setValue(1, "anatomicalRegion"));
  EXPECT_TRUE(controller->setValue(1, "drawMode"));
  EXPECT_TRUE(controller->setValue(false, "displayLabels"));
  EXPECT_TRUE(controller->setValue(true, "additionalVertebra"));
  EXPECT_FALSE(controller->setValue(1, "workflow"));
  EXPECT_EQ(filter.anatomicalRegion(), 1);
  EXPECT_EQ(filter.drawMode(), 1U);
  EXPECT_FALSE(filter.displayLabels());
  EXPECT_TRUE(filter.additionalVertebra());
  EXPECT_EQ(filter.workflow(), 1);
  EXPECT_EQ(controller->valueForKey("anatomicalRegion"), Value(1));
  EXPECT_EQ(controller->valueForKey("drawMode"), Value(1));
}

bool wasAnnounced(const pelmar::Ref<TestWindow>& palette, const std::string& setting) {
  const auto& changed = palette->changedValues;
  return std::find(changed.begin(), changed.end(), setting) != changed.end();
}

TEST_F(Palette, settingsThatThePlugInChangesItselfAreAnnounced) {
  chooseLabels();
  const std::vector<std::pair<std::string, std::function<void()>>> changes{
      {"anatomicalRegion", [&] { filter.setAnatomicalRegion(0); }},
      {"drawMode", [&] { filter.setDrawMode(vertana::DrawModeOpenPolygon); }},
      {"displayLabels", [&] { filter.setDisplayLabels(false); }},
      {"additionalVertebra", [&] { filter.setAdditionalVertebra(true); }}};
  for (const auto& [setting, change] : changes) {
    palette()->changedValues.clear();
    change();
    EXPECT_TRUE(wasAnnounced(palette(), setting)) << setting;
  }
}

TEST_F(Palette, theGuessedRegionIsAnnouncedAsThePaletteOpens) {
  study->description = "MRI cervical";
  chooseLabels();
  EXPECT_EQ(filter.anatomicalRegion(), 0);
  filter.setAnatomicalRegion(1);
  chooseLabels();
  EXPECT_EQ(filter.anatomicalRegion(), 0);
  EXPECT_TRUE(wasAnnounced(palette(), "anatomicalRegion"));
}

TEST_F(Palette, aLoadedRegionIsAnnounced) {
  storeStateOfEarlierRun(Value::Dictionary{{"VertanaAnatomicalRegion", 1}});
  chooseLabels();
  EXPECT_EQ(filter.anatomicalRegion(), 1);
  EXPECT_TRUE(wasAnnounced(palette(), "anatomicalRegion"));
}

// --- the window description ---

std::string windowDescription() {
  std::ifstream file(VERTANA_WINDOW_DESCRIPTION);
  std::stringstream content;
  content << file.rdbuf();
  return content.str();
}

/// The entry of the one control that has this member, without blanks; empty unless there is exactly one.
std::string controlWith(const std::string& member) {
  std::string text = windowDescription();
  std::erase_if(text, [](unsigned char character) { return std::isspace(character) != 0; });
  const auto at = text.find(member);
  if (at == std::string::npos || text.find(member, at + 1) != std::string::npos) return {};
  const auto begin = text.rfind("{\"kind\":", at);
  const auto end = text.find("{\"kind\":", at);
  return text.substr(begin, end == std::string::npos ? end : end - begin);
}

struct Control {
  std::string member;
  bool discardsLabelling;
  std::vector<std::string> parts;
};

TEST(PaletteDescription, offersTheThreeActionsAndFourSettingsAndMarksWhatDiscardsTheLabelling) {
  const std::vector<Control> controls{
      {"\"action\":\"stopWorkFlow:\"", false, {"\"kind\":\"button\""}},
      {"\"action\":\"reset:\"", true, {"\"kind\":\"button\""}},
      {"\"action\":\"openHelp:\"", false, {"\"kind\":\"button\""}},
      {"\"property\":\"anatomicalRegion\"", true, {"\"value\":0", "\"value\":1", "\"value\":2"}},
      {"\"property\":\"drawMode\"", true, {"\"value\":0", "\"value\":1"}},
      {"\"property\":\"displayLabels\"", false, {"\"kind\":\"checkbox\""}},
      {"\"property\":\"additionalVertebra\"", true, {"\"kind\":\"checkbox\""}}};
  for (const auto& control : controls) {
    const auto entry = controlWith(control.member);
    ASSERT_FALSE(entry.empty()) << control.member;
    const std::string mark = control.discardsLabelling ? "true" : "false";
    EXPECT_NE(entry.find("\"discardsLabelling\":" + mark), std::string::npos) << control.member;
    EXPECT_NE(entry.find("\"label\":\""), std::string::npos) << control.member;
    for (const auto& part : control.parts) EXPECT_NE(entry.find(part), std::string::npos) << control.member << part;
  }
}

TEST(PaletteDescription, namesTheWindow) {
  const auto text = windowDescription();
  EXPECT_NE(text.find("\"autosaveName\": \"VertanaPalette\""), std::string::npos);
  EXPECT_NE(text.find("\"title\": \""), std::string::npos);
  EXPECT_NE(text.find("\"size\": ["), std::string::npos);
}

}  // namespace
}  // namespace testhost
