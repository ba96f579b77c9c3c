// Opening, importing and closing.
#include <QFileInfo>
#include <QStatusBar>

#include "workstation/gui/MainWindow.h"
#include "workstation/gui/OpeningStacks.h"
#include "workstation/gui/StackTitle.h"

namespace workstation {

namespace fs = std::filesystem;

namespace {

/// A folder may hold thousands of files of another kind.
constexpr std::size_t mostFilesNamed = 20;

/// The same wherever the program is started next.
fs::path absolutePath(const fs::path& path) {
  std::error_code error;
  const fs::path whole = fs::absolute(path, error).lexically_normal();
  if (error || whole.empty()) return path;
  return whole.has_filename() ? whole : whole.parent_path();
}

std::vector<const ImageRecord*> withoutGeometry(const Series& series) {
  std::vector<const ImageRecord*> found;
  for (const Stack& stack : series.stacks) {
    for (const ImageRecord& slice : stack.slices) {
      if (!slice.geometryProblem.empty()) found.push_back(&slice);
    }
  }
  return found;
}

}  // namespace

// --- folders and the database --------------------------------------------------------------------------------------

void MainWindow::openDatabaseIfThere() {
  std::error_code error;
  if (database_.empty() || !fs::exists(database_, error) || desk_.folders().holds(database_)) return;
  // The first import makes it one: until then nothing is wrong with it.
  if (fs::is_directory(database_, error) && fs::is_empty(database_, error)) return;
  auto opened = StudyDatabase::openDatabase(database_);
  if (!opened) {
    desk_.tell(opened.problem);
    return;
  }
  desk_.folders().add(std::move(*opened), database_);
  browser_->refill();
}

void MainWindow::chooseAndOpenFolder() {
  const QString start = settings_.value("folders/last").toString();
  const QString folder = desk_.prompts().chooseFolder("Open a folder of DICOM files", start);
  if (!folder.isEmpty()) openFolder(folder.toStdString());
}

void MainWindow::chooseAndImport() {
  const QString start = settings_.value("folders/last").toString();
  const QString folder = desk_.prompts().chooseFolder("Import a folder of DICOM files", start);
  if (folder.isEmpty()) return;
  settings_.setValue("folders/last", folder);
  importPaths({folder.toStdString()});
}

void MainWindow::startTask(const QString& what, BackgroundTask::Work work, std::function<void(bool)> finished) {
  browser_->showProgress(what);
  task_ = std::make_unique<BackgroundTask>(
      std::move(work), [this](std::size_t done, std::size_t total) { browser_->setProgress(done, total); },
      [this, finished = std::move(finished)] {
        // The task itself is what calls: it goes when it has returned.
        const std::shared_ptr<BackgroundTask> ended(std::move(task_));
        QMetaObject::invokeMethod(
            this, [ended] {}, Qt::QueuedConnection);
        browser_->hideProgress();
        finished(ended->isCancelled());
        scheduleRefresh(true);
        openNextFolder();
      });
}

void MainWindow::openFolder(const fs::path& folder) { openFolders({folder}); }

void MainWindow::openFolders(std::vector<fs::path> folders) {
  const bool waits = task_ || !foldersToOpen_.empty();
  foldersToOpen_.insert(foldersToOpen_.end(), folders.begin(), folders.end());
  if (!waits) openNextFolder();
}

void MainWindow::openNextFolder() {
  if (foldersToOpen_.empty()) return;
  const fs::path given = foldersToOpen_.front();
  foldersToOpen_.erase(foldersToOpen_.begin());
  std::error_code error;
  if (!fs::exists(given, error) && !desk_.folders().placeOf(given.string()).empty()) {
    openStudy(given.string());
    return openNextFolder();
  }
  const fs::path folder = absolutePath(given);
  if (desk_.folders().holds(folder)) {
    showOpened(folder);
    return openNextFolder();
  }
  auto opened = std::make_shared<Result<std::unique_ptr<StudyDatabase>>>();
  startTask(
      "Reading " + QString::fromStdString(folder.filename().string()),
      [opened, folder](const Progress& progress) {
        OpenOptions options;
        options.progress = progress;
        *opened = StudyDatabase::openFolder(folder, options);
      },
      [this, opened, folder](bool cancelled) {
        if (*opened) {
          desk_.folders().add(std::move(**opened), folder);
          showOpened(folder);
        } else if (!cancelled) {
          desk_.tell(opened->problem);
        }
      });
}

void MainWindow::showOpened(const fs::path& folder) {
  browser_->refill();
  tellUnreadable(desk_.folders().unreadableFilesIn(folder), "cannot be used");
  const auto studies = desk_.folders().studiesIn(folder);
  if (studies.empty()) {
    desk_.tell(folder.string() + " holds no DICOM image that can be shown.");
  } else {
    std::error_code error;
    const fs::path last = fs::is_directory(folder, error) ? folder : folder.parent_path();
    settings_.setValue("folders/last", QString::fromStdString(last.string()));
    openStudy(studies.front());
  }
  scheduleRefresh(true);
}

void MainWindow::importPaths(const std::vector<fs::path>& paths) {
  if (paths.empty()) return;
  if (task_ || database_.empty()) {
    desk_.tell(paths.front().string() + (task_ ? " was not imported: wait until what is being read has been read, or "
                                                 "cancel it."
                                               : " was not imported: there is no folder for a database."));
    return scheduleRefresh(false);
  }
  auto result = std::make_shared<ImportResult>();
  startTask(
      "Importing " + QString::fromStdString(paths.front().filename().string()),
      [result, paths, database = database_](const Progress& progress) {
        // A connection of its own: the window's belongs to the window's thread.
        OpenOptions options;
        options.makeDatabase = true;
        auto opened = StudyDatabase::openDatabase(database, options);
        if (opened) {
          *result = (*opened)->importFiles(paths, progress);
        } else {
          result->problem = opened.problem;
        }
      },
      [this, result](bool) {
        if (result->problem.empty()) openDatabaseIfThere();
        desk_.folders().refresh();
        browser_->refill();
        tellImport(*result);
        offerChangedStudies();
      });
}

void MainWindow::lookForFiles() {
  const auto unreadable = desk_.folders().lookAgain();
  browser_->refill();
  tellUnreadable(unreadable, "cannot be used");
  offerChangedStudies();
  scheduleRefresh(true);
}

void MainWindow::offerChangedStudies() {
  std::set<std::string> shown;
  for (const ViewerInfo& viewer : desk_.workstation().viewers()) shown.insert(viewer.stack.studyUid);
  for (const std::string& uid : shown) {
    const StudyChange change = desk_.changeOf(uid);
    const std::string study = "the study of " + patientText(desk_.workstation().study(uid)->patientName);
    const auto slices = [](std::size_t count) { return countText(count, "slice", "slices"); };
    if (change.left == 0) {
      messageBar_->withdraw(uid);
      desk_.tell("The files of " + study +
                 ", which is open, are no longer where they were, or cannot be read any more: put them back.");
    } else if (change.added + change.gone > 0) {
      std::string sentence = "Of " + study + ", which is open, ";
      if (change.added > 0) sentence += slices(change.added) + " came";
      if (change.added > 0 && change.gone > 0) sentence += " and ";
      if (change.gone > 0) sentence += slices(change.gone) + " went";
      messageBar_->offer(uid, sentence + ": open it anew to see it as it is now.", "Open anew",
                         [this, uid] { openStudy(uid); });
    }
  }
}

void MainWindow::tellImport(const ImportResult& result) {
  if (!result.problem.empty()) return desk_.tell(result.problem);
  if (result.cancelled) return statusBar()->showMessage("The import was cancelled: the database is as it was.");
  tellUnreadable(result.unreadable, "was not imported");
  if (result.imported + result.known == 0) return desk_.tell("Nothing was imported: no DICOM object was found.");
  QString text = QString::fromStdString(countText(result.imported, "file was", "files were")) + " imported";
  if (result.known > 0)
    text += QString::fromStdString(", " + countText(result.known, "was", "were") + " there already");
  statusBar()->showMessage(text + ".");
}

void MainWindow::tellUnreadable(const std::vector<UnreadableFile>& files, const std::string& whatBecame) {
  for (std::size_t index = 0; index < std::min(files.size(), mostFilesNamed); ++index)
    desk_.tell(files[index].file.string() + " " + whatBecame + ": " + files[index].reason + ".");
  if (files.size() > mostFilesNamed) {
    desk_.tell("The same goes for " + countText(files.size() - mostFilesNamed, "file", "files") +
               " more: \"vertana info\" names all of them.");
  }
}

void MainWindow::tellWithoutGeometry(const std::string& studyUid) {
  const Study* study = desk_.workstation().study(studyUid);
  if (!study) return;
  std::size_t told = 0;
  std::size_t untold = 0;
  for (const Series& series : study->series) {
    const auto bad = withoutGeometry(series);
    if (bad.empty()) continue;
    if (told == mostFilesNamed) {
      ++untold;
      continue;
    }
    ++told;
    const std::string more =
        bad.size() == 1 ? ""
                        : " The same goes for " + countText(bad.size() - 1, "slice", "slices") + " more of its series.";
    desk_.tell(bad.front()->file.string() + " is shown but cannot be labelled: " + bad.front()->geometryProblem + "." +
               more);
  }
  if (untold > 0) {
    desk_.tell("The same goes for slices of " + std::to_string(untold) +
               " series more: \"vertana info\" names all of them.");
  }
}

// --- viewers -------------------------------------------------------------------------------------------------------

void MainWindow::closeEveryViewer() {
  // The palette goes first, as when the program ends: what was drawn is stored.
  if (desk_.workstation().palette()) tellIfRefused(desk_.workstation().closePalette());
  for (const ViewerInfo& viewer : desk_.workstation().viewers())
    tellIfRefused(desk_.workstation().closeViewer(viewer.number));
}

void MainWindow::noteShown(const std::string& studyUid) {
  if (studiesShown_.insert(studyUid).second) tellWithoutGeometry(studyUid);
}

void MainWindow::showInViewers(const std::vector<StackId>& stacks) {
  Workstation& workstation = desk_.workstation();
  std::optional<int> first;
  for (const StackId& id : stacks) {
    noteShown(id.studyUid);
    const auto opened = workstation.openViewer(id);
    if (!opened) {
      desk_.tell(opened.problem);
      continue;
    }
    if (!first) first = *opened;
  }
  if (first) tellIfRefused(workstation.bringToFront(*first));
  grid_->setSize(gridToShow());
  // The middle is what a spine is drawn in, and where there is something to see.
  for (const ViewerInfo& viewer : workstation.viewers()) {
    if (viewer.slice == 0 && viewer.slices > 1) tellIfRefused(workstation.scroll(viewer.number, viewer.slices / 2));
  }
  bannersStale_ = true;
  scheduleRefresh(true);
  if (auto* pane = grid_->frontPane()) pane->canvas().setFocus();
}

void MainWindow::openStudy(const std::string& studyUid) {
  const bool wasKnown = desk_.workstation().study(studyUid) != nullptr;
  if (const Outcome added = desk_.addStudy(studyUid); !added) {
    desk_.tell(*added.problem);
    return scheduleRefresh(false);
  }
  closeEveryViewer();
  if (wasKnown && desk_.takeChanges(studyUid)) {
    browser_->refill();
    studiesShown_.erase(studyUid);  // what is to be told of its series may be new, too
  }
  messageBar_->withdraw(studyUid);
  showInViewers(stacksToOpen(desk_.workstation(), studyUid));
  const Study* study = desk_.workstation().study(studyUid);
  setWindowTitle(QString::fromStdString(patientText(study->patientName)) + " - Vertana workstation");
}

void MainWindow::openStack(const StackId& id, bool inNewViewer) {
  const auto front = desk_.workstation().frontViewer();
  if (inNewViewer || !front) return showInViewers({id});
  noteShown(id.studyUid);
  tellIfRefused(desk_.workstation().switchSeries(*front, id));
  if (auto* pane = grid_->pane(*front)) {
    pane->canvas().look() = {};
    const auto info = desk_.workstation().viewer(*front);
    tellIfRefused(desk_.workstation().scroll(*front, info->slices / 2));
  }
  bannersStale_ = true;
  scheduleRefresh(true);
}

void MainWindow::closeFrontViewer() {
  onFrontViewer([&](int viewer) { return desk_.workstation().closeViewer(viewer); });
  bannersStale_ = true;
  paletteStale_ = true;
  grid_->setSize(gridToShow(), grid_->isMaximised());
  // Else whatever comes next would get the keyboard, and keys meant for a viewer would be typed into the search.
  if (auto* pane = grid_->frontPane()) {
    pane->canvas().setFocus();
  } else {
    browser_->tree().setFocus();
  }
  scheduleRefresh(true);
}

void MainWindow::deleteSelected() {
  Workstation& workstation = desk_.workstation();
  onFrontViewer([&](int viewer) -> Outcome {
    const auto annotations = workstation.annotations(viewer, workstation.viewer(viewer)->slice);
    for (const AnnotationInfo& annotation : annotations) {
      if (annotation.roi->ROImode() != pelmar::ROIModeFinished && annotation.roi->selectable())
        return workstation.deleteAnnotation(viewer, annotation.id);
    }
    return Outcome::refused("No annotation is selected: click on one first.");
  });
  scheduleRefresh(true);
}

void MainWindow::writeText(int viewer, pelmar::PixelPoint at) {
  const QString text = desk_.prompts().askText("Text on the image", "").trimmed();
  if (text.isEmpty()) return;
  // The viewer may have closed while the person wrote.
  if (const auto added = desk_.workstation().addText(viewer, at, text.toStdString()); !added)
    tellIfRefused(Outcome::refused(added.problem));
  scheduleRefresh(true);
}

void MainWindow::rewriteText(int viewer, int text) {
  for (const AnnotationInfo& annotation : desk_.workstation().annotations(viewer)) {
    if (annotation.id != text) continue;
    const QString was = QString::fromStdString(annotation.roi->name());
    const QString now = desk_.prompts().askText("Text on the image", was).trimmed();
    if (now.isEmpty() || now == was) return;
    tellIfRefused(desk_.workstation().changeText(viewer, text, now.toStdString()));
    return scheduleRefresh(true);
  }
}

void MainWindow::quitModel() {
  Workstation& workstation = desk_.workstation();
  workstation.quit();
  if (desk_.hasLostLabelling(labelledStudy_)) {
    desk_.prompts().showAlert({Alert::Kind::critical, "The labelling is lost", lostLabelling, {}, {"Quit"}});
  }
  for (const std::string& study : studiesShown_) {
    for (auto status = desk_.store().status(study); status.unsaved; status = desk_.store().status(study)) {
      const bool again = desk_.prompts().tryAgain("The labelling is not saved.", QString::fromStdString(status.problem),
                                                  "Quit without saving");
      if (!again) break;
      workstation.quit();  // everything is closed already: this tries to save once more
    }
  }
}

}  // namespace workstation
