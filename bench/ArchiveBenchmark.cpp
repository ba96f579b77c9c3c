// Reading keyed archives: every sample, good or not, in less than 10 ms each, and the largest XML that the bounds let
// through, which has no limit.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>
#include <string>

#include "LimitJudge.h"
#include "workstation/archive/ArchiveBounds.h"
#include "workstation/archive/KeyedArchive.h"
#include "workstation/model/Points.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* largestName = "the largest XML";

void readArchive(benchmark::State& state, const pelmar::Bytes& archive) {
  workstation::PatientPointClass points;
  for (auto _ : state) benchmark::DoNotOptimize(workstation::readPaddedArchive(archive, points));
}

void add(const std::string& name, const pelmar::Bytes& archive) {
  benchmark::RegisterBenchmark(name.c_str(), readArchive, archive)->Unit(benchmark::kMicrosecond);
}

void addSamples(const fs::path& folder) {
  if (!fs::is_directory(folder)) {
    std::cerr << "SKIPPED: there is no folder " << folder << '\n';
    return;
  }
  for (const auto& entry : fs::directory_iterator(folder)) {
    std::ifstream in(entry.path(), std::ios::binary);
    add(entry.path().filename().string(), pelmar::Bytes(std::istreambuf_iterator<char>(in), {}));
  }
}

/// An archive of the greatest size that may be, nearly all of it values that nothing refers to.
pelmar::Bytes largestXml() {
  namespace bounds = workstation::archive_bounds;
  std::string xml =
      "<plist><dict><key>$archiver</key><string>NSKeyedArchiver</string><key>$version</key><integer>100000</integer>"
      "<key>$top</key><dict><key>root</key><dict><key>CF$UID</key><integer>1</integer></dict></dict>"
      "<key>$objects</key><array><string>$null</string><string>a</string>";
  for (std::uint32_t i = 0; i < bounds::objects - 20; ++i) xml += "<true/>";
  const std::string end = "</array></dict></plist>";
  xml += "<string>" + std::string(bounds::bytes - xml.size() - end.size() - 17, 'x') + "</string>" + end;
  return {xml.begin(), xml.end()};
}

}  // namespace

int main(int argc, char** argv) {
  addSamples(ARCHIVE_SAMPLES);
  add(largestName, largestXml());
  benchmark::Initialize(&argc, argv);
  bench::LimitJudge judge(
      [](const std::string& name) { return name == largestName ? std::nullopt : std::optional(10.0); });
  benchmark::RunSpecifiedBenchmarks(&judge);
  return judge.failed() ? 1 : 0;
}
