#include "workstation/session/StudyFolders.h"

#include <algorithm>
#include <set>

namespace workstation {

namespace fs = std::filesystem;

namespace {

/// The same for every name of a place.
fs::path nameOf(const fs::path& place) {
  std::error_code error;
  const auto canonical = fs::weakly_canonical(place, error);
  return error ? place : canonical;
}

}  // namespace

void StudyFolders::add(std::unique_ptr<StudyDatabase> database, const fs::path& place) {
  shelves_.add(*database);
  folders_.push_back({nameOf(place), std::move(database), 0});
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

}  // namespace workstation
