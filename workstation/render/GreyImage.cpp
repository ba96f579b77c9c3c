#include "workstation/render/GreyImage.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace workstation {
namespace {

/// The widest range of stored values that gets a table: more than 16 bits have, and as much memory as two images.
constexpr std::int64_t longestTable = 1 << 18;

bool isWhole(const PixelData& pixels) {
  if (pixels.rows < 1 || pixels.columns < 1 || (pixels.samplesPerPixel != 1 && pixels.samplesPerPixel != 3))
    return false;
  const std::size_t needed = static_cast<std::size_t>(pixels.rows) * static_cast<std::size_t>(pixels.columns) *
                             static_cast<std::size_t>(pixels.samplesPerPixel);
  return pixels.samples.size() == needed;
}

/// Shades of stored values.
class Shades {
 public:
  Shades(const PixelData& pixels, const VoiTransform& transform) : pixels_(pixels), transform_(transform) {}

  QRgb operator()(std::int32_t stored) const {
    const int level = eightBits(transform_.brightness(pixels_.rescaleSlope * stored + pixels_.rescaleIntercept));
    const int shown = pixels_.monochrome1 ? 255 - level : level;
    return qRgb(shown, shown, shown);
  }

 private:
  const PixelData& pixels_;
  const VoiTransform& transform_;
};

void fillGrey(QImage& image, const PixelData& pixels, const StoredRange& range, const VoiTransform& transform) {
  const Shades shades(pixels, transform);
  const std::int64_t length = std::int64_t{range.highest} - range.lowest + 1;
  std::vector<QRgb> table;
  // A table pays where there are not far fewer pixels than entries.
  if (length <= longestTable) {
    table.reserve(static_cast<std::size_t>(length));
    for (std::int64_t value = range.lowest; value <= range.highest; ++value)
      table.push_back(shades(static_cast<std::int32_t>(value)));
  }
  const std::int32_t* sample = pixels.samples.data();
  for (int row = 0; row < pixels.rows; ++row) {
    auto* line = reinterpret_cast<QRgb*>(image.scanLine(row));
    for (int column = 0; column < pixels.columns; ++column, ++sample)
      line[column] = table.empty() ? shades(*sample) : table[static_cast<std::size_t>(*sample - range.lowest)];
  }
}

void fillColours(QImage& image, const PixelData& pixels) {
  const std::int32_t* sample = pixels.samples.data();
  const auto level = [](std::int32_t value) { return std::clamp(value, 0, 255); };
  for (int row = 0; row < pixels.rows; ++row) {
    auto* line = reinterpret_cast<QRgb*>(image.scanLine(row));
    for (int column = 0; column < pixels.columns; ++column, sample += 3)
      line[column] = qRgb(level(sample[0]), level(sample[1]), level(sample[2]));
  }
}

}  // namespace

QImage imageOfPixels(const PixelData& pixels, const StoredRange& range, const VoiTransform& transform) {
  if (!isWhole(pixels)) return {};
  QImage image(pixels.columns, pixels.rows, QImage::Format_RGB32);
  if (image.isNull()) return image;
  if (pixels.samplesPerPixel == 3) {
    fillColours(image, pixels);
  } else {
    fillGrey(image, pixels, range, transform);
  }
  return image;
}

}  // namespace workstation
