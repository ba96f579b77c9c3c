#pragma once
// The structured report (Comprehensive 3D SR) that holds a labelling: a TID 1500 Measurement Report for every reader,
// and the archive of the state, in a private block, for this program.

#include <filesystem>
#include <string>
#include <vector>

#include "host/Database.h"
#include "workstation/archive/SavedLabelling.h"
#include "workstation/model/Outcome.h"
#include "workstation/model/ReportContext.h"

namespace workstation {

/// A moment as DICOM writes it.
struct ContentTime {
  std::string date;  ///< YYYYMMDD
  std::string time;  ///< HHMMSS.FFFFFF
  friend auto operator<=>(const ContentTime&, const ContentTime&) = default;
};

/// Everything that a new report says.
struct ReportToWrite {
  std::filesystem::path patientImage;  ///< an image of the study: patient and study are taken from it
  std::string sopInstanceUid;
  std::string seriesInstanceUid;
  int seriesNumber = 0;
  std::string seriesDescription;
  int instanceNumber = 1;
  ContentTime contentTime;
  SavedLabelling labelling;
  pelmar::Bytes archive;  ///< of `labelling`
  ReportContext context;  ///< of no meaning with the empty state
};

/// The bytes of the report's file (explicit VR little endian). Refused when the image cannot be read or the labelling
/// cannot be told (a level without a frame of reference).
Result<pelmar::Bytes> encodeReport(const ReportToWrite& report);

/// A structured report as it lies in a study.
struct StoredReport {
  std::string studyInstanceUid;
  std::string seriesInstanceUid;
  int seriesNumber = 0;
  std::string seriesDescription;
  std::string sopClassUid;
  std::string sopInstanceUid;
  int instanceNumber = 0;
  ContentTime contentTime;
  /// The archive's bytes as they lie there, padding included; empty when the report carries none.
  pelmar::Bytes archive;
  /// What the standard content says, numbers in single precision; absent when it is not a labelling that we know.
  std::optional<SavedLabelling> content;
  ReportContext context;  ///< as far as the content tells it
};

/// Reads a structured report. Refused, with a phrase that says why, when the file is not one.
Result<StoredReport> readReport(const std::filesystem::path& file);
Result<StoredReport> readReport(const pelmar::Bytes& file);
/// The same for whom the archive is enough: where there is one, what the content says may be left out, `content` and
/// `context`. With thousands of slices that is many times as fast.
Result<StoredReport> readReportForArchive(const std::filesystem::path& file);

}  // namespace workstation
