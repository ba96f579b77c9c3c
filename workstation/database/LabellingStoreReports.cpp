// The plug-in's files: paths that are handed out, reports in memory, and files that others made.
#include <fstream>
#include <iterator>

#include "workstation/archive/KeyedArchive.h"
#include "workstation/archive/SavedLabelling.h"
#include "workstation/database/LabellingStoreInterior.h"
#include "workstation/database/ReportRules.h"

namespace workstation {
namespace {

namespace fs = std::filesystem;

/// How often a fresh path is asked for before giving up: a shelf may name one that was handed out and not used yet.
constexpr int attemptsAtFreshPath = 100;
/// No report is larger; a file that claims to be is not read into memory.
constexpr std::uintmax_t largestFileBytes = 256u << 20;

std::optional<pelmar::Bytes> contentOf(const fs::path& file) {
  std::error_code error;
  const auto size = fs::file_size(file, error);
  if (error || size > largestFileBytes) return std::nullopt;
  std::ifstream in(file, std::ios::binary);
  pelmar::Bytes bytes(std::istreambuf_iterator<char>(in), {});
  if (!in || bytes.size() != size) return std::nullopt;
  return bytes;
}

}  // namespace

std::optional<std::string> LabellingStore::Interior::handOutPath(const std::string& studyUid,
                                                                 std::string_view extension) {
  for (int attempt = 0; attempt < attemptsAtFreshPath; ++attempt) {
    const std::string path = shelf_.freshPath(studyUid, extension).string();
    if (path.empty()) return std::nullopt;
    if (inMemory(path) || !handedOut_.try_emplace(path, HandedOut{studyUid, std::nullopt}).second) continue;
    return path;
  }
  return std::nullopt;
}

const MadeReport* LabellingStore::Interior::inMemory(const std::string& path) const {
  const auto handedOut = handedOut_.find(path);
  if (handedOut != handedOut_.end() && handedOut->second.report) return &*handedOut->second.report;
  for (const auto& [uid, study] : studies_) {
    if (study.held && study.held->path == path) return &*study.held;
    for (const MadeReport& report : study.unsaved) {
      if (report.path == path) return &report;
    }
  }
  return nullptr;
}

bool LabellingStore::Interior::write(MadeReport report, const std::string& path) {
  report.labelling = decoded(report.archive);
  if (!report.labelling) {
    notice("The report " + path + " is not saved: what it carries is not a labelling that can be read.");
    return false;
  }
  report.path = path;
  const auto handedOut = handedOut_.find(path);
  if (handedOut != handedOut_.end()) {
    report.studyUid = handedOut->second.studyUid;
    handedOut->second.report = std::move(report);
    return true;
  }
  ReportToWrite whole{report.patientImage,
                      report.sopUid,
                      report.seriesUid,
                      report.seriesNumber,
                      report.seriesDescription,
                      1,
                      {},
                      *report.labelling,
                      report.archive,
                      {}};
  whole.contentTime = contentTimeAt(parts_.now());
  const auto bytes = parts_.encode(whole);
  if (!bytes || failing_) {
    notice("The report " + path + " is not saved: " + (bytes ? "no space is left on the device." : bytes.problem));
    return false;
  }
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(reinterpret_cast<const char*>(bytes->data()), static_cast<std::streamsize>(bytes->size()));
  out.close();
  return out.good();
}

void LabellingStore::Interior::import(const std::string& path) {
  auto handedOut = handedOut_.find(path);
  if (handedOut == handedOut_.end()) {
    importFile(path);
    return;
  }
  // A path without a report stays handed out: nothing was written there.
  if (!handedOut->second.report) return;
  MadeReport report = *std::move(handedOut->second.report);
  handedOut_.erase(handedOut);
  decide(std::move(report));
}

/// A file that was made elsewhere. What is not a structured report of a study on the shelf is passed over.
void LabellingStore::Interior::importFile(const std::string& path) {
  const auto bytes = contentOf(path);
  if (!bytes) return;
  const auto report = parts_.readBytes(*bytes);
  if (!report || !shelf_.holdsStudy(report->studyInstanceUid)) return;
  for (const ReportSeries& series : shelf_.reportSeries(report->studyInstanceUid)) {
    for (const fs::path& file : series.files) {
      std::error_code error;
      if (fs::equivalent(file, path, error)) return;
    }
  }
  for (const ShelvedReport& known : shelf_.labellings(report->studyInstanceUid)) {
    if (known.labelling && known.sopInstanceUid == report->sopInstanceUid) return;
  }
  const Outcome outcome =
      failing_ ? Outcome::refused("no space is left on the device.")
               : shelf_.store(report->studyInstanceUid, shelf_.freshPath(report->studyInstanceUid, "dcm"), *bytes);
  if (!outcome) notice("The report " + path + " is not added to the study: " + *outcome.problem);
}

std::optional<SavedLabelling> LabellingStore::Interior::decoded(const pelmar::Bytes& archive) const {
  const auto root = readPaddedArchive(archive, points_);
  return root ? labellingFromValue(*root) : std::nullopt;
}

void LabellingStore::Interior::hasRead(const StoredReport& report) {
  if (report.seriesNumber != labellingSeriesNumber || report.seriesDescription != labellingSeriesDescription) return;
  const auto labelling = report.archive.empty() ? report.content : decoded(report.archive);
  if (labelling) studies_[report.studyInstanceUid].lastSeen = labelling;
}

std::optional<pelmar::Bytes> LabellingStore::Interior::archiveOf(const StoredReport& report, const std::string& path) {
  if (!report.archive.empty()) return report.archive;
  if (!report.content) return std::nullopt;
  auto archive = writeArchive(valueFromLabelling(*report.content, points_));
  if (!archive) return std::nullopt;
  noticeContent(path);
  return *std::move(archive);
}

}  // namespace workstation
