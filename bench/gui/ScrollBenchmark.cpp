#include <malloc.h>

#include <cstdio>
#include <limits>

#include "Benchmarks.h"
#include "DrivenWindow.h"
#include "workstation/dicom/ImageWriter.h"
#include "workstation/dicom/Uid.h"

namespace guibench {
namespace {

constexpr double fewestImagesASecond = 120;
constexpr int slices = 200;
constexpr int size = 512;

/// Values over the whole range of 16 bits, so that reading and windowing have as much to do as they can have.
std::vector<std::int16_t> samplesOf(int slice) {
  std::vector<std::int16_t> samples;
  samples.reserve(static_cast<std::size_t>(size) * size);
  for (int row = 0; row < size; ++row)
    for (int column = 0; column < size; ++column)
      samples.push_back(static_cast<std::int16_t>((row * 131 + column * 17 + slice * 1013) % 65536 +
                                                  std::numeric_limits<std::int16_t>::min()));
  return samples;
}

void writeSlice(int slice, const std::filesystem::path& folder) {
  workstation::ImageToWrite image;
  image.kind = workstation::ImageKind::CT;
  image.patientName = "Scrolled";
  image.patientId = "S-1";
  image.studyInstanceUid = workstation::makeUid("bench gui study");
  image.studyDate = "20240229";
  image.studyTime = "101500";
  image.studyId = "1";
  image.seriesInstanceUid = workstation::makeUid("bench gui series");
  image.seriesDescription = "512 x 512 of 16 bits";
  image.sopInstanceUid = workstation::makeUid("bench gui slice " + std::to_string(slice));
  image.instanceNumber = slice + 1;
  image.frameOfReferenceUid = workstation::makeUid("bench gui frame of reference");
  image.geometry = {{0, 0, -static_cast<double>(slice)}, {1, 0, 0}, {0, 1, 0}, 0.5, 0.5};
  image.rows = image.columns = size;
  image.samples = samplesOf(slice);
  image.windowWidth = 4000;
  std::string problem;
  const auto file = folder / ("IM" + std::to_string(slice) + ".dcm");
  if (!writeImage(image, file, problem)) giveUp(problem);
}

/// By one notch of the wheel after the other to the end of the series that the sign of `notches` tells.
Duration scrollThrough(DrivenWindow& driven, int viewer, int notches) {
  Duration all;
  for (int image = 1; image < slices; ++image) {
    const int was = driven.model().viewer(viewer)->slice;
    const Duration one = driven.wheel(viewer, notches);
    if (driven.model().viewer(viewer)->slice != was - notches) giveUp("The wheel did not lead to the next slice.");
    if (driven.paintings(viewer) == 0) giveUp("The next slice was not painted.");
    all.busyMs += one.busyMs;
    all.passedMs += one.passedMs;
  }
  return all;
}

/// There and back: each slice is read, then each comes from the cache.
struct Round {
  int width = 0;
  int height = 0;
  Duration read;
  Duration kept;
};

/// In a window of its own: nothing of an earlier round is left, be it a text that was painted or memory that is free.
Round measureRound(const std::filesystem::path& study) {
  malloc_trim(0);
  DrivenWindow driven(study);
  const auto shown = driven.model().viewers().front();
  if (shown.slices != slices) giveUp("The window does not show every slice that was written.");
  if (!driven.model().scroll(shown.number, 0)) giveUp("The first slice cannot be shown.");
  driven.settle();
  auto& canvas = driven.canvas(shown.number);
  Round times{canvas.width(), canvas.height(), {}, {}};
  const QImage first = canvas.grab().toImage();
  driven.desk().pixels().clear();
  times.read = scrollThrough(driven, shown.number, -1);
  if (canvas.grab().toImage() == first) giveUp("The last slice looks like the first.");
  // The first slice was read before the cache was emptied.
  if (driven.desk().pixels().count() != slices - 1) giveUp("Not every slice was read.");
  times.kept = scrollThrough(driven, shown.number, 1);
  return times;
}

bool judgeScrolling(const char* what, const Duration& first, const Duration& second) {
  const Duration& faster = second.busyMs < first.busyMs ? second : first;
  const double aSecond = 1000 * (slices - 1) / faster.busyMs;
  std::printf("  %s: %.0f images a second of the processor (limit %g), %.0f a second that passed\n", what, aSecond,
              fewestImagesASecond, 1000 * (slices - 1) / faster.passedMs);
  if (aSecond >= fewestImagesASecond) return true;
  std::printf("FAILED: %s is fewer than %g images a second\n", what, fewestImagesASecond);
  return false;
}

}  // namespace

bool measureScrolling() {
  const Folder folder;
  std::filesystem::create_directory(folder / "study");
  for (int slice = 0; slice < slices; ++slice) writeSlice(slice, folder / "study");
  age(folder / "study");
  const Round first = measureRound(folder / "study");
  const Round second = measureRound(folder / "study");
  std::printf("%d slices of %d x %d of 16 bits by the wheel, in a viewer of %d x %d points, the faster of two times:\n",
              slices, size, size, first.width, first.height);
  const bool isReadInTime = judgeScrolling("read from their files", first.read, second.read);
  const bool isKeptInTime = judgeScrolling("from the cache", first.kept, second.kept);
  std::fflush(stdout);
  return isReadInTime && isKeptInTime;
}

}  // namespace guibench
