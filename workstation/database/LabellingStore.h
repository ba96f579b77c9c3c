#pragma once
// The plug-in's database: hands its reports on to a shelf, and decides which of a study's reports counts.
//
// - A report that holds a labelling is written at once. One of the empty state is held in memory: it is written when
//   the palette that was opened on the study closes, and dropped when the plug-in looks up the study's state, when a
//   labelling of the study follows, and when the program ends.
// - A report is not written when its state, in single precision, is the one that counts, or the one that the plug-in
//   last read or this store last wrote for the study: looking at a study never overwrites what a colleague did.
// - The newest readable report counts (ReportRules.h).
// - A report that could not be written stays in memory, counts all the same, and is tried again at each palette event
//   and on quitting.
//
// Studies are named by their Study Instance UID. Safe to call on any thread; the shelf is then called on that thread,
// one call at a time. What is shown to a person comes in whole sentences.

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/Point3D.h"
#include "workstation/database/ReportShelf.h"
#include "workstation/model/Outcome.h"
#include "workstation/model/Seams.h"

namespace workstation {

/// What the store is made of, each exchangeable for tests.
struct LabellingStoreParts {
  std::function<Result<pelmar::Bytes>(const ReportToWrite&)> encode;
  std::function<Result<StoredReport>(const std::filesystem::path&)> readFile;
  /// The same, but what the content says may be left out where there is an archive.
  std::function<Result<StoredReport>(const std::filesystem::path&)> readForArchive;
  std::function<Result<StoredReport>(const pelmar::Bytes&)> readBytes;
  std::function<std::string()> freshUid;  ///< a UID that nothing else has
  std::function<std::chrono::system_clock::time_point()> now;
};

/// DICOM reports, the system's clock, and UIDs under 2.25 that are made at random. The report that was read last in
/// either way is kept, and is read again only when its file has changed.
LabellingStoreParts dicomParts();

/// What a study holds, for display.
struct StoredStatus {
  std::size_t objects = 0;              ///< reports of labellings on disk, unreadable ones included
  std::string counting;                 ///< SOP Instance UID of the one that counts; empty: none does
  std::optional<SavedLabelling> state;  ///< what that one says
  bool fromContent = false;             ///< its archive is missing: read from the standard content
  bool held = false;                    ///< an empty state waits for the palette to close
  bool unsaved = false;                 ///< the one that counts could not be written yet
  std::string problem;                  ///< why not, a sentence; else empty
};

/// A report of a study's past.
struct HistoryEntry {
  ShelvedReport report;  ///< of one that is not on disk yet: its file is where it will be, place and time are absent
  bool counts = false;
  bool unsaved = false;  ///< not on disk yet
};

class LabellingStore final : public StudyReports {
 public:
  /// `shelf` and `points` must outlive the store; the store must outlive every workstation that uses it.
  LabellingStore(ReportShelf& shelf, pelmar::Point3DClass& points, LabellingStoreParts parts = dicomParts());
  /// As a crash: what is held or not saved is lost. Workstation::quit() saves what can be saved.
  ~LabellingStore() override;

  // --- for display; changes nothing --------------------------------------------------------------------------------

  StoredStatus status(const std::string& studyUid) const;
  /// The report that counts; one that is not on disk yet is named with the file in which it will be.
  std::optional<ShelvedReport> counting(const std::string& studyUid) const;
  /// What the report that counts tells of the study, as far as it can be read; empty where none counts.
  ReportContext countingContext(const std::string& studyUid) const;
  /// Those that do not count because they cannot be read; each says why.
  std::vector<ShelvedReport> unreadable(const std::string& studyUid) const;
  /// Every report, oldest first; those not on disk yet last.
  std::vector<HistoryEntry> history(const std::string& studyUid) const;
  /// What the person should know, since the last call: reports that cannot be read or were read from their standard
  /// content when the plug-in looked, and reports that could not be saved. Each is said once.
  std::vector<std::string> takeNotices();

  // --- for the person ----------------------------------------------------------------------------------------------

  /// Makes an earlier report count again by writing a new one that says the same. Refused when there is no such report,
  /// when it cannot be read or says what already counts, and when the new one cannot be written; nothing is kept then.
  Outcome restore(const std::string& studyUid, const std::string& sopInstanceUid);
  /// From here on writing fails as on a full disk, or no longer does.
  void setFailing(bool failing);

  // --- for the model -----------------------------------------------------------------------------------------------

  pelmar::Ref<pelmar::BrowserController> currentBrowser() override;
  pelmar::SRAnnotationClass& srAnnotationClass() override;
  pelmar::Ref<pelmar::PersistentStore> persistentStore(const std::string& studyUid) override;
  std::vector<pelmar::Ref<pelmar::DicomSeries>> reportSeries(const std::string& studyUid) override;
  /// The plug-in's look-up.
  pelmar::Ref<pelmar::DicomImage> report(const std::string& studyUid, long seriesNumber,
                                         std::string_view seriesDescription) override;
  bool holdsInMemory(const std::string& path) const override;
  void paletteOpened(const std::string& studyUid) override;
  void paletteClosed() override;
  void paletteEvent() override;
  void quitting() override;
  void setContextSource(ContextSource source) override;

  class Interior;

 private:
  std::unique_ptr<Interior> interior_;
};

}  // namespace workstation
