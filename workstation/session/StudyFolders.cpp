#include "workstation/session/StudyFolders.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace workstation {

namespace fs = std::filesystem;

namespace {

/// The same for every name of a place.
fs::path nameOf(const fs::path& place) {
  std::error_code error;
  const auto canonical = fs::weakly_canonical(place, error);
  return error ? place : canonical;
}

/// The folder in which all these files lie, however deep.
fs::path commonFolder(const std::vector<ImageRecord>& images) {
  fs::path common = nameOf(images.front().file).parent_path();
  for (const ImageRecord& image : images) {
    const fs::path folder = nameOf(image.file).parent_path();
    const auto [end, ignored] = std::mismatch(common.begin(), common.end(), folder.begin(), folder.end());
    fs::path shared;
    for (auto part = common.begin(); part != end; ++part) shared /= *part;
    common = std::move(shared);
  }
  return common;
}

bool liesIn(const fs::path& folder, const fs::path& file) {
  const fs::path name = nameOf(file);
  return std::mismatch(folder.begin(), folder.end(), name.begin(), name.end()).first == folder.end();
}

std::set<fs::path> pathsOf(const std::vector<UnreadableFile>& files) {
  std::set<fs::path> paths;
  for (const UnreadableFile& file : files) paths.insert(file.file);
  return paths;
}

}  // namespace

void StudyFolders::add(std::unique_ptr<StudyDatabase> database, const fs::path& place) {
  shelves_.add(*database);
  auto unusable = pathsOf(database->unreadableFiles());
  folders_.push_back({nameOf(place), std::move(database), 0, std::move(unusable)});
}

bool StudyFolders::holds(const fs::path& place) const {
  const auto name = nameOf(place);
  return std::any_of(folders_.begin(), folders_.end(), [&](const Folder& folder) { return folder.place == name; });
}

std::vector<StudyEntry> StudyFolders::studies(std::string_view search) {
  std::vector<StudyEntry> all;
  std::set<std::string> known;
  for (const Folder& folder : folders_) {
    for (StudyEntry& entry : folder.database->studies(search)) {
      if (known.insert(entry.studyUid).second) all.push_back(std::move(entry));
    }
  }
  std::stable_sort(all.begin(), all.end(), [](const auto& a, const auto& b) { return a.date > b.date; });
  return all;
}

std::vector<std::string> StudyFolders::studiesIn(const fs::path& place) {
  std::vector<std::string> uids;
  const auto name = nameOf(place);
  for (const Folder& folder : folders_) {
    if (folder.place != name) continue;
    for (const StudyEntry& entry : folder.database->studies()) uids.push_back(entry.studyUid);
  }
  return uids;
}

std::vector<UnreadableFile> StudyFolders::unreadableFilesIn(const fs::path& place) {
  std::vector<UnreadableFile> files;
  const auto name = nameOf(place);
  for (const Folder& folder : folders_) {
    if (folder.place != name) continue;
    for (UnreadableFile& file : folder.database->unreadableFiles()) files.push_back(std::move(file));
  }
  return files;
}

std::vector<ImageRecord> StudyFolders::images(const std::string& studyUid) {
  for (const Folder& folder : folders_) {
    auto images = folder.database->images(studyUid);
    if (!images.empty()) return images;
  }
  return {};
}

StudyFolders::Folder* StudyFolders::folderOf(const std::string& studyUid) {
  const auto found = std::find_if(folders_.begin(), folders_.end(),
                                  [&](const Folder& folder) { return !folder.database->images(studyUid).empty(); });
  return found == folders_.end() ? nullptr : &*found;
}

fs::path StudyFolders::placeOf(const std::string& studyUid) {
  const Folder* folder = folderOf(studyUid);
  return folder ? folder->place : fs::path();
}

fs::path StudyFolders::ownFolder(const std::string& studyUid) {
  const Folder* folder = folderOf(studyUid);
  if (!folder) return {};
  const auto entries = folder->database->studies();
  if (entries.size() == 1) return folder->place;
  const fs::path own = commonFolder(folder->database->images(studyUid));
  for (const StudyEntry& entry : entries) {
    if (entry.studyUid == studyUid) continue;
    const auto images = folder->database->images(entry.studyUid);
    if (std::any_of(images.begin(), images.end(), [&](const auto& image) { return liesIn(own, image.file); }))
      return {};
  }
  return own;
}

std::vector<std::string> StudyFolders::takeNotices() {
  std::vector<std::string> fresh;
  for (Folder& folder : folders_) {
    const auto& notices = folder.database->notices();
    for (; folder.noticesTaken < notices.size(); ++folder.noticesTaken) fresh.push_back(notices[folder.noticesTaken]);
  }
  return fresh;
}

void StudyFolders::refresh() {
  for (const Folder& folder : folders_) folder.database->refresh();
}

std::vector<UnreadableFile> StudyFolders::lookAgain() {
  std::vector<UnreadableFile> fresh;
  for (Folder& folder : folders_) {
    folder.database->lookAgain();
    const auto files = folder.database->unreadableFiles();
    std::copy_if(files.begin(), files.end(), std::back_inserter(fresh),
                 [&](const UnreadableFile& file) { return !folder.unusable.contains(file.file); });
    folder.unusable = pathsOf(files);
  }
  return fresh;
}

}  // namespace workstation
