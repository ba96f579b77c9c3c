// Opening 10,000 known objects, in a folder and in a database, in less than 50 ms each; and, without a limit, what is
// asked of them then, and looking for the labelling among 100.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "LimitJudge.h"
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

enum class Kind { inPlace, database };

/// A folder with that many images, and reports that were stored there; removed at the end.
class Folder {
 public:
  Folder(Kind kind, int images, int reports)
      : kind_(kind),
        path_(fs::temp_directory_path() / ("vertana-bench-" + std::to_string(::getpid()) + "-" +
                                           std::to_string(images) + (kind == Kind::database ? "-database" : ""))) {
    fs::remove_all(path_);
    const fs::path top = kind == Kind::database ? path_ / "studies" : path_;
    for (int i = 0; i < images; ++i) {
      const fs::path folder = top / folderName(i);
      fs::create_directories(folder);
      std::string problem;
      if (!workstation::writeImage(image(i / 250, i), folder / (fileName(i) + ".dcm"), problem))
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
    auto opened = kind_ == Kind::database ? StudyDatabase::openDatabase(path_) : StudyDatabase::openFolder(path_);
    if (!opened) throw std::runtime_error(opened.problem);
    return std::move(*opened);
  }

 private:
  /// As scanners name folders and files, and as an import does.
  std::string folderName(int image) const {
    return kind_ == Kind::database ? makeUid("study " + std::to_string(image / 1000)) : std::to_string(image / 250);
  }
  std::string fileName(int image) const {
    return kind_ == Kind::database ? makeUid("image " + std::to_string(image)) : std::to_string(image);
  }

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

  Kind kind_;
  fs::path path_;
};

constexpr int objects = 10'000;
constexpr double mostMsToOpen = 50;

void open(benchmark::State& state, const Folder& folder) {
  for (auto _ : state) benchmark::DoNotOptimize(folder.open());
}

void openAndListSlices(benchmark::State& state, const Folder& folder) {
  for (auto _ : state) benchmark::DoNotOptimize(folder.open()->contents());
}

void listStudies(benchmark::State& state, const Folder& folder) {
  const auto database = folder.open();
  for (auto _ : state) benchmark::DoNotOptimize(database->studies());
}

void openAndFindLabellings(benchmark::State& state, const Folder& folder) {
  for (auto _ : state) benchmark::DoNotOptimize(folder.open()->labellings(makeUid("study")));
}

using Task = void (*)(benchmark::State& state, const Folder& folder);

benchmark::internal::Benchmark* add(const std::string& name, Task task, const Folder& folder) {
  return benchmark::RegisterBenchmark(name.c_str(), [task, &folder](benchmark::State& state) { task(state, folder); })
      ->Unit(benchmark::kMillisecond);
}

void addAll(const std::string& what, const Folder& folder) {
  add("openKnown" + what, &open, folder)
      ->Iterations(5)
      ->Repetitions(20)
      ->ComputeStatistics(bench::LimitJudge::fastest, &bench::fastestOf)
      ->DisplayAggregatesOnly();
  add("openKnown" + what + "AndListItsSlices", &openAndListSlices, folder);
  add("listStudiesOf" + what, &listStudies, folder);
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  bench::LimitJudge judge([](const std::string& name) {
    return name == "openKnownFolder" || name == "openKnownDatabase" ? std::optional(mostMsToOpen) : std::nullopt;
  });
  // All of them first: where many files have just been removed, a file system takes minutes to make as many again.
  const Folder known(Kind::inPlace, objects, 1);
  const Folder database(Kind::database, objects, 1);
  const Folder labelled(Kind::inPlace, 200, 100);
  addAll("Folder", known);
  addAll("Database", database);
  add("openStudyWith100Labellings", &openAndFindLabellings, labelled);
  benchmark::RunSpecifiedBenchmarks(&judge);
  return judge.failed() ? 1 : 0;
}
