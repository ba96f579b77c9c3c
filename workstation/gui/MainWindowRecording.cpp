// Writing a session down.
#include <QStatusBar>

#include "workstation/database/AtomicFile.h"
#include "workstation/gui/MainWindow.h"
#include "workstation/model/EventLoop.h"

namespace workstation {

namespace fs = std::filesystem;

namespace {

constexpr const char* lastFolderKey = "folders/recording";

std::span<const std::uint8_t> bytesOf(const std::string& text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

/// Whether a file can be made in that place; what lies there stays.
Outcome couldBeWritten(const fs::path& file) {
  const DiskCalls disk;
  TemporaryFile trial(file, disk);
  return trial.write({});
}

}  // namespace

std::vector<MainWindow::ShownStack> MainWindow::shownStacks() {
  std::vector<ShownStack> shown;
  for (const ViewerInfo& viewer : desk_.workstation().viewers())
    shown.push_back({viewer.stack, viewer.slice, viewer.front});
  return shown;
}

std::optional<script::StudyPlace> MainWindow::placeForScript(const std::string& studyUid) {
  const fs::path place = desk_.folders().placeOf(studyUid);
  if (place.empty()) return std::nullopt;
  std::error_code error;
  if (!database_.empty() && fs::equivalent(place, database_, error)) return script::StudyPlace{place.string(), true};
  const fs::path own = desk_.folders().ownFolder(studyUid);
  if (own.empty()) return std::nullopt;
  return script::StudyPlace{own.string(), false};
}

std::unique_ptr<script::SessionRecorder> MainWindow::makeRecorder() {
  return std::make_unique<script::SessionRecorder>(desk_.workstation(),
                                                   [this](const std::string& study) { return placeForScript(study); });
}

bool MainWindow::everythingIsSaved() {
  for (const std::string& study : studiesShown_) {
    const StoredStatus status = desk_.store().status(study);
    if (!status.unsaved) continue;
    desk_.tell("The recording did not begin, because a labelling is not saved yet and would be lost. " +
               status.problem);
    return false;
  }
  return true;
}

bool MainWindow::canRecord() {
  if (isRecording() || desk_.workstation().events().busy()) return false;
  scheduleRefresh(true);
  if (isBusy()) {
    desk_.tell("The recording did not begin: wait until what is being read has been read, or cancel it.");
    return false;
  }
  const auto recorder = makeRecorder();
  for (const ShownStack& each : shownStacks()) {
    if (recorder->canName(each.id)) continue;
    desk_.tell(
        "The recording did not begin, because a session script cannot name every series that is open: each needs a "
        "Series Number of its own, and a study that is opened where it lies needs a folder of its own; close those "
        "viewers, or import the study.");
    return false;
  }
  return true;
}

fs::path MainWindow::chooseRecordingFile() {
  const fs::path last = settings_.value(lastFolderKey).toString().toStdString();
  const QString file = desk_.prompts().chooseNewFile(
      "Record session", QString::fromStdString((last / "session.json").string()), "Session scripts (*.json)");
  return file.toStdString();
}

void MainWindow::startRecording() {
  if (!canRecord()) return;
  const bool agreed = desk_.workstation().viewers().empty() ||
                      desk_.prompts().confirm("A recording begins anew.",
                                              "The palette and the viewers close as on quitting, and a labelling is "
                                              "stored. Then the same series open again. What else was drawn is not "
                                              "kept.",
                                              "Record");
  if (!agreed) return;
  const fs::path file = chooseRecordingFile();
  if (!file.empty()) recordTo(file);
}

void MainWindow::recordTo(const fs::path& file) {
  if (!canRecord()) return;
  if (const Outcome writable = couldBeWritten(file); !writable)
    return desk_.tell("The recording did not begin. " + *writable.problem);
  settings_.setValue(lastFolderKey, QString::fromStdString(file.parent_path().string()));
  Workstation& workstation = desk_.workstation();
  const auto shown = shownStacks();
  if (workstation.palette()) tellIfRefused(workstation.closePalette());
  // One that has nowhere to go is there as long as its viewers are.
  if (desk_.hasLostLabelling(labelledStudy_))
    return desk_.tell("The recording did not begin, because the labelling that is shown would be lost.");
  workstation.quit();
  refresh();
  if (!everythingIsSaved()) return showAgain(shown);
  labelledStudy_.clear();
  desk_.restart();
  recordingFile_ = file;
  recorder_ = makeRecorder();
  workstation.setPersonLog(recorder_.get());
  showAgain(shown);
  showRecordingSign();
}

void MainWindow::showAgain(const std::vector<ShownStack>& shown) {
  Workstation& workstation = desk_.workstation();
  std::optional<int> front;
  for (const ShownStack& each : shown) {
    const auto opened = workstation.openViewer(each.id);
    if (!opened) {
      desk_.tell(opened.problem);
      continue;
    }
    tellIfRefused(workstation.scroll(*opened, each.slice));
    if (each.front) front = *opened;
  }
  if (front) tellIfRefused(workstation.bringToFront(*front));
  bannersStale_ = true;
  paletteStale_ = true;
  repaintAll_ = true;
  refresh();
  if (auto* pane = grid_->frontPane()) pane->canvas().setFocus();
}

void MainWindow::stopRecording() {
  if (!isRecording()) return;
  desk_.workstation().setPersonLog(nullptr);
  const auto recorder = std::move(recorder_);
  showRecordingSign();
  scheduleRefresh(false);
  if (!writeRecording(script::writeScript(recorder->script())))
    return statusBar()->showMessage("The recording was thrown away.");
  statusBar()->showMessage("The session was written to " + QString::fromStdString(recordingFile_.string()) +
                           ". Play it on the study as it was when the recording began.");
  for (const std::string& gap : recorder->gaps()) {
    desk_.tell("The session in " + recordingFile_.string() + " leaves out " + gap +
               ", because session scripts have no step for it: played, it may end otherwise.");
  }
}

bool MainWindow::writeRecording(const std::string& text) {
  const DiskCalls disk;
  while (true) {
    const Outcome written = writeAtomically(recordingFile_, bytesOf(text), disk);
    if (written) return true;
    const QString problem = QString::fromStdString(*written.problem);
    if (!desk_.prompts().tryAgain("The recording is not written.", problem, "Throw the recording away")) return false;
    const fs::path other = chooseRecordingFile();
    if (!other.empty()) recordingFile_ = other;
  }
}

void MainWindow::showRecordingSign() {
  recordAction_->setText(isRecording() ? "Stop &recording" : "&Record session…");
  recordingSign_->setText("● Recording to " + QString::fromStdString(recordingFile_.filename().string()));
  recordingSign_->setVisible(isRecording());
}

}  // namespace workstation
