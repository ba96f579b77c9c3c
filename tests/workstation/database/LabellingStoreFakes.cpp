#include "LabellingStoreFakes.h"

#include <algorithm>
#include <cctype>
#include <fstream>

namespace workstation::test {
namespace {

bool isLabelling(const StoredReport& report) {
  return report.seriesNumber == labellingSeriesNumber && report.seriesDescription == labellingSeriesDescription;
}

}  // namespace

pelmar::Bytes archiveOf(const SavedLabelling& labelling) {
  PatientPointClass points;
  return *writeArchive(valueFromLabelling(labelling, points));
}

std::optional<SavedLabelling> labellingOf(const pelmar::Bytes& archive) {
  PatientPointClass points;
  const auto root = readArchive(archive, points);
  return root ? labellingFromValue(*root) : std::nullopt;
}

SavedLabelling lumbar(double x) {
  SavedLabelling labelling;
  labelling.anatomicalRegion = 2;
  labelling.additionalVertebra = false;
  labelling.levels = {SavedLevel{"L4-L5", {x, 2, 3}, {0, 0, 1}}};
  return labelling;
}

LabellingStoreParts FakeShelf::parts() {
  LabellingStoreParts parts;
  parts.encode = [this](const ReportToWrite& report) {
    encoded.push_back(report);
    StoredReport stored;
    stored.seriesInstanceUid = report.seriesInstanceUid;
    stored.seriesNumber = report.seriesNumber;
    stored.seriesDescription = report.seriesDescription;
    stored.sopInstanceUid = report.sopInstanceUid;
    stored.instanceNumber = report.instanceNumber;
    stored.contentTime = report.contentTime;
    stored.archive = report.archive;
    stored.content = report.labelling;
    stored.context = report.context;
    coded.push_back(stored);
    const std::string number = std::to_string(coded.size() - 1);
    return Result<pelmar::Bytes>::of({number.begin(), number.end()});
  };
  parts.readBytes = [this](const pelmar::Bytes& bytes) { return read(bytes); };
  parts.readFile = [this](const std::filesystem::path& path) {
    for (const FakeFile& file : files) {
      if (file.path == path && file.problem.empty()) return Result<StoredReport>::of(file.report);
    }
    return Result<StoredReport>::refused("there is no such report");
  };
  parts.readForArchive = parts.readFile;
  parts.freshUid = [this] { return "2.25." + std::to_string(++uids); };
  parts.now = [this] { return now; };
  return parts;
}

Result<StoredReport> FakeShelf::read(const pelmar::Bytes& bytes) const {
  const std::string text(bytes.begin(), bytes.end());
  if (text.empty() || !std::all_of(text.begin(), text.end(), ::isdigit) || std::stoul(text) >= coded.size())
    return Result<StoredReport>::refused("it is no report");
  return Result<StoredReport>::of(coded[std::stoul(text)]);
}

FakeFile& FakeShelf::add(const std::string& sopUid, const ContentTime& time, const SavedLabelling& labelling,
                         const std::string& seriesUid) {
  StoredReport report;
  report.studyInstanceUid = study;
  report.seriesInstanceUid = seriesUid;
  report.seriesNumber = labellingSeriesNumber;
  report.seriesDescription = labellingSeriesDescription;
  report.sopInstanceUid = sopUid;
  report.instanceNumber = 1;
  report.contentTime = time;
  report.archive = archiveOf(labelling);
  files.push_back({study, "/others/" + sopUid, report, ""});
  return files.back();
}

bool FakeShelf::holdsStudy(const std::string& studyUid) {
  return std::find(studies.begin(), studies.end(), studyUid) != studies.end();
}

std::vector<ReportSeries> FakeShelf::reportSeries(const std::string& studyUid) {
  std::map<std::pair<int, std::string>, ReportSeries> series;
  for (const FakeFile& file : files) {
    if (file.studyUid != studyUid) continue;
    ReportSeries& one = series[{file.report.seriesNumber, file.report.seriesInstanceUid}];
    one.seriesInstanceUid = file.report.seriesInstanceUid;
    one.seriesNumber = file.report.seriesNumber;
    one.description = file.report.seriesDescription;
    one.files.push_back(file.path);
  }
  std::vector<ReportSeries> result;
  for (auto& [key, one] : series) result.push_back(std::move(one));
  return result;
}

std::vector<ShelvedReport> FakeShelf::labellings(const std::string& studyUid) {
  std::vector<ShelvedReport> result;
  for (const FakeFile& file : files) {
    if (file.studyUid != studyUid || !isLabelling(file.report)) continue;
    ShelvedReport report{file.path,
                         file.report.sopInstanceUid,
                         file.report.seriesInstanceUid,
                         file.report.instanceNumber,
                         file.report.contentTime,
                         std::nullopt,
                         file.report.archive.empty(),
                         file.problem};
    if (file.problem.empty())
      report.labelling = report.fromContent ? file.report.content : labellingOf(file.report.archive);
    result.push_back(report);
  }
  return result;
}

std::filesystem::path FakeShelf::freshPath(const std::string&, std::string_view extension) {
  return folder / (std::to_string(++paths) + "." + std::string(extension));
}

Outcome FakeShelf::store(const std::string& studyUid, const std::filesystem::path& file, const pelmar::Bytes& bytes) {
  auto report = read(bytes);
  if (!report) return Outcome::refused(report.problem);
  report->studyInstanceUid = studyUid;
  files.push_back({studyUid, file, *report, ""});
  if (std::filesystem::exists(folder)) std::ofstream(file) << "a report";
  if (failsAfterWriting) return Outcome::refused("The folder cannot be synchronised.");
  return Outcome::done();
}

std::vector<std::optional<SavedLabelling>> statesOn(FakeShelf& shelf, const std::string& studyUid) {
  std::vector<std::optional<SavedLabelling>> states;
  for (const ShelvedReport& report : shelf.labellings(studyUid)) states.push_back(report.labelling);
  return states;
}

std::string PluginHand::save(const SavedLabelling& labelling, const std::string& studyUid) {
  const auto path = database()->uniquePathForNewDataFileWithExtension("dcm", reports_->persistentStore(studyUid));
  if (!path) return "";
  const auto report = reports_->srAnnotationClass().initWithData(archiveOf(labelling), path, nullptr,
                                                                 labellingSeriesNumber, labellingSeriesDescription);
  for (const auto& series : reports_->reportSeries(studyUid)) {
    if (series->name() == labellingSeriesDescription && series->id() == labellingSeriesNumber)
      report->setSeriesInstanceUID(series->seriesDICOMUID());
  }
  report->writeToFileAtPath(*path);
  database()->addFilesAtPaths({*path}, true, true, true, true);
  return *path;
}

std::optional<std::string> PluginHand::lookUp(const std::string& studyUid) {
  return reports_->report(studyUid, labellingSeriesNumber, labellingSeriesDescription)->completePathResolved();
}

std::optional<SavedLabelling> PluginHand::load(const std::string& studyUid) {
  const auto path = lookUp(studyUid);
  if (!path) return std::nullopt;
  return labellingOf(
      reports_->srAnnotationClass().initWithContentsOfFile(*path)->dataEncapsulated().value_or(pelmar::Bytes()));
}

}  // namespace workstation::test
