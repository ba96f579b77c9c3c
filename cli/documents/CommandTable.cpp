#include "cli/documents/CommandTable.h"

#include <algorithm>
#include <map>
#include <sstream>
#include <stdexcept>

#include "cli/Options.h"

namespace cli {

namespace {

/// What may be written for a value, of a table by name.
template <typename Meaning>
std::vector<std::string> namesIn(const std::map<std::string, Meaning>& table) {
  std::vector<std::string> names(table.size());
  std::ranges::transform(table, names.begin(), [](const auto& entry) { return entry.first; });
  return names;
}

/// What each name of a value means to a person who is to give one.
const std::map<std::string, ValueFacts>& knownValues() {
  static const std::map<std::string, ValueFacts> known = [] {
    std::map<std::string, ValueFacts> values;
    for (const char* name : {"DIR", "STUDY"}) values[name].kind = ValueKind::folder;
    for (const char* name : {"FILE", "PATH", "SCRIPT"}) values[name].kind = ValueKind::file;
    for (const char* name : {"N", "K", "OBJECT", "TERM", "X0,Y0,X1,Y1", "X0,Y0,X1,Y1,..."}) {
      values[name].kind = ValueKind::text;
    }
    values["REGION"] = {"", ValueKind::words, namesIn(regionsByName)};
    values["FORMAT"] = {"", ValueKind::words, namesIn(formatsByName)};
    for (auto& [name, facts] : values) facts.name = name;
    return values;
  }();
  return known;
}

ValueFacts valueNamed(const std::string& name, const std::string& owner) {
  const auto known = knownValues().find(name);
  if (known == knownValues().end()) {
    throw std::runtime_error("The value " + name + " of " + owner + " is not known: add it to knownValues() in " +
                             __FILE__ + ".");
  }
  return known->second;
}

OptionFacts factsOf(const CLI::Option& option) {
  OptionFacts facts;
  for (const auto& name : option.get_snames()) facts.names.push_back("-" + name);
  for (const auto& name : option.get_lnames()) facts.names.push_back("--" + name);
  const auto type = option.get_type_name();
  const auto valueName = facts.names.empty() ? option.get_name(true) : type.substr(0, type.find(':'));
  if (option.get_items_expected_max() > 0) facts.value = valueNamed(valueName, option.get_name());
  facts.description = option.get_description();
  facts.required = option.get_required();
  facts.several = option.get_expected_max() > 1;
  return facts;
}

/// The footer's lines after "Example:", as they can be pasted.
std::vector<std::string> exampleOf(const CLI::App& app) {
  std::vector<std::string> example;
  std::istringstream lines(app.get_footer());
  bool begun = false;
  for (std::string line; std::getline(lines, line);) {
    if (begun) example.push_back(line.substr(line.starts_with("  ") ? 2 : 0));
    begun = begun || line == "Example:";
  }
  return example;
}

CommandFacts factsOf(const CLI::App& app) {
  CommandFacts facts{app.get_name(), app.get_description(), exampleOf(app), {}};
  for (const auto* option : app.get_options()) facts.options.push_back(factsOf(*option));
  return facts;
}

}  // namespace

ProgramFacts commandTable() {
  CLI::App app;
  RawArguments raw;
  addCommands(app, raw);
  ProgramFacts facts{factsOf(app), {}};
  for (const auto* command : app.get_subcommands({})) facts.commands.push_back(factsOf(*command));
  return facts;
}

}  // namespace cli
