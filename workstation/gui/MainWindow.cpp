#include "workstation/gui/MainWindow.h"

#include <QCloseEvent>
#include <QDockWidget>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QScreen>
#include <QStatusBar>
#include <QUrl>
#include <QVBoxLayout>
#include <algorithm>
#include <map>
#include <set>

#include "workstation/gui/StackTitle.h"
#include "workstation/model/EventLoop.h"
#include "workstation/session/StoredDrawing.h"

namespace workstation {
namespace {

std::vector<std::string> bannersFor(const Stack& shown, const StudyCautions& cautions) {
  std::vector<std::string> banners;
  if (cautions.unsaved) banners.emplace_back("The labelling of this study is not saved yet.");
  if (shown.plane == Plane::axial && !cautions.labelledFrame.empty() &&
      shown.frameOfReferenceUid != cautions.labelledFrame) {
    banners.emplace_back(
        "These slices lie in another frame of reference than the labelling: their levels are not sure.");
  }
  return banners;
}

}  // namespace

MainWindow::MainWindow(Desk& desk, QSettings& settings, std::filesystem::path database)
    : desk_(desk), settings_(settings), database_(std::move(database)), pages_([this](const std::string& sentence) {
        desk_.tell(sentence);
        scheduleRefresh(false);
      }) {
  setWindowTitle("Vertana workstation");
  setAcceptDrops(true);
  canvasOptions_.texts = settings_.value("view/texts", true).toBool();
  canvasOptions_.referenceLines = settings_.value("view/referenceLines", true).toBool();
  gridTitle_ = settings_.value("view/grid").toString();
  makeWidgets();
  makeActions();
  connectDesk();
  restoreLayout();
  openDatabaseIfThere();
  refresh();
}

MainWindow::~MainWindow() {
  desk_.workstation().setPersonLog(nullptr);
  desk_.hooks() = {};
  task_.reset();
}

void MainWindow::makeWidgets() {
  canvasHooks_.entered = [this](int viewer) {
    const auto front = desk_.workstation().frontViewer();
    if (front && *front == viewer) return;
    tellIfRefused(desk_.workstation().bringToFront(viewer));
    repaintAll_ = true;  // the reference lines are those of another slice
  };
  canvasHooks_.marked = [this](int viewer, const MarkedPoint& point) { markPoint(viewer, point); };
  canvasHooks_.menuRequested = [this](int, QPoint at) {
    // Not while the canvas, which the menu may close, handles its event.
    QTimer::singleShot(0, this, [this, at] { showViewerMenu(at); });
  };
  canvasHooks_.maximised = [this](int) { grid_->setMaximised(!grid_->isMaximised()); };
  // A panel that waits for the person must not do so in the middle of an event of the canvas.
  canvasHooks_.textWanted = [this](int viewer, pelmar::PixelPoint at) {
    QTimer::singleShot(0, this, [this, viewer, at] { writeText(viewer, at); });
  };
  canvasHooks_.textPicked = [this](int viewer, int text) {
    QTimer::singleShot(0, this, [this, viewer, text] { rewriteText(viewer, text); });
  };
  canvasHooks_.released = [this](int) { bannersStale_ = true; };

  auto* middle = new QWidget(this);
  auto* layout = new QVBoxLayout(middle);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  messageBar_ = new MessageBar(middle);
  grid_ = new ViewerGrid(desk_, canvasHooks_, canvasOptions_, middle);
  layout->addWidget(messageBar_);
  layout->addWidget(grid_, 1);
  setCentralWidget(middle);

  auto* dock = new QDockWidget("Studies", this);
  dock->setObjectName("studies");
  dock->setFeatures(QDockWidget::DockWidgetClosable | QDockWidget::DockWidgetMovable);
  browser_ = new BrowserPanel(desk_, dock);
  browser_->hooks().openStudy = [this](const std::string& study) { openStudy(study); };
  browser_->hooks().openStack = [this](const StackId& id, bool fresh) { openStack(id, fresh); };
  browser_->hooks().tell = [this](const std::string& sentence) {
    desk_.tell(sentence);
    scheduleRefresh(false);
  };
  browser_->hooks().cancelled = [this] {
    if (task_) task_->cancel();
  };
  dock->setWidget(browser_);
  addDockWidget(Qt::LeftDockWidgetArea, dock);
  dock->toggleViewAction()->setText("&Studies");
  dock->toggleViewAction()->setShortcut(QKeySequence("F9"));
  studiesAction_ = dock->toggleViewAction();
  palette_ = new PaletteWidget(desk_, this);
  palette_->leave() = [this] { goToViewer(0); };
  statusBar()->setSizeGripEnabled(false);
  recordingSign_ = new QLabel(this);
  recordingSign_->setTextFormat(Qt::PlainText);
  QPalette red = recordingSign_->palette();
  red.setColor(QPalette::WindowText, QColor(255, 107, 94));
  recordingSign_->setPalette(red);
  statusBar()->addPermanentWidget(recordingSign_);
}

void MainWindow::connectDesk() {
  refreshTimer_.setSingleShot(true);
  connect(&refreshTimer_, &QTimer::timeout, this, [this] { refresh(); });
  desk_.hooks().eventFinished = [this] { scheduleRefresh(false); };
  desk_.hooks().paletteChanged = [this] {
    paletteStale_ = true;
    bannersStale_ = true;
    scheduleRefresh(true);
  };
  desk_.hooks().paletteValueChanged = [this](const std::string&) {
    paletteStale_ = true;
    scheduleRefresh(true);
  };
  desk_.hooks().activate = [this] {
    QMetaObject::invokeMethod(
        this, [this] { activateWindow(); }, Qt::QueuedConnection);
  };
  desk_.hooks().openAddress = [this](const std::string& address) { pages_.open(address); };
}

void MainWindow::scheduleRefresh(bool everything) {
  repaintAll_ = repaintAll_ || everything;
  if (!refreshTimer_.isActive()) refreshTimer_.start(0);
}

void MainWindow::refresh() {
  // A panel of the plug-in waits in the middle of an event: what it left half done is shown once the event has ended.
  if (isQuit_ || desk_.workstation().events().busy()) return;
  refreshTimer_.stop();
  // The front viewer's slice is a line in all the others.
  const auto front = grid_->frontPane();
  const auto info = front ? desk_.workstation().viewer(front->viewer()) : std::nullopt;
  const bool frontScrolled = info && info->needsDisplay && canvasOptions_.referenceLines;
  grid_->refresh(std::exchange(repaintAll_, false) || frontScrolled);
  if (std::exchange(paletteStale_, false)) {
    palette_->refresh();
    watchPalette();
  }
  if (std::exchange(bannersStale_, false)) refreshBanners();
  for (const std::string& sentence : desk_.takeMessages()) messageBar_->add(sentence);
  refreshActions();
}

void MainWindow::watchPalette() {
  if (palette_->isVisible()) {
    const pelmar::Value state = desk_.workstation().pluginState();
    const auto study =
        state.dictionary() ? state.dictionary()->find("study") : pelmar::Value::Dictionary::const_iterator();
    if (state.dictionary() && study != state.dictionary()->end() && study->second.string())
      labelledStudy_ = *study->second.string();
    return;
  }
  if (desk_.hasLostLabelling(std::exchange(labelledStudy_, {}))) desk_.tell(lostLabelling);
  browser_->refillIfMarksChanged();
}

// --- warnings ------------------------------------------------------------------------------------------------------

StudyCautions MainWindow::cautionsFor(const std::string& studyUid) {
  const Workstation& workstation = desk_.workstation();
  StudyCautions cautions;
  cautions.unsaved = desk_.store().status(studyUid).unsaved;
  const auto stacks = workstation.stacks(studyUid);
  std::set<std::string> frames;
  for (const StackId& id : stacks) frames.insert(workstation.stack(id)->frameOfReferenceUid);
  if (frames.size() < 2) return cautions;  // the report need not be read
  cautions.labelledFrame = labelledFrameOfReference(desk_.store(), workstation, studyUid);
  // After a reset the study still holds a labelling, of which nothing is seen.
  const auto showsLevels = [&](const StackId& id) {
    const Stack& stack = *workstation.stack(id);
    if (stack.plane != Plane::axial) return false;
    for (std::size_t slice = 0; slice < stack.slices.size(); ++slice) {
      if (workstation.levelOfSlice(id, slice)) return true;
    }
    return false;
  };
  if (!cautions.labelledFrame.empty() && std::none_of(stacks.begin(), stacks.end(), showsLevels))
    cautions.labelledFrame.clear();
  return cautions;
}

void MainWindow::refreshBanners() {
  std::map<std::string, StudyCautions> cautions;  // each study is looked at once, for its report may have to be read
  for (const ViewerInfo& viewer : desk_.workstation().viewers()) {
    const std::string& study = viewer.stack.studyUid;
    auto known = cautions.find(study);
    if (known == cautions.end()) known = cautions.emplace(study, cautionsFor(study)).first;
    const Stack* shown = desk_.workstation().stack(viewer.stack);
    if (auto* pane = grid_->pane(viewer.number); pane && shown)
      pane->canvas().setBanners(bannersFor(*shown, known->second));
  }
}

// --- the window itself ---------------------------------------------------------------------------------------------

void MainWindow::restoreLayout() {
  const QSize room = screen()->availableGeometry().size();
  resize(QSize(1440, 900).boundedTo(room));
  restoreGeometry(settings_.value("window/geometry").toByteArray());
  restoreState(settings_.value("window/state").toByteArray());
}

void MainWindow::keepLayout() {
  settings_.setValue("window/geometry", saveGeometry());
  settings_.setValue("window/state", saveState());
  settings_.setValue("view/texts", canvasOptions_.texts);
  settings_.setValue("view/referenceLines", canvasOptions_.referenceLines);
  settings_.setValue("view/grid", gridTitle_);
  settings_.sync();
}

void MainWindow::moveEvent(QMoveEvent* event) {
  QMainWindow::moveEvent(event);
  grid_->placeInModel();
}

void MainWindow::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  grid_->placeInModel();
}

void MainWindow::closeEvent(QCloseEvent* event) {
  // A panel of the plug-in waits: the event that it belongs to must end first.
  if (desk_.workstation().events().busy()) return event->ignore();
  stopRecording();
  keepLayout();
  quitModel();
  isQuit_ = true;
  palette_->hide();
  QMainWindow::closeEvent(event);
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
  std::vector<std::filesystem::path> paths;
  for (const QUrl& url : event->mimeData()->urls()) {
    if (url.isLocalFile()) paths.emplace_back(url.toLocalFile().toStdString());
  }
  event->acceptProposedAction();
  if (!paths.empty()) importPaths(paths);
}

void MainWindow::markPoint(int viewer, const MarkedPoint& point) {
  QStringList without;
  for (ViewerPane* pane : grid_->panes()) {
    // In the viewer that was clicked in the point is where the pointer is.
    if (pane->viewer() == viewer) {
      pane->canvas().look().marked = point;
    } else if (!pane->canvas().showPoint(point)) {
      const auto info = desk_.workstation().viewer(pane->viewer());
      if (info) without << QString::fromStdString(stackTitle(desk_.workstation(), info->stack));
    }
  }
  without.removeDuplicates();
  statusBar()->clearMessage();
  if (!without.isEmpty()) {
    statusBar()->showMessage(
        "The point lies on no slice of " + without.join(" and ") + ": it is shown in the other viewers only.", 8000);
  }
  scheduleRefresh(true);
}

}  // namespace workstation
