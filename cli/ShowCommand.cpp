#include <iostream>

#include "cli/Commands.h"
#include "cli/Console.h"
#include "cli/LabelReport.h"
#include "cli/Labelling.h"

namespace cli {

int runShow(const ShowArguments& arguments) {
  return withStudy(arguments.study, arguments.database, [&](StudySession& session, const std::string& study) -> int {
    const auto labelling = storedLabelling(session, study);
    session.printNotices();
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
  });
}

}  // namespace cli
