#pragma once
// The commands and options as the parser has them, made plain for whatever is written about them.

#include <optional>
#include <string>
#include <vector>

namespace cli {

/// What stands for the value of an option or argument.
enum class ValueKind { text, folder, file, words };

struct ValueFacts {
  std::string name;  ///< "DIR"
  ValueKind kind = ValueKind::text;
  std::vector<std::string> words;  ///< all there are, of ValueKind::words
};

struct OptionFacts {
  std::vector<std::string> names;  ///< "-h", "--help"; none for an argument without a name
  std::optional<ValueFacts> value;
  std::string description;
  bool required = false;
  bool several = false;  ///< more than one value can be given
};

struct CommandFacts {
  std::string name;
  std::string description;
  std::vector<std::string> example;  ///< lines to paste
  std::vector<OptionFacts> options;  ///< in the order of the help text; arguments without a name among them
};

struct ProgramFacts {
  CommandFacts program;  ///< what `vertana` itself takes
  std::vector<CommandFacts> commands;
};

/// Ends with an exception that says what to do where an option's value is of a kind that is not known here.
ProgramFacts commandTable();

}  // namespace cli
