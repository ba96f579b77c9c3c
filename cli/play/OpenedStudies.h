#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "cli/ExitStatus.h"
#include "workstation/database/ReportShelves.h"
#include "workstation/database/StudyDatabase.h"

namespace cli {

/// The studies that a script has opened: with a database folder, imported into it; without one, each in the folder in
/// which it lies.
class OpenedStudies {
 public:
  /// With a database folder, which is made where there is none, or an empty path. Opens again what an earlier process
  /// had opened in place; what is no longer there is left out.
  static Expected<std::unique_ptr<OpenedStudies>> open(const std::string& database,
                                                       const std::vector<std::string>& openedBefore);

  /// Opens a folder of DICOM files or one file, and answers the images of its studies. Files that cannot be used are
  /// told on standard error. A path that does not exist or holds no image is a Failure.
  Expected<std::vector<workstation::ImageRecord>> addPath(const std::string& path);
  /// The images of a study; empty when it is in none of what is open.
  std::vector<workstation::ImageRecord> images(const std::string& studyUid);
  /// What another process would do to put a report into the study at `path`. A path or file that does not exist, and a
  /// file that is no structured report, is a Failure.
  std::optional<Failure> addReport(const std::string& path, const std::string& file) const;

  workstation::ReportShelf& shelf() { return shelves_; }
  /// The paths that were opened in place, in order, each once.
  const std::vector<std::string>& paths() const { return paths_; }

 private:
  using Database = std::unique_ptr<workstation::StudyDatabase>;

  explicit OpenedStudies(std::string database) : databaseFolder_(std::move(database)) {}
  void add(Database opened);
  Expected<std::vector<workstation::ImageRecord>> import(const std::string& path);
  Expected<std::vector<workstation::ImageRecord>> openInPlace(const std::string& path);

  std::string databaseFolder_;  ///< empty: everything is opened in place
  std::vector<std::string> paths_;
  std::vector<Database> databases_;  ///< of a database folder: that one; else one for each of the paths
  workstation::ReportShelves shelves_;
};

}  // namespace cli
