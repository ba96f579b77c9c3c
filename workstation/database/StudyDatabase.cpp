#include "workstation/database/StudyDatabase.h"

#include <SQLiteCpp/Exception.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <set>
#include <string_view>
#include <system_error>
#include <unordered_map>
#include <utility>

#include "workstation/database/ImportLock.h"
#include "workstation/database/Index.h"
#include "workstation/database/IndexFile.h"
#include "workstation/database/StudyDatabaseInterior.h"
#include "workstation/dicom/Copies.h"
#include "workstation/dicom/Toolkit.h"

namespace workstation {

namespace fs = std::filesystem;

namespace {

using Opened = Result<std::unique_ptr<StudyDatabase>>;

using Place = std::pair<std::string_view, std::string_view>;  // folder and name

Place placeOf(const FileStamp& file) { return {file.folder, file.name}; }

struct PlaceHash {
  std::size_t operator()(const Place& place) const {
    constexpr std::hash<std::string_view> hash;
    return hash(place.first) * 31 + hash(place.second);
  }
};

std::string pathBelowRoot(const FileStamp& file) { return file.folder + "/" + file.name; }

/// The files of a listing that the index does not have in this state, and the entries whose files are gone.
struct Difference {
  std::vector<FileStamp> fresh;
  std::vector<IndexedFile> gone;
};

Difference differenceOf(const std::vector<IndexedFile>& known, const FolderListing& listing) {
  std::unordered_map<Place, std::pair<const IndexedFile*, bool>, PlaceHash> seen;  // and whether it is in the listing
  seen.reserve(known.size());
  for (const IndexedFile& file : known) seen.try_emplace(placeOf(file.stamp), &file, false);
  Difference difference;
  for (const FileStamp& file : listing.files) {
    const auto found = seen.find(placeOf(file));
    if (found == seen.end() || !found->second.first->stamp.isSameState(file)) difference.fresh.push_back(file);
    if (found != seen.end()) found->second.second = true;
  }
  for (const auto& [place, file] : seen)
    if (!file.second) difference.gone.push_back(*file.first);
  std::sort(difference.fresh.begin(), difference.fresh.end(),
            [](const FileStamp& a, const FileStamp& b) { return isPathBefore(pathBelowRoot(a), pathBelowRoot(b)); });
  return difference;
}

bool mayBeRead(const fs::path& file) { return ::faccessat(AT_FDCWD, file.c_str(), R_OK, AT_EACCESS) == 0; }

void sortByPath(std::vector<UnreadableFile>& files) {
  std::stable_sort(files.begin(), files.end(),
                   [](const UnreadableFile& a, const UnreadableFile& b) { return a.file < b.file; });
}

}  // namespace

StudyDatabase::StudyDatabase(Kind kind, fs::path root, std::string onlyFile, fs::path indexFile,
                             const OpenOptions& options)
    : kind_(kind),
      root_(std::move(root)),
      indexFile_(std::move(indexFile)),
      disk_(options.disk),
      scan_(root_, std::move(onlyFile)) {}

StudyDatabase::~StudyDatabase() = default;

void StudyDatabase::readWithoutIndex(const std::string& reason) {
  notices_.push_back("The index " + indexFile_.string() + " cannot be used any longer because of an error (" + reason +
                     "): the studies are read from their files until the folder is opened again.");
  index_ = std::make_unique<Index>();
  looksAtFiles_ = true;
  update(scan_.all(), {});
}

bool StudyDatabase::isDatabase(const fs::path& folder) {
  std::error_code error;
  return fs::exists(folder / "index.sqlite", error) || fs::is_directory(folder / "studies", error);
}

Opened StudyDatabase::openDatabase(const fs::path& folder, const OpenOptions& options) {
  if (!options.makeDatabase && !isDatabase(folder))
    return Opened::refused(
        "The folder " + folder.string() +
        " is no database, for it holds neither index.sqlite nor studies: name another one, or import "
        "studies into it with vertana import.");
  const fs::path studies = folder / "studies";
  std::error_code error;
  fs::create_directories(studies, error);
  if (!fs::is_directory(studies))
    return Opened::refused("The database folder " + folder.string() +
                           " cannot be made: " + (error ? error.message() : "a file is in the way") +
                           "; name a folder that you may write to.");
  std::unique_ptr<StudyDatabase> database(
      new StudyDatabase(Kind::database, studies, "", folder / "index.sqlite", options));
  const bool isOld = database->openShared();
  database->looksAtFiles_ = !(isOld && options.indexIsCurrent);
  if (database->looksAtFiles_ && !database->update(database->scan_.all(), options.progress))
    return Opened::refused("Interrupted while reading " + folder.string() + "; nothing was changed.");
  return Opened::of(std::move(database));
}

/// False when there was none that could be used; there is an empty one now, shared or in memory.
bool StudyDatabase::openShared() {
  const IndexLock lock(indexFile_.parent_path());
  OpenedIndex opened = openSharedIndex(indexFile_, false);
  const bool isOld = opened.index != nullptr;
  const std::string what = "The index " + indexFile_.string();
  std::error_code error;
  const bool isNew = opened.condition == IndexCondition::missing;
  if (isNew && !fs::is_empty(root_, error))
    notices_.push_back(what + " was missing: it is built again from the files.");
  if (opened.condition == IndexCondition::damaged || opened.condition == IndexCondition::foreign) {
    notices_.push_back(what + " cannot be used because " + opened.reason +
                       ": it is set aside and built again from the files.");
    if (Outcome aside = setAside(indexFile_); !aside) opened = {nullptr, IndexCondition::unusable, *aside.problem};
  }
  if (!opened.index && opened.condition != IndexCondition::tooNew && opened.condition != IndexCondition::unusable)
    opened = openSharedIndex(indexFile_, true);
  index_ = std::move(opened.index);
  if (index_) return isOld;
  notices_.push_back(what + " cannot be used because " + asPhrase(opened.reason) +
                     ": it is left as it is, and the studies are read from their files.");
  index_ = std::make_unique<Index>();
  return false;
}

Opened StudyDatabase::openFolder(const fs::path& folderOrFile, const OpenOptions& options) {
  std::error_code error;
  const fs::file_status status = fs::status(folderOrFile, error);
  if (!fs::exists(status))
    return Opened::refused((folderOrFile.empty() ? "A folder without a name" : folderOrFile.string()) +
                           " does not exist: give a folder of DICOM files.");
  std::unique_ptr<StudyDatabase> database;
  if (fs::is_directory(status)) {
    database.reset(
        new StudyDatabase(Kind::inPlace, folderOrFile, "", folderOrFile / hiddenFolderName / "index.sqlite", options));
    database->openCopy();
  } else {  // the index of a folder says more than one file, and one of a part of the folder must not replace it
    database.reset(
        new StudyDatabase(Kind::oneFile, folderOrFile.parent_path(), folderOrFile.filename().string(), "", options));
    database->index_ = std::make_unique<Index>();
  }
  if (!database->update(database->scan_.all(), options.progress))
    return Opened::refused("Interrupted while reading " + folderOrFile.string() + "; nothing was changed.");
  return Opened::of(std::move(database));
}

void StudyDatabase::openCopy() {
  OpenedIndex opened = loadIndex(indexFile_);
  if (!opened.index && opened.condition != IndexCondition::missing) {
    const bool isOurs = opened.condition == IndexCondition::damaged;
    notices_.push_back("The index " + indexFile_.string() + " cannot be used because " + opened.reason +
                       ": the studies are read from their files, and it is " +
                       (isOurs ? "replaced when a report is stored." : "left as it is."));
    if (opened.condition == IndexCondition::tooNew) indexFile_.clear();
  }
  index_ = opened.index ? std::move(opened.index) : std::make_unique<Index>();
}

/// Reads what is new and enters it. False when it was cancelled; the index is as it was then.
bool StudyDatabase::update(const FolderListing& listing, const Progress& progress) {
  Difference difference;
  withIndex(
      [&] { difference = differenceOf(listing.complete ? index_->files() : index_->files(listing.folders), listing); });
  std::erase_if(difference.gone, [&](const IndexedFile& file) { return isThereAfterAll(file.stamp); });
  const std::size_t total = difference.fresh.size();
  std::vector<FileToIndex> files;
  for (FileStamp& file : difference.fresh) {
    if (progress && !progress(files.size(), total)) return false;
    const auto began = LastReport::Clock::now();
    FileContents contents = readFileContents(scan_.pathOf(file));
    if (contents.report) lastReport_.keep(scan_.pathOf(file), *std::exchange(contents.report, {}), began);
    // Permissions can change without a trace in size and time: such a file is tried again next time.
    if (contents.kind == FileKind::unreadable && !mayBeRead(scan_.pathOf(file))) file.mtimeNs = 0;
    files.push_back({std::move(file), std::move(contents)});
  }
  if (total > 0 && progress && !progress(total, total)) return false;
  if (files.empty() && difference.gone.empty()) return true;
  std::vector<std::int64_t> gone;
  for (const IndexedFile& file : difference.gone) gone.push_back(file.id);
  try {
    index_->change(gone, files);
  } catch (const SQLite::Exception& exception) {
    readWithoutIndex(exception.what());
  }
  return true;
}

/// Another process may have stored and entered a file after the folder was listed.
bool StudyDatabase::isThereAfterAll(const FileStamp& file) const {
  return kind_ == Kind::database && stampOf(root_, file.folder, file.name).has_value();
}

void StudyDatabase::refresh() {
  if (!looksAtFiles_) return;
  const FolderListing listing = scan_.changed();
  if (!listing.folders.empty()) update(listing, {});
}

void StudyDatabase::lookAgain() {
  if (!looksAtFiles_) return;
  FolderListing listing = scan_.all();
  for (FileStamp& file : listing.files)
    if (!mayBeRead(scan_.pathOf(file))) file.mtimeNs = 0;
  update(listing, {});
}

std::vector<ImageRecord> StudyDatabase::images(const std::string& studyUid) {
  ReadResult result;
  result.images = withIndex([&] { return index_->images(root_, studyUid); });
  setCopiesAside(result);
  return std::move(result.images);
}

ReadResult StudyDatabase::contents(const std::string& studyUid) {
  ReadResult result;
  result.warning = prepareToolkit();
  withIndex([&] {
    result.images = index_->images(root_, studyUid);
    std::set<std::string> folders;
    for (const ImageRecord& image : result.images) {
      folders.insert(image.file.parent_path().lexically_relative(root_).string());
    }
    result.unreadable.clear();
    for (const std::string& folder : folders) {
      for (const IndexedPlace& place : index_->places(FileKind::unreadable, folder == "." ? "" : folder))
        result.unreadable.push_back({scan_.pathOf(place.file), place.reason});
    }
  });
  setCopiesAside(result);
  sortByPath(result.unreadable);
  return result;
}

ReadResult StudyDatabase::contents() {
  ReadResult result;
  result.warning = prepareToolkit();
  withIndex([&] {
    result.images = index_->images(root_);
    const auto listPaths = [&](FileKind kind, std::vector<fs::path>& paths) {
      paths.clear();
      for (const IndexedPlace& place : index_->places(kind)) paths.push_back(scan_.pathOf(place.file));
    };
    listPaths(FileKind::object, result.otherObjects);
    listPaths(FileKind::notDicom, result.notDicom);
    listPaths(FileKind::directory, result.directories);
  });
  result.unreadable = unreadableFiles();
  setCopiesAside(result);
  sortByPath(result.unreadable);
  return result;
}

std::vector<UnreadableFile> StudyDatabase::unreadableFiles() {
  std::vector<UnreadableFile> files;
  withIndex([&] {
    files = scan_.unlisted();
    for (const IndexedPlace& place : index_->places(FileKind::unreadable))
      files.push_back({scan_.pathOf(place.file), place.reason});
  });
  sortByPath(files);
  return files;
}

ImportResult StudyDatabase::importFiles(const std::vector<fs::path>& paths, const Progress& progress) {
  ImportResult result;
  if (kind_ != Kind::database) {
    result.problem = "Files cannot be imported into " + root_.string() +
                     ": it is opened in place. Copy them there, or import them into a database folder.";
    return result;
  }
  const Result<Descriptor> lock = lockForImport(indexFile_.parent_path(), [&] { return !progress || progress(0, 0); });
  result.cancelled = lock && !lock->isOpen();
  result.problem = lock.problem;
  if (result.cancelled || !lock) return result;
  refresh();  // only now: another import may just have ended
  try {
    result = importInto(root_, *index_, paths, progress, disk_);
  } catch (const SQLite::Exception& exception) {
    result = {};
    result.problem = "The files cannot be imported because the index " + indexFile_.string() + " failed (" +
                     exception.what() + "): try again.";
  }
  refresh();
  return result;
}

}  // namespace workstation
