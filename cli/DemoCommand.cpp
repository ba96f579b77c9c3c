// The whole main job on a phantom: make it, label it, save, open it anew, compare with what is true of it.
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
#include "cli/Pictures.h"
#include "cli/StudySession.h"
#include "workstation/render/RenderLoader.h"

namespace cli {

namespace fs = std::filesystem;

namespace {

std::string freshFolder() {
  std::error_code error;
  std::string path = (fs::temp_directory_path(error) / "vertana-demo-XXXXXX").string();
  return !error && mkdtemp(path.data()) ? path : std::string();
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

/// Says how many of the slices that truly cut a disc carry that disc's name; whether all do.
bool printComparison(const Labelling& labelling, const nlohmann::json& truth) {
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
  return discs > 0 && right == discs;
}

/// The middle slice of the first sagittal stack.
std::optional<workstation::ImageGeometry> drawnOn(const workstation::Workstation& workstation,
                                                  const std::string& study) {
  for (const auto& id : workstation.stacks(study)) {
    const auto* stack = workstation.stack(id);
    if (stack->plane == workstation::Plane::sagittal) return stack->slices[stack->slices.size() / 2].geometry;
  }
  return std::nullopt;
}

Expected<Labelling> drawAndStore(StudySource& source, const std::string& study, const LabelArguments& arguments) {
  auto session = StudySession::open(source, study);
  return session ? labelAndQuit(**session, study, arguments) : session.failure;
}

/// Nothing of the run that stored it is left: another source, another plug-in.
Expected<Labelling> openAnew(const std::string& folder, const std::string& study) {
  auto source = StudySource::open(folder, "");
  if (!source) return source.failure;
  auto session = StudySession::open(**source, study);
  if (!session) return session.failure;
  return storedLabelling(**session, study);
}

bool sameNames(const Labelling& a, const Labelling& b) {
  return std::equal(a.slices.begin(), a.slices.end(), b.slices.begin(), b.slices.end(),
                    [](const LabelledSlice& one, const LabelledSlice& other) {
                      return one.sopInstanceUid == other.sopInstanceUid && one.frame == other.frame &&
                             one.name == other.name;
                    });
}

Expected<std::vector<std::filesystem::path>> paintInto(const std::filesystem::path& pictures, const std::string& folder,
                                                       const std::string& study) {
  const auto module = workstation::loadRenderModule(renderModulePath());
  if (!module) return Failure{ExitNotAllowed, module.problem};
  std::error_code error;
  std::filesystem::create_directory(pictures, error);
  if (error) return Failure{ExitNotAllowed, pictures.string() + " cannot be made: " + error.message() + "."};
  auto source = StudySource::open(folder, "");
  if (!source) return source.failure;
  auto session = StudySession::open(**source, study);
  return session ? paintStudy(**session, study, **module, pictures) : session.failure;
}

/// Pictures are no reason for the demonstration to fail: painting may not be built here.
void printPictures(const std::string& folder, const std::string& study) {
  std::cout << "\n4. Pictures of it\n\n";
  const auto files = paintInto(std::filesystem::path(folder) / "pictures", folder, study);
  if (!files) {
    std::cout << "None. " << files.failure.sentence << '\n';
    return;
  }
  for (const auto& file : *files) std::cout << file.string() << '\n';
}

void printWhatToTry(const std::string& folder, const std::vector<pelmar::PixelPoint>& points) {
  std::cout << "\nTry it yourself:\n  vertana show " << folder << "\n  vertana history " << folder
            << "\n  vertana label " << folder << " --polygon ";
  for (std::size_t i = 0; i < points.size(); ++i) {
    std::cout << (i ? "," : "") << std::lround(points[i].x) << ',' << std::lround(points[i].y);
  }
  std::cout << '\n';
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
  auto source = StudySource::open(folder, "");
  if (!source) return fail(source.failure);
  const auto truth = readTruth(folder);
  if (!truth.is_object()) return fail({ExitUnreadable, folder + "/truth.json is not what the phantom wrote."});
  const auto& study = (*source)->studies().front();
  LabelArguments label;
  label.study = folder;
  label.polygon = true;
  {
    auto session = StudySession::open(**source, study);
    if (!session) return fail(session.failure);
    const auto slice = drawnOn((*session)->workstation(), study);
    if (!slice) return fail({ExitNotAllowed, "The phantom has no sagittal series to draw on."});
    label.points = clicksOnDiscs(truth, *slice);
  }
  const auto labelling = drawAndStore(**source, study, label);
  if (!labelling) return fail(labelling.failure);
  printLabelling(std::cout, *labelling);
  const bool right = printComparison(*labelling, truth);

  std::cout << "\n3. The labelling lies in the study: it is opened anew\n\n";
  const auto reopened = openAnew(folder, study);
  if (!reopened) return fail(reopened.failure);
  const bool same = sameNames(*labelling, *reopened);
  std::cout << "All " << reopened->slices.size() << " axial slices "
            << (same ? "carry the same names as before." : "should carry the same names as before, but do not.")
            << '\n';
  printPictures(folder, study);
  printWhatToTry(folder, label.points);
  if (right && same) return ExitDone;
  return fail({ExitNotAllowed, "The demonstration went wrong: see above. Please report it with this text."});
}

}  // namespace cli
