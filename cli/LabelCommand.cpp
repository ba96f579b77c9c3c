#include <iostream>

#include "cli/Commands.h"
#include "cli/Console.h"
#include "cli/LabelReport.h"
#include "cli/Labelling.h"

namespace cli {

int runLabel(const LabelArguments& arguments) {
  auto source = StudySource::open(arguments.study, arguments.database);
  if (!source) return fail(source.failure);
  const auto study = (*source)->onlyStudy();
  if (!study) return fail(study.failure);
  auto session = StudySession::open(**source, *study);
  if (!session) return fail(session.failure);
  const auto labelling = labelStudy(**session, *study, arguments);
  (*session)->printNotices((*session)->store().status(*study).problem);
  if (!labelling) return fail(labelling.failure);
  warnOfOtherFrames(*labelling);
  arguments.json ? printLabellingAsJson(std::cout, *labelling) : printLabelling(std::cout, *labelling);
  (*session)->workstation().quit();
  return ExitDone;
}

}  // namespace cli
