// Any bytes as a file: it is read, and the pixels of its first frames are decoded. What comes out must be consistent.

#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "workstation/dicom/PixelReader.h"
#include "workstation/dicom/StudyReader.h"

namespace {

/// One file, on a file system in memory where there is one, written anew for each input.
const std::filesystem::path& inputFile() {
  static const std::filesystem::path file = [] {
    const bool hasMemory = std::filesystem::is_directory("/dev/shm");
    const std::filesystem::path folder = hasMemory ? "/dev/shm" : std::filesystem::temp_directory_path();
    return folder / ("vertana-fuzz-" + std::to_string(getpid()) + ".dcm");
  }();
  return file;
}

void require(bool condition) {
  if (!condition) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
  std::FILE* stream = std::fopen(inputFile().c_str(), "wb");
  require(stream != nullptr && std::fwrite(bytes, 1, length, stream) == length && std::fclose(stream) == 0);

  workstation::ReadResult result;
  workstation::readImageFile(inputFile(), result);
  const std::size_t lists = result.unreadable.size() + result.otherObjects.size() + result.notDicom.size() +
                            result.directories.size() + (result.images.empty() ? 0 : 1);
  require(lists == 1);
  workstation::PixelReader reader;
  for (std::size_t i = 0; i < std::min<std::size_t>(result.images.size(), 2); ++i) {
    const workstation::ImageRecord& image = result.images[i];
    require(image.geometry.has_value() == image.geometryProblem.empty());
    std::string problem;
    const std::optional<workstation::PixelData> pixels = reader.pixels(image, problem);
    require(pixels.has_value() == problem.empty());
    if (pixels)
      require(pixels->samples.size() == static_cast<std::size_t>(image.rows) * static_cast<std::size_t>(image.columns) *
                                            static_cast<std::size_t>(pixels->samplesPerPixel));
  }
  return 0;
}
