// A picture of each series of a study.
#include <cstdlib>
#include <iostream>

#include "cli/Commands.h"
#include "cli/Console.h"
#include "cli/StudySession.h"
#include "workstation/dicom/PixelReader.h"
#include "workstation/render/RenderLoader.h"

namespace cli {

namespace fs = std::filesystem;
using workstation::Workstation;

namespace {

constexpr double pictureSizePoints = 800;

/// The painting module: the one named by the environment's VERTANA_RENDER, else beside the plug-in's bundle.
fs::path renderModulePath() {
  if (const char* named = std::getenv("VERTANA_RENDER")) return named;
  std::error_code error;
  const auto program = fs::read_symlink("/proc/self/exe", error);
  return program.parent_path().parent_path() / "lib" / "libvertana_render.so";
}

/// "series-3-stack-0.png"; a series without a number is told by its place in the study.
std::string fileNameOf(const Workstation& workstation, const workstation::ViewerInfo& viewer) {
  const auto number = workstation.series(viewer.stack)->number;
  return "series-" + (number ? std::to_string(*number) : "without-number-" + std::to_string(viewer.stack.series)) +
         "-stack-" + std::to_string(viewer.stack.stack) + ".png";
}

/// What the person must not overlook in this viewer.
std::vector<std::string> bannersFor(StudySession& session, const std::string& study) {
  const auto status = session.store().status(study);
  if (status.unsaved) return {"The labelling of this study is not saved yet."};
  return {};
}

std::optional<Failure> renderAll(StudySession& session, const std::string& study,
                                 const workstation::RenderModule& module, const fs::path& folder) {
  auto& workstation = session.workstation();
  const auto viewers = workstation.openStudy(study);
  if (!viewers) return Failure{ExitNotAllowed, viewers.problem};
  workstation::PixelReader source;
  workstation::PictureOptions what;
  what.banners = bannersFor(session, study);
  what.referenceLines = false;  // which viewer is in front means nothing in a batch
  ProgressLine progress("Painting");
  std::size_t done = 0;
  for (const int number : *viewers) {
    if (!progress.show(done++, viewers->size())) return Failure{ExitNotAllowed, "Interrupted while painting."};
    const auto viewer = workstation.viewer(number);
    if (!viewer) continue;
    if (const auto scrolled = workstation.scroll(number, viewer->slices / 2); !scrolled) {
      return Failure{ExitNotAllowed, *scrolled.problem};
    }
    const auto file = folder / fileNameOf(workstation, *viewer);
    const auto painted = workstation::renderViewer(module, workstation, number, source, file, what, {},
                                                   pictureSizePoints, pictureSizePoints);
    if (!painted) return Failure{ExitNotAllowed, *painted.problem};
    std::cout << file.string() << '\n';
  }
  return std::nullopt;
}

}  // namespace

int runRender(const RenderArguments& arguments) {
  const auto module = workstation::loadRenderModule(renderModulePath());
  if (!module) return fail({ExitNotAllowed, module.problem});
  return withStudy(arguments.study, arguments.database, [&](StudySession& session, const std::string& study) -> int {
    std::error_code error;
    fs::create_directories(arguments.outDir, error);
    if (error) return fail({ExitNotAllowed, arguments.outDir + " cannot be made: " + error.message() + "."});
    const auto problem = renderAll(session, study, **module, arguments.outDir);
    session.printNotices();
    return problem ? fail(*problem) : ExitDone;
  });
}

}  // namespace cli
