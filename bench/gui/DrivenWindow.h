#pragma once
// The real window on a platform without a screen, driven by events, and a count of what it paints.

#include <QSettings>
#include <QTemporaryDir>
#include <QWheelEvent>
#include <filesystem>
#include <map>
#include <memory>
#include <string>

#include "Times.h"
#include "workstation/gui/MainWindow.h"

namespace guibench {

/// Ends the program, saying what went wrong: a time that was measured on something else is worth nothing.
[[noreturn]] void giveUp(const std::string& sentence);

/// A folder that goes with the object.
class Folder {
 public:
  Folder();
  std::filesystem::path operator/(const std::string& name) const;

 private:
  QTemporaryDir folder_;
};

/// Makes the folders of a study as old as a study is when it is read: one that was written a moment ago is listed again
/// and again, because its time would not tell whether more has come.
void age(const std::filesystem::path& folder);

/// Nobody is there to answer: a question ends the program.
class NoPrompts final : public workstation::Prompts {
 public:
  void showAlert(const workstation::Alert& alert) override;
  bool confirm(const QString& question, const QString& explanation, const QString& action) override;
  bool tryAgain(const QString& problem, const QString& explanation, const QString& giveUp) override;
  QString askText(const QString& title, const QString& text) override;
  QString chooseFolder(const QString& title, const QString& start) override;
  QString chooseNewFile(const QString& title, const QString& start, const QString& filter) override;
};

/// The window over one study, in the size that it has at first on a usual screen. Settings, defaults and the database
/// are in a folder of their own.
class DrivenWindow final : public QObject {
 public:
  explicit DrivenWindow(const std::filesystem::path& study);

  workstation::Desk& desk() { return desk_; }
  workstation::Workstation& model() { return desk_.workstation(); }
  workstation::MainWindow& window() { return window_; }
  workstation::ViewerCanvas& canvas(int viewer);

  /// Lets the window do all that it has to do, painting included, until nothing waits.
  void settle();
  /// Sends an event to a viewer's canvas, and settles. The time ends when everything that the event has changed is
  /// painted.
  Duration send(int viewer, QEvent& event);
  Duration mouse(int viewer, QEvent::Type type, pelmar::PixelPoint pixel);
  /// One notch; down, to the next slice, where it is negative.
  Duration wheel(int viewer, int notches);

  /// How often each viewer's canvas has been painted since the last event was sent.
  int paintings(int viewer) const;
  std::size_t viewersPainted() const { return painted_.size(); }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  workstation::DeskOptions deskOptions() const;

  Folder folder_;
  NoPrompts prompts_;
  QSettings settings_;
  workstation::Desk desk_;
  workstation::MainWindow window_;
  std::map<int, int> painted_;
};

}  // namespace guibench
