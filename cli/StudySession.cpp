#include "cli/StudySession.h"

#include <cstdlib>

#include "cli/Console.h"
#include "workstation/bundles/BundleLoader.h"
#include "workstation/dicom/StudyReader.h"

namespace cli {

namespace fs = std::filesystem;

namespace {

void printBadFiles(const StudyFolder& folder) {
  for (const auto& bad : folder.bad) {
    printMessage(bad.file + (bad.shown ? " is shown but cannot be labelled: " : " cannot be used: ") + bad.reason);
  }
}

std::string counted(std::size_t count, const std::string& one, const std::string& many) {
  return std::to_string(count) + " " + (count == 1 ? one : many);
}

}  // namespace

Expected<StudyFolder> readStudyFolder(const std::string& path) {
  std::error_code error;
  if (!fs::exists(path, error)) {
    return Failure{ExitUnreadable, path + " does not exist: give a folder of DICOM files."};
  }
  workstation::ReadResult read;
  {
    ProgressLine progress("Reading " + path);
    workstation::ReadOptions options;
    options.progress = [&](std::size_t done, std::size_t total) { return progress.show(done, total); };
    read = workstation::readImages(path, options);
  }
  if (read.cancelled) return Failure{ExitNotAllowed, "Interrupted while reading " + path + "; nothing was changed."};
  if (!read.warning.empty()) printMessage(read.warning);

  StudyFolder folder;
  for (const auto& file : read.unreadable) folder.bad.push_back({file.file.string(), file.reason, false});
  for (const auto& image : read.images) {
    if (!image.geometryProblem.empty() && image.frame == 1) {
      folder.bad.push_back({image.file.string(), image.geometryProblem, true});
    }
  }
  folder.images = std::move(read.images);
  folder.otherObjects = read.otherObjects.size();
  folder.notDicom = read.notDicom.size();
  printBadFiles(folder);
  if (folder.images.empty()) {
    return Failure{ExitUnreadable,
                   path + " holds no DICOM image that can be shown (" +
                       counted(folder.bad.size(), "file cannot be used", "files cannot be used") + ", " +
                       counted(folder.otherObjects, "DICOM object is no image", "DICOM objects are no images") + ", " +
                       counted(folder.notDicom, "file is not DICOM", "files are not DICOM") + ")."};
  }
  return folder;
}

fs::path pluginBundlePath() {
  if (const char* named = std::getenv("VERTANA_PLUGIN")) return named;
  std::error_code error;
  const auto program = fs::read_symlink("/proc/self/exe", error);
  return program.parent_path().parent_path() / "lib" / "Vertana.plugin";
}

Expected<std::unique_ptr<StudySession>> StudySession::open(std::vector<workstation::ImageRecord> images) {
  std::unique_ptr<StudySession> session(new StudySession());
  workstation::Options options;
  options.defaultsStore = &session->defaults_;
  session->workstation_ = std::make_unique<workstation::Workstation>(options);
  auto plugin = workstation::loadBundle(pluginBundlePath(), session->workstation_->api());
  if (!plugin) return Failure{ExitUnreadable, plugin.problem};
  session->workstation_->setPlugin(std::move(*plugin));
  session->studies_ = session->workstation_->addImages(std::move(images));
  return session;
}

}  // namespace cli
