#include "phantom/Phantom.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <fstream>
#include <system_error>
#include <thread>
#include <utility>

#include "phantom/Random.h"
#include "phantom/Render.h"
#include "phantom/Truth.h"
#include "workstation/dicom/ImageWriter.h"
#include "workstation/dicom/Uid.h"

namespace phantom {
namespace {

namespace fs = std::filesystem;

struct RegionWords {
  const char* description;
  const char* bodyPart;
};
constexpr std::array<RegionWords, 3> regionWords{
    {{"cervical", "CSPINE"}, {"thoracic", "TSPINE"}, {"lumbar", "LSPINE"}}};

std::string optionsKey(const PhantomOptions& options) {
  return "vertana phantom region=" + std::to_string(options.region) + " seed=" + std::to_string(options.seed) +
         " extra=" + std::to_string(options.extraVertebra) + " angled=" + std::to_string(options.angledAxials) +
         " ct=" + std::to_string(options.ct) + " size=" + std::to_string(options.imageSize);
}

std::array<double, 3> components(Vec3 v) { return {v.x, v.y, v.z}; }

std::string numbered(const char* prefix, int number, int digits) {
  std::string text = std::to_string(number);
  while (static_cast<int>(text.size()) < digits) text.insert(text.begin(), '0');
  return prefix + text;
}

/// Writes one study and takes back what it wrote unless told to keep it.
class StudyWriter {
 public:
  explicit StudyWriter(const PhantomOptions& options)
      : options_(options),
        shape_(options.region, options.extraVertebra, options.seed),
        contrast_(options.ct ? Contrast::Ct : Contrast::T2),
        tissue_(shape_, contrast_, options.seed),
        key_(optionsKey(options)) {
    result_.studyInstanceUid = workstation::makeUid(key_ + " study");
    frameOfReferenceUid_ = workstation::makeUid(key_ + " frame of reference");
  }

  PhantomResult write() {
    if (!prepareFolder() || !writeSeries() || !writeTruth()) {
      takeBack();
      result_.images = 0;
      return result_;
    }
    result_.written = true;
    return result_;
  }

 private:
  bool fail(std::string problem) {
    result_.problem = std::move(problem);
    return false;
  }

  bool makeFolder(const fs::path& folder) {
    std::error_code error;
    if (fs::create_directory(folder, error)) made_.push_back(folder);
    if (!error && fs::is_directory(folder, error)) return true;
    const std::string reason = error ? error.message() : "a file of that name is in the way";
    return fail("The folder " + folder.string() + " cannot be made: " + reason + ".");
  }

  bool prepareFolder() {
    const fs::path& folder = options_.outDir;
    if (folder.empty()) return fail("No folder was given for the phantom: name one that does not exist or is empty.");
    std::error_code error;
    if (!folder.parent_path().empty()) {
      fs::create_directories(folder.parent_path(), error);
      if (error) {
        return fail("The folder " + folder.parent_path().string() + " cannot be made: " + error.message() + ".");
      }
    }
    if (!makeFolder(folder)) return false;
    const bool empty = fs::is_empty(folder, error);
    if (error) return fail("The folder " + folder.string() + " cannot be read: " + error.message() + ".");
    if (empty) return true;
    return fail("The folder " + folder.string() +
                " is not empty, and a phantom would mix with what is in it: name one that does not exist or is empty.");
  }

  bool writeSeries() {
    const StudyPlan plan{options_.region, options_.angledAxials, options_.ct, options_.imageSize};
    const std::vector<SeriesPlan> study = planStudy(shape_, plan);
    int total = 0;
    for (const SeriesPlan& series : study) total += static_cast<int>(series.slices.size());
    for (const SeriesPlan& series : study) {
      const fs::path folder = options_.outDir / numbered("SE", series.number, 2);
      if (!makeFolder(folder)) return false;
      for (std::size_t i = 0; i < series.slices.size(); i += 2) {
        if (!writePair(series, i, folder, total)) return false;
      }
    }
    return true;
  }

  // Two slices are rendered at a time, one of them on a second thread; files are written in order.
  bool writePair(const SeriesPlan& series, std::size_t first, const fs::path& folder, int total) {
    const auto rendered = [&](std::size_t i) {
      const std::uint64_t noise = scatter(options_.seed) ^ (static_cast<std::uint64_t>(series.number) << 32) ^ i;
      return renderSlice(tissue_, series.slices[i], contrast_, noise);
    };
    const std::size_t second = first + 1;
    const bool pair = second < series.slices.size();
    std::array<std::vector<std::int16_t>, 2> samples;
    {
      std::jthread helper;
      if (pair) helper = std::jthread([&] { samples[1] = rendered(second); });
      samples[0] = rendered(first);
    }
    return writeSlice(series, first, std::move(samples[0]), folder, total) &&
           (!pair || writeSlice(series, second, std::move(samples[1]), folder, total));
  }

  bool writeSlice(const SeriesPlan& series, std::size_t i, std::vector<std::int16_t> samples, const fs::path& folder,
                  int total) {
    if (options_.progress && !options_.progress(result_.images, total)) {
      result_.cancelled = true;
      return false;
    }
    workstation::ImageToWrite image = describe(series, i);
    image.samples = std::move(samples);
    const fs::path file = folder / (numbered("IM", image.instanceNumber, 4) + ".dcm");
    if (!workstation::writeImage(image, file, result_.problem)) return false;
    made_.push_back(file);
    ++result_.images;
    if (series.axial) slices_.push_back({image.sopInstanceUid, levelOf(shape_, series.slices[i])});
    return true;
  }

  workstation::ImageToWrite describe(const SeriesPlan& series, std::size_t i) const {
    const SlicePlane& plane = series.slices[i];
    const RegionWords& words = regionWords[static_cast<std::size_t>(options_.region)];
    const std::string seriesKey = key_ + " series " + std::to_string(series.number);
    workstation::ImageToWrite image;
    image.kind = options_.ct ? workstation::ImageKind::CT : workstation::ImageKind::MR;
    if (series.reformat) image.imageType = {"DERIVED", "SECONDARY", "REFORMATTED"};
    image.patientName = "Phantom^" + std::string(words.description);
    image.patientId = "PHANTOM-" + std::to_string(options_.seed);
    image.patientSex = "O";
    image.studyInstanceUid = result_.studyInstanceUid;
    image.studyDate = "20200101";
    image.studyTime = "120000";
    image.studyId = "PHANTOM";
    image.studyDescription = std::string(options_.ct ? "CT " : "MRI ") + words.description + " spine (phantom)";
    image.seriesInstanceUid = workstation::makeUid(seriesKey);
    image.seriesNumber = series.number;
    image.seriesDescription = series.description;
    image.bodyPartExamined = words.bodyPart;
    image.instanceNumber = static_cast<int>(i) + 1;
    image.sopInstanceUid = workstation::makeUid(seriesKey + " image " + std::to_string(image.instanceNumber));
    image.frameOfReferenceUid = frameOfReferenceUid_;
    image.geometry = {components(plane.position), components(plane.row), components(plane.column), plane.spacingMm,
                      plane.spacingMm};
    image.sliceThicknessMm = plane.thicknessMm;
    image.spacingBetweenSlicesMm = series.spacingBetweenSlicesMm;
    image.repetitionTimeMs = 3500;
    image.echoTimeMs = 100;
    image.rows = plane.size;
    image.columns = plane.size;
    image.windowCentre = options_.ct ? 250 : 480;
    image.windowWidth = options_.ct ? 1400 : 960;
    return image;
  }

  bool writeTruth() {
    result_.truth = options_.outDir / "truth.json";
    std::ofstream file(result_.truth, std::ios::binary);
    made_.push_back(result_.truth);
    errno = 0;
    file << truthText(options_, shape_, frameOfReferenceUid_, slices_);
    file.close();
    if (file) return true;
    const std::string reason = errno != 0 ? std::generic_category().message(errno) : "the disk may be full";
    return fail("The file " + result_.truth.string() + " cannot be written: " + reason + ".");
  }

  void takeBack() {
    std::error_code ignored;
    std::for_each(made_.rbegin(), made_.rend(), [&](const fs::path& path) { fs::remove(path, ignored); });
  }

  const PhantomOptions& options_;
  SpineShape shape_;
  Contrast contrast_;
  Tissue tissue_;
  std::string key_;
  std::string frameOfReferenceUid_;
  std::vector<SliceTruth> slices_;
  std::vector<fs::path> made_;  ///< files and folders that were not there before, in the order made
  PhantomResult result_;
};

}  // namespace

PhantomResult writePhantom(const PhantomOptions& options) {
  PhantomResult refused;
  if (options.region < 0 || options.region > 2) {
    refused.problem =
        "The region " + std::to_string(options.region) + " is unknown: it is 0 (cervical), 1 (thoracic) or 2 (lumbar).";
    return refused;
  }
  if (options.imageSize != 0 && (options.imageSize < 16 || options.imageSize > 1024)) {
    refused.problem = "An image size of " + std::to_string(options.imageSize) +
                      " pixels is not possible: it is 16 to 1024, or 0 for the usual one.";
    return refused;
  }
  return StudyWriter(options).write();
}

}  // namespace phantom
