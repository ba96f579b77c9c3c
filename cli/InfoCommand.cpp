#include <array>
#include <iostream>
#include <nlohmann/json.hpp>

#include "cli/Commands.h"
#include "cli/Console.h"
#include "cli/PlainText.h"
#include "cli/StudySession.h"

namespace cli {

using nlohmann::ordered_json;
using workstation::Workstation;

namespace {

/// One stack of a study as it is listed.
struct StackRow {
  std::optional<int> series;
  std::size_t stack = 0;
  std::string seriesUid;
  std::string description;
  std::string modality;
  long orientation = -1;
  std::size_t slices = 0;
  int rows = 0;
  int columns = 0;
};

struct StudyFacts {
  std::string uid;
  std::optional<std::string> description;
  std::string patientName;
  std::string patientId;
  std::string date;
  int guessedRegion = -1;
  workstation::StoredStatus stored;
  std::vector<BadFile> unreadableReports;
  std::vector<StackRow> stacks;
};

std::string orientationName(long code) {
  switch (code) {
    case 0:
    case 1:
      return "sagittal";
    case 2:
    case 3:
      return "coronal";
    case 4:
    case 5:
      return "axial";
    default:
      return "unknown";
  }
}

/// The plug-in guesses for the study of the viewer from which it was called, so it is called once; nothing is stored.
int guessRegion(Workstation& workstation, const std::string& studyUid) {
  const auto viewers = workstation.openStudy(studyUid);
  if (!viewers || viewers->empty()) return -1;
  if (!workstation.chooseMenu(viewers->front(), "Labels")) return -1;
  const int guess = workstation.pluginAnswer("guessedAnatomicalRegion").intValue();
  workstation.takeAlerts();
  return guess;
}

StudyFacts factsOf(StudySession& session, const std::string& studyUid) {
  auto& workstation = session.workstation();
  const auto* study = workstation.study(studyUid);
  StudyFacts facts{studyUid,
                   study->description,
                   study->patientName,
                   study->patientId,
                   study->date,
                   guessRegion(workstation, studyUid),
                   session.store().status(studyUid),
                   {},
                   {}};
  for (const auto& report : session.store().unreadable(studyUid)) {
    facts.unreadableReports.push_back({report.file.string(), report.problem, false});
  }
  for (const auto& id : workstation.stacks(studyUid)) {
    const auto* series = workstation.series(id);
    const auto* stack = workstation.stack(id);
    const auto& first = stack->slices.front();
    facts.stacks.push_back({series->number, id.stack, series->uid, series->description, series->modality,
                            stack->orientationCode, stack->slices.size(), first.rows, first.columns});
  }
  return facts;
}

using Cells = std::array<std::string, 7>;

Cells cellsOf(const StackRow& row) {
  return {row.series ? std::to_string(*row.series) : "-",
          std::to_string(row.stack),
          orientationName(row.orientation),
          std::to_string(row.slices),
          std::to_string(row.columns) + "x" + std::to_string(row.rows),
          printable(row.modality),
          printable(row.description)};
}

/// Each column as wide as its widest cell; the last one needs no width.
void printTable(std::ostream& out, const std::vector<Cells>& rows) {
  std::array<std::size_t, std::tuple_size_v<Cells>> widths{};
  for (const auto& row : rows) {
    for (std::size_t i = 0; i + 1 < row.size(); ++i) widths[i] = std::max(widths[i], terminalColumns(row[i]) + 2);
  }
  for (const auto& row : rows) {
    out << "  ";
    for (std::size_t i = 0; i + 1 < row.size(); ++i) out << padded(row[i], widths[i]);
    out << row.back() << '\n';
  }
}

std::string orElse(const std::string& text, const std::string& otherwise) { return text.empty() ? otherwise : text; }

std::string storedText(const workstation::StoredStatus& stored) {
  if (!stored.state) return "none stored";
  if (stored.state->isEmpty()) return "none stored (reset)";
  const auto levels = stored.state->levels ? stored.state->levels->size() : 0;
  return regionName(stored.state->anatomicalRegion.value_or(-1)) + ", " + counted(levels, "level", "levels") +
         (stored.fromContent ? " (read from its standard content)" : "");
}

ordered_json jsonOf(const workstation::StoredStatus& stored) {
  if (!stored.state) return nullptr;
  const auto& state = *stored.state;
  return {{"counting", stored.counting},
          {"anatomicalRegion", state.anatomicalRegion ? ordered_json(*state.anatomicalRegion) : ordered_json()},
          {"levels", state.levels ? state.levels->size() : 0}};
}

void printFacts(std::ostream& out, const StudyFacts& facts) {
  out << "Study    " << printable(facts.uid) << '\n';
  out << "Says     " << (facts.description ? "\"" + printable(*facts.description) + "\"" : "(no description)") << '\n';
  out << "Patient  " << printable(orElse(facts.patientName, "(no name)")) << ", "
      << printable(orElse(facts.patientId, "(no ID)")) << ", " << printable(orElse(facts.date, "(no date)")) << '\n';
  out << "Region   " << (facts.guessedRegion < 0 ? "not told by the study" : regionName(facts.guessedRegion)) << '\n';
  out << "Labels   " << storedText(facts.stored) << "\n\n";
  std::vector<Cells> rows{{"series", "stack", "orientation", "slices", "size", "kind", "description"}};
  for (const auto& row : facts.stacks) rows.push_back(cellsOf(row));
  printTable(out, rows);
}

/// What the folder holds besides the series; nothing where there is nothing else.
void printLeftOut(std::ostream& out, const LeftOut& left) {
  std::string list;
  const auto add = [&](std::size_t count, const std::string& one, const std::string& many) {
    if (count > 0) list += (list.empty() ? "" : ", ") + counted(count, one, many);
  };
  add(left.notDicom, "file that is not DICOM", "files that are not DICOM");
  add(left.otherObjects, "DICOM object that is no image", "DICOM objects that are no images");
  add(left.copies, "copy of an image above", "copies of images above");
  if (!list.empty()) out << "\nLeft out: " << list << ".\n";
}

ordered_json jsonOf(const StudyFacts& facts, const std::vector<BadFile>& bad) {
  ordered_json json;
  json["study"] = facts.uid;
  json["description"] = facts.description ? ordered_json(*facts.description) : ordered_json();
  json["guessedRegion"] = facts.guessedRegion;
  json["series"] = ordered_json::array();
  for (const auto& row : facts.stacks) {
    json["series"].push_back({{"series", row.series ? ordered_json(*row.series) : ordered_json()},
                              {"stack", row.stack},
                              {"uid", row.seriesUid},
                              {"description", row.description},
                              {"modality", row.modality},
                              {"orientation", row.orientation},
                              {"slices", row.slices},
                              {"rows", row.rows},
                              {"columns", row.columns}});
  }
  json["stored"] = jsonOf(facts.stored);
  json["unreadable"] = ordered_json::array();
  for (const auto& file : bad) {
    if (!file.shown) json["unreadable"].push_back({{"file", file.file}, {"reason", file.reason}});
  }
  for (const auto& file : facts.unreadableReports) {
    json["unreadable"].push_back({{"file", file.file}, {"reason", file.reason}});
  }
  return json;
}

}  // namespace

int runInfo(const InfoArguments& arguments) {
  auto source = StudySource::open(arguments.study, arguments.database);
  if (!source) return fail(source.failure);
  bool first = true;
  // Each study in a workstation of its own: what is open of one must not bear on the guess for another.
  for (const auto& study : (*source)->studies()) {
    auto session = StudySession::open(**source, study, PluginUse::helpful);
    if (!session) return fail(session.failure);
    const auto facts = factsOf(**session, study);
    for (const auto& report : facts.unreadableReports) {
      printMessage(report.file + " does not count as a labelling: " + report.reason + ".");
    }
    if (arguments.json) {
      std::cout << jsonOf(facts, (*source)->bad()).dump(-1, ' ', false, ordered_json::error_handler_t::replace) << '\n';
    } else {
      if (!first) std::cout << '\n';
      printFacts(std::cout, facts);
    }
    first = false;
  }
  if (!arguments.json) printLeftOut(std::cout, (*source)->leftOut());
  return ExitDone;
}

}  // namespace cli
