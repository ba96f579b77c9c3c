#pragma once
// A shelf in memory, reports without DICOM, and a plug-in's hand that stores and looks up states.

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "workstation/archive/KeyedArchive.h"
#include "workstation/database/LabellingStore.h"
#include "workstation/model/Points.h"

namespace workstation::test {

inline const std::string study = "1.2.3";

/// A file on the shelf. Outlives the stores that write it, as a disk does.
struct FakeFile {
  std::string studyUid;
  std::filesystem::path path;
  StoredReport report;
  std::string problem;  ///< not empty: it cannot be read
};

/// Shelf and report coding in one: the "bytes" of a report are the number of the report that was encoded.
class FakeShelf final : public ReportShelf {
 public:
  std::vector<std::string> studies{study, "9.9"};
  std::vector<FakeFile> files;
  std::vector<ReportToWrite> encoded;
  std::vector<StoredReport> coded;
  /// Where files get their paths. When it exists, what is stored leaves a file there, so that others see that it is.
  std::filesystem::path folder = "/shelf";
  bool failsAfterWriting = false;  ///< store() refuses although the file is there then
  int paths = 0;
  int uids = 0;
  std::chrono::system_clock::time_point now = std::chrono::system_clock::from_time_t(1'600'000'000);

  LabellingStoreParts parts();
  /// What someone else puts there, with his own place in the order and a number as SOP Instance UID.
  FakeFile& add(const std::string& sopUid, const ContentTime& time, const SavedLabelling& labelling,
                const std::string& seriesUid = "7.7");

  bool holdsStudy(const std::string& studyUid) override;
  std::vector<ReportSeries> reportSeries(const std::string& studyUid) override;
  std::vector<ShelvedReport> labellings(const std::string& studyUid) override;
  std::filesystem::path freshPath(const std::string& studyUid, std::string_view extension) override;
  Outcome store(const std::string& studyUid, const std::filesystem::path& file, const pelmar::Bytes& bytes) override;
  std::filesystem::path anyImage(const std::string&) override { return "/any/image"; }

 private:
  Result<StoredReport> read(const pelmar::Bytes& bytes) const;
  PatientPointClass points_;
};

pelmar::Bytes archiveOf(const SavedLabelling& labelling);
std::optional<SavedLabelling> labellingOf(const pelmar::Bytes& archive);

/// Lumbar, with one level through (x, 2, 3).
SavedLabelling lumbar(double x);
inline const SavedLabelling empty;

/// Does what the plug-in does to store a state, and to look it up.
class PluginHand {
 public:
  explicit PluginHand(StudyReports& reports) : reports_(&reports) {}
  /// Answers the path under which the report was handed over.
  std::string save(const SavedLabelling& labelling, const std::string& studyUid = study);
  std::optional<SavedLabelling> load(const std::string& studyUid = study);
  std::optional<std::string> lookUp(const std::string& studyUid = study);
  pelmar::Ref<pelmar::DicomDatabase> database() { return reports_->currentBrowser()->database(); }

 private:
  StudyReports* reports_;
};

/// The states of a study's files in the order in which they were written; nothing for one that cannot be read.
std::vector<std::optional<SavedLabelling>> statesOn(FakeShelf& shelf, const std::string& studyUid = study);

}  // namespace workstation::test
