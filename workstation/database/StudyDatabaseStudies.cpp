// The list of studies.

#include <algorithm>
#include <map>
#include <set>
#include <sstream>
#include <utility>

#include "workstation/database/ReportRules.h"
#include "workstation/database/StudyDatabaseInterior.h"
#include "workstation/model/Text.h"

namespace workstation {
namespace {

/// A study while its series and reports are being gathered.
struct Gathered {
  StudyEntry entry;
  std::set<std::string> modalities;
  std::set<std::string> seriesUids;
  std::set<std::string> reportUids;
  std::vector<ShelvedReport> labellings;
};

template <class Source>
void takeStudy(StudyEntry& entry, const Source& source, const std::string& studyUid) {
  if (!entry.studyUid.empty()) return;
  entry.studyUid = studyUid;
  entry.patientName = source.patientName;
  entry.patientId = source.patientId;
  entry.description = source.studyDescription;
  entry.date = source.studyDate;
}

bool hasWord(const StudyEntry& study, const std::string& word) {
  std::string name = study.patientName;
  std::replace(name.begin(), name.end(), '^', ' ');
  std::string digits = word;
  std::erase(digits, '-');
  const Text text;
  return text.containsIgnoringCaseDiacriticsAndWidth(name, word) ||
         text.containsIgnoringCaseDiacriticsAndWidth(study.patientId, word) ||
         text.containsIgnoringCaseDiacriticsAndWidth(study.description.value_or(""), word) ||
         text.containsIgnoringCaseDiacriticsAndWidth(study.date, digits);
}

bool isListedBefore(const StudyEntry& a, const StudyEntry& b) {
  return std::tie(b.date, a.patientName, a.studyUid) < std::tie(a.date, b.patientName, b.studyUid);
}

}  // namespace

std::vector<StudyEntry> StudyDatabase::studies(std::string_view search) {
  std::map<std::string, Gathered> byUid;
  for (const IndexedSeries& series : withIndex([&] { return index_->series(); })) {
    Gathered& study = byUid[series.studyUid];
    takeStudy(study.entry, series, series.studyUid);
    study.modalities.insert(series.modality);
    study.seriesUids.insert(series.seriesUid);
    study.entry.images += series.objects;
    study.entry.slices += series.slices;
  }
  for (IndexedObject& object : withIndex([&] { return index_->objects(); })) {
    if (!object.isReport || object.header.studyInstanceUid.empty()) continue;
    Gathered& study = byUid[object.header.studyInstanceUid];
    takeStudy(study.entry, object.header, object.header.studyInstanceUid);
    study.reportUids.insert(object.header.sopInstanceUid);
    if (object.labelling) study.labellings.push_back(shelved(std::move(object)));
  }
  std::istringstream stream{std::string(search)};
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(word);

  std::vector<StudyEntry> list;
  for (auto& [uid, study] : byUid) {
    StudyEntry& entry = study.entry;
    if (!std::all_of(words.begin(), words.end(), [&](const std::string& word) { return hasWord(entry, word); }))
      continue;
    entry.modalities.assign(study.modalities.begin(), study.modalities.end());
    entry.series = study.seriesUids.size();
    entry.reports = study.reportUids.size();
    const ShelvedReport* counting = countingReport(study.labellings);
    entry.holdsLabelling = counting != nullptr && !counting->labelling->isEmpty();
    list.push_back(std::move(entry));
  }
  std::sort(list.begin(), list.end(), &isListedBefore);
  return list;
}

}  // namespace workstation
