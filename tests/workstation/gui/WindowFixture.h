#pragma once
// The window on a phantom study, driven by events.

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "phantom/Phantom.h"
#include "tests/support/TemporaryFolder.h"
#include "workstation/gui/MainWindow.h"

namespace workstation::test {

/// Answers in the person's place and remembers what was asked.
class AnsweringPrompts final : public Prompts {
 public:
  void showAlert(const Alert& alert) override {
    alerts.push_back(alert.message);
    if (duringAlert) duringAlert();
  }
  bool confirm(const QString& question, const QString&, const QString&) override {
    questions.push_back(question.toStdString());
    return confirms;
  }
  bool tryAgain(const QString&, const QString& explanation, const QString&) override {
    unsaved.push_back(explanation.toStdString());
    if (beforeNextTry) beforeNextTry();
    return unsaved.size() <= triesMore;
  }
  QString askText(const QString&, const QString& text) override {
    textsOffered.push_back(text.toStdString());
    if (duringText) duringText();
    return written;
  }
  QString chooseFolder(const QString&, const QString& from) override {
    start = from;
    return folder;
  }
  QString chooseNewFile(const QString&, const QString&, const QString&) override { return folder; }

  std::vector<std::string> alerts;
  std::vector<std::string> questions;
  std::vector<std::string> unsaved;
  std::vector<std::string> textsOffered;
  std::function<void()> duringAlert;
  std::function<void()> duringText;
  std::function<void()> beforeNextTry;
  bool confirms = true;
  std::size_t triesMore = 0;
  QString written;
  QString folder;
  QString start;  ///< where the last folder was looked for
};

/// A lumbar phantom in a folder of its own, and the window over it. The same phantom is copied for each test.
class WindowTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    ofSuite() = std::make_unique<testsupport::TemporaryFolder>();
    phantom::PhantomOptions options;
    options.outDir = *ofSuite() / "study";
    options.imageSize = 160;
    ASSERT_TRUE(phantom::writePhantom(options).written);
  }
  static void TearDownTestSuite() { ofSuite().reset(); }

  void SetUp() override {
    std::filesystem::copy(*ofSuite() / "study", study(), std::filesystem::copy_options::recursive);
    settings_ =
        std::make_unique<QSettings>(QString::fromStdString((folder_ / "settings.ini").string()), QSettings::IniFormat);
    start();
  }
  void TearDown() override {
    window_.reset();
    desk_.reset();
    settings_.reset();
  }

  std::filesystem::path study() const { return folder_ / "study"; }
  std::filesystem::path database() const { return folder_ / "database"; }

  void start() {
    DeskOptions options;
    options.defaultsFile = folder_ / "defaults.json";
    options.plugin = VERTANA_BUNDLE;
    options.screenWidth = 1600;
    options.screenHeight = 1000;
    desk_ = std::make_unique<Desk>(options, prompts_);
    window_ = std::make_unique<MainWindow>(*desk_, *settings_, database());
    window_->resize(1200, 800);
    window_->show();
    settle();
  }
  /// As the program ends and starts again.
  void restart() {
    window_->close();
    window_.reset();
    desk_.reset();
    start();
  }
  void openStudy() {
    window_->openFolder(study());
    waitForTask();
    ASSERT_FALSE(workstation().viewers().empty()) << messages();
  }
  void waitForTask() {
    while (window_->isBusy()) QApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents);
    settle();
  }
  /// Handles what is waiting until nothing is.
  static void settle() {
    for (int round = 0; round < 5; ++round) {
      QApplication::processEvents();
      QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
  }

  Workstation& workstation() { return desk_->workstation(); }
  std::string messages() { return window_->messages().sentences().join('\n').toStdString(); }
  /// The first open viewer in which a spine can be drawn, and the first axial one.
  int sagittalViewer() {
    return viewerWith([](long code) { return code == 0 || code == 1; });
  }
  int axialViewer() {
    return viewerWith([](long code) { return code >= 4; });
  }
  ViewerCanvas& canvas(int viewer) { return window_->grid().pane(viewer)->canvas(); }

  // --- the pointer, at pixels of the shown slice
  QPointF at(int viewer, pelmar::PixelPoint pixel) {
    const auto point = workstation().viewPointAt(viewer, pixel);
    return {point.x, canvas(viewer).height() - point.y};
  }
  void mouse(int viewer, QEvent::Type type, QPointF where, Qt::MouseButton button = Qt::LeftButton,
             Qt::KeyboardModifiers modifiers = {}) {
    auto& widget = canvas(viewer);
    const bool moves = type == QEvent::MouseMove;
    const bool releases = type == QEvent::MouseButtonRelease;
    QMouseEvent event(type, where, widget.mapToGlobal(where), moves ? Qt::NoButton : button,
                      releases ? Qt::NoButton : Qt::MouseButtons(button), modifiers);
    QApplication::sendEvent(&widget, &event);
  }
  void press(int viewer, pelmar::PixelPoint pixel) { mouse(viewer, QEvent::MouseButtonPress, at(viewer, pixel)); }
  void move(int viewer, pelmar::PixelPoint pixel) { mouse(viewer, QEvent::MouseMove, at(viewer, pixel)); }
  void release(int viewer, pelmar::PixelPoint pixel) { mouse(viewer, QEvent::MouseButtonRelease, at(viewer, pixel)); }
  void drag(int viewer, pelmar::PixelPoint from, pelmar::PixelPoint to, bool letGo = true) {
    press(viewer, from);
    for (int step = 1; step <= 6; ++step)
      move(viewer, {from.x + (to.x - from.x) * step / 6, from.y + (to.y - from.y) * step / 6});
    if (letGo) release(viewer, to);
    settle();
  }
  void keyPress(int viewer, Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QKeyEvent event(QEvent::KeyPress, key, modifiers);
    QApplication::sendEvent(&canvas(viewer), &event);
    settle();
  }
  void wheel(int viewer, int notches, Qt::KeyboardModifiers modifiers = {}) {
    auto& widget = canvas(viewer);
    const QPointF middle(widget.width() / 2.0, widget.height() / 2.0);
    QWheelEvent event(middle, widget.mapToGlobal(middle), QPoint(), QPoint(0, 120 * notches), Qt::NoButton, modifiers,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&widget, &event);
    settle();
  }

  // --- labelling
  void chooseLabels() {
    ASSERT_TRUE(workstation().bringToFront(sagittalViewer()));
    window_->chooseMenu("Labels");
    settle();
  }
  /// Along the phantom's lumbar spine, in pixels of its sagittal slices.
  static constexpr pelmar::PixelPoint spineTop{80, 20};
  static constexpr pelmar::PixelPoint spineEnd{80, 140};
  std::vector<std::string> planeNames() {
    std::vector<std::string> names;
    const pelmar::Value state = workstation().pluginState();
    const auto planes = state.dictionary()->find("intervertebralPlanes");
    if (!planes->second.array()) return names;
    for (const auto& plane : *planes->second.array()) names.push_back(*plane.dictionary()->at("name").string());
    return names;
  }

  AnsweringPrompts prompts_;
  testsupport::TemporaryFolder folder_;
  std::unique_ptr<QSettings> settings_;
  std::unique_ptr<Desk> desk_;
  std::unique_ptr<MainWindow> window_;

 private:
  static std::unique_ptr<testsupport::TemporaryFolder>& ofSuite() {
    static std::unique_ptr<testsupport::TemporaryFolder> made;
    return made;
  }
  int viewerWith(const std::function<bool(long)>& isWanted) {
    for (const ViewerInfo& viewer : workstation().viewers()) {
      if (isWanted(viewer.orientationCode)) return viewer.number;
    }
    ADD_FAILURE() << "no such viewer is open";
    return -1;
  }
};

}  // namespace workstation::test
