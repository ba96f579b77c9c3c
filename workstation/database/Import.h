#pragma once
// Copying files into a database.

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "workstation/database/AtomicFile.h"
#include "workstation/database/Index.h"
#include "workstation/dicom/StudyReader.h"

namespace workstation {

/// What became of the files that were to be imported.
struct ImportResult {
  std::size_t imported = 0;
  std::size_t known = 0;        ///< their objects are in the database already
  std::size_t notDicom = 0;     ///< passed over
  std::size_t directories = 0;  ///< DICOMDIR files, passed over: the files themselves are looked at
  std::vector<UnreadableFile> unreadable;
  std::vector<std::string> studies;  ///< UIDs of the studies of the files that were imported or known
  bool cancelled = false;            ///< the database is as it was
  std::string problem;               ///< a whole sentence when it failed; the database is as it was then
};

/// Called before each file with the number done and the number in all, and once at the end; by an import that waits for
/// another one to end, some times a second with 0 and 0. False stops.
using Progress = std::function<bool(std::size_t done, std::size_t total)>;

/// Imports files and, at any depth, what lies in folders, into folders below `root`, one for each study. An object
/// counts by its SOP Instance UID; a source file whose place, size and time are known is not even opened, and one of an
/// object that is there already is compared with its file byte by byte.
/// All or nothing: when it is cancelled or fails, neither the folder nor the index has changed. Nobody else may import
/// into the folder meanwhile: see lockForImport.
ImportResult importInto(const std::filesystem::path& root, Index& index,
                        const std::vector<std::filesystem::path>& paths, const Progress& progress,
                        const DiskCalls& disk);

/// The name of a study's folder, or of an object's file without extension: the UID where it is one, for it may be
/// anything, else one made from it.
std::string nameForUid(const std::string& uid);

}  // namespace workstation
