#pragma once
// What the store's parts share: what is in memory, and the rules by which it goes into the studies.

#include <map>
#include <mutex>
#include <set>
#include <thread>

#include "workstation/database/LabellingStore.h"

namespace workstation {

/// A report that the plug-in made, before it is in a study.
struct MadeReport {
  std::string studyUid;
  std::string path;  ///< where it will be
  pelmar::Bytes archive;
  std::optional<SavedLabelling> labelling;  ///< absent when the archive does not hold one
  std::filesystem::path patientImage;       ///< empty: any image of the study
  int seriesNumber = 0;
  std::string seriesDescription;
  std::string seriesUid;
  std::string sopUid;
  std::optional<ReportContext> context;  ///< once it was asked for

  bool isOfLabellings() const {
    return seriesNumber == labellingSeriesNumber && seriesDescription == labellingSeriesDescription;
  }
};

/// All members are called with the mutex locked by whoever calls from outside.
class LabellingStore::Interior {
 public:
  Interior(ReportShelf& shelf, pelmar::Point3DClass& points, LabellingStoreParts parts);

  /// The report in a file, which the shelf may have read already.
  Result<StoredReport> readReport(const std::filesystem::path& file) const;
  /// The same for whom the archive is enough, where there is one.
  Result<StoredReport> readForArchive(const std::filesystem::path& file) const;

  // --- the plug-in's files (LabellingStoreReports.cpp) -------------------------------------------------------------
  std::optional<std::string> handOutPath(const std::string& studyUid, std::string_view extension);
  /// Remembers the report when the path was handed out; writes its file otherwise.
  bool write(MadeReport report, const std::string& path);
  void import(const std::string& path);
  /// The report that is in memory under the path; null when none is.
  const MadeReport* inMemory(const std::string& path) const;
  /// Remembers what the plug-in has just read.
  void hasRead(const StoredReport& report);
  /// The labelling in an archive, with or without a pad byte at its end.
  std::optional<SavedLabelling> decoded(const pelmar::Bytes& archive) const;
  /// The archive of a report; made from its content, which is said, when it carries none.
  std::optional<pelmar::Bytes> archiveOf(const StoredReport& report, const std::string& path);

  // --- what goes into the study (LabellingStoreRules.cpp) ----------------------------------------------------------
  /// The plug-in has handed over a report.
  void decide(MadeReport report);
  /// The plug-in looks up the state of a study.
  void dropHeld(const std::string& studyUid) { studies_[studyUid].held.reset(); }
  void dropAllHeld();
  /// Puts a report into the study unless it says nothing new.
  void add(MadeReport report);
  void retry(const std::string& studyUid);
  void retryAll();
  void paletteClosed();
  /// Encodes a report and puts it on the shelf.
  Outcome shelve(MadeReport& report, int instanceNumber, const ContentTime& time);
  /// The same for a labelling, at the place after all that is there.
  Outcome shelveLabelling(MadeReport& report, const std::vector<ShelvedReport>& there);
  /// A new report that says what an earlier one of the study says; refused, with the rest of a sentence, when that
  /// cannot be read.
  Result<MadeReport> madeAgain(const std::string& studyUid, const ShelvedReport& earlier);

  /// The newest report that could not be written; null when all are.
  const MadeReport* unsaved(const std::string& studyUid) const;
  void notice(std::string sentence);
  /// Says once of every report that cannot be read, and of the counting one if read from its content.
  void noticeProblems(const std::vector<ShelvedReport>& reports);
  /// Says that the report under the path was read from its standard content.
  void noticeContent(const std::string& path);
  /// What the model tells of the study; nothing where it may not be asked: it is asked on its own thread only.
  std::optional<ReportContext> askedContext(const std::string& studyUid) const;

  struct StudyState {
    std::optional<MadeReport> held;
    std::vector<MadeReport> unsaved;         ///< oldest first
    std::string problem;                     ///< why the first of them could not be written
    std::optional<SavedLabelling> lastSeen;  ///< what the plug-in last read or this store last took for the study
  };

  mutable std::recursive_mutex mutex_;
  ReportShelf& shelf_;
  pelmar::Point3DClass& points_;
  const LabellingStoreParts parts_;
  ContextSource contextSource_;
  bool failing_ = false;
  std::map<std::string, StudyState> studies_;
  std::optional<std::string> paletteStudy_;  ///< on which the open palette was opened

  std::vector<std::string> takeNotices() { return std::exchange(notices_, {}); }

  pelmar::Ref<pelmar::BrowserController> browser_;
  std::unique_ptr<pelmar::SRAnnotationClass> annotations_;
  std::map<std::string, pelmar::Ref<pelmar::PersistentStore>> stores_;  ///< by study

 private:
  void writeOther(MadeReport report);
  void importFile(const std::string& path);

  struct HandedOut {
    std::string studyUid;
    std::optional<MadeReport> report;
  };
  std::map<std::string, HandedOut> handedOut_;  ///< by path, until imported
  std::set<std::string> said_;
  std::vector<std::string> notices_;
  const std::thread::id mainThread_ = std::this_thread::get_id();
};

/// The objects of the contract, working on the store (LabellingStoreObjects.cpp).
pelmar::Ref<pelmar::BrowserController> makeBrowser(LabellingStore::Interior& store);
std::unique_ptr<pelmar::SRAnnotationClass> makeAnnotationClass(LabellingStore::Interior& store);
pelmar::Ref<pelmar::PersistentStore> makeStore(const std::string& studyUid);
pelmar::Ref<pelmar::DicomSeries> makeReportSeries(const ReportSeries& series);

}  // namespace workstation
