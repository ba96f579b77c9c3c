#include "cli/documents/Completion.h"

#include <ostream>

namespace cli {

namespace {

constexpr const char* beginning =
    R"(# Completion of the command vertana in bash. Made by the build from the command's own table of options.

_vertana_words() { mapfile -t COMPREPLY < <(compgen -W "$1" -- "$2"); }

# Names of folders (-d) or of files and folders (-f), which bash then quotes.
_vertana_paths() {
  mapfile -t COMPREPLY < <(compgen "$1" -- "$2")
  compopt -o filenames 2>/dev/null
}

_vertana() {
  local word=${COMP_WORDS[COMP_CWORD]} option=${COMP_WORDS[COMP_CWORD - 1]} command=${COMP_WORDS[1]}
  COMPREPLY=()
  # bash makes three words of --region=lumbar
  if [ "$word" = = ]; then
    word=
  elif [ "$option" = = ]; then
    option=${COMP_WORDS[COMP_CWORD - 2]}
  fi
)";

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const auto& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

std::vector<std::string> namesOf(const CommandFacts& command) {
  std::vector<std::string> names;
  for (const auto& option : command.options) names.insert(names.end(), option.names.begin(), option.names.end());
  return names;
}

/// The call that completes a value; one that is free text has none.
std::string completionOf(const ValueFacts& value) {
  switch (value.kind) {
    case ValueKind::folder:
      return "_vertana_paths -d \"$word\"";
    case ValueKind::file:
      return "_vertana_paths -f \"$word\"";
    case ValueKind::words:
      return "_vertana_words \"" + joined(value.words) + "\" \"$word\"";
    case ValueKind::text:
      break;
  }
  return ":";
}

void writeValues(std::ostream& out, const CommandFacts& command) {
  for (const auto& option : command.options) {
    if (!option.value) continue;
    for (const auto& name : option.names) {
      out << "    '" << command.name << ' ' << name << "') " << completionOf(*option.value) << "; return ;;\n";
    }
  }
}

/// Options after a dash, and where the command takes no argument; else the argument.
void writeCase(std::ostream& out, const CommandFacts& command) {
  const ValueFacts* argument = nullptr;
  for (const auto& option : command.options) {
    if (option.names.empty()) argument = &*option.value;
  }
  const auto options = "_vertana_words \"" + joined(namesOf(command)) + "\" \"$word\"";
  out << "    " << command.name << ")\n";
  if (argument) {
    out << "      case $word in\n        -*) " << options << " ;;\n        *) " << completionOf(*argument)
        << " ;;\n      esac\n      ;;\n";
  } else {
    out << "      " << options << "\n      ;;\n";
  }
}

}  // namespace

void writeCompletion(std::ostream& out, const ProgramFacts& facts) {
  auto first = namesOf(facts.program);
  for (const auto& command : facts.commands) first.push_back(command.name);
  out << beginning << "  if [ \"$COMP_CWORD\" = 1 ]; then\n    _vertana_words \"" << joined(first)
      << "\" \"$word\"\n    return\n  fi\n  case \"$command $option\" in\n";
  for (const auto& command : facts.commands) writeValues(out, command);
  out << "  esac\n  case $command in\n";
  for (const auto& command : facts.commands) writeCase(out, command);
  out << "  esac\n}\n\ncomplete -F _vertana vertana\n";
}

}  // namespace cli
