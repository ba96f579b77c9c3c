#include <algorithm>
#include <iostream>
#include <sstream>
#include <utility>

#include "cli/Commands.h"
#include "cli/Console.h"
#include "cli/LabelReport.h"
#include "cli/Labelling.h"
#include "cli/ManyStudies.h"
#include "cli/PlainText.h"
#include "cli/Workers.h"

namespace cli {

namespace {

/// What is printed of one study, in the form asked for; of several, a text begins with the study's name.
int showStudy(StudySource& source, const std::string& study, const ShowArguments& arguments, bool amongMany,
              std::ostream& out) {
  auto session = StudySession::open(source, study);
  if (!session) return fail(session.failure);
  const auto labelling = storedLabelling(**session, study);
  (*session)->printNotices();
  if (!labelling) return fail(labelling.failure);
  warnOfOtherFrames(*labelling, source.title(study));
  if (arguments.json) {
    printLabellingAsJson(out, *labelling);
  } else if (arguments.csv) {
    printLabellingAsCsv(out, *labelling);
  } else {
    if (amongMany) out << "Study " << printable(study) << " in " << printable(source.path()) << '\n';
    printLabelling(out, *labelling, "Stored:");
  }
  return ExitDone;
}

/// Each study by itself, in a workstation of its own. `heading` comes before the first that can be shown, `between`
/// between two.
int showStudies(StudySource& source, const ShowArguments& arguments, bool amongMany, const std::string& heading,
                const std::string& between) {
  int status = ExitDone;
  bool first = true;
  for (const auto& study : source.studies()) {
    std::ostringstream text;
    const int ended = showStudy(source, study, arguments, amongMany, text);
    if (ended == ExitDone) std::cout << (std::exchange(first, false) ? heading : between) << text.str() << std::flush;
    status = std::max(status, ended);
  }
  return status;
}

}  // namespace

int runShow(const ShowArguments& arguments) {
  const std::string heading = arguments.csv ? csvHeader : "";
  const std::string between = arguments.csv || arguments.json ? "" : "\n";
  if (arguments.studies.size() == 1) {
    const auto source = StudySource::open(arguments.studies.front(), arguments.database);
    if (!source) return fail(source.failure);
    return showStudies(**source, arguments, (*source)->studies().size() > 1, heading, between);
  }
  ManyStudies many;
  many.studies = arguments.studies;
  many.database = arguments.database;
  many.jobs = arguments.jobs.value_or(processors());
  many.heading = heading;
  many.between = between;
  many.task = [&](StudySource& source) { return showStudies(source, arguments, true, "", ""); };
  return forManyStudies(many);
}

}  // namespace cli
