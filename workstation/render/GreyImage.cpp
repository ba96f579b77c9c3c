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

/// Whether brightness only rises, or only falls, with the stored value.
bool isMonotonic(const VoiTransform& transform) {
  return !transform.table && transform.function != WindowFunction::sigmoid;
}

/// Fills in what lies between two entries of a monotonic table: where they are the same, so are all between them.
template <class ShadeOf>
void fillBetween(std::vector<QRgb>& table, std::size_t first, std::size_t last, const ShadeOf& shadeOf) {
  if (last - first < 2) return;
  if (table[first] == table[last]) {
    std::fill(table.data() + first + 1, table.data() + last, table[first]);
    return;
  }
  const std::size_t middle = first + (last - first) / 2;
  table[middle] = shadeOf(middle);
  fillBetween(table, first, middle, shadeOf);
  fillBetween(table, middle, last, shadeOf);
}

/// The shade of each stored value of the range.
std::vector<QRgb> tableOf(const Shades& shades, const StoredRange& range, bool monotonic) {
  const auto shadeOf = [&](std::size_t entry) { return shades(range.lowest + static_cast<std::int32_t>(entry)); };
  std::vector<QRgb> table(static_cast<std::size_t>(std::int64_t{range.highest} - range.lowest + 1));
  if (!monotonic) {
    for (std::size_t entry = 0; entry < table.size(); ++entry) table[entry] = shadeOf(entry);
    return table;
  }
  table.front() = shadeOf(0);
  table.back() = shadeOf(table.size() - 1);
  fillBetween(table, 0, table.size() - 1, shadeOf);
  return table;
}

template <class ShadeOf>
void fillGrey(QImage& image, const PixelData& pixels, const ShadeOf& shadeOf) {
  const std::int32_t* sample = pixels.samples.data();
  for (int row = 0; row < pixels.rows; ++row) {
    auto* line = reinterpret_cast<QRgb*>(image.scanLine(row));
    for (int column = 0; column < pixels.columns; ++column, ++sample) line[column] = shadeOf(*sample);
  }
}

void fillGrey(QImage& image, const PixelData& pixels, const StoredRange& range, const VoiTransform& transform) {
  const Shades shades(pixels, transform);
  // A table pays where there are not far fewer pixels than entries.
  if (std::int64_t{range.highest} - range.lowest >= longestTable) return fillGrey(image, pixels, shades);
  const std::vector<QRgb> table = tableOf(shades, range, isMonotonic(transform));
  const QRgb* entries = table.data();
  fillGrey(image, pixels, [entries, lowest = range.lowest](std::int32_t stored) { return entries[stored - lowest]; });
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
