#include "workstation/gui/PageOpener.h"

#include <QDesktopServices>
#include <QElapsedTimer>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>
#include <set>

namespace workstation {

namespace fs = std::filesystem;

namespace {

constexpr const char* addressOfManual = "https://vertana.example/manual/";
/// What opens a page without a browser of its own fails at once. One that ends later was a browser that was there.
constexpr qint64 failsWithinMs = 10000;

/// Those that have not ended. They are never let go of: the program may end before them.
std::set<QObject*>& startedOpeners() {
  static auto* const started = new std::set<QObject*>;
  return *started;
}

}  // namespace

fs::path manualPage() {
  std::error_code error;
  const auto program = fs::read_symlink("/proc/self/exe", error);
  return program.parent_path().parent_path() / "share" / "doc" / "vertana" / "manual" / "index.html";
}

PageOpener::PageOpener(Tell tell, fs::path manual) : tell_(std::move(tell)), manual_(std::move(manual)) {}

void PageOpener::openManual() {
  std::error_code error;
  if (!fs::is_regular_file(manual_, error)) {
    return tell_("The manual cannot be opened, because " + manual_.string() +
                 " is not there: build or install the workstation again.");
  }
  const QUrl url = QUrl::fromLocalFile(QString::fromStdString(manual_.string()));
  show(QString::fromLatin1(url.toEncoded()),
       "The manual was not opened, because no browser answers: open " + manual_.string() + " in a browser.");
}

void PageOpener::open(const std::string& address) {
  if (address == addressOfManual) return openManual();
  show(QString::fromStdString(address),
       "The page was not opened, because no browser answers: open " + address + " in a browser.");
}

void PageOpener::show(const QString& url, const std::string& problem) {
  // Asked directly, the desktop's opener says whether it found a browser; through the toolkit it does not.
  const QString opener = QStandardPaths::findExecutable("xdg-open");
  if (opener.isEmpty()) {
    if (!QDesktopServices::openUrl(QUrl(url))) tell_(problem);
    return;
  }
  // Without a parent: the browser may be a child of it, and outlives the window.
  auto* process = new QProcess;
  startedOpeners().insert(process);
  QObject::connect(process, &QObject::destroyed, [](QObject* gone) { startedOpeners().erase(gone); });
  process->setStandardInputFile(QProcess::nullDevice());
  process->setStandardOutputFile(QProcess::nullDevice());
  process->setStandardErrorFile(QProcess::nullDevice());
  QElapsedTimer sinceStart;
  sinceStart.start();
  QObject::connect(process, &QProcess::finished, &context_,
                   [this, problem, sinceStart](int status, QProcess::ExitStatus how) {
                     if ((status != 0 || how != QProcess::NormalExit) && sinceStart.elapsed() < failsWithinMs)
                       tell_(problem);
                   });
  QObject::connect(process, &QProcess::errorOccurred, &context_, [this, problem](QProcess::ProcessError error) {
    if (error == QProcess::FailedToStart) tell_(problem);
  });
  QObject::connect(process, &QProcess::stateChanged, process, [process](QProcess::ProcessState state) {
    if (state == QProcess::NotRunning) process->deleteLater();
  });
  process->start(opener, {url});
}

}  // namespace workstation
