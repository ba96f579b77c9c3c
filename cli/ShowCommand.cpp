#include <iostream>

#include "cli/Commands.h"
#include "cli/Console.h"
#include "cli/LabelReport.h"
#include "cli/Labelling.h"

namespace cli {

int runShow(const ShowArguments& arguments) {
  auto source = StudySource::open(arguments.study, arguments.database);
  if (!source) return fail(source.failure);
  const auto study = (*source)->onlyStudy();
  if (!study) return fail(study.failure);
  auto session = StudySession::open(**source, *study);
  if (!session) return fail(session.failure);
  const auto labelling = storedLabelling(**session, *study);
  (*session)->printNotices();
  if (!labelling) return fail(labelling.failure);
  warnOfOtherFrames(*labelling);
  if (arguments.json) {
    printLabellingAsJson(std::cout, *labelling);
  } else if (arguments.csv) {
    printLabellingAsCsv(std::cout, *labelling);
  } else {
    printLabelling(std::cout, *labelling, "Stored:");
  }
  return ExitDone;
}

}  // namespace cli
