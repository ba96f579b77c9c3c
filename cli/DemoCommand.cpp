// The whole main job on a phantom: make it, label it, compare with what is true of it.
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <nlohmann/json.hpp>

#include "cli/Commands.h"
#include "cli/Console.h"
#include "cli/LabelReport.h"
#include "cli/Labelling.h"
#include "cli/StudySession.h"

namespace cli {

namespace fs = std::filesystem;

namespace {

std::string freshFolder() {
  std::string path = (fs::temp_directory_path() / "vertana-demo-XXXXXX").string();
  return mkdtemp(path.data()) ? path : std::string();
}

nlohmann::json readTruth(const std::string& folder) {
  std::ifstream in(fs::path(folder) / "truth.json");
  return nlohmann::json::parse(in, nullptr, false);
}

/// The true disc centres on the slice that is drawn on, in pixels: what a person who sees the discs clicks.
std::vector<pelmar::PixelPoint> clicksOnDiscs(const nlohmann::json& truth, const workstation::ImageGeometry& slice) {
  std::vector<pelmar::PixelPoint> clicks;
  for (const auto& disc : truth["discs"]) {
    double x = 0;
    double y = 0;
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const double offset = disc["centre"][axis].get<double>() - slice.position[axis];
      x += offset * slice.row[axis];
      y += offset * slice.column[axis];
    }
    clicks.push_back({x / slice.spacingX, y / slice.spacingY});
  }
  return clicks;
}

/// How many of the slices that truly cut a disc carry that disc's name.
void printComparison(const Labelling& labelling, const nlohmann::json& truth) {
  std::map<std::pair<std::string, int>, std::string> trueLevels;
  for (const auto& slice : truth["slices"]) trueLevels[{slice["sop"], slice["frame"]}] = slice["level"];
  std::map<std::string, bool> isDisc;
  for (const auto& disc : truth["discs"]) isDisc[disc["name"]] = true;
  int discs = 0;
  int right = 0;
  for (const auto& slice : labelling.slices) {
    const auto level = trueLevels.find({slice.sopInstanceUid, slice.frame});
    if (level == trueLevels.end() || !isDisc[level->second]) continue;
    ++discs;
    if (slice.name == level->second) ++right;
  }
  std::cout << "\nThe phantom knows its discs: " << right << " of the " << discs
            << " axial slices that cut a disc carry that disc's name.\n";
}

int fail(const Failure& failure) {
  printMessage(failure.sentence);
  return failure.status;
}

}  // namespace

int runDemo(const DemoArguments& arguments) {
  const auto folder = arguments.outDir.empty() ? freshFolder() : arguments.outDir;
  if (folder.empty()) return fail({ExitNotAllowed, "The temporary folder cannot be written to: give --out DIR."});
  std::cout << "1. A synthetic patient\n\n";
  PhantomArguments phantomArguments;
  phantomArguments.outDir = folder;
  phantomArguments.angledAxials = true;
  if (const int status = runPhantom(phantomArguments); status != ExitDone) return status;

  std::cout << "\n2. A click on each disc of the sagittal series, then the palette is closed\n\n";
  auto read = readStudyFolder(folder);
  if (!read) return fail(read.failure);
  const auto truth = readTruth(folder);
  if (!truth.is_object()) return fail({ExitUnreadable, folder + "/truth.json is not what the phantom wrote."});
  auto session = StudySession::open(std::move(read->images));
  if (!session) return fail(session.failure);
  auto& workstation = (*session)->workstation();
  const auto& study = (*session)->studies().front();

  LabelArguments label;
  label.study = folder;
  label.polygon = true;
  for (const auto& id : workstation.stacks(study)) {
    const auto* stack = workstation.stack(id);
    if (stack->plane != workstation::Plane::sagittal) continue;
    label.points = clicksOnDiscs(truth, *stack->slices[stack->slices.size() / 2].geometry);
    break;
  }
  const auto labelling = labelStudy(workstation, study, label);
  if (!labelling) return fail(labelling.failure);
  printLabelling(std::cout, *labelling);
  printComparison(*labelling, truth);
  std::cout << "\nTry it yourself:\n  vertana info " << folder << "\n  vertana label " << folder << " --polygon ";
  for (std::size_t i = 0; i < label.points.size(); ++i) {
    std::cout << (i ? "," : "") << std::lround(label.points[i].x) << ',' << std::lround(label.points[i].y);
  }
  std::cout << '\n';
  workstation.quit();
  return ExitDone;
}

}  // namespace cli
