// Every labelling that a study ever held, and making an earlier one count again.
#include <charconv>
#include <iomanip>
#include <iostream>
#include <nlohmann/json.hpp>

#include "cli/Commands.h"
#include "cli/Console.h"
#include "cli/PlainText.h"
#include "cli/StudySession.h"

namespace cli {

using nlohmann::ordered_json;
using workstation::HistoryEntry;

namespace {

/// "2026-11-21 12:00:00" in the report's own time.
std::string timeOf(const workstation::ContentTime& time) {
  if (time.date.size() != 8 || time.time.size() < 6) return "(no time)";
  return printable(time.date.substr(0, 4) + "-" + time.date.substr(4, 2) + "-" + time.date.substr(6) + " " +
                   time.time.substr(0, 2) + ":" + time.time.substr(2, 2) + ":" + time.time.substr(4, 2));
}

std::string contentOf(const HistoryEntry& entry) {
  const auto& report = entry.report;
  if (!report.labelling) return "cannot be read: " + report.problem;
  if (report.labelling->isEmpty()) return "no labelling (reset)";
  std::string text = regionName(report.labelling->anatomicalRegion.value_or(-1));
  if (report.labelling->additionalVertebra.value_or(false)) text += " with an extra vertebra";
  if (report.labelling->levels && !report.labelling->levels->empty()) {
    text += ", " + report.labelling->levels->front().name + " to " + report.labelling->levels->back().name;
  }
  if (report.fromContent) text += " (read from its standard content)";
  return text;
}

ordered_json jsonOf(const HistoryEntry& entry) {
  const auto& report = entry.report;
  const auto& labelling = report.labelling;
  ordered_json levels = nullptr;
  if (labelling) levels = ordered_json::array();
  if (labelling && labelling->levels) {
    for (const auto& level : *labelling->levels) levels.push_back(level.name);
  }
  const bool hasRegion = labelling && labelling->anatomicalRegion;
  const bool hasExtra = labelling && labelling->additionalVertebra;
  return {{"object", report.sopInstanceUid},
          {"date", report.contentTime.date},
          {"time", report.contentTime.time},
          {"instance", report.instanceNumber},
          {"file", report.file.string()},
          {"anatomicalRegion", hasRegion ? ordered_json(*labelling->anatomicalRegion) : ordered_json()},
          {"additionalVertebra", hasExtra ? ordered_json(*labelling->additionalVertebra) : ordered_json()},
          {"levels", levels},
          {"counts", entry.counts},
          {"fromContent", report.fromContent},
          {"problem", labelling ? ordered_json() : ordered_json(report.problem)}};
}

void printHistory(std::ostream& out, const std::string& study, const std::vector<HistoryEntry>& history) {
  if (history.empty()) {
    out << "This study never held a labelling.\n";
    return;
  }
  out << "The labellings of study " << printable(study) << ", the oldest first:\n\n";
  for (std::size_t i = 0; i < history.size(); ++i) {
    const auto& entry = history[i];
    out << std::setw(5) << i + 1 << (entry.counts ? " * " : "   ") << timeOf(entry.report.contentTime) << "  "
        << printable(contentOf(entry)) << "\n        " << printable(entry.report.sopInstanceUid) << '\n';
  }
  out << "\n* counts. To make another one count: vertana restore STUDY --object NUMBER\n";
}

void printHistoryAsJson(std::ostream& out, const std::string& study, const std::vector<HistoryEntry>& history) {
  auto list = ordered_json::array();
  for (const auto& entry : history) list.push_back(jsonOf(entry));
  const ordered_json json{{"study", study}, {"labellings", list}};
  out << json.dump(-1, ' ', false, ordered_json::error_handler_t::replace) << '\n';
}

/// The SOP Instance UID that is meant: given as such, or as the number in the history. A UID always has a dot.
Expected<std::string> objectNamed(const std::string& object, const std::vector<HistoryEntry>& history) {
  if (object.find_first_not_of("0123456789") != std::string::npos) return object;
  std::size_t number = 0;
  const auto error = std::from_chars(object.data(), object.data() + object.size(), number).ec;
  if (error == std::errc() && number >= 1 && number <= history.size()) return history[number - 1].report.sopInstanceUid;
  return Failure{ExitNotAllowed, "--object " + object + ": the study's history holds " +
                                     counted(history.size(), "labelling", "labellings") + ", counted from 1."};
}

}  // namespace

int runHistory(const HistoryArguments& arguments) {
  return withStudy(
      arguments.study, arguments.database,
      [&](StudySession& session, const std::string& study) {
        const auto history = session.store().history(study);
        arguments.json ? printHistoryAsJson(std::cout, study, history) : printHistory(std::cout, study, history);
        return ExitDone;
      },
      PluginUse::helpful);
}

int runRestore(const RestoreArguments& arguments) {
  return withStudy(
      arguments.study, arguments.database,
      [&](StudySession& session, const std::string& study) -> int {
        const auto object = objectNamed(arguments.object, session.store().history(study));
        if (!object) return fail(object.failure);
        const auto outcome = session.store().restore(study, *object);
        session.printNotices();
        if (!outcome) return fail({ExitNotAllowed, *outcome.problem});
        std::cout << "The labelling of " << printable(*object) << " counts again, as a new object.\n";
        return ExitDone;
      },
      PluginUse::helpful);
}

}  // namespace cli
