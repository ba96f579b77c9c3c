// A person labels a spine in the window.
#include <QProcess>
#include <nlohmann/json.hpp>

#include "WindowFixture.h"

namespace workstation::test {
namespace {

class Labelling : public WindowTest {
 protected:
  /// What the command makes of the same line on a copy of the study.
  nlohmann::json labelledByCommand(int slice) {
    const auto copy = folder_ / "copy";
    std::filesystem::copy(study(), copy, std::filesystem::copy_options::recursive);
    qputenv("XDG_CONFIG_HOME", folder_.path().c_str());
    qputenv("VERTANA_PLUGIN", VERTANA_BUNDLE);
    QProcess command;
    command.start(VERTANA_COMMAND, {"label", QString::fromStdString(copy.string()), "--line", "80,20,80,140", "--slice",
                                    QString::number(slice), "--json"});
    EXPECT_TRUE(command.waitForFinished(60000));
    EXPECT_EQ(command.exitCode(), 0) << command.readAllStandardError().toStdString();
    return nlohmann::json::parse(command.readAllStandardOutput().toStdString(), nullptr, false);
  }
  std::vector<std::string> levelTexts(int viewer) {
    std::vector<std::string> texts;
    for (const auto& annotation : workstation().annotations(viewer, workstation().viewer(viewer)->slice))
      texts.push_back(annotation.roi->name());
    return texts;
  }
  std::size_t reports() { return desk_->store().status(workstation().stacks(studyUid()).front().studyUid).objects; }
  std::string studyUid() { return desk_->folders().studiesIn(study()).front(); }
  pelmar::Ref<pelmar::ROI> curve() {
    const pelmar::Value state = workstation().pluginState();
    return pelmar::ref_cast<pelmar::ROI>(state.dictionary()->at("openPolygonROI").object());
  }
};

TEST_F(Labelling, ALineDrawnWithTheMouseGivesTheLevelsThatTheCommandGives) {
  openStudy();
  chooseLabels();
  const int viewer = sagittalViewer();
  drag(viewer, spineTop, spineEnd);
  const auto expected = labelledByCommand(workstation().viewer(viewer)->slice);
  ASSERT_TRUE(expected.is_object());
  std::vector<std::string> names;
  for (const auto& plane : expected["intervertebralPlanes"]) names.push_back(plane["name"]);
  ASSERT_GE(names.size(), 5U);
  EXPECT_EQ(planeNames(), names);

  const int axial = axialViewer();
  int named = 0;
  for (const auto& slice : expected["slices"]) {
    const auto info = *workstation().viewer(axial);
    if (slice["series"] != *workstation().series(info.stack)->number || slice["name"].is_null()) continue;
    ASSERT_TRUE(workstation().scroll(axial, slice["slice"]));
    EXPECT_EQ(levelTexts(axial), std::vector<std::string>{slice["name"]}) << "slice " << slice["slice"];
    ++named;
  }
  EXPECT_GT(named, 3);
}

TEST_F(Labelling, IsStoredOnQuittingAndShownAgainInTheNextRun) {
  openStudy();
  chooseLabels();
  drag(sagittalViewer(), spineTop, spineEnd);
  const auto names = planeNames();
  restart();
  openStudy();
  EXPECT_EQ(reports(), 1U);
  chooseLabels();
  EXPECT_EQ(planeNames(), names);
}

TEST_F(Labelling, APolygonIsClickedAndEndedByADoubleClick) {
  openStudy();
  chooseLabels();
  const int viewer = sagittalViewer();
  ASSERT_TRUE(workstation().setPaletteValue("drawMode", pelmar::Value(1)));
  settle();
  // One fewer than the region has discs, for the last one would end the polygon by itself.
  for (int vertex = 0; vertex < 5; ++vertex) {
    const pelmar::PixelPoint pixel{80, 20.0 + 24 * vertex};
    press(viewer, pixel);
    release(viewer, pixel);
  }
  EXPECT_TRUE(workstation().isDrawing(viewer));
  mouse(viewer, QEvent::MouseButtonDblClick, at(viewer, {80, 116}));
  release(viewer, {80, 116});
  settle();
  EXPECT_FALSE(workstation().isDrawing(viewer));
  EXPECT_EQ(planeNames().size(), 6U) << "the discs of the region, whatever number of vertices was clicked";
}

TEST_F(Labelling, ADoubleClickOnTheLastDiscOfTheRegionStartsNoOtherPolygon) {
  openStudy();
  chooseLabels();
  const int viewer = sagittalViewer();
  ASSERT_TRUE(workstation().setPaletteValue("drawMode", pelmar::Value(1)));
  settle();
  for (int vertex = 0; vertex < 6; ++vertex) {
    const pelmar::PixelPoint pixel{80, 20.0 + 24 * vertex};
    press(viewer, pixel);
    release(viewer, pixel);
  }
  settle();
  ASSERT_FALSE(workstation().isDrawing(viewer)) << "the sixth vertex has ended it";
  const auto names = planeNames();
  const auto annotations = workstation().annotations(viewer).size();
  mouse(viewer, QEvent::MouseButtonDblClick, at(viewer, {80, 140}));
  release(viewer, {80, 140});
  settle();
  EXPECT_FALSE(workstation().isDrawing(viewer));
  EXPECT_EQ(workstation().annotations(viewer).size(), annotations);
  EXPECT_EQ(planeNames(), names);
}

TEST_F(Labelling, AVertexIsDraggedAndTheMoveIsTakenBackByTheMenu) {
  openStudy();
  chooseLabels();
  const int viewer = sagittalViewer();
  drag(viewer, spineTop, spineEnd);
  ASSERT_TRUE(curve());
  const auto was = curve()->pointAtIndex(2);
  drag(viewer, was, {was.x + 9, was.y + 2});
  EXPECT_NEAR(curve()->pointAtIndex(2).x, was.x + 9, 0.01);
  EXPECT_NEAR(curve()->pointAtIndex(2).y, was.y + 2, 0.01);
  for (QAction* action : window_->findChildren<QAction*>()) {
    if (action->text() == "&Undo") action->trigger();
  }
  settle();
  EXPECT_NEAR(curve()->pointAtIndex(2).x, was.x, 1e-9);
}

TEST_F(Labelling, IsNotDisturbedByArrowsPointsAndTextsOfThePersons) {
  openStudy();
  chooseLabels();
  const int viewer = sagittalViewer();
  drag(viewer, spineTop, spineEnd);
  const auto names = planeNames();
  ASSERT_GE(names.size(), 5U);
  const auto shape = [&] {
    std::vector<pelmar::PixelPoint> points;
    for (std::size_t vertex = 0; vertex < curve()->points()->count(); ++vertex)
      points.push_back(curve()->pointAtIndex(static_cast<long>(vertex)));
    return points;
  };
  const auto before = shape();
  const auto annotations = workstation().annotations(viewer).size();
  ASSERT_TRUE(workstation().selectRoiTool(viewer, pelmar::ROITypeArrow));
  drag(viewer, {30, 30}, {50, 60});
  ASSERT_TRUE(workstation().selectRoiTool(viewer, pelmar::ROITypePoint));
  drag(viewer, {30, 90}, {31, 90});
  ASSERT_TRUE(workstation().addText(viewer, {30, 120}, "L4"));
  settle();
  EXPECT_EQ(workstation().annotations(viewer).size(), annotations + 3);
  EXPECT_EQ(planeNames(), names);
  EXPECT_EQ(shape(), before);
  for (int step = 0; step < 3; ++step) ASSERT_TRUE(workstation().undo());
  EXPECT_EQ(workstation().annotations(viewer).size(), annotations);
  EXPECT_EQ(planeNames(), names);
}

TEST_F(Labelling, ClosingTheViewerInTheMiddleOfTheLineLeavesAWindowThatWorks) {
  openStudy();
  chooseLabels();
  const int viewer = sagittalViewer();
  const auto open = workstation().viewers().size();
  drag(viewer, spineTop, {80, 90}, false);
  window_->closeFrontViewer();
  settle();
  EXPECT_EQ(workstation().viewers().size(), open - 1);
  EXPECT_EQ(window_->grid().panes().size(), open - 1);
  EXPECT_EQ(window_->grid().pane(viewer), nullptr);
  openStudy();
  chooseLabels();
  drag(sagittalViewer(), spineTop, spineEnd);
  EXPECT_GE(planeNames().size(), 5U);
}

TEST_F(Labelling, AViewerThatIsHiddenInTheMiddleOfTheLineEndsIt) {
  openStudy();
  chooseLabels();
  const int viewer = sagittalViewer();
  drag(viewer, spineTop, {80, 130}, false);
  ASSERT_TRUE(workstation().isDrawing(viewer));
  ASSERT_TRUE(workstation().bringToFront(axialViewer()));
  window_->grid().setSize({1, 1});
  settle();
  EXPECT_FALSE(workstation().isDrawing(viewer));
}

TEST_F(Labelling, ClosingTheWindowInTheMiddleOfTheLineLeavesNothingBehind) {
  openStudy();
  chooseLabels();
  drag(sagittalViewer(), spineTop, spineEnd, false);
  EXPECT_TRUE(window_->close());
  settle();
  EXPECT_TRUE(workstation().viewers().empty());
  window_.reset();
}

TEST_F(Labelling, ClosingTheWindowInTheMiddleOfAVertexDragStoresTheLabelling) {
  openStudy();
  chooseLabels();
  const int viewer = sagittalViewer();
  drag(viewer, spineTop, spineEnd);
  const auto vertex = curve()->pointAtIndex(1);
  drag(viewer, vertex, {vertex.x + 8, vertex.y}, false);
  EXPECT_TRUE(window_->close());
  settle();
  EXPECT_EQ(desk_->store().status(studyUid()).objects, 1U);
}

TEST_F(Labelling, ClosingTheViewersWhileThePaletteIsOpenLeavesAWindowThatWorks) {
  openStudy();
  chooseLabels();
  drag(sagittalViewer(), spineTop, spineEnd);
  while (!workstation().viewers().empty()) {
    window_->closeFrontViewer();
    settle();
  }
  EXPECT_TRUE(window_->grid().panes().empty());
  EXPECT_FALSE(window_->palette().isVisible());
  openStudy();
  EXPECT_FALSE(workstation().viewers().empty());
}

TEST_F(Labelling, SwitchingTheSeriesWhileALineIsDrawnEndsTheLine) {
  openStudy();
  chooseLabels();
  const int viewer = sagittalViewer();
  const StackId other = workstation().viewer(axialViewer())->stack;
  drag(viewer, spineTop, {80, 60}, false);
  window_->openStack(other, false);
  settle();
  move(viewer, {90, 90});
  release(viewer, {90, 90});
  settle();
  EXPECT_EQ(workstation().viewer(viewer)->stack, other);
  EXPECT_FALSE(workstation().isDrawing(viewer));
}

TEST_F(Labelling, OneThatCannotBeSavedIsToldAndTriedAgainOnQuitting) {
  openStudy();
  chooseLabels();
  drag(sagittalViewer(), spineTop, spineEnd);
  desk_->store().setFailing(true);
  ASSERT_TRUE(workstation().closePalette());
  settle();
  EXPECT_NE(messages(), "") << "the message bar says that it is not saved";
  prompts_.triesMore = 1;
  prompts_.beforeNextTry = [&] { desk_->store().setFailing(false); };
  window_->close();
  ASSERT_EQ(prompts_.unsaved.size(), 1U);
  EXPECT_NE(prompts_.unsaved.front().find(study().string()), std::string::npos) << prompts_.unsaved.front();
  EXPECT_EQ(desk_->store().status(studyUid()).objects, 1U);
}

TEST_F(Labelling, FilesThatVanishWhileTheyAreShownAreNamedInTheView) {
  openStudy();
  std::filesystem::remove_all(study());
  desk_->pixels().clear();
  const int viewer = sagittalViewer();
  wheel(viewer, 1);
  canvas(viewer).grab();
  chooseLabels();
  drag(viewer, spineTop, spineEnd);
  EXPECT_GE(planeNames().size(), 5U) << "what is known of the slices needs no file";
  window_->close();
  ASSERT_FALSE(prompts_.alerts.empty()) << "the labelling has nowhere to go, and that is said";
  EXPECT_EQ(prompts_.alerts.back(), lostLabelling);
}

}  // namespace
}  // namespace workstation::test
