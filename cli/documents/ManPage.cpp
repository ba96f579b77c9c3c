#include "cli/documents/ManPage.h"

#include <ostream>

namespace cli {

namespace {

/// Text as it stands: what the formatter would take for one of its own signs is escaped.
std::string escaped(const std::string& text) {
  std::string result = text.starts_with('.') || text.starts_with('\'') ? "\\&" : "";
  for (const char letter : text) {
    switch (letter) {
      case '\\':
        result += "\\e";
        break;
      case '-':
        result += "\\-";
        break;
      case '\'':
        result += "\\(aq";
        break;
      case '`':
        result += "\\(ga";
        break;
      case '^':
        result += "\\(ha";
        break;
      case '~':
        result += "\\(ti";
        break;
      case '\n':
        result += ' ';
        break;
      default:
        result += letter;
    }
  }
  return result;
}

std::string bold(const std::string& text) { return "\\fB" + escaped(text) + "\\fR"; }
std::string italic(const std::string& text) { return "\\fI" + escaped(text) + "\\fR"; }

std::string nameOf(const OptionFacts& option) {
  std::string text;
  for (const auto& name : option.names) text += (text.empty() ? "" : ", ") + bold(name);
  if (!option.value) return text;
  return text + (text.empty() ? "" : " ") + italic(option.value->name) + (option.several ? " ..." : "");
}

void writeOption(std::ostream& out, const OptionFacts& option) {
  out << ".TP\n" << nameOf(option) << '\n' << escaped(option.description) << ".\n";
}

void writeExample(std::ostream& out, const CommandFacts& command) {
  out << ".PP\nExample:\n.PP\n.EX\n";
  for (const auto& line : command.example) out << escaped(line) << '\n';
  out << ".EE\n";
}

void writeCommand(std::ostream& out, const CommandFacts& command) {
  out << ".SS vertana " << escaped(command.name) << '\n' << escaped(command.description) << ".\n.PP\n";
  out << bold("vertana " + command.name);
  for (const auto& option : command.options) {
    if (option.required) out << ' ' << nameOf(option);
  }
  out << " [" << italic("option") << " ...]\n";
  for (const auto& option : command.options) writeOption(out, option);
  writeExample(out, command);
}

constexpr const char* theRest = R"(.SH EXIT STATUS
.TP
.B 0
Done.
.TP
.B 1
The study or the drawing does not allow it.
.TP
.B 2
Wrong usage.
.TP
.B 3
The input cannot be read.
.PP
A failure is told in one line on standard error.
.SH ENVIRONMENT
.TP
.B XDG_CONFIG_HOME
The folder of the person\(aqs settings; without it
.IR ~/.config .
.TP
.B VERTANA_PLUGIN
The bundle of the plug\-in, where it is not
.I ../lib/Vertana.plugin
beside the program.
.TP
.B VERTANA_RENDER
The painting module, where it is not
.I ../lib/libvertana_render.so
beside the program.
.SH FILES
.TP
.I ~/.config/vertana/defaults.json
The person\(aqs defaults.
Every command but
.B vertana play
reads them; what is written there is the terms learnt from study descriptions.
)";

}  // namespace

void writeManPage(std::ostream& out, const ProgramFacts& facts, const std::string& version, const std::string& date) {
  out << ".TH VERTANA 1 \"" << date << "\" \"vertana " << version << "\" \"User Commands\"\n"
      << ".SH NAME\nvertana \\- name the levels of a spine study\n"
      << ".SH SYNOPSIS\n.B vertana\n.I command\n[\\fIoption\\fR ...]\n"
      << ".SH DESCRIPTION\n"
      << escaped(facts.program.description) << "\n.PP\n"
      << "Results go to standard output, messages to standard error.\n"
      << "Looking at a study changes no file of it, and nothing that was stored is ever overwritten.\n"
      << ".SH OPTIONS\n";
  for (const auto& option : facts.program.options) writeOption(out, option);
  out << ".SH COMMANDS\n";
  for (const auto& command : facts.commands) writeCommand(out, command);
  out << theRest << ".SH EXAMPLES\nA synthetic study is labelled, and the labelling looked at:\n.PP\n.EX\n"
      << escaped("S=$(mktemp -d) && vertana phantom --region lumbar --out $S/spine") << '\n'
      << escaped("vertana label $S/spine --line 197,46,204,274") << '\n'
      << escaped("vertana show $S/spine --csv") << "\n.EE\n";
}

}  // namespace cli
