// The database as a shelf of reports.

#include <algorithm>
#include <map>
#include <optional>
#include <system_error>
#include <utility>

#include "workstation/database/IndexFile.h"
#include "workstation/database/StudyDatabaseInterior.h"
#include "workstation/dicom/LabellingReport.h"
#include "workstation/dicom/Uid.h"

namespace workstation {

namespace fs = std::filesystem;

namespace {

bool canBeRead(const IndexedObject& report) { return !report.labelling || report.labelling->labelling; }

/// The structured reports, an object that lies in several files with the first of them that can be read.
std::vector<IndexedObject> reportsAmong(std::vector<IndexedObject> objects) {
  std::map<std::string, std::size_t> places;  // by UID
  std::vector<IndexedObject> reports;
  for (IndexedObject& object : objects) {
    if (!object.isReport) continue;
    if (!object.header.sopInstanceUid.empty()) {
      const auto [place, isNew] = places.try_emplace(object.header.sopInstanceUid, reports.size());
      if (!isNew) {
        IndexedObject& first = reports[place->second];
        if (!canBeRead(first) && canBeRead(object)) first = std::move(object);
        continue;
      }
    }
    reports.push_back(std::move(object));
  }
  return reports;
}

/// Without links and dots, as far as it exists.
fs::path realPath(const fs::path& path) {
  std::error_code error;
  const fs::path whole = fs::absolute(path.empty() ? "." : path, error);
  fs::path real = fs::weakly_canonical(whole, error);
  if (error) real = whole.lexically_normal();
  return real.has_filename() ? real : real.parent_path();
}

/// The folder as it is named from `root`, empty for that itself; nothing when it does not really lie there.
std::optional<fs::path> folderBelow(const fs::path& root, const fs::path& folder) {
  const fs::path relative = realPath(folder).lexically_relative(realPath(root));
  if (relative.empty() || *relative.begin() == "..") return std::nullopt;
  return relative == "." ? fs::path() : relative;
}

Outcome checkReport(const std::string& studyUid, const fs::path& file, const pelmar::Bytes& bytes) {
  const Result<StoredReport> report = readReport(bytes);
  const std::string what = "The report " + file.string() + " is not stored: ";
  if (!report) return Outcome::refused(what + "it could not be read again, because " + asPhrase(report.problem) + ".");
  if (report->studyInstanceUid == studyUid) return Outcome::done();
  return Outcome::refused(what + "it belongs to the study " + report->studyInstanceUid + ", not to " + studyUid + ".");
}

}  // namespace

bool StudyDatabase::holdsStudy(const std::string& studyUid) {
  refresh();
  return withIndex([&] { return index_->holdsStudy(studyUid); });
}

std::vector<ReportSeries> StudyDatabase::reportSeries(const std::string& studyUid) {
  refresh();
  const std::vector<IndexedObject> reports = reportsAmong(withIndex([&] { return index_->objects(studyUid); }));
  std::map<std::string, ReportSeries> byUid;
  for (const IndexedObject& report : reports) {
    ReportSeries& series = byUid[report.header.seriesInstanceUid];
    if (series.files.empty()) {
      series.seriesInstanceUid = report.header.seriesInstanceUid;
      series.seriesNumber = report.header.seriesNumber.value_or(0);
      series.description = report.header.seriesDescription;
    }
    series.files.push_back(scan_.pathOf(report.file));
  }
  std::vector<ReportSeries> list;
  list.reserve(byUid.size());
  for (auto& [uid, series] : byUid) list.push_back(std::move(series));
  std::stable_sort(list.begin(), list.end(),
                   [](const ReportSeries& a, const ReportSeries& b) { return a.seriesNumber < b.seriesNumber; });
  return list;
}

std::vector<ShelvedReport> StudyDatabase::labellings(const std::string& studyUid) {
  refresh();
  std::vector<ShelvedReport> list;
  for (IndexedObject& report : reportsAmong(withIndex([&] { return index_->objects(studyUid); }))) {
    if (report.labelling) list.push_back(shelved(std::move(report)));
  }
  return list;
}

ShelvedReport StudyDatabase::shelved(IndexedObject report) const {
  ShelvedReport entry;
  entry.file = scan_.pathOf(report.file);
  entry.sopInstanceUid = std::move(report.header.sopInstanceUid);
  entry.seriesInstanceUid = std::move(report.header.seriesInstanceUid);
  entry.instanceNumber = report.header.instanceNumber.value_or(0);
  entry.contentTime = {std::move(report.header.contentDate), std::move(report.header.contentTime)};
  entry.labelling = std::move(report.labelling->labelling);
  entry.fromContent = report.labelling->fromContent;
  entry.problem = std::move(report.labelling->problem);
  return entry;
}

fs::path StudyDatabase::freshPath(const std::string& studyUid, std::string_view extension) {
  const std::optional<FileStamp> image = withIndex([&] { return index_->firstImage(studyUid); });
  fs::path folder = kind_ == Kind::database ? root_ / nameForUid(studyUid) : root_;
  // What a link leads to is looked at, not written to.
  if (image && !image->folder.empty() && folderBelow(root_, root_ / image->folder)) folder = root_ / image->folder;
  std::string name = std::string(reportFilePrefix) + freshUid();
  if (!extension.empty()) name += "." + std::string(extension);
  return folder / name;
}

/// Where the file lies in the folder that is open.
Result<FileStamp> StudyDatabase::placeOf(const fs::path& file) const {
  const std::optional<fs::path> folder = folderBelow(root_, file.parent_path());
  if (!folder)
    return Result<FileStamp>::refused("The report " + file.string() + " is not stored: it would not lie in " +
                                      root_.string() + ".");
  return Result<FileStamp>::of({folder->string(), file.filename().string(), 0, 0});
}

Outcome StudyDatabase::store(const std::string& studyUid, const fs::path& file, const pelmar::Bytes& bytes) {
  const Result<FileStamp> place = placeOf(file);
  if (!place) return Outcome::refused(place.problem);
  if (Outcome report = checkReport(studyUid, file, bytes); !report) return report;
  std::error_code error;
  if (fs::exists(fs::symlink_status(file, error)))
    return Outcome::refused("The file " + file.string() +
                            " is there already, and is not replaced: choose another name.");
  const fs::path folder = file.parent_path();
  if (kind_ == Kind::database && fs::create_directory(folder, error)) {
    if (Outcome made = syncFolder(root_, disk_); !made) return made;
  }
  removeLeftovers(folder);
  if (Outcome written = writeAtomically(file, bytes, disk_); !written) return written;
  enterStored(*place, file);
  return Outcome::done();
}

/// The report is safe by now: whatever happens to the index, the file will be found again.
void StudyDatabase::enterStored(const FileStamp& place, const fs::path& file) {
  const std::optional<FileStamp> stamp = stampOf(root_, place.folder, place.name);
  if (!stamp) return;
  try {
    index_->change({}, {{*stamp, readFileContents(file)}});
  } catch (const SQLite::Exception& exception) {
    readWithoutIndex(exception.what());
  }
  if (kind_ != Kind::inPlace || indexFile_.empty()) return;
  if (Outcome saved = saveIndex(*index_, indexFile_, disk_); !saved) {
    notices_.push_back(*saved.problem + " The report is stored all the same; opening the folder will take longer.");
  }
}

fs::path StudyDatabase::anyImage(const std::string& studyUid) {
  const std::optional<FileStamp> image = withIndex([&] { return index_->firstImage(studyUid); });
  return image ? scan_.pathOf(*image) : fs::path();
}

}  // namespace workstation
