#include "DrivenWindow.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QMouseEvent>
#include <chrono>
#include <cstdlib>
#include <iostream>

namespace guibench {

namespace fs = std::filesystem;

void giveUp(const std::string& sentence) {
  std::cerr << "FAILED: " << sentence << '\n';
  std::exit(1);
}

Folder::Folder() {
  if (!folder_.isValid()) giveUp("No temporary folder can be made: " + folder_.errorString().toStdString() + ".");
}

fs::path Folder::operator/(const std::string& name) const { return fs::path(folder_.path().toStdString()) / name; }

void age(const fs::path& folder) {
  const auto anHourAgo = fs::file_time_type::clock::now() - std::chrono::hours(1);
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.is_directory()) fs::last_write_time(entry.path(), anHourAgo);
  }
  fs::last_write_time(folder, anHourAgo);
}

void NoPrompts::showAlert(const workstation::Alert& alert) { giveUp("The plug-in asks: " + alert.message); }
bool NoPrompts::confirm(const QString& question, const QString&, const QString&) {
  giveUp("The window asks: " + question.toStdString());
}
bool NoPrompts::tryAgain(const QString& problem, const QString&, const QString&) {
  giveUp("The window asks: " + problem.toStdString());
}
QString NoPrompts::askText(const QString& title, const QString&) { giveUp("The window asks: " + title.toStdString()); }
QString NoPrompts::chooseFolder(const QString& title, const QString&) {
  giveUp("The window asks: " + title.toStdString());
}
QString NoPrompts::chooseNewFile(const QString& title, const QString&, const QString&) {
  giveUp("The window asks: " + title.toStdString());
}

DrivenWindow::DrivenWindow(const fs::path& study)
    : settings_(QString::fromStdString((folder_ / "settings.ini").string()), QSettings::IniFormat),
      desk_(deskOptions(), prompts_),
      window_(desk_, settings_, folder_ / "database") {
  window_.resize(1440, 900);
  window_.show();
  window_.openFolder(study);
  while (window_.isBusy()) QApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents);
  settle();
  for (const QString& sentence : window_.messages().sentences()) giveUp("The window says: " + sentence.toStdString());
  if (model().viewers().empty()) giveUp("The window shows nothing of " + study.string() + ".");
  QApplication::instance()->installEventFilter(this);
}

workstation::DeskOptions DrivenWindow::deskOptions() const {
  workstation::DeskOptions options;
  options.defaultsFile = folder_ / "defaults.json";
  options.plugin = VERTANA_BUNDLE;
  return options;
}

workstation::ViewerCanvas& DrivenWindow::canvas(int viewer) {
  auto* pane = window_.grid().pane(viewer);
  if (!pane || !pane->canvas().isVisible()) giveUp("Viewer " + std::to_string(viewer) + " is not in the window.");
  return pane->canvas();
}

void DrivenWindow::settle() {
  auto* dispatcher = QAbstractEventDispatcher::instance();
  while (dispatcher->processEvents(QEventLoop::AllEvents))
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

Duration DrivenWindow::send(int viewer, QEvent& event) {
  auto& widget = canvas(viewer);
  painted_.clear();
  const Stopwatch watch;
  QApplication::sendEvent(&widget, &event);
  settle();
  return watch.sinceStart();
}

Duration DrivenWindow::mouse(int viewer, QEvent::Type type, pelmar::PixelPoint pixel) {
  const auto& widget = canvas(viewer);
  const auto point = model().viewPointAt(viewer, pixel);
  const QPointF at(point.x, widget.height() - point.y);
  const Qt::MouseButton changed = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
  const Qt::MouseButton held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
  QMouseEvent event(type, at, widget.mapToGlobal(at), changed, held, Qt::NoModifier);
  return send(viewer, event);
}

Duration DrivenWindow::wheel(int viewer, int notches) {
  constexpr int notch = 120;
  const auto& widget = canvas(viewer);
  const QPointF middle = QRectF(widget.rect()).center();
  QWheelEvent event(middle, widget.mapToGlobal(middle), QPoint(), QPoint(0, notch * notches), Qt::NoButton,
                    Qt::NoModifier, Qt::NoScrollPhase, false);
  return send(viewer, event);
}

int DrivenWindow::paintings(int viewer) const {
  const auto found = painted_.find(viewer);
  return found == painted_.end() ? 0 : found->second;
}

bool DrivenWindow::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Paint) {
    if (const auto* canvas = dynamic_cast<workstation::ViewerCanvas*>(watched)) ++painted_[canvas->viewer()];
  }
  return QObject::eventFilter(watched, event);
}

}  // namespace guibench
