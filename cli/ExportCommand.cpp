// The stored labelling as a file for other programs.
#include <iostream>
#include <sstream>

#include "cli/Commands.h"
#include "cli/Console.h"
#include "cli/LabelReport.h"
#include "cli/Labelling.h"
#include "cli/export/ExportFile.h"
#include "cli/export/Nifti.h"
#include "cli/export/SctDiscLabels.h"
#include "cli/export/SlicerMarkups.h"

namespace cli {

namespace {

std::string textOf(const Labelling& labelling, const std::string& heading,
                   void (*print)(std::ostream& out, const Labelling& labelling)) {
  std::ostringstream text;
  text << heading;
  print(text, labelling);
  return text.str();
}

Expected<std::string> sctFile(const StudySession& session, const Labelling& labelling, const std::string& name) {
  const auto& drawnOn = labelling.drawnOn;
  auto file = sctDiscLabels(labelling, drawnOn ? session.workstation().series(*drawnOn) : nullptr);
  if (!file || !name.ends_with(".gz")) return file;
  return gzipped(*file);
}

Expected<std::string> exported(const StudySession& session, const Labelling& labelling,
                               const ExportArguments& arguments) {
  switch (arguments.format) {
    case ExportFormat::json:
      return textOf(labelling, "", printLabellingAsJson);
    case ExportFormat::csv:
      return textOf(labelling, csvHeader, printLabellingAsCsv);
    case ExportFormat::slicer:
      return slicerMarkups(labelling);
    case ExportFormat::sct:
      break;
  }
  return sctFile(session, labelling, arguments.outFile);
}

void tellWhatIsToBeKnown(const Labelling& labelling, ExportFormat format, const std::string& title) {
  if (format == ExportFormat::json || format == ExportFormat::csv) warnOfOtherFrames(labelling, title);
  if (format == ExportFormat::sct && hasSkullJoint(labelling)) {
    printMessage("C0-C1 was left out: it is no disc, and Spinal Cord Toolbox labels have no number for it.");
  }
}

}  // namespace

int runExport(const ExportArguments& arguments) {
  return withStudy(arguments.study, arguments.database, [&](StudySession& session, const std::string& study) -> int {
    const auto labelling = storedLabelling(session, study);
    session.printNotices();
    if (!labelling) return fail(labelling.failure);
    const auto contents = exported(session, *labelling, arguments);
    if (!contents) return fail(contents.failure);
    if (const auto written = writeExport(arguments.outFile, *contents); !written) {
      return fail({ExitNotAllowed, *written.problem});
    }
    tellWhatIsToBeKnown(*labelling, arguments.format, session.source().title(study));
    std::cout << "Wrote the labelling of the " << regionName(labelling->region) << " spine to " << arguments.outFile
              << ".\n";
    return ExitDone;
  });
}

}  // namespace cli
