#include "cli/play/OpenedStudies.h"

#include <algorithm>

#include "cli/Console.h"
#include "cli/StudyReading.h"
#include "workstation/dicom/AnyFile.h"

namespace cli {

namespace fs = std::filesystem;
using workstation::ImageRecord;
using workstation::StudyDatabase;
using Images = std::vector<ImageRecord>;

namespace {

void printUnreadable(const std::vector<workstation::UnreadableFile>& files) {
  for (const auto& bad : files) printMessage(bad.file.string() + " cannot be used: " + bad.reason + ".");
}

/// A reading that the interrupt key has stopped is told as that, not as a folder that cannot be read.
Expected<std::unique_ptr<StudyDatabase>> openAt(const std::string& path, bool isDatabase) {
  SourceOptions options;
  options.makeDatabase = isDatabase;  // a script imports into it what it opens
  auto opened = readStudies(path, isDatabase, options);
  if (interrupted()) return Failure{ExitNotAllowed, "Interrupted while reading " + path + "."};
  if (!opened) return Failure{ExitUnreadable, opened.problem};
  return std::move(*opened);
}

Failure noImage(const std::string& path) {
  return Failure{ExitUnreadable, path + " holds no DICOM image that can be shown."};
}

std::optional<Failure> missing(const std::string& path) {
  std::error_code error;
  if (fs::exists(path, error)) return std::nullopt;
  if (error) return Failure{ExitUnreadable, path + " cannot be reached: " + error.message() + "."};
  return Failure{ExitUnreadable, (path.empty() ? "A path without a name" : path) + " does not exist."};
}

/// A name in the folder that no file has yet, as like the given one as can be.
fs::path freeName(const fs::path& folder, const fs::path& name) {
  auto candidate = folder / name;
  std::error_code error;
  for (int number = 2; fs::exists(candidate, error); ++number) {
    candidate = folder / (name.stem().string() + "-" + std::to_string(number) + name.extension().string());
  }
  return candidate;
}

Failure notAdded(const std::string& file, const std::string& reason) {
  return {ExitNotAllowed, file + " was not added: " + reason + "."};
}

/// Nothing where the file is a structured report, as far as its header tells: a damaged one can be added.
std::optional<Failure> checkReport(const std::string& file) {
  std::error_code error;
  if (fs::is_directory(file, error))
    return Failure{ExitUnreadable, file + " is a folder: give the file of one report."};
  auto problem = fs::is_regular_file(file, error) ? std::string() : "it is no ordinary file";
  if (problem.empty()) {
    const auto isReport = [](const workstation::ObjectHeader& object) { return object.isStructuredReport(); };
    const auto read = workstation::readAnyFile(file, isReport);
    if (!read.lists.unreadable.empty())
      problem = read.lists.unreadable.front().reason;
    else if (!read.lists.notDicom.empty())
      problem = "it is no DICOM file";
    else if (!read.header || !isReport(*read.header))
      problem = "it is not a structured report";
  }
  if (problem.empty()) return std::nullopt;
  return Failure{ExitUnreadable, file + " is no report that can be added to a study: " + problem + "."};
}

std::optional<Failure> copyReport(const std::string& path, const std::string& file) {
  std::error_code error;
  const auto folder = fs::is_directory(path, error) ? fs::path(path) : fs::path(path).parent_path();
  const auto target = freeName(folder, fs::path(file).filename());
  fs::copy_file(file, target, error);
  if (!error) return std::nullopt;
  return Failure{ExitNotAllowed, file + " could not be copied to " + target.string() + ": " + error.message() + "."};
}

/// Through another opening of the database, as another process would.
std::optional<Failure> importReport(const std::string& databaseFolder, const std::string& file) {
  auto another = openAt(databaseFolder, true);
  if (!another) return another.failure;
  const auto result = (*another)->importFiles({file});
  if (!result.problem.empty()) return Failure{ExitNotAllowed, result.problem};
  if (!result.unreadable.empty()) return notAdded(file, result.unreadable.front().reason);
  return result.imported > 0 ? std::nullopt : std::optional(notAdded(file, "the database holds it already"));
}

}  // namespace

Expected<std::unique_ptr<OpenedStudies>> OpenedStudies::open(const std::string& database,
                                                             const std::vector<std::string>& openedBefore) {
  std::unique_ptr<OpenedStudies> studies(new OpenedStudies(database));
  if (!database.empty()) {
    auto opened = openAt(database, true);
    if (!opened) return opened.failure;
    studies->add(std::move(*opened));
  }
  for (const auto& path : openedBefore) {
    auto opened = openAt(path, false);
    if (!opened && interrupted()) return opened.failure;
    if (!opened) continue;
    studies->paths_.push_back(path);
    studies->add(std::move(*opened));
  }
  return studies;
}

void OpenedStudies::add(Database opened) {
  for (const auto& notice : opened->notices()) printMessage(notice);
  shelves_.add(*opened);
  databases_.push_back(std::move(opened));
}

Expected<Images> OpenedStudies::addPath(const std::string& path) {
  if (auto failure = missing(path)) return *failure;
  return databaseFolder_.empty() ? openInPlace(path) : import(path);
}

Expected<Images> OpenedStudies::import(const std::string& path) {
  const auto result = importStudies(*databases_.front(), databaseFolder_, {path});
  if (!result) return result.failure;
  Images all;
  for (const auto& study : result->studies) {
    const auto images = databases_.front()->images(study);
    all.insert(all.end(), images.begin(), images.end());
  }
  if (all.empty()) return noImage(path);
  return all;
}

Expected<Images> OpenedStudies::openInPlace(const std::string& path) {
  std::error_code error;
  auto place = fs::canonical(path, error).string();
  if (error) place = path;
  const auto known = std::find(paths_.begin(), paths_.end(), place);
  auto index = static_cast<std::size_t>(known - paths_.begin());
  if (known == paths_.end()) {
    auto opened = openAt(place, false);
    if (!opened) return opened.failure;
    add(std::move(*opened));
    paths_.push_back(place);
  } else {
    databases_[index]->refresh();
  }
  auto contents = databases_[index]->contents();
  if (known == paths_.end()) printUnreadable(contents.unreadable);
  if (contents.images.empty()) return noImage(path);
  return std::move(contents.images);
}

Images OpenedStudies::images(const std::string& studyUid) {
  for (const auto& database : databases_) {
    auto images = database->images(studyUid);
    if (!images.empty()) return images;
  }
  return {};
}

std::optional<Failure> OpenedStudies::addReport(const std::string& path, const std::string& file) const {
  for (const auto& place : {file, path}) {
    if (auto failure = missing(place)) return failure;
  }
  if (auto failure = checkReport(file)) return failure;
  return databaseFolder_.empty() ? copyReport(path, file) : importReport(databaseFolder_, file);
}

}  // namespace cli
