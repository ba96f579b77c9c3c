#pragma once

#include <optional>
#include <string>
#include <vector>

#include "workstation/model/ImageRecord.h"

namespace workstation {

/// A window, or a table of the file, that a person can choose by name.
struct WindowPreset {
  std::string title;
  std::optional<WindowSetting> window;
  std::optional<std::size_t> voiTable;  ///< neither: as the file asks for
};

/// The presets for a grey image: the file's own windows and tables, the whole range, and what its modality is usually
/// looked at with: fixed windows in CT, whose values are Hounsfield units; more or less contrast than now in anything
/// else, whose values mean nothing by themselves. `shown` is the window that the image is shown with now.
std::vector<WindowPreset> windowPresets(const std::string& modality, const PixelData& pixels,
                                        const WindowSetting& shown);

/// Whether the preset is what the person has chosen: this window, this table, or neither.
bool isChosen(const WindowPreset& preset, const std::optional<WindowSetting>& window,
              const std::optional<std::size_t>& voiTable);

}  // namespace workstation
