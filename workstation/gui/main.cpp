// The workstation's window.
#include <QApplication>
#include <QCommandLineParser>
#include <QScreen>
#include <QSettings>
#include <QStandardPaths>
#include <clocale>
#include <filesystem>
#include <iostream>

#include "workstation/gui/CacheSetting.h"
#include "workstation/gui/MainWindow.h"
#include "workstation/gui/PageOpener.h"
#include "workstation/gui/Theme.h"
#include "workstation/gui/WidgetPrompts.h"

namespace {

namespace fs = std::filesystem;

struct Arguments {
  std::vector<fs::path> studies;
  fs::path database;
  fs::path recording;  ///< empty: none
  bool import = false;
  bool manual = false;
};

Arguments argumentsOf(const QApplication& application) {
  QCommandLineParser parser;
  parser.setApplicationDescription(
      "A workstation for DICOM images that labels spines.\n\n"
      "Each STUDY is a folder of DICOM files, or one file. It is opened where it lies: what is stored goes into that "
      "folder. The UID of a study of the database opens that one.");
  parser.addHelpOption();
  parser.addVersionOption();
  const QCommandLineOption import("import", "Copy the studies into the database instead.");
  const QString place = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/vertana/database";
  const QCommandLineOption database("database", "The database folder (" + place + ").", "DIR", place);
  const QCommandLineOption manual("manual", "Print where the manual is, and end.");
  const QCommandLineOption record("record", "Record the session into FILE, for vertana play.", "FILE");
  parser.addOptions({import, database, record, manual});
  parser.addPositionalArgument("STUDY", "A folder of DICOM files, or a study's UID.", "[STUDY...]");
  parser.process(application);
  Arguments arguments;
  for (const QString& study : parser.positionalArguments()) arguments.studies.emplace_back(study.toStdString());
  arguments.database = parser.value(database).toStdString();
  arguments.import = parser.isSet(import);
  arguments.manual = parser.isSet(manual);
  if (parser.isSet(record)) arguments.recording = fs::absolute(parser.value(record).toStdString());
  return arguments;
}

}  // namespace

int main(int count, char** values) {
  QApplication application(count, values);
  // The application takes on the person's locale, in which numbers may have a comma: those of files never do.
  std::setlocale(LC_NUMERIC, "C");
  QApplication::setApplicationName("vertana-workstation");
  QApplication::setApplicationVersion(VERTANA_VERSION);
  const Arguments arguments = argumentsOf(application);
  if (arguments.manual) {
    std::cout << workstation::manualPage().string() << '\n';
    return 0;
  }
  workstation::useTheme(application);

  QSettings settings("vertana", "workstation");
  workstation::DeskOptions options;
  const QRect screen = QGuiApplication::primaryScreen()->geometry();
  options.screenWidth = screen.width();
  options.screenHeight = screen.height();
  const workstation::CacheSetting cache = workstation::cacheSetting(settings);
  options.cacheBytes = cache.bytes;
  workstation::WidgetPrompts prompts;
  workstation::Desk desk(options, prompts);
  if (!cache.problem.empty()) desk.tell(cache.problem);
  workstation::MainWindow window(desk, settings, arguments.database);
  prompts.setParent(&window);
  window.show();
  if (!arguments.recording.empty()) window.recordTo(arguments.recording);
  if (arguments.import && !arguments.studies.empty()) {
    window.importPaths(arguments.studies);
  } else {
    window.openFolders(arguments.studies);
  }
  return QApplication::exec();
}
