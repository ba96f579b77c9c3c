#include "workstation/database/LabellingStore.h"

#include <algorithm>
#include <tuple>

#include "workstation/database/LabellingStoreInterior.h"
#include "workstation/database/ReportRules.h"
#include "workstation/model/StoredObjects.h"

namespace workstation {
namespace {

using pelmar::Ref;

/// A report that is not on the shelf yet, as one that is.
ShelvedReport shelved(const MadeReport& report) {
  ShelvedReport result;
  result.file = report.path;
  result.sopInstanceUid = report.sopUid;
  result.seriesInstanceUid = report.seriesUid;
  result.labelling = report.labelling;
  return result;
}

}  // namespace

LabellingStore::Interior::Interior(ReportShelf& shelf, pelmar::Point3DClass& points, LabellingStoreParts parts)
    : shelf_(shelf),
      points_(points),
      parts_(std::move(parts)),
      browser_(makeBrowser(*this)),
      annotations_(makeAnnotationClass(*this)) {}

Result<StoredReport> LabellingStore::Interior::readReport(const std::filesystem::path& file) const {
  auto last = shelf_.reportReadLast(file);
  return last ? Result<StoredReport>::of(*std::move(last)) : parts_.readFile(file);
}

Result<StoredReport> LabellingStore::Interior::readForArchive(const std::filesystem::path& file) const {
  auto last = shelf_.reportReadLast(file);
  return last ? Result<StoredReport>::of(*std::move(last)) : parts_.readForArchive(file);
}

LabellingStore::LabellingStore(ReportShelf& shelf, pelmar::Point3DClass& points, LabellingStoreParts parts)
    : interior_(std::make_unique<Interior>(shelf, points, std::move(parts))) {}

LabellingStore::~LabellingStore() = default;

// --- for display ---------------------------------------------------------------------------------------------------

StoredStatus LabellingStore::status(const std::string& studyUid) const {
  const std::lock_guard lock(interior_->mutex_);
  StoredStatus status;
  const auto there = interior_->shelf_.labellings(studyUid);
  status.objects = there.size();
  if (const ShelvedReport* counting = countingReport(there)) {
    status.counting = counting->sopInstanceUid;
    status.state = counting->labelling;
    status.fromContent = counting->fromContent;
  }
  const auto study = interior_->studies_.find(studyUid);
  if (study == interior_->studies_.end()) return status;
  status.held = study->second.held.has_value();
  status.problem = study->second.problem;
  if (const MadeReport* unsaved = interior_->unsaved(studyUid)) {
    status.unsaved = true;
    status.counting = unsaved->sopUid;
    status.state = unsaved->labelling;
    status.fromContent = false;
  }
  return status;
}

std::optional<ShelvedReport> LabellingStore::counting(const std::string& studyUid) const {
  const std::lock_guard lock(interior_->mutex_);
  if (const MadeReport* unsaved = interior_->unsaved(studyUid)) return shelved(*unsaved);
  const auto there = interior_->shelf_.labellings(studyUid);
  const ShelvedReport* counting = countingReport(there);
  return counting ? std::optional(*counting) : std::nullopt;
}

ReportContext LabellingStore::countingContext(const std::string& studyUid) const {
  const std::lock_guard lock(interior_->mutex_);
  if (const MadeReport* unsaved = interior_->unsaved(studyUid)) return unsaved->context.value_or(ReportContext());
  const auto counts = counting(studyUid);
  if (!counts) return {};
  const auto report = interior_->readReport(counts->file);
  return report ? report->context : ReportContext();
}

std::vector<ShelvedReport> LabellingStore::unreadable(const std::string& studyUid) const {
  const std::lock_guard lock(interior_->mutex_);
  auto reports = interior_->shelf_.labellings(studyUid);
  std::erase_if(reports, [](const ShelvedReport& report) { return report.labelling.has_value(); });
  return reports;
}

std::vector<HistoryEntry> LabellingStore::history(const std::string& studyUid) const {
  const std::lock_guard lock(interior_->mutex_);
  auto there = interior_->shelf_.labellings(studyUid);
  std::sort(there.begin(), there.end(), isEarlier);
  const bool nothingUnsaved = interior_->unsaved(studyUid) == nullptr;
  const ShelvedReport* counting = countingReport(there);
  std::vector<HistoryEntry> entries;
  entries.reserve(there.size());
  for (const ShelvedReport& report : there) entries.push_back({report, nothingUnsaved && &report == counting, false});
  if (nothingUnsaved) return entries;
  for (const MadeReport& report : interior_->studies_[studyUid].unsaved)
    entries.push_back({shelved(report), false, true});
  entries.back().counts = true;
  return entries;
}

std::vector<std::string> LabellingStore::takeNotices() {
  const std::lock_guard lock(interior_->mutex_);
  return interior_->takeNotices();
}

void LabellingStore::setFailing(bool failing) {
  const std::lock_guard lock(interior_->mutex_);
  interior_->failing_ = failing;
}

// --- for the model -------------------------------------------------------------------------------------------------

Ref<pelmar::BrowserController> LabellingStore::currentBrowser() { return interior_->browser_; }

pelmar::SRAnnotationClass& LabellingStore::srAnnotationClass() { return *interior_->annotations_; }

Ref<pelmar::PersistentStore> LabellingStore::persistentStore(const std::string& studyUid) {
  const std::lock_guard lock(interior_->mutex_);
  if (!interior_->shelf_.holdsStudy(studyUid)) return {};
  Ref<pelmar::PersistentStore>& store = interior_->stores_[studyUid];
  if (!store) store = makeStore(studyUid);
  return store;
}

std::vector<Ref<pelmar::DicomSeries>> LabellingStore::reportSeries(const std::string& studyUid) {
  const std::lock_guard lock(interior_->mutex_);
  auto all = interior_->shelf_.reportSeries(studyUid);
  // What waits to be written has its place too, so that the next report joins it.
  const auto study = interior_->studies_.find(studyUid);
  if (study != interior_->studies_.end()) {
    for (const MadeReport& report : study->second.unsaved) {
      auto series = std::find_if(all.begin(), all.end(),
                                 [&](const ReportSeries& one) { return one.seriesInstanceUid == report.seriesUid; });
      if (series == all.end()) {
        all.push_back({report.seriesUid, report.seriesNumber, report.seriesDescription, {}});
        series = all.end() - 1;
      }
      series->files.emplace_back(report.path);
    }
  }
  std::stable_sort(all.begin(), all.end(), [](const ReportSeries& a, const ReportSeries& b) {
    return std::tie(a.seriesNumber, a.seriesInstanceUid) < std::tie(b.seriesNumber, b.seriesInstanceUid);
  });
  std::vector<Ref<pelmar::DicomSeries>> objects;
  objects.reserve(all.size());
  for (const ReportSeries& series : all) objects.push_back(makeReportSeries(series));
  return objects;
}

Ref<pelmar::DicomImage> LabellingStore::report(const std::string& studyUid, long seriesNumber,
                                               std::string_view seriesDescription) {
  const std::lock_guard lock(interior_->mutex_);
  // Which report of another kind counts nobody has said: none does.
  if (seriesNumber != labellingSeriesNumber || seriesDescription != labellingSeriesDescription) return {};
  interior_->dropHeld(studyUid);
  const auto there = interior_->shelf_.labellings(studyUid);
  interior_->noticeProblems(there);
  if (const MadeReport* unsaved = interior_->unsaved(studyUid)) return makeStoredImage(unsaved->path);
  const ShelvedReport* counting = countingReport(there);
  return counting ? makeStoredImage(counting->file.string()) : Ref<pelmar::DicomImage>();
}

bool LabellingStore::holdsInMemory(const std::string& path) const {
  const std::lock_guard lock(interior_->mutex_);
  return interior_->inMemory(path) != nullptr;
}

void LabellingStore::paletteOpened(const std::string& studyUid) {
  const std::lock_guard lock(interior_->mutex_);
  interior_->paletteStudy_ = studyUid;
  interior_->retryAll();
}

void LabellingStore::paletteClosed() {
  const std::lock_guard lock(interior_->mutex_);
  interior_->paletteClosed();
}

void LabellingStore::paletteEvent() {
  const std::lock_guard lock(interior_->mutex_);
  interior_->retryAll();
}

void LabellingStore::quitting() {
  const std::lock_guard lock(interior_->mutex_);
  interior_->dropAllHeld();
  interior_->paletteStudy_.reset();
  interior_->retryAll();
}

void LabellingStore::setContextSource(ContextSource source) {
  const std::lock_guard lock(interior_->mutex_);
  interior_->contextSource_ = std::move(source);
}

}  // namespace workstation
