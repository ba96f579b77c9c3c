#include <iomanip>
#include <iostream>
#include <nlohmann/json.hpp>

#include "cli/Commands.h"
#include "cli/Console.h"
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

StudyFacts factsOf(Workstation& workstation, const std::string& studyUid) {
  const auto* study = workstation.study(studyUid);
  StudyFacts facts{studyUid,
                   study->description,
                   study->patientName,
                   study->patientId,
                   study->date,
                   guessRegion(workstation, studyUid),
                   {}};
  for (const auto& id : workstation.stacks(studyUid)) {
    const auto* series = workstation.series(id);
    const auto* stack = workstation.stack(id);
    const auto& first = stack->slices.front();
    facts.stacks.push_back({series->number, id.stack, series->uid, series->description, series->modality,
                            stack->orientationCode, stack->slices.size(), first.rows, first.columns});
  }
  return facts;
}

void printFacts(std::ostream& out, const StudyFacts& facts) {
  out << "Study    " << facts.uid << '\n';
  out << "Says     " << (facts.description ? "\"" + *facts.description + "\"" : "(no description)") << '\n';
  out << "Patient  " << facts.patientName << " (" << facts.patientId << ")  " << facts.date << '\n';
  out << "Region   " << (facts.guessedRegion < 0 ? "not told by the study" : regionName(facts.guessedRegion)) << '\n';
  out << "Labels   none stored\n\n";
  out << "  series  stack  orientation  slices  size       kind  description\n";
  for (const auto& row : facts.stacks) {
    const auto size = std::to_string(row.columns) + "x" + std::to_string(row.rows);
    out << "  " << std::left << std::setw(8) << (row.series ? std::to_string(*row.series) : "-") << std::setw(7)
        << row.stack << std::setw(13) << orientationName(row.orientation) << std::setw(8) << row.slices << std::setw(11)
        << size << std::setw(6) << row.modality << row.description << '\n';
  }
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
  json["stored"] = nullptr;
  json["unreadable"] = ordered_json::array();
  for (const auto& file : bad) {
    if (!file.shown) json["unreadable"].push_back({{"file", file.file}, {"reason", file.reason}});
  }
  return json;
}

}  // namespace

int runInfo(const InfoArguments& arguments) {
  auto folder = readStudyFolder(arguments.study);
  if (!folder) {
    printMessage(folder.failure.sentence);
    return folder.failure.status;
  }
  // Each study in a workstation of its own: what is open of one must not bear on the guess for another.
  std::map<std::string, std::vector<workstation::ImageRecord>> imagesByStudy;
  for (auto& image : folder->images) imagesByStudy[image.studyInstanceUid].push_back(std::move(image));
  bool first = true;
  for (auto& [uid, images] : imagesByStudy) {
    auto session = StudySession::open(std::move(images));
    if (!session) {
      printMessage(session.failure.sentence);
      return session.failure.status;
    }
    const auto facts = factsOf((*session)->workstation(), uid);
    if (arguments.json) {
      std::cout << jsonOf(facts, folder->bad).dump(-1, ' ', false, ordered_json::error_handler_t::replace) << '\n';
    } else {
      if (!first) std::cout << '\n';
      printFacts(std::cout, facts);
    }
    first = false;
  }
  return ExitDone;
}

}  // namespace cli
