// What goes into a study, and when.
#include <algorithm>

#include "workstation/database/LabellingStoreInterior.h"
#include "workstation/database/ReportRules.h"

namespace workstation {
namespace {

/// Whether the report need not be written: what counts says the same, or an attempt that failed did write it.
bool isThere(const MadeReport& report, const std::vector<ShelvedReport>& there) {
  const ShelvedReport* counting = countingReport(there);
  if (counting && sameInSinglePrecision(*counting->labelling, *report.labelling)) return true;
  return std::any_of(there.begin(), there.end(),
                     [&](const ShelvedReport& one) { return one.sopInstanceUid == report.sopUid; });
}

}  // namespace

void LabellingStore::Interior::decide(MadeReport report) {
  if (!report.isOfLabellings()) {
    writeOther(std::move(report));
    return;
  }
  StudyState& study = studies_[report.studyUid];
  if (report.labelling->isEmpty()) {
    study.held = std::move(report);
    return;
  }
  study.held.reset();
  add(std::move(report));
}

void LabellingStore::Interior::add(MadeReport report) {
  StudyState& study = studies_[report.studyUid];
  // What waits to be written is what counts, and what this process took last.
  const std::optional<SavedLabelling>& last = study.unsaved.empty() ? study.lastSeen : study.unsaved.back().labelling;
  if (last && sameInSinglePrecision(*last, *report.labelling)) return;
  study.lastSeen = report.labelling;
  // Now, while the plug-in holds this labelling: when the report's turn comes it may hold another study's.
  if (!report.labelling->isEmpty() && !report.context) report.context = askedContext(report.studyUid);
  const std::string studyUid = report.studyUid;
  study.unsaved.push_back(std::move(report));
  retry(studyUid);
}

void LabellingStore::Interior::retry(const std::string& studyUid) {
  StudyState& study = studies_[studyUid];
  // In the order in which they were made, so that the newest comes last.
  while (!study.unsaved.empty()) {
    MadeReport& report = study.unsaved.front();
    const auto there = shelf_.labellings(report.studyUid);
    if (!isThere(report, there)) {
      const Outcome outcome = shelveLabelling(report, there);
      if (!outcome) {
        study.problem = *outcome.problem;
        notice("The labelling is not yet saved: " + study.problem);
        return;
      }
    }
    study.unsaved.erase(study.unsaved.begin());
  }
  study.problem.clear();
}

void LabellingStore::Interior::retryAll() {
  for (const auto& [uid, study] : studies_) {
    if (!study.unsaved.empty()) retry(uid);
  }
}

void LabellingStore::Interior::dropAllHeld() {
  for (auto& [uid, study] : studies_) study.held.reset();
}

void LabellingStore::Interior::paletteClosed() {
  if (!paletteStudy_) return;
  StudyState& study = studies_[*std::exchange(paletteStudy_, std::nullopt)];
  if (auto held = std::exchange(study.held, std::nullopt)) add(*std::move(held));
  retryAll();
}

const MadeReport* LabellingStore::Interior::unsaved(const std::string& studyUid) const {
  const auto study = studies_.find(studyUid);
  return study == studies_.end() || study->second.unsaved.empty() ? nullptr : &study->second.unsaved.back();
}

Outcome LabellingStore::Interior::shelveLabelling(MadeReport& report, const std::vector<ShelvedReport>& there) {
  const ReportPlace place = placeAfter(there, report.seriesUid, parts_.now());
  return shelve(report, place.instanceNumber, place.contentTime);
}

Outcome LabellingStore::Interior::shelve(MadeReport& report, int instanceNumber, const ContentTime& time) {
  // A report from another thread without a context cannot be encoded there: it waits for the next event.
  if (!report.context && !report.labelling->isEmpty()) report.context = askedContext(report.studyUid);
  ReportToWrite whole;
  whole.patientImage = report.patientImage.empty() ? shelf_.anyImage(report.studyUid) : report.patientImage;
  whole.sopInstanceUid = report.sopUid;
  whole.seriesInstanceUid = report.seriesUid;
  whole.seriesNumber = report.seriesNumber;
  whole.seriesDescription = report.seriesDescription;
  whole.instanceNumber = instanceNumber;
  whole.contentTime = time;
  whole.labelling = *report.labelling;
  whole.archive = report.archive;
  whole.context = report.context.value_or(ReportContext());
  const auto bytes = parts_.encode(whole);
  if (!bytes) return Outcome::refused(bytes.problem);
  if (failing_) {
    return Outcome::refused("The report " + report.path + " cannot be written: no space is left on the device.");
  }
  return shelf_.store(report.studyUid, report.path, *bytes);
}

std::optional<ReportContext> LabellingStore::Interior::askedContext(const std::string& studyUid) const {
  if (!contextSource_ || std::this_thread::get_id() != mainThread_) return std::nullopt;
  return contextSource_(studyUid);
}

/// A report that is not of labellings: no rule holds it back.
void LabellingStore::Interior::writeOther(MadeReport report) {
  int instanceNumber = 1;
  for (const ReportSeries& series : shelf_.reportSeries(report.studyUid)) {
    if (series.seriesInstanceUid == report.seriesUid) instanceNumber = static_cast<int>(series.files.size()) + 1;
  }
  const Outcome outcome = shelve(report, instanceNumber, contentTimeAt(parts_.now()));
  if (!outcome) notice("The report is not saved: " + *outcome.problem);
}

void LabellingStore::Interior::notice(std::string sentence) {
  if (said_.insert(sentence).second) notices_.push_back(std::move(sentence));
}

void LabellingStore::Interior::noticeProblems(const std::vector<ShelvedReport>& reports) {
  for (const ShelvedReport& report : reports) {
    if (report.labelling) continue;
    notice("The stored labelling " + report.file.string() +
           " does not count, for it cannot be read: " + report.problem + ".");
  }
  const ShelvedReport* counting = countingReport(reports);
  if (counting && counting->fromContent) {
    noticeContent(counting->file.string());
  }
}

void LabellingStore::Interior::noticeContent(const std::string& path) {
  notice("The archive of the stored labelling " + path +
         " is missing: it was read from the report's standard content, whose numbers have single precision.");
}

Result<MadeReport> LabellingStore::Interior::madeAgain(const std::string& studyUid, const ShelvedReport& earlier) {
  const auto read = readReport(earlier.file);
  if (!read) {
    return Result<MadeReport>::refused("its file " + earlier.file.string() + " cannot be read: " + read.problem + ".");
  }
  const auto archive = archiveOf(*read, earlier.file.string());
  if (!archive) return Result<MadeReport>::refused("its labelling cannot be archived.");
  MadeReport report;
  report.studyUid = studyUid;
  report.path = shelf_.freshPath(studyUid, "dcm").string();
  report.archive = *archive;
  report.labelling = earlier.labelling;
  report.seriesNumber = labellingSeriesNumber;
  report.seriesDescription = labellingSeriesDescription;
  report.seriesUid = earlier.seriesInstanceUid;
  report.sopUid = parts_.freshUid();
  report.context = read->context;
  if (read->context.frameOfReferenceUid.empty()) {
    // A report of another program may carry the archive alone. Where its levels lie the study tells; its slices are not
    // named, for the model may know another labelling.
    report.context = askedContext(studyUid).value_or(ReportContext());
    report.context->sliceLevels.clear();
  }
  return Result<MadeReport>::of(std::move(report));
}

Outcome LabellingStore::restore(const std::string& studyUid, const std::string& sopInstanceUid) {
  const std::lock_guard lock(interior_->mutex_);
  const auto refused = [&](const std::string& why) {
    return Outcome::refused("The labelling " + sopInstanceUid + " cannot be restored: " + why);
  };
  interior_->retry(studyUid);
  if (interior_->unsaved(studyUid)) {
    return refused("a newer one of the study is not yet saved. " + interior_->studies_[studyUid].problem);
  }
  const auto there = interior_->shelf_.labellings(studyUid);
  const auto found = std::find_if(there.begin(), there.end(),
                                  [&](const ShelvedReport& report) { return report.sopInstanceUid == sopInstanceUid; });
  if (found == there.end()) {
    return refused("the study " + studyUid + " holds no labelling with that UID; its history lists those it holds.");
  }
  if (!found->labelling)
    return refused("its file " + found->file.string() + " cannot be read: " + found->problem + ".");
  const ShelvedReport* counting = countingReport(there);
  if (counting == &*found) return refused("it is the one that counts already.");
  if (sameInSinglePrecision(*counting->labelling, *found->labelling)) {
    return refused("the one that counts, " + counting->sopInstanceUid + ", says the same.");
  }
  Result<MadeReport> report = interior_->madeAgain(studyUid, *found);
  if (!report) return refused(report.problem);
  const Outcome outcome = interior_->shelveLabelling(*report, there);
  if (!outcome) return refused(*outcome.problem);
  Interior::StudyState& study = interior_->studies_[studyUid];
  study.held.reset();
  study.lastSeen = report->labelling;
  return Outcome::done();
}

}  // namespace workstation
