// What a person does in the window is recorded, played by the command, and ends in the same dump.
#include <QLabel>
#include <QProcess>
#include <QStatusBar>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "WindowFixture.h"
#include "cli/play/Dump.h"

namespace workstation::test {
namespace {

using nlohmann::json;

class Recording : public WindowTest {
 protected:
  void SetUp() override {
    WindowTest::SetUp();
    std::filesystem::copy(study(), folder_ / "before", std::filesystem::copy_options::recursive);
    prompts_.folder = QString::fromStdString(file().string());
    openStudy();
  }
  void record() {
    window_->startRecording();
    settle();
    ASSERT_TRUE(window_->isRecording()) << messages();
  }
  std::filesystem::path file() const { return folder_ / "session.json"; }
  /// Answers the file that cannot be written when the recording ends.
  std::filesystem::path recordIntoFolderThatGoes() {
    const auto folder = folder_ / "gone";
    std::filesystem::create_directory(folder);
    prompts_.folder = QString::fromStdString((folder / "session.json").string());
    record();
    std::filesystem::remove_all(folder);
    return folder / "session.json";
  }
  json recorded() const { return json::parse(std::ifstream(file()), nullptr, false); }
  std::string studyUid() { return desk_->folders().studiesIn(study()).front(); }
  QAction* action(const QString& text) {
    for (QAction* each : window_->findChildren<QAction*>()) {
      if (each->text() == text) return each;
    }
    ADD_FAILURE() << "no action " << text.toStdString();
    return nullptr;
  }
  void choose(const char* property, int index) {
    auto* box = window_->palette().choice(property);
    box->setCurrentIndex(index);
    emit box->activated(index);
    settle();
  }
  pelmar::PixelPoint vertex(long index) {
    const pelmar::Value state = workstation().pluginState();
    const auto curve = pelmar::ref_cast<pelmar::ROI>(state.dictionary()->at("openPolygonROI").object());
    EXPECT_TRUE(curve);
    return curve->pointAtIndex(index);
  }

  /// The window's state as the command would dump it.
  json dumped() {
    const cli::DumpHeader header{
        std::nullopt, workstation().takeAlerts(), workstation().takeOpenedAddresses(), {studyUid()}};
    return json::parse(cli::dumpLine(workstation(), desk_->store(), header));
  }
  /// The state after the recorded steps, played by the command on the study as it was before.
  json played() {
    json script = recorded();
    EXPECT_TRUE(script.is_object());
    for (auto& step : script["steps"]) {
      if (!step.contains("path")) continue;
      EXPECT_EQ(step["path"], std::filesystem::canonical(study()).string());
      step["path"] = (folder_ / "before").string();
    }
    std::ofstream(folder_ / "again.json") << script.dump();
    qputenv("XDG_CONFIG_HOME", folder_.path().c_str());
    qputenv("VERTANA_PLUGIN", VERTANA_BUNDLE);
    QProcess command;
    command.start(VERTANA_COMMAND, {"play", QString::fromStdString((folder_ / "again.json").string())});
    EXPECT_TRUE(command.waitForFinished(60000));
    EXPECT_EQ(command.exitCode(), 0) << command.readAllStandardError().toStdString() << script.dump(1);
    return json::parse(command.readAllStandardOutput().toStdString(), nullptr, false);
  }
  /// Takes out what a script does not determine: where windows lie, and with them the place of a level's name at the
  /// upper edge of its view; the numbers of annotations, which are those of a run; the UIDs of new reports.
  static json comparable(json dump) {
    if (dump["palette"].is_object()) dump["palette"].erase("frame");
    for (auto& stored : dump["stored"]) {
      if (stored.is_object()) stored["counting"] = !stored["counting"].is_null();
    }
    for (auto& viewer : dump["viewers"]) {
      viewer.erase("frame");
      if (viewer["orientation"] < 4) continue;
      for (auto& roi : viewer["rois"]) {
        if (roi["type"] == pelmar::ROITypeText) roi.erase("rect");
      }
    }
    std::map<int, int> numbers;
    renumber(dump, numbers);
    return dump;
  }
  static void renumber(json& value, std::map<int, int>& numbers) {
    if (value.is_object() && value.contains("id")) {
      const int next = static_cast<int>(numbers.size());
      value["id"] = numbers.try_emplace(value["id"].get<int>(), next).first->second;
    }
    if (!value.is_structured()) return;
    for (auto& each : value) renumber(each, numbers);
  }
  /// Stops the recording; what it is played to must be what the window shows.
  void expectPlayedAsDone() {
    const json mine = comparable(dumped());
    window_->stopRecording();
    settle();
    EXPECT_EQ(messages(), "") << "nothing is left out";
    const json theirs = comparable(played());
    EXPECT_EQ(json::diff(mine, theirs).dump(1), "[]") << recorded().dump(1);
  }
};

TEST_F(Recording, ALabellingIsPlayedAsItWasDone) {
  record();
  chooseLabels();
  const int viewer = sagittalViewer();
  drag(viewer, spineTop, spineEnd);
  const auto third = vertex(2);
  drag(viewer, third, {third.x + 6, third.y + 1});
  const auto fourth = vertex(3);
  drag(viewer, fourth, {fourth.x - 4, fourth.y});
  action("&Undo")->trigger();
  wheel(axialViewer(), -2);
  wheel(viewer, 1, Qt::ControlModifier);
  mouse(viewer, QEvent::MouseButtonPress, QPointF(60, 60), Qt::MiddleButton);
  mouse(viewer, QEvent::MouseMove, QPointF(73, 51), Qt::MiddleButton);
  mouse(viewer, QEvent::MouseButtonRelease, QPointF(73, 51), Qt::MiddleButton);
  keyPress(axialViewer(), Qt::Key_End);
  action("Turn &right")->trigger();
  window_->palette().checkbox("displayLabels")->click();
  settle();
  ASSERT_GE(planeNames().size(), 5U);
  EXPECT_NEAR(vertex(2).x, third.x + 6, 0.01);
  expectPlayedAsDone();
  EXPECT_EQ(recorded()["steps"].back()["do"], "dump");
}

TEST_F(Recording, APolygonAndTheEndOfThePaletteArePlayedAsTheyWereDone) {
  record();
  chooseLabels();
  const int viewer = sagittalViewer();
  choose("anatomicalRegion", 1);
  choose("anatomicalRegion", 2);
  choose("drawMode", 1);
  for (int index = 0; index < 5; ++index) {
    const pelmar::PixelPoint pixel{80, 20.0 + 24 * index};
    press(viewer, pixel);
    release(viewer, pixel);
    if (index == 2) wheel(viewer, 1, Qt::ControlModifier);
  }
  keyPress(viewer, Qt::Key_Return);
  ASSERT_EQ(planeNames().size(), 6U);
  desk_->hooks().openAddress = [](const std::string&) {};  // no browser is asked
  window_->palette().button("openHelp:")->click();
  window_->palette().button("stopWorkFlow:")->click();
  settle();
  ASSERT_FALSE(workstation().palette());
  ASSERT_TRUE(workstation().bringToFront(axialViewer()));
  window_->closeFrontViewer();
  settle();
  EXPECT_EQ(desk_->store().status(studyUid()).objects, 1U);
  expectPlayedAsDone();
}

TEST_F(Recording, APolygonThatThePluginEndsAndAResetArePlayedAsTheyWereDone) {
  ASSERT_TRUE(workstation().bringToFront(sagittalViewer()));
  record();
  chooseLabels();
  const int viewer = sagittalViewer();
  choose("drawMode", 1);
  for (int index = 0; index < 6; ++index) {
    press(viewer, {80, 20.0 + 24 * index});
    release(viewer, {80, 20.0 + 24 * index});
  }
  ASSERT_FALSE(workstation().isDrawing(viewer)) << "there is a vertex for each disc";
  wheel(axialViewer(), -1);
  window_->palette().button("reset:")->click();
  settle();
  choose("drawMode", 0);
  drag(viewer, spineTop, spineEnd, false);
  expectPlayedAsDone();
}

TEST_F(Recording, AnotherSeriesAndTheCloseBoxArePlayedAsTheyWereDone) {
  record();
  chooseLabels();
  const int viewer = sagittalViewer();
  drag(viewer, spineTop, spineEnd);
  window_->palette().close();
  settle();
  const StackId other = workstation().viewer(viewer)->stack;
  ASSERT_TRUE(workstation().bringToFront(axialViewer()));
  window_->openStack(other, false);
  settle();
  chooseLabels();
  expectPlayedAsDone();
}

TEST_F(Recording, AStudyThatIsOpenedMeanwhileIsPlayedAsItWasOpened) {
  window_->closeFrontViewer();
  while (!workstation().viewers().empty()) window_->closeFrontViewer();
  settle();
  record();
  EXPECT_TRUE(prompts_.questions.empty()) << "nothing was open that could be lost";
  openStudy();
  chooseLabels();
  expectPlayedAsDone();
}

TEST_F(Recording, BeginsWithWhatWasOpenAndSaysThatItRecords) {
  chooseLabels();
  drag(sagittalViewer(), spineTop, spineEnd);
  const int slice = workstation().viewer(sagittalViewer())->slice - 1;
  ASSERT_TRUE(workstation().scroll(sagittalViewer(), slice));
  const auto before = workstation().viewers();
  action("&Record session…")->trigger();
  settle();
  ASSERT_TRUE(window_->isRecording()) << messages();
  EXPECT_EQ(prompts_.questions.size(), 1U);
  const auto after = workstation().viewers();
  ASSERT_EQ(after.size(), before.size());
  for (std::size_t index = 0; index < after.size(); ++index) {
    EXPECT_EQ(after[index].stack, before[index].stack);
    EXPECT_EQ(after[index].slice, before[index].slice);
    EXPECT_EQ(after[index].front, before[index].front);
  }
  EXPECT_FALSE(workstation().palette());
  EXPECT_EQ(desk_->store().status(studyUid()).objects, 1U) << "the labelling is stored";
  QStringList signs;
  for (const auto* label : window_->statusBar()->findChildren<QLabel*>()) {
    if (label->isVisible()) signs << label->text();
  }
  EXPECT_TRUE(signs.join(' ').contains("Recording to session.json")) << signs.join(' ').toStdString();
  action("Stop &recording")->trigger();
  settle();
  EXPECT_FALSE(window_->isRecording());
  EXPECT_TRUE(window_->statusBar()->currentMessage().startsWith("The session was written to "));
  EXPECT_TRUE(recorded().is_object());
}

TEST_F(Recording, ClosingTheWindowWritesTheScript) {
  record();
  chooseLabels();
  window_->close();
  const json script = recorded();
  ASSERT_TRUE(script.is_object());
  EXPECT_EQ(script["steps"][script["steps"].size() - 2]["do"], "menu");
}

TEST_F(Recording, WhatIsLeftOutIsTold) {
  record();
  const int viewer = sagittalViewer();
  ASSERT_TRUE(workstation().selectRoiTool(viewer, pelmar::ROIToolTagLength));
  drag(viewer, {30, 30}, {30, 90});
  keyPress(viewer, Qt::Key_Escape);
  window_->stopRecording();
  settle();
  EXPECT_EQ(messages(), "The session in " + file().string() +
                            " leaves out the selection of an annotation, because session scripts have no step for it: "
                            "played, it may end otherwise.");
}

TEST_F(Recording, DoesNotBeginWhenThePersonGivesUp) {
  chooseLabels();
  prompts_.confirms = false;
  window_->startRecording();
  EXPECT_FALSE(window_->isRecording());
  prompts_.confirms = true;
  prompts_.folder.clear();
  window_->startRecording();
  settle();
  EXPECT_FALSE(window_->isRecording());
  EXPECT_TRUE(workstation().palette()) << "nothing was closed";
  EXPECT_EQ(messages(), "");
}

TEST_F(Recording, DoesNotBeginWithAFileThatCannotBeWritten) {
  chooseLabels();
  prompts_.folder = QString::fromStdString((folder_ / "nowhere" / "session.json").string());
  window_->startRecording();
  settle();
  EXPECT_FALSE(window_->isRecording());
  EXPECT_TRUE(workstation().palette()) << "nothing was closed";
  EXPECT_EQ(messages(), "The recording did not begin. The file " + (folder_ / "nowhere" / "session.json").string() +
                            " cannot be written: No such file or directory; check that the folder is still there.");
}

TEST_F(Recording, DoesNotBeginWhileALabellingIsNotSaved) {
  chooseLabels();
  drag(sagittalViewer(), spineTop, spineEnd);
  desk_->store().setFailing(true);
  window_->startRecording();
  settle();
  EXPECT_FALSE(window_->isRecording());
  EXPECT_FALSE(workstation().viewers().empty());
  EXPECT_NE(messages().find("The recording did not begin, because a labelling is not saved yet and would be lost. "),
            std::string::npos)
      << messages();
  desk_->store().setFailing(false);
  record();
  EXPECT_EQ(desk_->store().status(studyUid()).objects, 1U);
  window_->stopRecording();
}

TEST_F(Recording, DoesNotBeginWhenTheFilesOfTheLabelledStudyAreGone) {
  chooseLabels();
  drag(sagittalViewer(), spineTop, spineEnd);
  const auto names = planeNames();
  std::filesystem::remove_all(study());
  window_->startRecording();
  settle();
  EXPECT_FALSE(window_->isRecording());
  EXPECT_EQ(planeNames(), names);
  EXPECT_NE(messages().find("The recording did not begin, because the labelling that is shown would be lost."),
            std::string::npos)
      << messages();
  EXPECT_NE(messages().find(lostLabelling), std::string::npos) << messages();
}

TEST_F(Recording, DoesNotBeginWhileFilesAreRead) {
  window_->openFolder(folder_ / "before");
  ASSERT_TRUE(window_->isBusy());
  window_->startRecording();
  waitForTask();
  EXPECT_FALSE(window_->isRecording());
  EXPECT_EQ(messages(), "The recording did not begin: wait until what is being read has been read, or cancel it.");
}

TEST_F(Recording, DoesNotBeginWithASeriesThatAScriptCannotName) {
  auto images = desk_->folders().images(studyUid());
  for (ImageRecord& image : images) image.studyInstanceUid = "1.2.3";
  workstation().addImages(std::move(images));
  ASSERT_TRUE(workstation().openViewer({"1.2.3", 0, 0}));
  window_->startRecording();
  settle();
  EXPECT_FALSE(window_->isRecording());
  EXPECT_EQ(messages(),
            "The recording did not begin, because a session script cannot name every series that is open: each needs a "
            "Series Number of its own, and a study that is opened where it lies needs a folder of its own; close those "
            "viewers, or import the study.");
}

TEST_F(Recording, AFileThatCannotBeWrittenAtTheEndIsAskedForAgain) {
  const auto lost = recordIntoFolderThatGoes();
  prompts_.triesMore = 1;
  prompts_.beforeNextTry = [this] { prompts_.folder = QString::fromStdString(file().string()); };
  window_->stopRecording();
  settle();
  ASSERT_EQ(prompts_.unsaved.size(), 1U);
  EXPECT_EQ(prompts_.unsaved.front(), "The file " + lost.string() +
                                          " cannot be written: No such file or directory; check that the folder is "
                                          "still there.");
  EXPECT_TRUE(recorded().is_object());
}

TEST_F(Recording, IsThrownAwayOnlyWhenThePersonSaysSo) {
  recordIntoFolderThatGoes();
  window_->stopRecording();
  EXPECT_EQ(prompts_.unsaved.size(), 1U);
  EXPECT_FALSE(window_->isRecording());
  EXPECT_EQ(window_->statusBar()->currentMessage(), "The recording was thrown away.");
}

}  // namespace
}  // namespace workstation::test
