#pragma once
// The commands and their options, as the parser, the help texts and whatever else lists them see them.

#include <CLI/CLI.hpp>
#include <map>
#include <optional>
#include <string>

#include "cli/Arguments.h"

namespace cli {

/// What the parser fills in before it is checked any further.
struct RawArguments {
  DemoArguments demo;
  PhantomArguments phantom;
  ImportArguments import;
  InfoArguments info;
  LabelArguments label;
  ShowArguments show;
  HistoryArguments history;
  RestoreArguments restore;
  RenderArguments render;
  ExportArguments exported;
  PlayArguments play;
  TermsArguments terms;
  std::string phantomRegion;
  std::optional<std::string> seed;
  std::optional<std::string> imageSize;
  std::optional<std::string> series;
  std::optional<std::string> slice;
  std::optional<std::string> jobs;
  std::string labelRegion;
  std::string exportFormat;
  std::string line;
  std::string polygon;
  bool listTerms = false;  ///< what is done anyway
};

extern const std::map<std::string, int> regionsByName;
extern const std::map<std::string, ExportFormat> formatsByName;

/// Makes the parser that of vertana, with every command; it then fills `raw`.
void addCommands(CLI::App& app, RawArguments& raw);

}  // namespace cli
