#pragma once
// Where reports of labellings lie, seen by what decides which of them counts.

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "host/Database.h"
#include "workstation/archive/SavedLabelling.h"
#include "workstation/dicom/LabellingReport.h"
#include "workstation/model/Outcome.h"

namespace workstation {

/// The series number and description under which labellings are stored.
inline constexpr int labellingSeriesNumber = 20170720;
inline constexpr std::string_view labellingSeriesDescription = "Pelmar Vertana Plugin Intervertebral Planes SR";

/// A report of a study that lies in the series of labellings.
struct ShelvedReport {
  std::filesystem::path file;
  std::string sopInstanceUid;
  std::string seriesInstanceUid;
  int instanceNumber = 0;
  ContentTime contentTime;
  std::optional<SavedLabelling> labelling;  ///< absent when it cannot be read
  bool fromContent = false;                 ///< the archive is missing: read from the standard content
  std::string problem;                      ///< why it cannot be read: a phrase; else empty
};

/// A series of structured reports, whoever made it.
struct ReportSeries {
  std::string seriesInstanceUid;
  int seriesNumber = 0;
  std::string description;
  std::vector<std::filesystem::path> files;
};

class ReportShelf {
 public:
  virtual ~ReportShelf() = default;
  /// Whether the study lies here.
  virtual bool holdsStudy(const std::string& studyUid) = 0;
  /// All structured reports of the study by series: Series Number, then UID.
  virtual std::vector<ReportSeries> reportSeries(const std::string& studyUid) = 0;
  /// Every report with the labellings' series number and description, also what another process has just added.
  virtual std::vector<ShelvedReport> labellings(const std::string& studyUid) = 0;
  /// The report in the file where the shelf has just read it for itself; nothing says no more than that it has not.
  virtual std::optional<StoredReport> reportReadLast(const std::filesystem::path& /*file*/) { return std::nullopt; }
  /// Where a new file of the study may be written; nothing is there yet.
  virtual std::filesystem::path freshPath(const std::string& studyUid, std::string_view extension) = 0;
  /// Writes a report's file so that it is there whole or not at all, also after a crash, and enters it into the index.
  virtual Outcome store(const std::string& studyUid, const std::filesystem::path& file, const pelmar::Bytes& bytes) = 0;
  /// Some image of the study; empty when there is none.
  virtual std::filesystem::path anyImage(const std::string& studyUid) = 0;
};

}  // namespace workstation
