#pragma once
// Reading studies from disk as a person at a terminal sees it: with progress, and stopped by the interrupt key.

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "cli/ExitStatus.h"
#include "workstation/database/StudyDatabase.h"

namespace cli {

/// How a source of studies is opened.
struct SourceOptions {
  bool makeDatabase = false;    ///< of a database: see OpenOptions
  bool amongMany = false;       ///< no progress is shown, and a folder without one image is told in one line
  bool indexIsCurrent = false;  ///< of a database: see OpenOptions; what there is to tell of its index was told then
};

/// Opens a database folder, or a folder of DICOM files or one file in place. The interrupt key stops the reading of one
/// that is not among many, and then nothing is opened: ask interrupted() before the result.
workstation::Result<std::unique_ptr<workstation::StudyDatabase>> readStudies(const std::string& path, bool isDatabase,
                                                                             const SourceOptions& options = {});

/// Copies files into a database folder; the interrupt key leaves it as it was before. Files that cannot be used are
/// told on standard error. A Failure when it could not be done or was interrupted.
Expected<workstation::ImportResult> importStudies(workstation::StudyDatabase& database, const std::string& folder,
                                                  const std::vector<std::filesystem::path>& paths);

/// That the interrupt key has stopped what would have changed the database in this folder.
Failure interruptedBeforeChange(const std::string& databaseFolder);

}  // namespace cli
