#include "workstation/render/WindowLevel.h"

#include <algorithm>
#include <cmath>

#include "workstation/render/NumberText.h"

namespace workstation {
namespace {

/// PS3.3 C.11.2.1.2.1, with 0 and 1 as the lowest and highest output.
double linear(double x, const WindowSetting& window) {
  const double middle = window.centre - 0.5;
  const double half = (window.width - 1) / 2;
  if (x <= middle - half) return 0;
  if (x > middle + half) return 1;
  return (x - middle) / (window.width - 1) + 0.5;
}

/// PS3.3 C.11.2.1.3.2.
double linearExact(double x, const WindowSetting& window) {
  if (x <= window.centre - window.width / 2) return 0;
  if (x > window.centre + window.width / 2) return 1;
  return (x - window.centre) / window.width + 0.5;
}

/// PS3.3 C.11.2.1.3.1.
double sigmoid(double x, const WindowSetting& window) {
  return 1 / (1 + std::exp(-4 * (x - window.centre) / window.width));
}

/// PS3.3 C.11.2.1.1: values outside the table get its first or last entry.
double looked(double x, const VoiLut& table) {
  const double last = static_cast<double>(table.entries.size()) - 1;
  const double index = std::clamp(std::round(x) - table.firstMapped, 0.0, last);
  const double brightest = (1 << table.bits) - 1;
  return std::min(1.0, table.entries[static_cast<std::size_t>(index)] / brightest);
}

bool isUsable(const WindowSetting& window) {
  return std::isfinite(window.centre) && std::isfinite(window.width) && window.width > 0;
}

}  // namespace

double VoiTransform::brightness(double modalityValue) const {
  if (std::isnan(modalityValue)) return 0;
  if (table) return looked(modalityValue, *table);
  if (function == WindowFunction::sigmoid) return sigmoid(modalityValue, window);
  if (function == WindowFunction::linearExact || window.width < 1) return linearExact(modalityValue, window);
  return linear(modalityValue, window);
}

StoredRange storedRange(const PixelData& pixels) {
  if (pixels.samples.empty()) return {};
  StoredRange range{pixels.samples.front(), pixels.samples.front()};
  for (const std::int32_t sample : pixels.samples) {
    range.lowest = std::min(range.lowest, sample);
    range.highest = std::max(range.highest, sample);
  }
  return range;
}

WindowSetting fullWindow(const PixelData& pixels, const StoredRange& range) {
  const double a = pixels.rescaleSlope * range.lowest + pixels.rescaleIntercept;
  const double b = pixels.rescaleSlope * range.highest + pixels.rescaleIntercept;
  // The linear function reaches black at centre - 0.5 - (width - 1) / 2 and white as far above centre - 0.5.
  return {(a + b + 1) / 2, std::abs(b - a) + 1, {}};
}

VoiTransform voiTransformOf(const PixelData& pixels, const StoredRange& range,
                            const std::optional<WindowSetting>& chosen, const std::optional<std::size_t>& chosenTable) {
  const auto hasTable = [&](std::size_t place) {
    return place < pixels.voiLuts.size() && !pixels.voiLuts[place].entries.empty();
  };
  VoiTransform transform;
  transform.function = pixels.windowFunction;
  if (chosenTable && hasTable(*chosenTable)) {
    transform.table = &pixels.voiLuts[*chosenTable];
    transform.window = fullWindow(pixels, range);
  } else if (chosen && isUsable(*chosen)) {
    transform.window = *chosen;
  } else if (!pixels.windows.empty() && isUsable(pixels.windows.front())) {
    transform.window = pixels.windows.front();
  } else if (hasTable(0)) {
    transform.table = &pixels.voiLuts.front();
    transform.window = fullWindow(pixels, range);
  } else {
    transform.window = fullWindow(pixels, range);
    transform.function = WindowFunction::linear;
  }
  return transform;
}

int eightBits(double brightness) { return static_cast<int>(std::lround(std::clamp(brightness, 0.0, 1.0) * 255)); }

std::string windowText(const VoiTransform& transform) {
  if (transform.table) return transform.table->explanation.empty() ? "Table of the file" : transform.table->explanation;
  return "WL " + numberText(transform.window.centre) + " WW " + numberText(transform.window.width);
}

}  // namespace workstation
