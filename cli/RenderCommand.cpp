// A picture of each series of a study.
#include <iostream>

#include "cli/Commands.h"
#include "cli/Console.h"
#include "cli/Pictures.h"

namespace cli {

namespace fs = std::filesystem;

int runRender(const RenderArguments& arguments) {
  const auto module = workstation::loadRenderModule(renderModulePath());
  if (!module) return fail({ExitNotAllowed, module.problem});
  return withStudy(arguments.study, arguments.database, [&](StudySession& session, const std::string& study) -> int {
    std::error_code error;
    fs::create_directories(arguments.outDir, error);
    if (error) return fail({ExitNotAllowed, arguments.outDir + " cannot be made: " + error.message() + "."});
    const auto files = paintStudy(session, study, **module, arguments.outDir);
    session.printNotices();
    if (!files) return fail(files.failure);
    for (const auto& file : *files) std::cout << file.string() << '\n';
    return ExitDone;
  });
}

}  // namespace cli
