#pragma once
// The index of a folder of DICOM files. Everything in it can be read from the files again: it is never the only place
// where something is kept.

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/Database.h"
#include "workstation/database/FileContents.h"
#include "workstation/database/FolderScan.h"

namespace SQLite {
class Database;
class Statement;
}  // namespace SQLite

namespace workstation {

/// A file that is in the index.
struct IndexedFile {
  std::int64_t id = 0;
  FileStamp stamp;
};

/// A file as it was read.
struct FileToIndex {
  FileStamp stamp;
  FileContents contents;
};

/// An imported file and where it came from.
struct ImportedFile {
  FileStamp source;
  FileStamp file;
};

/// The images of a series that agree in all that a series has in common.
struct IndexedSeries {
  std::string studyUid;
  std::optional<std::string> studyDescription;
  std::string studyDate;
  std::string patientName;
  std::string patientId;
  std::string seriesUid;
  std::string modality;
  std::size_t objects = 0;  ///< an object that lies in several files counts once
  std::size_t slices = 0;   ///< likewise; frames of multi-frame images count
};

/// An object that is no image.
struct IndexedObject {
  FileStamp file;
  ObjectHeader header;
  bool isReport = false;
  std::optional<DecodedLabelling> labelling;
};

/// What is listed of a file that shows no image.
struct IndexedPlace {
  FileStamp file;
  std::string reason;  ///< of an unreadable file
};

/// Every operation throws SQLite::Exception (a std::runtime_error) when the index is damaged, busy for ten seconds or
/// cannot be written; what it was about to change is unchanged then. Lists are in order of the files' paths.
class Index {
 public:
  /// The version that this program writes.
  static int latestVersion();
  /// Which files are indexes: PRAGMA application_id.
  static constexpr std::int32_t applicationId = 0x56724e61;

  /// An index in memory, empty.
  Index();
  /// Takes over an open database that holds an index of the latest version.
  explicit Index(std::unique_ptr<SQLite::Database> database);
  ~Index();

  /// The files of these folders, or of all.
  std::vector<IndexedFile> files();
  std::vector<IndexedFile> files(const std::vector<std::string>& folders);

  /// In one transaction: forgets files, then enters others, each in place of what was there under its name.
  void change(const std::vector<std::int64_t>& gone, const std::vector<FileToIndex>& fresh);

  /// The slices of a study, or of all, with the paths of their files below `root`; copies are among them.
  std::vector<ImageRecord> images(const std::filesystem::path& root, const std::string& studyUid);
  std::vector<ImageRecord> images(const std::filesystem::path& root);
  /// The first image file of the study by path.
  std::optional<FileStamp> firstImage(const std::string& studyUid);
  bool holdsStudy(const std::string& studyUid);
  /// In no particular order.
  std::vector<IndexedSeries> series();

  /// The objects of a study, or of all, that are no images.
  std::vector<IndexedObject> objects(const std::string& studyUid);
  std::vector<IndexedObject> objects();
  std::vector<IndexedPlace> places(FileKind kind);
  /// Those in one folder, at a cost that does not depend on how many there are in all.
  std::vector<IndexedPlace> places(FileKind kind, const std::string& folder);

  /// Whether this file, in this state, was imported and what was made of it is still there. The folder of a source is
  /// its absolute path.
  bool isImported(const FileStamp& source);
  /// Enters of which sources files of the index are copies.
  void rememberSources(const std::vector<ImportedFile>& copies);
  /// The file with this object, undamaged.
  std::optional<FileStamp> fileOf(const std::string& studyUid, const std::string& sopInstanceUid);

  /// The whole index as the bytes of a file.
  pelmar::Bytes serialized();

 private:
  class Writer;
  std::vector<IndexedObject> objectsWhere(const std::string* studyUid);
  std::vector<ImageRecord> imagesWhere(const std::filesystem::path& root, const std::string* studyUid);
  void readLevels(std::int64_t fileId, std::int64_t count, DecodedLabelling& decoded);

  std::unique_ptr<SQLite::Database> database_;
};

/// Turns foreign keys on and brings the tables to the latest version, in one transaction.
void upgradeSchema(SQLite::Database& database);

}  // namespace workstation
