#pragma once
// A folder of DICOM files opened in a workstation that has the plug-in loaded.

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "cli/ExitStatus.h"
#include "cli/PersonDefaults.h"
#include "workstation/model/Workstation.h"

namespace cli {

/// A file that was refused, or an image that cannot be labelled, and why.
struct BadFile {
  std::string file;
  std::string reason;
  bool shown = false;  ///< listed with the series all the same
};

struct StudyFolder {
  std::vector<workstation::ImageRecord> images;
  std::vector<BadFile> bad;
  std::size_t otherObjects = 0;  ///< DICOM objects that are no images
  std::size_t notDicom = 0;      ///< files that were skipped
  std::size_t copies = 0;        ///< files with an image that another file holds
};

/// Reads what the folder holds. A path that does not exist, or a folder without one image, is a Failure.
/// Prints a message for each bad file.
Expected<StudyFolder> readStudyFolder(const std::string& path);

/// The plug-in's bundle: the one named by the environment's VERTANA_PLUGIN, else ../lib/Vertana.plugin beside the
/// program.
std::filesystem::path pluginBundlePath();

/// A workstation with the plug-in and the person's defaults.
class StudySession {
 public:
  /// Loads the plug-in and adds the images.
  static Expected<std::unique_ptr<StudySession>> open(std::vector<workstation::ImageRecord> images);

  workstation::Workstation& workstation() { return *workstation_; }
  const std::vector<std::string>& studies() const { return studies_; }

 private:
  StudySession() = default;
  PersonDefaults defaults_;
  std::unique_ptr<workstation::Workstation> workstation_;
  std::vector<std::string> studies_;
};

}  // namespace cli
