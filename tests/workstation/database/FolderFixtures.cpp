#include "FolderFixtures.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <sstream>

#include "workstation/archive/KeyedArchive.h"
#include "workstation/dicom/Uid.h"
#include "workstation/model/Points.h"

namespace workstation::test {

namespace fs = std::filesystem;

const std::string& studyUid() {
  static const std::string uid = sagittalImage().studyInstanceUid;
  return uid;
}

void writeStudy(const fs::path& folder, int images) {
  fs::create_directories(folder / "sag");
  for (int number = 1; number <= images; ++number)
    write(sagittalImage(number), folder / "sag" / (std::to_string(number) + ".dcm"));
}

SavedLabelling lumbarAt(double x) {
  SavedLabelling labelling;
  labelling.anatomicalRegion = 2;
  labelling.additionalVertebra = false;
  labelling.levels = {{"L4-L5", {x, 2, 3}, {0, 0.1, 1}}};
  return labelling;
}

std::string reportUid(int number) { return makeUid("report " + std::to_string(number)); }

pelmar::Bytes reportOn(const fs::path& image, const SavedLabelling& labelling, int number) {
  PatientPointClass points;
  const Result<pelmar::Bytes> archive = writeArchive(valueFromLabelling(labelling, points));
  if (!archive) throw std::runtime_error(archive.problem);
  ReportToWrite report;
  report.patientImage = image;
  report.sopInstanceUid = reportUid(number);
  report.seriesInstanceUid = makeUid("reports");
  report.seriesNumber = labellingSeriesNumber;
  report.seriesDescription = labellingSeriesDescription;
  report.instanceNumber = number;
  report.contentTime = {"20240301", std::to_string(100000 + number) + ".000000"};
  report.labelling = labelling;
  report.archive = *archive;
  report.context.frameOfReferenceUid = sagittalImage().frameOfReferenceUid;
  report.context.verticalSeriesUid = sagittalImage().seriesInstanceUid;
  report.context.verticalModality = "MR";
  report.context.verticalImages = {{"1.2.840.10008.5.1.4.1.1.4", sagittalImage().sopInstanceUid}};
  const Result<pelmar::Bytes> bytes = encodeReport(report);
  if (!bytes) throw std::runtime_error(bytes.problem);
  return *bytes;
}

std::map<std::string, std::string> photographOf(const fs::path& folder) {
  std::map<std::string, std::string> photograph;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
    struct stat state {};
    EXPECT_EQ(::lstat(entry.path().c_str(), &state), 0);
    std::string text = std::to_string(state.st_mtim.tv_sec) + "." + std::to_string(state.st_mtim.tv_nsec) + " ";
    if (entry.is_regular_file()) {
      const auto bytes = bytesOf(entry.path());
      text.append(bytes.begin(), bytes.end());
    }
    photograph[entry.path().lexically_relative(folder).string()] = text;
  }
  return photograph;
}

namespace {

std::unique_ptr<StudyDatabase> taken(Result<std::unique_ptr<StudyDatabase>> opened) {
  if (!opened) throw std::runtime_error(opened.problem);
  return std::move(*opened);
}

}  // namespace

std::unique_ptr<StudyDatabase> openInPlace(const fs::path& folderOrFile, const OpenOptions& options) {
  return taken(StudyDatabase::openFolder(folderOrFile, options));
}

std::unique_ptr<StudyDatabase> openAsDatabase(const fs::path& folder, const OpenOptions& options) {
  OpenOptions making = options;
  making.makeDatabase = true;
  return taken(StudyDatabase::openDatabase(folder, making));
}

OpenOptions countingReads(std::size_t& reads) {
  reads = 0;
  OpenOptions options;
  options.progress = [&reads](std::size_t, std::size_t total) {
    reads = total;
    return true;
  };
  return options;
}

fs::path store(StudyDatabase& database, const SavedLabelling& labelling, int number) {
  const fs::path file = database.freshPath(studyUid(), "dcm");
  const Outcome outcome = database.store(studyUid(), file, reportOn(database.anyImage(studyUid()), labelling, number));
  if (!outcome) throw std::runtime_error(*outcome.problem);
  return file;
}

std::string described(const ImageRecord& image) {
  std::ostringstream text;
  text.precision(17);
  const auto optional = [](const auto& value) {
    std::ostringstream part;
    if (value) part << "[" << *value << "]";
    return part.str();
  };
  text << image.file.string() << '|' << image.frame << '|' << image.sopClassUid << '|' << image.sopInstanceUid << '|'
       << optional(image.instanceNumber) << '|' << image.imageType.size();
  for (const std::string& type : image.imageType) text << ',' << type;
  text << '|' << image.studyInstanceUid << '|' << optional(image.studyDescription) << '|' << image.studyDate << '|'
       << image.patientName << '|' << image.patientId << '|' << image.seriesInstanceUid << '|'
       << optional(image.seriesNumber) << '|' << image.seriesDescription << '|' << image.modality << '|'
       << optional(image.bodyPartExamined) << '|' << image.frameOfReferenceUid << '|';
  if (image.geometry) {
    const ImageGeometry& plane = *image.geometry;
    for (const auto* numbers : {&plane.position, &plane.row, &plane.column})
      for (const double number : *numbers) text << number << ' ';
    text << plane.spacingX << ' ' << plane.spacingY;
  }
  text << '|' << image.geometryProblem << '|' << image.pixelAspect << '|' << image.rows << '|' << image.columns << '|'
       << image.colour;
  return text.str();
}

std::vector<std::string> described(const std::vector<ImageRecord>& images) {
  std::vector<std::string> texts;
  for (const ImageRecord& image : images) texts.push_back(described(image));
  return texts;
}

std::vector<double> levelsIn(StudyDatabase& database, const std::string& uid) {
  std::vector<ShelvedReport> reports = database.labellings(uid);
  std::sort(reports.begin(), reports.end(),
            [](const ShelvedReport& a, const ShelvedReport& b) { return a.instanceNumber < b.instanceNumber; });
  std::vector<double> levels;
  for (const ShelvedReport& report : reports)
    if (report.labelling && report.labelling->levels) levels.push_back(report.labelling->levels->front().point[0]);
  return levels;
}

pid_t startChild(const std::function<bool()>& work) {
  const pid_t child = ::fork();
  if (child != 0) return child;
  bool answer = false;
  try {
    answer = work();
  } catch (const std::exception& exception) {
    std::fprintf(stderr, "in the child: %s\n", exception.what());
  }
  ::_exit(answer ? 0 : 1);
}

bool endsWell(pid_t child) {
  int status = -1;
  return child > 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

bool inChild(const std::function<bool()>& work) { return endsWell(startChild(work)); }

void makeOld(const fs::path& path) {
  fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::hours(1));
}

}  // namespace workstation::test
