#include <iostream>

#include "cli/Commands.h"
#include "cli/Console.h"
#include "cli/PlainText.h"
#include "cli/StudyReading.h"

namespace cli {

namespace {

void printImport(const workstation::ImportResult& result, const std::string& database) {
  std::cout << counted(result.imported, "file was", "files were") << " copied into " << database;
  if (result.known > 0) std::cout << ", " << counted(result.known, "was", "were") << " there already";
  if (result.notDicom > 0) {
    std::cout << ", " << counted(result.notDicom, "is not DICOM", "are not DICOM") << " and stayed out";
  }
  std::cout << ".\n";
  for (const auto& study : result.studies) std::cout << printable(study) << '\n';
}

}  // namespace

int runImport(const ImportArguments& arguments) {
  SourceOptions options;
  options.makeDatabase = true;
  const auto database = readStudies(arguments.database, true, options);
  if (interrupted()) return fail(interruptedBeforeChange(arguments.database));
  if (!database) return fail({ExitUnreadable, database.problem});
  for (const auto& notice : (*database)->notices()) printMessage(notice);
  const auto result = importStudies(**database, arguments.database, {arguments.paths.begin(), arguments.paths.end()});
  if (!result) return fail(result.failure);
  if (result->imported + result->known == 0) {
    return fail({ExitUnreadable, "Nothing was imported into " + arguments.database + ": no DICOM object was found in " +
                                     arguments.paths.front() +
                                     (arguments.paths.size() > 1 ? " and the other paths." : ".")});
  }
  printImport(*result, arguments.database);
  return ExitDone;
}

}  // namespace cli
