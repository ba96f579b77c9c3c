#pragma once

#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "workstation/database/ReportShelves.h"
#include "workstation/database/StudyDatabase.h"

namespace workstation {

/// The studies that are at hand: those of a database, and those of folders that were opened in place.
class StudyFolders {
 public:
  /// One more database or folder. A study that lies in several belongs to the one that was added first.
  void add(std::unique_ptr<StudyDatabase> database, const std::filesystem::path& place);
  /// Whether something was added from this place, also under another name of it.
  bool holds(const std::filesystem::path& place) const;

  /// The studies that hold every word of `search`; see StudyDatabase::studies. Each once, the newest first.
  std::vector<StudyEntry> studies(std::string_view search = {});
  /// The study UIDs of what was added from this place.
  std::vector<std::string> studiesIn(const std::filesystem::path& place);
  /// The files of what was added from this place that cannot be used, by path.
  std::vector<UnreadableFile> unreadableFilesIn(const std::filesystem::path& place);
  /// The slices of a study; empty when it is nowhere.
  std::vector<ImageRecord> images(const std::string& studyUid);
  /// From where the study was added, canonical; empty when it is nowhere.
  std::filesystem::path placeOf(const std::string& studyUid);
  /// The same where that place holds no other study, else the folder in which all images of this study and none of
  /// another one lie; empty when there is none.
  std::filesystem::path ownFolder(const std::string& studyUid);
  /// Whole sentences about indexes that could not be used, since the last call.
  std::vector<std::string> takeNotices();
  /// Looks for files that came or went.
  void refresh();
  /// Looks at every file again, and answers those that cannot be used now and of which unreadableFilesIn, when their
  /// place was added, or this function has not told yet, by place and path. What such a file held is not listed any
  /// more.
  std::vector<UnreadableFile> lookAgain();

  ReportShelf& shelf() { return shelves_; }

 private:
  struct Folder {
    std::filesystem::path place;
    std::unique_ptr<StudyDatabase> database;
    std::size_t noticesTaken = 0;
    std::set<std::filesystem::path> unusable;  ///< files, when it was added or last looked at again
  };

  Folder* folderOf(const std::string& studyUid);

  std::vector<Folder> folders_;
  ReportShelves shelves_;
};

}  // namespace workstation
