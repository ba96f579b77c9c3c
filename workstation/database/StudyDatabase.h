#pragma once
// Studies on disk: a database folder into which files are imported, or any folder of DICOM files opened in place.

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "workstation/database/AtomicFile.h"
#include "workstation/database/FolderScan.h"
#include "workstation/database/Import.h"
#include "workstation/database/LastReport.h"
#include "workstation/database/ReportShelf.h"
#include "workstation/dicom/StudyReader.h"
#include "workstation/model/ImageRecord.h"
#include "workstation/model/Outcome.h"

namespace workstation {

class Index;
struct IndexedObject;

/// A study in a list of studies.
struct StudyEntry {
  std::string studyUid;
  std::string patientName;  ///< DICOM form, UTF-8
  std::string patientId;
  std::optional<std::string> description;
  std::string date;                     ///< YYYYMMDD, or what the files say
  std::vector<std::string> modalities;  ///< of the images, each once, sorted
  std::size_t series = 0;               ///< of images
  std::size_t images = 0;               ///< objects; one that lies in several files counts once
  std::size_t slices = 0;               ///< frames of multi-frame images count
  std::size_t reports = 0;              ///< structured reports
  bool holdsLabelling = false;          ///< the labelling report that counts is not the empty state
};

struct OpenOptions {
  /// Called before each file that has to be read, and once at the end; not at all when all files are known. False stops
  /// reading, and nothing is opened.
  Progress progress;
  DiskCalls disk;
  /// Of a database folder: one is made where there is none. Else what is none is refused, and left as it is.
  bool makeDatabase = false;
  /// Of a database folder: another process has just opened it, so the index says what lies there. The files are not
  /// looked at then, neither on opening nor later; what is stored through the index is seen all the same.
  /// Without effect where no index was found that can be used.
  bool indexIsCurrent = false;
};

/// Of two kinds:
/// - a *database folder* has an index that several processes share, and the studies in a folder below it;
/// - a folder *opened in place* is read where it lies, and nothing is written to it until a report is stored there. Its
///   index is in memory; from the first stored report on a copy of it lies in a hidden folder, so that the next opening
///   need not read the files again. What another process stores is seen by looking at the folder.
/// An index is only ever a help: whenever it is missing, damaged, foreign or of a later version, or fails later on, the
/// files are read instead and notices() tells. Opening looks at the name, size and time of every file and reads those
/// that are new or changed. Main thread only.
class StudyDatabase final : public ReportShelf {
 public:
  /// Whether it is a database folder, or was one that has lost its index or its studies.
  static bool isDatabase(const std::filesystem::path& folder);
  /// Opens a database folder.
  static Result<std::unique_ptr<StudyDatabase>> openDatabase(const std::filesystem::path& folder,
                                                             const OpenOptions& options = {});
  /// Opens a folder of DICOM files, or one file, in place.
  static Result<std::unique_ptr<StudyDatabase>> openFolder(const std::filesystem::path& folderOrFile,
                                                           const OpenOptions& options = {});
  ~StudyDatabase() override;

  /// Whole sentences about indexes that could not be used, in order; they stay until the end.
  const std::vector<std::string>& notices() const { return notices_; }

  /// The studies that hold every word of `search` in patient's name or ID, description or date, whatever the case and
  /// the accents; newest first, then by name. A study without an image is among them when it has a report.
  std::vector<StudyEntry> studies(std::string_view search = {});
  /// The slices of a study as readImages gives them, copies set aside; empty when the study is not here.
  std::vector<ImageRecord> images(const std::string& studyUid);
  /// The study's slices, and the files in the same folders that cannot be used: whose they were nobody can tell.
  ReadResult contents(const std::string& studyUid);
  /// Everything that lies here, as readImages gives it, from the index alone. Reports are among the other objects.
  ReadResult contents();
  /// The files that cannot be used, by path; neither images nor what is no DICOM file.
  std::vector<UnreadableFile> unreadableFiles();

  /// Looks for files that came or went since the last look. Cheap. The operations of ReportShelf do so by themselves.
  void refresh();
  /// Looks at every file as opening does, and reads those that were changed in their place or may not be read any more.
  void lookAgain();

  /// Copies files into a database folder; see importInto. Refused, as a problem of the result, for a folder that is
  /// opened in place.
  ImportResult importFiles(const std::vector<std::filesystem::path>& paths, const Progress& progress = {});

  // --- ReportShelf -------------------------------------------------------------------------------------------------
  bool holdsStudy(const std::string& studyUid) override;
  /// An object that lies in several files is listed with the first by path, a labelling with the first that can be
  /// read.
  std::vector<ReportSeries> reportSeries(const std::string& studyUid) override;
  std::vector<ShelvedReport> labellings(const std::string& studyUid) override;
  std::optional<StoredReport> reportReadLast(const std::filesystem::path& file) override {
    return lastReport_.find(file);
  }
  /// Beside the study's first image, under a plain name, so that who copies the images copies the report; in the folder
  /// that is open itself where a link leads out of it to the image.
  std::filesystem::path freshPath(const std::string& studyUid, std::string_view extension) override;
  /// Refused also when the bytes are no structured report of that study, when there is such a file already, and when
  /// the file would not lie in the folder that is open. Once it returns, the report survives a loss of power.
  Outcome store(const std::string& studyUid, const std::filesystem::path& file, const pelmar::Bytes& bytes) override;
  std::filesystem::path anyImage(const std::string& studyUid) override;

 private:
  enum class Kind { database, inPlace, oneFile };
  StudyDatabase(Kind kind, std::filesystem::path root, std::string onlyFile, std::filesystem::path indexFile,
                const OpenOptions& options);

  bool openShared();
  void openCopy();
  bool update(const FolderListing& listing, const Progress& progress);
  bool isThereAfterAll(const FileStamp& file) const;
  Result<FileStamp> placeOf(const std::filesystem::path& file) const;
  void enterStored(const FileStamp& place, const std::filesystem::path& file);
  ShelvedReport shelved(IndexedObject report) const;
  void readWithoutIndex(const std::string& reason);
  template <class Question>
  auto withIndex(Question question);

  Kind kind_;
  std::filesystem::path root_;       ///< the folder that is scanned
  std::filesystem::path indexFile_;  ///< empty when none may be kept
  DiskCalls disk_;
  FolderScan scan_;
  bool looksAtFiles_ = true;  ///< false: the index is believed
  std::unique_ptr<Index> index_;
  LastReport lastReport_;
  std::vector<std::string> notices_;
};

}  // namespace workstation
