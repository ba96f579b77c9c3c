#include "tests/double/TestDatabase.h"

#include <algorithm>
#include <cstdlib>

#include "tests/double/TestHost.h"

namespace testhost {

using pelmar::Bytes;
using pelmar::Ref;

Ref<TestSeries> TestStudy::addReportSeries(std::optional<std::string> name, long number, std::string seriesUID) {
  const auto series = pelmar::makeRef<TestSeries>();
  series->description = std::move(name);
  series->number = number;
  series->uid = std::move(seriesUID);
  if (!reportSeries) reportSeries.emplace();
  reportSeries->push_back(series);
  return series;
}

Ref<pelmar::DicomImage> TestStudy::SRImageWithSeriesID(long seriesID, std::string_view seriesDescription) const {
  for (auto report = reports.rbegin(); report != reports.rend(); ++report) {
    if (report->seriesNumber == seriesID && report->seriesDescription == seriesDescription) return report->image;
  }
  return {};
}

std::optional<std::string> TestDatabase::uniquePathForNewDataFileWithExtension(
    std::string_view extension, const Ref<pelmar::PersistentStore>& forStore) {
  if (!host_) return std::nullopt;
  record(&host_->calls, name_ + ".uniquePath(" + std::string(extension) + (forStore ? "" : ",nil") + ")");
  return "/store/" + std::to_string(++host_->pathsGiven) + "." + std::string(extension);
}

Ref<pelmar::DicomDatabase> TestDatabase::independentDatabase() const {
  if (!host_) return {};
  record(&host_->calls, name_ + ".independentDatabase()");
  return host_->independentDatabase;
}

void TestDatabase::addFilesAtPaths(const std::vector<std::string>& paths, bool postNotifications, bool dicomOnly,
                                   bool rereadExistingItems, bool generatedByPelmar) {
  if (!host_) return;
  std::string line = name_ + ".addFilesAtPaths(";
  for (const std::string& path : paths) line += path + ",";
  record(&host_->calls, line + text(postNotifications) + "," + text(dicomOnly) + "," + text(rereadExistingItems) + "," +
                            text(generatedByPelmar) + ")");
  for (const std::string& path : paths) import(path);
}

void TestDatabase::import(const std::string& path) {
  const auto file = host_->files.find(path);
  if (file == host_->files.end()) return;
  ReportContent report;
  if (!report.decode(file->second)) return;
  for (const Ref<TestStudy>& study : host_->studies) {
    if (study->uid != report.studyUID) continue;
    const std::string uid = report.seriesUID.empty() ? "new-series-" + path : report.seriesUID;
    if (!study->reportSeries) study->reportSeries.emplace();
    const auto known = std::any_of(study->reportSeries->begin(), study->reportSeries->end(),
                                   [&](const auto& series) { return series->seriesDICOMUID() == uid; });
    if (!known) study->addReportSeries(report.seriesDescription, report.seriesNumber, uid);
    const auto image = pelmar::makeRef<TestStoredImage>();
    image->path = path;
    image->studyUID = report.studyUID;
    study->reports.push_back({report.seriesNumber, report.seriesDescription, uid, image});
    return;
  }
}

void TestReport::setSeriesInstanceUID(const std::optional<std::string>& newUID) {
  if (host) record(&host->calls, "report.setSeriesInstanceUID(" + newUID.value_or("nil") + ")");
  content.seriesUID = newUID.value_or("");
}

bool TestReport::writeToFileAtPath(const std::string& toPath) {
  if (!host) return false;
  record(&host->calls, "report.writeToFileAtPath(" + toPath + ")");
  if (!host->reports.writes) return false;
  host->files[toPath] = content.encoded();
  return true;
}

Bytes ReportContent::encoded() const {
  const std::string head =
      studyUID + "\n" + seriesUID + "\n" + std::to_string(seriesNumber) + "\n" + seriesDescription + "\n";
  Bytes file(head.begin(), head.end());
  if (data) file.insert(file.end(), data->begin(), data->end());
  return file;
}

bool ReportContent::decode(const Bytes& file) {
  std::vector<std::string> lines;
  auto at = file.begin();
  while (lines.size() < 4) {
    const auto end = std::find(at, file.end(), static_cast<std::uint8_t>('\n'));
    if (end == file.end()) return false;
    lines.emplace_back(at, end);
    at = end + 1;
  }
  studyUID = lines[0];
  seriesUID = lines[1];
  seriesNumber = std::atol(lines[2].c_str());
  seriesDescription = lines[3];
  data = Bytes(at, file.end());
  return true;
}

Ref<pelmar::SRAnnotation> TestReportClass::initWithData(const std::optional<Bytes>& data,
                                                        const std::optional<std::string>& path,
                                                        const Ref<pelmar::DicomImage>& forImage, long seriesNumber,
                                                        std::string_view seriesDescription) {
  record(&host_.calls, "report.initWithData(" + path.value_or("nil") + "," + std::to_string(seriesNumber) + "," +
                           std::string(seriesDescription) + ")");
  const auto report = pelmar::makeRef<TestReport>();
  report->host = &host_;
  report->content.data = data;
  report->path = path;
  report->forImage = forImage;
  if (const auto image = pelmar::ref_cast<TestStoredImage>(forImage)) report->content.studyUID = image->studyUID;
  report->content.seriesNumber = seriesNumber;
  report->content.seriesDescription = seriesDescription;
  made.push_back(report);
  return report;
}

Ref<pelmar::SRAnnotation> TestReportClass::initWithContentsOfFile(const std::string& path) {
  const auto file = host_.files.find(path);
  if (file == host_.files.end()) return {};
  const auto report = pelmar::makeRef<TestReport>();
  if (!report->content.decode(file->second)) return {};
  Bytes& data = *report->content.data;
  if (padsOddLength && data.size() % 2 != 0) data.push_back(0);
  report->host = &host_;
  report->path = path;
  return report;
}

}  // namespace testhost
