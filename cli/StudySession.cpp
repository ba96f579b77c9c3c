#include "cli/StudySession.h"

#include <cstdlib>

#include "cli/Console.h"
#include "cli/PlainText.h"
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

/// One line for all: a folder that was copied into itself has as many as it has images.
void printCopies(const std::vector<workstation::CopiedFile>& copies) {
  if (copies.empty()) return;
  const auto& first = copies.front();
  printMessage(counted(copies.size(), "file holds an image", "files hold images") +
               " that another file of the study holds too and " + (copies.size() == 1 ? "is" : "are") +
               " not shown twice: " + (copies.size() == 1 ? "" : "the first is ") + first.file.string() +
               ", a copy of " + first.original.string() + ".");
}

/// What a folder without one image does hold.
std::string contentsOf(const StudyFolder& folder) {
  std::string list;
  const auto add = [&](std::size_t count, const std::string& one, const std::string& many) {
    if (count > 0) list += (list.empty() ? "" : ", ") + counted(count, one, many);
  };
  add(folder.bad.size(), "file cannot be used", "files cannot be used");
  add(folder.otherObjects, "DICOM object is no image", "DICOM objects are no images");
  add(folder.notDicom, "file is not DICOM", "files are not DICOM");
  return list.empty() ? "it holds no file" : list;
}

}  // namespace

Expected<StudyFolder> readStudyFolder(const std::string& path) {
  std::error_code error;
  if (!fs::exists(path, error)) {
    return Failure{ExitUnreadable, (path.empty() ? "A folder without a name" : path) +
                                       " does not exist: give a folder of DICOM files."};
  }
  workstation::ReadResult read;
  {
    ProgressLine progress("Reading the study");
    workstation::ReadOptions options;
    options.progress = [&](std::size_t done, std::size_t total) { return progress.show(done, total); };
    read = workstation::readImages(path, options);
  }
  if (read.cancelled) return Failure{ExitNotAllowed, "Interrupted while reading " + path + "; nothing was changed."};
  if (!read.warning.empty()) printMessage(read.warning);

  StudyFolder folder;
  for (const auto& file : read.unreadable) folder.bad.push_back({file.file.string(), file.reason, false});
  for (const auto& image : read.images) {
    if (image.geometryProblem.empty()) continue;
    const auto file = image.file.string();
    if (!folder.bad.empty() && folder.bad.back().shown && folder.bad.back().file == file) continue;  // one line a file
    folder.bad.push_back({file, image.geometryProblem, true});
  }
  folder.images = std::move(read.images);
  folder.otherObjects = read.otherObjects.size();
  folder.notDicom = read.notDicom.size();
  folder.copies = read.copies.size();
  printBadFiles(folder);
  printCopies(read.copies);
  if (folder.images.empty()) {
    return Failure{ExitUnreadable, path + " holds no DICOM image that can be shown: " + contentsOf(folder) + "."};
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
