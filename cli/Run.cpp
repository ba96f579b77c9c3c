#include <exception>
#include <iostream>

#include "cli/Commands.h"
#include "cli/Console.h"

namespace cli {

namespace {

int dispatch(const Arguments& arguments) {
  if (const auto* text = std::get_if<TextToPrint>(&arguments)) {
    std::cout << text->text;
    return ExitDone;
  }
  if (const auto* demo = std::get_if<DemoArguments>(&arguments)) return runDemo(*demo);
  if (const auto* phantom = std::get_if<PhantomArguments>(&arguments)) return runPhantom(*phantom);
  if (const auto* info = std::get_if<InfoArguments>(&arguments)) return runInfo(*info);
  if (const auto* import = std::get_if<ImportArguments>(&arguments)) return runImport(*import);
  if (const auto* label = std::get_if<LabelArguments>(&arguments)) return runLabel(*label);
  if (const auto* show = std::get_if<ShowArguments>(&arguments)) return runShow(*show);
  if (const auto* history = std::get_if<HistoryArguments>(&arguments)) return runHistory(*history);
  if (const auto* restore = std::get_if<RestoreArguments>(&arguments)) return runRestore(*restore);
  if (const auto* render = std::get_if<RenderArguments>(&arguments)) return runRender(*render);
  if (const auto* terms = std::get_if<TermsArguments>(&arguments)) return runTerms(*terms);
  if (const auto* exported = std::get_if<ExportArguments>(&arguments)) return runExport(*exported);
  return play(std::get<PlayArguments>(arguments));
}

}  // namespace

int run(int argc, const char* const* argv) {
  catchInterrupts();
  try {
    const auto arguments = parseArguments(argc, argv);
    if (!arguments) {
      printMessage(arguments.failure.sentence);
      return arguments.failure.status;
    }
    const int status = dispatch(*arguments);
    std::cout.flush();
    if (!std::cout) {
      printMessage("The result could not be written to standard output.");
      return ExitNotAllowed;
    }
    return status;
  } catch (const std::exception& error) {
    printMessage(std::string("Something went wrong that should not: ") + error.what());
    return ExitNotAllowed;
  }
}

}  // namespace cli
