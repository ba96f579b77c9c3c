#pragma once
// Which files lie in a folder, without reading one.

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "workstation/dicom/StudyReader.h"

namespace workstation {

/// The folder in which the index of a folder that is opened in place lies; it is never looked into.
inline constexpr std::string_view hiddenFolderName = ".vertana";

/// A file, and how to tell that it is the one that was read.
struct FileStamp {
  std::string folder;  ///< relative to the scanned folder, "" for itself
  std::string name;
  std::int64_t size = 0;     ///< bytes
  std::int64_t mtimeNs = 0;  ///< since 1970
  bool isSameState(const FileStamp& other) const { return size == other.size && mtimeNs == other.mtimeNs; }
};

/// What was seen of some folders, or of all.
struct FolderListing {
  bool complete = false;             ///< all folders: a file that is not in the list is not there
  std::vector<std::string> folders;  ///< those that were listed; one that is gone has no files
  std::vector<FileStamp> files;
};

/// Lists a folder at any depth. Links are followed; each folder is listed once, and a link to a file that is listed
/// under its own name is left out. Files that are being written, and hiddenFolderName, are passed over.
class FolderScan {
 public:
  /// With `onlyFile`, the name of a file in `root`, nothing else is seen but reports of labellings beside it.
  explicit FolderScan(std::filesystem::path root, std::string onlyFile = {});

  /// Lists everything.
  FolderListing all();
  /// Lists the folders in which names have come or gone since they were last listed; usually none, at the cost of
  /// asking for the time of each. A file that was changed in its place is not noticed.
  FolderListing changed();

  /// Folders that could not be listed and links that lead nowhere, by path.
  std::vector<UnreadableFile> unlisted() const;

  const std::filesystem::path& root() const { return root_; }
  std::filesystem::path pathOf(const FileStamp& file) const;

 private:
  struct Identity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    friend auto operator<=>(const Identity&, const Identity&) = default;
  };
  struct Folder {
    Identity identity;
    std::int64_t mtimeNs = 0;  ///< 0: list it again in any case
    std::vector<UnreadableFile> unlisted;
  };
  struct Link {
    std::string folder;
    std::string name;
  };
  class Walk;

  std::filesystem::path pathOf(const std::string& folder) const;
  bool isWanted(std::string_view name) const;

  std::filesystem::path root_;
  std::string onlyFile_;
  bool hasLinks_ = false;
  std::map<std::string, Folder> folders_;
};

/// Size and time of a file; nothing when there is no regular file of that name.
std::optional<FileStamp> stampOf(const std::filesystem::path& root, const std::string& folder, const std::string& name);

/// Compares paths part by part, as the standard library does, at a fraction of its cost: folders come before the names
/// that merely begin like them.
bool isPathBefore(std::string_view a, std::string_view b);

/// The name of a stored report's file begins so, and ends in ".dcm".
inline constexpr std::string_view reportFilePrefix = "vertana-";

}  // namespace workstation
