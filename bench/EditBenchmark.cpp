// What one edit of the spine curve costs, everything recomputed: planes, labels on every vertical viewer, plane lines,
// names of every axial slice. One iteration is one mouse move of a vertex drag, as the window and a script send it.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "workstation/bundles/BundleLoader.h"
#include "workstation/model/Workstation.h"

namespace {

using workstation::ImageGeometry;
using workstation::ImageRecord;
using workstation::Workstation;

struct StudySize {
  int verticalSeries = 0;
  int verticalSlices = 0;
  int axialSeries = 0;
  int axialSlices = 0;  ///< of each series
};

constexpr double spineTopMm = 100;
constexpr double spineLengthMm = 200;

ImageRecord sliceOf(int series, int slice, const ImageGeometry& geometry, int size) {
  ImageRecord record;
  record.studyInstanceUid = "1.2.3";
  record.studyDescription = "lumbar";
  record.seriesInstanceUid = "1.2.3." + std::to_string(series);
  record.seriesNumber = series;
  record.sopInstanceUid = record.seriesInstanceUid + "." + std::to_string(slice + 1);
  record.instanceNumber = slice + 1;
  record.frameOfReferenceUid = "1.2.4";
  record.modality = "MR";
  record.rows = record.columns = size;
  record.geometry = geometry;
  return record;
}

std::vector<ImageRecord> studyOf(const StudySize& size) {
  std::vector<ImageRecord> images;
  int series = 0;
  for (int s = 0; s < size.verticalSeries; ++s) {
    ++series;
    for (int i = 0; i < size.verticalSlices; ++i) {
      const double x = (i - size.verticalSlices / 2.0) * 60 / size.verticalSlices;
      images.push_back(sliceOf(series, i, {{x, -128, 128}, {0, 1, 0}, {0, 0, -1}, 0.5, 0.5}, 512));
    }
  }
  for (int s = 0; s < size.axialSeries; ++s) {
    ++series;
    for (int i = 0; i < size.axialSlices; ++i) {
      const double z = spineTopMm - (i + 0.5) * spineLengthMm / size.axialSlices;
      images.push_back(sliceOf(series, i, {{-128, -128, z}, {1, 0, 0}, {0, 1, 0}, 0.5, 0.5}, 512));
    }
  }
  return images;
}

/// Stops the benchmark with a message: a time of something that did not work would be worse than none.
void require(bool condition, const std::string& problem) {
  if (condition) return;
  std::fprintf(stderr, "bench_edit: %s\n", problem.c_str());
  std::exit(1);
}

void editCurve(benchmark::State& state, const StudySize& size) {
  Workstation workstation;
  auto plugin = workstation::loadBundle(VERTANA_BUNDLE, workstation.api());
  require(static_cast<bool>(plugin), plugin.problem);
  workstation.setPlugin(std::move(*plugin));
  const auto studies = workstation.addImages(studyOf(size));
  require(static_cast<bool>(workstation.openStudy(studies.front())), "the study does not open");
  require(static_cast<bool>(workstation.chooseMenu(0, "Labels")), "the menu entry was refused");
  const int middle = size.verticalSlices / 2;
  const auto drawn = workstation.drawLine(0, middle, {256, 56}, {256, 456});
  require(static_cast<bool>(drawn), drawn.problem);

  // The line runs from z = 100 to z = -100 mm, so its six vertices stand 80 pixels apart.
  require(static_cast<bool>(workstation.press(0, pelmar::PixelPoint{256, 216})), "the press was refused");
  double x = 256;
  for (auto _ : state) {
    x = x >= 266 ? 256 : x + 1;
    benchmark::DoNotOptimize(workstation.move(0, pelmar::PixelPoint{x, 216}));
  }
  require(static_cast<bool>(workstation.release(0, pelmar::PixelPoint{x, 216})), "the release was refused");

  int named = 0;
  for (const auto& viewer : workstation.viewers()) {
    if (viewer.orientationCode != 4 && viewer.orientationCode != 5) continue;
    for (int i = 0; i < viewer.slices; ++i) named += workstation.annotations(viewer.number, i).empty() ? 0 : 1;
  }
  require(named == size.axialSeries * size.axialSlices, "not every axial slice has a name");
  state.counters["axial slices named"] = named;
}

void everydayStudy(benchmark::State& state) { editCurve(state, {2, 15, 3, 40}); }
void largeStudy(benchmark::State& state) { editCurve(state, {1, 512, 1, 2000}); }
void twiceTheLargeStudy(benchmark::State& state) { editCurve(state, {1, 1024, 1, 4000}); }

BENCHMARK(everydayStudy)->Name("edit/2x15 sagittal, 3x40 axial")->Unit(benchmark::kMillisecond);
BENCHMARK(largeStudy)->Name("edit/512 vertical, 2000 axial")->Unit(benchmark::kMillisecond);
BENCHMARK(twiceTheLargeStudy)->Name("edit/1024 vertical, 4000 axial")->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
