#include "cli/Pictures.h"

#include <cstdlib>

#include "cli/Console.h"
#include "cli/Labelling.h"
#include "workstation/dicom/PixelReader.h"
#include "workstation/render/RenderLoader.h"
#include "workstation/session/StoredDrawing.h"

namespace cli {

namespace fs = std::filesystem;
using workstation::Workstation;

namespace {

constexpr double pictureSizePoints = 800;

/// "series-3-stack-0.png"; a series without a number is told by its place in the study.
std::string fileNameOf(const Workstation& workstation, const workstation::ViewerInfo& viewer) {
  const auto number = workstation.series(viewer.stack)->number;
  return "series-" + (number ? std::to_string(*number) : "without-number-" + std::to_string(viewer.stack.series)) +
         "-stack-" + std::to_string(viewer.stack.stack) + ".png";
}

/// What the person must not overlook in a viewer of this stack. `labelled` is the frame of reference of the labelling,
/// empty where the study has none.
std::vector<std::string> bannersFor(StudySession& session, const workstation::StackId& id,
                                    const std::string& labelled) {
  std::vector<std::string> banners;
  if (session.store().status(id.studyUid).unsaved)
    banners.emplace_back("The labelling of this study is not saved yet.");
  const auto& stack = *session.workstation().stack(id);
  if (!labelled.empty() && stack.plane == workstation::Plane::axial && stack.frameOfReferenceUid != labelled) {
    banners.emplace_back("Another frame of reference than the drawing: the levels are not sure.");
  }
  return banners;
}

}  // namespace

fs::path renderModulePath() {
  if (const char* named = std::getenv("VERTANA_RENDER")) return named;
  std::error_code error;
  const auto program = fs::read_symlink("/proc/self/exe", error);
  return program.parent_path().parent_path() / "lib" / "libvertana_render.so";
}

Expected<std::vector<fs::path>> paintStudy(StudySession& session, const std::string& study,
                                           const workstation::RenderModule& module, const fs::path& folder) {
  auto& workstation = session.workstation();
  const auto viewers = workstation.openStudy(study);
  if (!viewers) return Failure{ExitNotAllowed, viewers.problem};
  workstation::PixelReader source;
  workstation::PictureOptions what;
  what.referenceLines = false;  // which viewer is in front means nothing in a batch
  const auto labelled = workstation::storedFrameOfReference(session.store(), session.workstation(), study);
  std::vector<fs::path> files;
  ProgressLine progress("Painting");
  std::size_t done = 0;
  for (const int number : *viewers) {
    if (!progress.show(done++, viewers->size())) return Failure{ExitNotAllowed, "Interrupted while painting."};
    const auto viewer = workstation.viewer(number);
    if (!viewer) continue;
    if (const auto scrolled = workstation.scroll(number, viewer->slices / 2); !scrolled) {
      return Failure{ExitNotAllowed, *scrolled.problem};
    }
    what.banners = bannersFor(session, viewer->stack, labelled);
    const auto file = folder / fileNameOf(workstation, *viewer);
    const auto painted = workstation::renderViewer(module, workstation, number, source, file, what, {},
                                                   pictureSizePoints, pictureSizePoints);
    if (!painted) return Failure{ExitNotAllowed, *painted.problem};
    files.push_back(file);
  }
  return files;
}

}  // namespace cli
