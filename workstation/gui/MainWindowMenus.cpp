// The window's actions, menus and tools.
#include <QMenuBar>
#include <QStatusBar>
#include <QToolBar>
#include <algorithm>

#include "workstation/gui/KeptWindows.h"
#include "workstation/gui/MainWindow.h"
#include "workstation/gui/ShortcutSheet.h"
#include "workstation/gui/StackTitle.h"

namespace workstation {
namespace {

constexpr double zoomStep = 1.25;

struct ToolChoice {
  const char* title;
  const char* shortcut;
  const char* hint;
  long mouseTool;
  long roiTool;
};

constexpr ToolChoice toolChoices[] = {
    {"Window", "W", "Drag right and left for contrast, up and down for brightness", MouseToolWindowLevel, 0},
    {"Scroll", "S", "Drag down and up through the slices", MouseToolScroll, 0},
    {"Pan", "P", "Drag the image (or drag with the middle button)", MouseToolPan, 0},
    {"Zoom", "Z", "Drag up to enlarge (or drag with the right button, or Ctrl and wheel)", MouseToolZoom, 0},
    {"Turn", "T", "Drag around the middle of the view", MouseToolRotate, 0},
    {"Line", "L", "Press, drag and release to draw a line", MouseToolAnnotate, pelmar::ROIToolTagLength},
    {"Polygon", "G", "Click each point; a double click or Return ends it", MouseToolAnnotate,
     pelmar::ROIToolTagOpenPolygon},
    {"Arrow", "A", "Press where it points to and drag to its other end", MouseToolAnnotate, pelmar::ROITypeArrow},
    {"Point", "O", "Click where it is to be", MouseToolAnnotate, pelmar::ROITypePoint},
    {"Text", "X", "Click where it is to stand; a double click on a text changes it", MouseToolAnnotate,
     pelmar::ROITypeText},
};

struct GridChoice {
  const char* title = "";
  const char* shortcut = "";
  GridSize size;
};

constexpr GridChoice gridChoices[] = {{"1 x 1", "Ctrl+1", {1, 1}},       {"1 x 2", "Ctrl+2", {1, 2}},
                                      {"2 x 1", "Ctrl+3", {2, 1}},       {"2 x 2", "Ctrl+4", {2, 2}},
                                      {"2 x 3", "Ctrl+5", {2, 3}},       {"3 x 3", "Ctrl+6", {3, 3}},
                                      {"1 + 2", "Ctrl+7", {2, 2, true}}, {"1 + 3", "Ctrl+8", {3, 2, true}}};
constexpr const char* gridAsNeeded = "As many as are open";

}  // namespace

QAction* MainWindow::addAction(QMenu* menu, const QString& text, const QKeySequence& shortcut,
                               std::function<void()> act) {
  auto* action = menu->addAction(text);
  action->setShortcut(shortcut);
  connect(action, &QAction::triggered, this, [act = std::move(act)] { act(); });
  return action;
}

void MainWindow::tellIfRefused(const Outcome& outcome) {
  if (!outcome) statusBar()->showMessage(QString::fromStdString(*outcome.problem), 8000);
}

void MainWindow::onFrontViewer(const std::function<Outcome(int viewer)>& operation) {
  if (const auto front = desk_.workstation().frontViewer()) tellIfRefused(operation(*front));
}

void MainWindow::makeActions() {
  makeFileMenu();
  makeEditMenu();
  makeViewMenu();
  makeToolMenu();
  makePluginMenu();
  makeHelpMenu();
}

void MainWindow::makeFileMenu() {
  auto* menu = menuBar()->addMenu("&File");
  addAction(menu, "&Open folder ...", QKeySequence("Ctrl+O"), [this] { chooseAndOpenFolder(); });
  addAction(menu, "&Import folder into the database ...", QKeySequence("Ctrl+I"), [this] { chooseAndImport(); });
  addAction(menu, "&Look for new files", QKeySequence("F5"), [this] { lookForFiles(); })->setObjectName("lookForFiles");
  menu->addSeparator();
  viewerActions_.push_back(addAction(menu, "&Close viewer", QKeySequence("Ctrl+W"), [this] { closeFrontViewer(); }));
  menu->addSeparator();
  recordAction_ = addAction(menu, {}, QKeySequence("Ctrl+Shift+R"), [this] {
    if (isRecording()) {
      stopRecording();
    } else {
      startRecording();
    }
  });
  showRecordingSign();
  menu->addSeparator();
  addAction(menu, "&Quit", QKeySequence("Ctrl+Q"), [this] { close(); });
}

void MainWindow::makeEditMenu() {
  auto* menu = menuBar()->addMenu("&Edit");
  undoAction_ = addAction(menu, "&Undo", QKeySequence("Ctrl+Z"), [this] {
    tellIfRefused(desk_.workstation().undo());
    scheduleRefresh(true);
  });
  redoAction_ = addAction(menu, "&Redo", QKeySequence("Ctrl+Shift+Z"), [this] {
    tellIfRefused(desk_.workstation().redo());
    scheduleRefresh(true);
  });
  menu->addSeparator();
  deleteAction_ =
      addAction(menu, "&Delete selected annotation", QKeySequence(Qt::Key_Delete), [this] { deleteSelected(); });
  menu->addSeparator();
  addAction(menu, "&Find a study", QKeySequence("Ctrl+F"), [this] {
    if (!studiesAction_->isChecked()) studiesAction_->trigger();
    browser_->search().setFocus();
  });
}

void MainWindow::makeViewMenu() {
  viewMenu_ = menuBar()->addMenu("&View");
  Workstation& workstation = desk_.workstation();
  const auto add = [&](const QString& text, const char* shortcut, const std::function<Outcome(int)>& operation) {
    viewerActions_.push_back(
        addAction(viewMenu_, text, QKeySequence(shortcut), [this, operation] { onFrontViewer(operation); }));
  };
  add("&Fit to view", "F", [&](int viewer) { return workstation.fit(viewer); });
  add("Zoom &in", "+",
      [&](int viewer) { return workstation.zoom(viewer, workstation.viewer(viewer)->scale * zoomStep); });
  add("Zoom &out", "-",
      [&](int viewer) { return workstation.zoom(viewer, workstation.viewer(viewer)->scale / zoomStep); });
  viewMenu_->addSeparator();
  add("Turn &right", "R", [&](int viewer) { return workstation.rotate(viewer, 90); });
  add("Turn &left", "Shift+R", [&](int viewer) { return workstation.rotate(viewer, -90); });
  add("Mirror left to right", "H", [&](int viewer) { return workstation.flip(viewer, FlipAxis::horizontal); });
  add("Mirror top to bottom", "V", [&](int viewer) { return workstation.flip(viewer, FlipAxis::vertical); });
  add("R&eset view", "Ctrl+R", [this](int viewer) {
    Workstation& model = desk_.workstation();
    const auto info = model.viewer(viewer);
    if (info->rotationDegrees != 0) (void)model.rotate(viewer, -info->rotationDegrees);
    if (info->flippedHorizontally) (void)model.flip(viewer, FlipAxis::horizontal);
    if (info->flippedVertically) (void)model.flip(viewer, FlipAxis::vertical);
    if (auto* pane = grid_->pane(viewer)) pane->canvas().look() = {};
    return model.fit(viewer);
  });
  add("Reset win&dow and level", "Shift+W", [this](int viewer) {
    showWith(viewer, {});
    return Outcome::done();
  });
  viewMenu_->addSeparator();
  windowMenu_ = viewMenu_->addMenu("&Window and level");
  connect(windowMenu_, &QMenu::aboutToShow, this, [this] { fillWindowMenu(windowMenu_); });
  makeGridMenu();
  add("&Next viewer", "F6", [this](int) {
    goToViewer(1);
    return Outcome::done();
  });
  add("&Previous viewer", "Shift+F6", [this](int) {
    goToViewer(-1);
    return Outcome::done();
  });
  add("One viewer &alone", "M", [this](int) {
    grid_->setMaximised(!grid_->isMaximised());
    return Outcome::done();
  });
  paletteAction_ = addAction(viewMenu_, "Go to t&he palette", QKeySequence("F7"), [this] { palette_->takeKeyboard(); });
  viewMenu_->addSeparator();
  viewMenu_->addAction(studiesAction_);
  const auto addSwitch = [&](const QString& text, const char* shortcut, bool& option) {
    auto* action = addAction(viewMenu_, text, QKeySequence(shortcut), [this, &option] {
      option = !option;
      scheduleRefresh(true);
    });
    action->setCheckable(true);
    action->setChecked(option);
  };
  addSwitch("&Texts", "Ctrl+T", canvasOptions_.texts);
  addSwitch("Reference &lines", "Ctrl+E", canvasOptions_.referenceLines);
}

void MainWindow::goToViewer(int steps) {
  const auto& panes = grid_->panes();
  const auto front = std::find(panes.begin(), panes.end(), grid_->frontPane());
  const auto count = static_cast<std::ptrdiff_t>(panes.size());
  if (front == panes.end()) return activateWindow();
  ViewerPane* next = panes[static_cast<std::size_t>((front - panes.begin() + steps + count) % count)];
  canvasHooks_.entered(next->viewer());
  refresh();         // it may have been hidden, and only what is seen takes the keys
  activateWindow();  // the palette may have the keyboard
  next->canvas().setFocus();
}

void MainWindow::makeGridMenu() {
  auto* menu = viewMenu_->addMenu("&Grid");
  gridActions_ = new QActionGroup(this);
  const auto add = [&](const QString& text, const char* shortcut, const QString& title) {
    auto* action = addAction(menu, text, QKeySequence(shortcut), [this, title] { chooseGrid(title); });
    action->setCheckable(true);
    action->setData(title);
    gridActions_->addAction(action);
  };
  add(gridAsNeeded, "Ctrl+0", "");
  for (const GridChoice& choice : gridChoices) add(choice.title, choice.shortcut, choice.title);
}

void MainWindow::chooseGrid(const QString& title) {
  gridTitle_ = title;
  grid_->setSize(gridToShow());
  refreshActions();
}

GridSize MainWindow::gridToShow() const {
  for (const GridChoice& choice : gridChoices) {
    if (gridTitle_ == choice.title) return choice.size;
  }
  return gridFor(desk_.workstation().viewers().size());
}

void MainWindow::makeToolMenu() {
  auto* menu = menuBar()->addMenu("&Tools");
  auto* bar = addToolBar("Tools");
  bar->setObjectName("tools");
  bar->setMovable(false);
  toolActions_ = new QActionGroup(this);
  for (const ToolChoice& choice : toolChoices) {
    if (choice.roiTool == pelmar::ROIToolTagLength) {
      bar->addSeparator();
      menu->addSeparator();
    }
    auto* action = addAction(menu, choice.title, QKeySequence(choice.shortcut),
                             [this, choice] { chooseTool(choice.mouseTool, choice.roiTool); });
    action->setCheckable(true);
    action->setToolTip(QString("%1 (%2)\n%3").arg(choice.title, choice.shortcut, choice.hint));
    action->setData(QVariant::fromValue(QPoint(static_cast<int>(choice.mouseTool), static_cast<int>(choice.roiTool))));
    toolActions_->addAction(action);
    viewerActions_.push_back(action);
    bar->addAction(action);
  }
}

void MainWindow::makePluginMenu() {
  pluginMenu_ = menuBar()->addMenu("&Plug-ins");
  auto* bar = addToolBar("Plug-ins");
  bar->setObjectName("plugins");
  bar->setMovable(false);
  bool first = true;
  for (const std::string& title : desk_.workstation().menuEntries()) {
    auto* action = addAction(pluginMenu_, QString::fromStdString(title),
                             first ? QKeySequence("Ctrl+L") : QKeySequence(), [this, title] { chooseMenu(title); });
    if (first) action->setToolTip(QString::fromStdString(title) + " (Ctrl+L)\nLabel the spine of the study in front");
    first = false;
    viewerActions_.push_back(action);
    bar->addAction(action);
  }
  if (pluginMenu_->isEmpty()) pluginMenu_->addAction("No plug-in is loaded")->setEnabled(false);
}

void MainWindow::makeHelpMenu() {
  auto* menu = menuBar()->addMenu("&Help");
  addAction(menu, "&Keyboard and mouse", QKeySequence("F1"), [this] { ShortcutSheet(*menuBar(), this).exec(); });
  addAction(menu, "&Manual", QKeySequence("Shift+F1"), [this] { pages_.openManual(); });
}

void MainWindow::chooseMenu(const std::string& title) {
  onFrontViewer([&](int viewer) { return desk_.workstation().chooseMenu(viewer, title); });
  paletteStale_ = true;
  scheduleRefresh(true);
}

void MainWindow::chooseTool(long mouseTool, long roiTool) {
  Workstation& workstation = desk_.workstation();
  onFrontViewer([&](int front) {
    if (roiTool != 0) return workstation.selectRoiTool(front, roiTool);
    // One choice for all viewers; but what draws in another viewer goes on drawing there.
    for (const ViewerInfo& viewer : workstation.viewers()) {
      if (viewer.number != front && viewer.tool != MouseToolAnnotate)
        tellIfRefused(workstation.selectMouseTool(viewer.number, mouseTool));
    }
    return workstation.selectMouseTool(front, mouseTool);
  });
}

void MainWindow::fillWindowMenu(QMenu* menu) {
  menu->clear();
  auto* pane = grid_->frontPane();
  const auto pixels = pane ? pane->canvas().shownPixels() : nullptr;
  const auto shown = pane ? pane->canvas().shownWindow() : std::nullopt;
  if (!pixels || !shown) {
    menu->addAction("Nothing in grey is shown")->setEnabled(false);
    return;
  }
  const auto info = desk_.workstation().viewer(pane->viewer());
  const auto* record = desk_.workstation().sliceRecord(pane->viewer(), info->slice);
  const ViewerLook& look = pane->canvas().look();
  const auto add = [&](const WindowPreset& preset) {
    const QString size = preset.window ? "   (" + windowSizeText(*preset.window) + ")" : QString();
    // A single & in the file's own words would become a shortcut.
    auto* action = addAction(menu, QString::fromStdString(preset.title).replace("&", "&&") + size, {},
                             [this, viewer = pane->viewer(), preset] { showWith(viewer, preset); });
    action->setCheckable(true);
    action->setChecked(isChosen(preset, look.window, look.voiTable));
  };
  for (const WindowPreset& preset : windowPresets(record->modality, *pixels, *shown)) add(preset);
  const auto kept = keptWindows(settings_, record->modality);
  if (!kept.empty()) menu->addSeparator();
  for (const WindowSetting& window : kept) add({"Kept", window, {}});
  menu->addSeparator();
  auto* keep = addAction(menu, "&Keep this window", {}, [this, modality = record->modality, window = *shown] {
    keepWindow(settings_, modality, window);
  });
  keep->setEnabled(!voiTransformOf(*pixels, storedRange(*pixels), look.window, look.voiTable).table);
  if (!kept.empty()) {
    addAction(menu, "&Forget the kept ones", {},
              [this, modality = record->modality] { forgetWindows(settings_, modality); });
  }
}

void MainWindow::showWith(int viewer, const WindowPreset& preset) {
  auto* pane = grid_->pane(viewer);
  if (!pane) return;
  pane->canvas().look().window = preset.window;
  pane->canvas().look().voiTable = preset.voiTable;
  pane->canvas().update();
}

void MainWindow::showViewerMenu(QPoint globalPosition) {
  QMenu menu(this);
  for (QAction* action : pluginMenu_->actions()) menu.addAction(action);
  menu.addSeparator();
  const auto front = desk_.workstation().frontViewer();
  const auto info = front ? desk_.workstation().viewer(*front) : std::nullopt;
  if (!info) return;
  auto* series = menu.addMenu("Series");
  for (const StackId& id : desk_.workstation().stacks(info->stack.studyUid)) {
    auto* action = addAction(series, QString::fromStdString(stackTitle(desk_.workstation(), id)), {},
                             [this, id] { openStack(id, false); });
    action->setCheckable(true);
    action->setChecked(id == info->stack);
  }
  menu.addMenu(windowMenu_);
  menu.addMenu(viewMenu_);
  menu.addAction(deleteAction_);
  menu.addSeparator();
  menu.addAction(viewerActions_.front());
  menu.exec(globalPosition);
}

void MainWindow::refreshActions() {
  const Workstation& workstation = desk_.workstation();
  const auto front = workstation.frontViewer();
  const auto info = front ? workstation.viewer(*front) : std::nullopt;
  for (QAction* action : viewerActions_) action->setEnabled(info.has_value());
  paletteAction_->setEnabled(palette_->isVisible());
  undoAction_->setEnabled(workstation.canUndo());
  redoAction_->setEnabled(workstation.canRedo());
  deleteAction_->setEnabled(info.has_value());
  for (QAction* action : toolActions_->actions()) {
    const QPoint tags = action->data().toPoint();
    action->setChecked(info && info->tool == tags.x() && (tags.y() == 0 || info->roiTool == tags.y()));
  }
  for (QAction* action : gridActions_->actions()) action->setChecked(action->data().toString() == gridTitle_);
}

}  // namespace workstation
