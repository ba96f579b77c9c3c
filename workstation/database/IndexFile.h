#pragma once
// Opening indexes that lie in files.

#include <filesystem>
#include <memory>
#include <string>

#include "workstation/database/AtomicFile.h"
#include "workstation/database/Index.h"

namespace workstation {

/// How an index file was found.
enum class IndexCondition {
  usable,
  missing,
  damaged,
  foreign,   ///< a database of another program
  tooNew,    ///< of a later version of this program: it must not be touched
  unusable,  ///< it cannot be opened for reading and writing
};

struct OpenedIndex {
  std::unique_ptr<Index> index;  ///< null when it is not usable
  IndexCondition condition = IndexCondition::missing;
  std::string reason;  ///< a phrase: why it is not usable; else empty
};

/// Opens an index that several processes share, in write-ahead mode: an older version is brought up to date; with
/// `create`, a missing one is made.
OpenedIndex openSharedIndex(const std::filesystem::path& file, bool create);

/// Reads an index into memory; the file stays as it is. An older version is brought up to date in memory.
OpenedIndex loadIndex(const std::filesystem::path& file);

/// Writes an index to a file that is there whole or not at all. A file of another program is set aside first; that of a
/// later version of this program is left alone, which counts as done.
Outcome saveIndex(Index& index, const std::filesystem::path& file, const DiskCalls& disk);

/// Gives an index and what SQLite keeps beside it another name, "...set-aside-1" or the next number that is free.
Outcome setAside(const std::filesystem::path& file);

/// Held while an index is checked, made or replaced, so that no two processes do it at once.
class IndexLock {
 public:
  /// Waits for the others. `folder` may be read-only: nothing is locked then.
  explicit IndexLock(const std::filesystem::path& folder);

 private:
  Descriptor file_;
};

}  // namespace workstation
