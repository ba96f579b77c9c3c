#include <iostream>

#include "cli/Commands.h"
#include "cli/Console.h"
#include "cli/LabelReport.h"
#include "cli/Labelling.h"

namespace cli {

int runLabel(const LabelArguments& arguments) {
  return withStudy(arguments.study, arguments.database, [&](StudySession& session, const std::string& study) -> int {
    const auto labelling = labelAndQuit(session, study, arguments);
    if (!labelling) return fail(labelling.failure);
    warnOfOtherFrames(*labelling, session.source().title(study));
    arguments.json ? printLabellingAsJson(std::cout, *labelling) : printLabelling(std::cout, *labelling);
    return ExitDone;
  });
}

}  // namespace cli
