#include <iostream>

#include "cli/Commands.h"
#include "cli/Console.h"
#include "cli/LabelReport.h"
#include "cli/Labelling.h"
#include "cli/StudySession.h"

namespace cli {

namespace {

int fail(const Failure& failure) {
  printMessage(failure.sentence);
  return failure.status;
}

}  // namespace

int runLabel(const LabelArguments& arguments) {
  auto folder = readStudyFolder(arguments.study);
  if (!folder) return fail(folder.failure);
  auto session = StudySession::open(std::move(folder->images));
  if (!session) return fail(session.failure);
  const auto& studies = (*session)->studies();
  if (studies.size() != 1) {
    return fail({ExitNotAllowed, arguments.study + " holds " + std::to_string(studies.size()) +
                                     " studies: give a folder that holds one (vertana info lists them)."});
  }
  const auto labelling = labelStudy((*session)->workstation(), studies.front(), arguments);
  if (!labelling) return fail(labelling.failure);
  for (const auto& slice : labelling->slices) {
    if (slice.sameFrameOfReference) continue;
    printMessage("Some axial slices lie in another frame of reference than the drawing: their levels are not sure.");
    break;
  }
  arguments.json ? printLabellingAsJson(std::cout, *labelling) : printLabelling(std::cout, *labelling);
  (*session)->workstation().quit();
  return ExitDone;
}

}  // namespace cli
