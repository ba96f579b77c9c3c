#include "cli/StudyReading.h"

#include "cli/Console.h"

namespace cli {

using workstation::StudyDatabase;

workstation::Result<std::unique_ptr<StudyDatabase>> readStudies(const std::string& path, bool isDatabase,
                                                                const SourceOptions& options) {
  ProgressLine progress("Reading the study");
  workstation::OpenOptions how;
  how.makeDatabase = options.makeDatabase;
  how.indexIsCurrent = options.indexIsCurrent;
  if (!options.amongMany) {
    how.progress = [&](std::size_t done, std::size_t total) { return progress.show(done, total); };
  }
  return isDatabase ? StudyDatabase::openDatabase(path, how) : StudyDatabase::openFolder(path, how);
}

Expected<workstation::ImportResult> importStudies(StudyDatabase& database, const std::string& folder,
                                                  const std::vector<std::filesystem::path>& paths) {
  workstation::ImportResult result;
  {
    ProgressLine progress("Importing");
    result = database.importFiles(paths, [&](std::size_t done, std::size_t total) {
      return total == 0 ? progress.wait("another import into " + folder) : progress.show(done, total);
    });
  }
  for (const auto& file : result.unreadable) {
    printMessage(file.file.string() + " cannot be imported: " + file.reason + ".");
  }
  if (!result.problem.empty()) return Failure{ExitNotAllowed, result.problem};
  if (result.cancelled) return interruptedBeforeChange(folder);
  return result;
}

Failure interruptedBeforeChange(const std::string& databaseFolder) {
  return {ExitNotAllowed, "Interrupted: the database " + databaseFolder + " is as it was before."};
}

}  // namespace cli
