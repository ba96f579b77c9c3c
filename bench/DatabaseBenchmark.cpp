// Opening a folder of 10,000 known objects, and looking for the labelling among 100.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "workstation/archive/KeyedArchive.h"
#include "workstation/database/StudyDatabase.h"
#include "workstation/dicom/ImageWriter.h"
#include "workstation/dicom/Uid.h"
#include "workstation/model/Points.h"

namespace {

namespace fs = std::filesystem;
using workstation::makeUid;
using workstation::StudyDatabase;

workstation::ImageToWrite image(int series, int number) {
  workstation::ImageToWrite image;
  image.patientName = "Benchmark";
  image.patientId = "1";
  image.studyInstanceUid = makeUid("study");
  image.studyDate = "20240301";
  image.studyTime = "120000";
  image.seriesInstanceUid = makeUid("series " + std::to_string(series));
  image.seriesNumber = series;
  image.sopInstanceUid = makeUid(std::to_string(series) + " image " + std::to_string(number));
  image.instanceNumber = number;
  image.frameOfReferenceUid = makeUid("frame");
  image.geometry = {{0, 0, 1.0 * number}, {1, 0, 0}, {0, 1, 0}, 1, 1};
  image.rows = image.columns = 2;
  image.samples.resize(4);
  return image;
}

void require(const workstation::Outcome& outcome) {
  if (!outcome) throw std::runtime_error(*outcome.problem);
}

/// A folder with that many images, and reports that were stored there; removed at the end.
class Folder {
 public:
  Folder(int images, int reports) : path_(fs::temp_directory_path() / ("vertana-bench-" + std::to_string(images))) {
    fs::remove_all(path_);
    for (int i = 0; i < images; ++i) {
      const fs::path folder = path_ / std::to_string(i / 250);
      fs::create_directories(folder);
      std::string problem;
      if (!workstation::writeImage(image(i / 250, i), folder / (std::to_string(i) + ".dcm"), problem))
        throw std::runtime_error(problem);
    }
    const auto database = open();
    for (int i = 1; i <= reports; ++i) storeReport(*database, i);
  }
  ~Folder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }

  std::unique_ptr<StudyDatabase> open() const {
    auto opened = StudyDatabase::openFolder(path_);
    if (!opened) throw std::runtime_error(opened.problem);
    return std::move(*opened);
  }

 private:
  static void storeReport(StudyDatabase& database, int number) {
    workstation::PatientPointClass points;
    workstation::ReportToWrite report;
    report.patientImage = database.anyImage(makeUid("study"));
    report.sopInstanceUid = makeUid("report " + std::to_string(number));
    report.seriesInstanceUid = makeUid("reports");
    report.seriesNumber = workstation::labellingSeriesNumber;
    report.seriesDescription = workstation::labellingSeriesDescription;
    report.instanceNumber = number;
    report.contentTime = {"20240301", "120000.000" + std::to_string(100 + number)};
    report.labelling.anatomicalRegion = 2;
    report.labelling.additionalVertebra = false;
    report.labelling.levels.emplace();
    for (const char* disc : {"T12-L1", "L1-L2", "L2-L3", "L3-L4", "L4-L5", "L5-S1"})
      report.labelling.levels->push_back({disc, {1.0 * number, 2, 3}, {0, 0, 1}});
    report.archive = *workstation::writeArchive(workstation::valueFromLabelling(report.labelling, points));
    report.context.frameOfReferenceUid = makeUid("frame");
    auto bytes = workstation::encodeReport(report);
    if (!bytes) throw std::runtime_error(bytes.problem);
    require(database.store(makeUid("study"), database.freshPath(makeUid("study"), "dcm"), *bytes));
  }

  fs::path path_;
};

void openKnownFolder(benchmark::State& state) {
  const Folder folder(10'000, 1);
  for (auto _ : state) benchmark::DoNotOptimize(folder.open());
}
BENCHMARK(openKnownFolder)->Unit(benchmark::kMillisecond);

void openKnownFolderAndListItsSlices(benchmark::State& state) {
  const Folder folder(10'000, 1);
  for (auto _ : state) benchmark::DoNotOptimize(folder.open()->contents());
}
BENCHMARK(openKnownFolderAndListItsSlices)->Unit(benchmark::kMillisecond);

void listStudies(benchmark::State& state) {
  const Folder folder(10'000, 1);
  const auto database = folder.open();
  for (auto _ : state) benchmark::DoNotOptimize(database->studies());
}
BENCHMARK(listStudies)->Unit(benchmark::kMillisecond);

void openStudyWith100Labellings(benchmark::State& state) {
  const Folder folder(200, 100);
  for (auto _ : state) benchmark::DoNotOptimize(folder.open()->labellings(makeUid("study")));
}
BENCHMARK(openStudyWith100Labellings)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
