#pragma once

#include <QActionGroup>
#include <QLabel>
#include <QMainWindow>
#include <QSettings>
#include <QTimer>
#include <filesystem>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "workstation/gui/BackgroundTask.h"
#include "workstation/gui/BrowserPanel.h"
#include "workstation/gui/Desk.h"
#include "workstation/gui/MessageBar.h"
#include "workstation/gui/PageOpener.h"
#include "workstation/gui/PaletteWidget.h"
#include "workstation/gui/ViewerGrid.h"
#include "workstation/gui/WindowPresets.h"
#include "workstation/script/SessionRecorder.h"

namespace workstation {

/// What is said of a labelling that has nowhere to go.
inline constexpr const char* lostLabelling =
    "The labelling could not be stored, because the files of its study are no longer where they were: put them back "
    "and "
    "label the study again.";

/// What the viewers of one study warn of.
struct StudyCautions {
  bool unsaved = false;  ///< its labelling could not be written yet
  std::string
      labelledFrame;  ///< frame of reference UID of the labelling that is seen; empty: it need not be told apart
};

/// The window: the browser of studies, the viewers, menus and tools. It shows what the model has and passes on what the
/// person does.
class MainWindow final : public QMainWindow {
 public:
  /// The desk must outlive the window; settings are kept in `settings`, which must, too. `database` is where imported
  /// files go; it is opened if it is there, and made by the first import.
  MainWindow(Desk& desk, QSettings& settings, std::filesystem::path database);
  ~MainWindow() override;

  /// Opens a folder of DICOM files, or one file, where it lies, and its studies in viewers.
  void openFolder(const std::filesystem::path& folder);
  /// The same with several, one after the other; the viewers show what the last one holds. A name that is no path but
  /// the UID of a study at hand opens that study.
  void openFolders(std::vector<std::filesystem::path> folders);
  /// Copies files and folders into the database, and shows the studies in the browser.
  void importPaths(const std::vector<std::filesystem::path>& paths);
  /// Whether a folder is being read or files are being imported.
  bool isBusy() const { return task_ != nullptr; }

  /// Closes what is open and opens the study; see stacksToOpen.
  void openStudy(const std::string& studyUid);
  /// Shows a stack in the front viewer, or in a new one.
  void openStack(const StackId& id, bool inNewViewer);
  void chooseMenu(const std::string& title);
  /// Shows a point that was marked in a viewer in all the others; tells which have no slice there.
  void markPoint(int viewer, const MarkedPoint& point);
  void closeFrontViewer();
  void deleteSelected();
  /// Asks for a text and writes it there.
  void writeText(int viewer, pelmar::PixelPoint at);
  /// Asks what a text shall say instead.
  void rewriteText(int viewer, int text);

  /// Asks whether and in which file, then records.
  void startRecording();
  /// Begins the workstation anew with what was open, and from then on writes down what the person does as a session
  /// script. Does not begin when something would be lost; messages tell.
  void recordTo(const std::filesystem::path& file);
  /// Writes the script; tells what it leaves out. Nothing when none is recorded.
  void stopRecording();
  bool isRecording() const { return recorder_ != nullptr; }

  /// Brings everything up to date with the model at once; else that happens after the event.
  void refresh();

  ViewerGrid& grid() { return *grid_; }
  PaletteWidget& palette() { return *palette_; }
  BrowserPanel& browser() { return *browser_; }
  MessageBar& messages() { return *messageBar_; }

 protected:
  void closeEvent(QCloseEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  // Actions and menus (MainWindowMenus.cpp).
  void makeActions();
  void makeFileMenu();
  void makeEditMenu();
  void makeViewMenu();
  void makeToolMenu();
  void makePluginMenu();
  void makeHelpMenu();
  QAction* addAction(QMenu* menu, const QString& text, const QKeySequence& shortcut, std::function<void()> act);
  void chooseTool(long mouseTool, long roiTool);
  void onFrontViewer(const std::function<Outcome(int viewer)>& operation);
  /// Gives the keyboard to the viewer so many after the one in front; 0: to that one.
  void goToViewer(int steps);
  void makeGridMenu();
  void chooseGrid(const QString& title);
  /// The grid that the person has chosen, else one with room for the viewers.
  GridSize gridToShow() const;
  void fillWindowMenu(QMenu* menu);
  void showWith(int viewer, const WindowPreset& preset);
  void showViewerMenu(QPoint globalPosition);
  void refreshActions();
  void tellIfRefused(const Outcome& outcome);

  // Studies (MainWindowStudies.cpp).
  void chooseAndOpenFolder();
  void chooseAndImport();
  void startTask(const QString& what, BackgroundTask::Work work, std::function<void(bool cancelled)> finished);
  void openDatabaseIfThere();
  void showOpened(const std::filesystem::path& folder);
  void openNextFolder();
  void lookForFiles();
  /// Tells what came or went of the studies that are shown, and offers to open them anew.
  void offerChangedStudies();
  void tellImport(const ImportResult& result);
  /// Names files, each with what became of it and why; of many only the first, and how many more there are.
  void tellUnreadable(const std::vector<UnreadableFile>& files, const std::string& whatBecame);
  /// Names the series of a study that have slices which cannot be labelled.
  void tellWithoutGeometry(const std::string& studyUid);
  void closeEveryViewer();
  /// A study that is in a viewer: what there is to tell of its series is told the first time.
  void noteShown(const std::string& studyUid);
  void showInViewers(const std::vector<StackId>& stacks);
  void quitModel();

  // Recording (MainWindowRecording.cpp).
  struct ShownStack {
    StackId id;
    int slice = 0;
    bool front = false;
  };
  std::vector<ShownStack> shownStacks();
  std::optional<script::StudyPlace> placeForScript(const std::string& studyUid);
  std::unique_ptr<script::SessionRecorder> makeRecorder();
  bool everythingIsSaved();
  bool canRecord();
  std::filesystem::path chooseRecordingFile();
  void showAgain(const std::vector<ShownStack>& shown);
  bool writeRecording(const std::string& text);
  void showRecordingSign();

  void connectDesk();
  void makeWidgets();
  void restoreLayout();
  void keepLayout();
  void scheduleRefresh(bool everything);
  void refreshBanners();
  void watchPalette();
  StudyCautions cautionsFor(const std::string& studyUid);

  Desk& desk_;
  QSettings& settings_;
  std::filesystem::path database_;
  CanvasHooks canvasHooks_;
  CanvasOptions canvasOptions_;

  ViewerGrid* grid_ = nullptr;
  PaletteWidget* palette_ = nullptr;
  BrowserPanel* browser_ = nullptr;
  MessageBar* messageBar_ = nullptr;
  QTimer refreshTimer_;
  bool repaintAll_ = true;
  bool bannersStale_ = true;
  bool paletteStale_ = false;
  bool isQuit_ = false;
  std::string labelledStudy_;  ///< that the open palette is for; empty when none is open

  QActionGroup* toolActions_ = nullptr;
  QActionGroup* gridActions_ = nullptr;
  QString gridTitle_;  ///< of the grid that the person has chosen; empty: as many cells as there are viewers
  QAction* undoAction_ = nullptr;
  QAction* redoAction_ = nullptr;
  QAction* deleteAction_ = nullptr;
  QAction* studiesAction_ = nullptr;  ///< shows and hides the browser
  QAction* recordAction_ = nullptr;
  QAction* paletteAction_ = nullptr;
  QLabel* recordingSign_ = nullptr;
  QMenu* pluginMenu_ = nullptr;
  QMenu* viewMenu_ = nullptr;
  QMenu* windowMenu_ = nullptr;
  std::vector<QAction*> viewerActions_;  ///< those that need an open viewer
  std::set<std::string> studiesShown_;  ///< every study that was in a viewer: their labellings must be saved at the end
  std::vector<std::filesystem::path> foldersToOpen_;
  std::unique_ptr<script::SessionRecorder> recorder_;
  std::filesystem::path recordingFile_;
  std::unique_ptr<BackgroundTask> task_;
  PageOpener pages_;
};

}  // namespace workstation
