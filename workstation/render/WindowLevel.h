#pragma once
// From stored values to brightness: which window or table counts, and what it makes of a value. Pure arithmetic.

#include <optional>
#include <string>

#include "workstation/model/ImageRecord.h"

namespace workstation {

/// What a grey image is shown with: a table of the file, or a window.
struct VoiTransform {
  const VoiLut* table = nullptr;  ///< of the pixels that it was chosen for; counts before the window
  WindowSetting window;           ///< in modality values; width > 0
  WindowFunction function = WindowFunction::linear;

  /// The brightness of a modality value, 0 (black) .. 1 (white), by PS3.3 C.11.2.1.1, C.11.2.1.2 or C.11.2.1.3. A
  /// linear window narrower than 1, which the standard knows only as LINEAR_EXACT, is taken as such.
  double brightness(double modalityValue) const;
};

/// The lowest and highest of the stored values.
struct StoredRange {
  std::int32_t lowest = 0;
  std::int32_t highest = 0;
};

/// 0 and 0 without samples.
StoredRange storedRange(const PixelData& pixels);

/// The window that maps the lowest stored value to black and the highest to white.
WindowSetting fullWindow(const PixelData& pixels, const StoredRange& range);

/// What the pixels are shown with: the table of theirs that a person has chosen, by its place from 0, else the window
/// that was chosen, else the file's first window, else its first table, else all from the lowest to the highest value.
/// A chosen window that is not finite or not wider than 0 counts as none, and so does a table that the pixels do not
/// have. The pixels must outlive the answer.
VoiTransform voiTransformOf(const PixelData& pixels, const StoredRange& range,
                            const std::optional<WindowSetting>& chosen,
                            const std::optional<std::size_t>& chosenTable = std::nullopt);

/// A brightness as a sample of 8 bits: the nearest of 0 .. 255.
int eightBits(double brightness);

/// "WL 300 WW 600", or the explanation of a table.
std::string windowText(const VoiTransform& transform);

}  // namespace workstation
