#pragma once
// One function a subcommand; each returns the exit status.

#include "cli/Arguments.h"

namespace cli {

int runDemo(const DemoArguments& arguments);
int runPhantom(const PhantomArguments& arguments);
int runImport(const ImportArguments& arguments);
int runInfo(const InfoArguments& arguments);
int runLabel(const LabelArguments& arguments);
int runShow(const ShowArguments& arguments);
int runHistory(const HistoryArguments& arguments);
int runRestore(const RestoreArguments& arguments);
int runRender(const RenderArguments& arguments);
int runTerms(const TermsArguments& arguments);
int runExport(const ExportArguments& arguments);

/// Parses and runs; the whole program.
int run(int argc, const char* const* argv);

}  // namespace cli
