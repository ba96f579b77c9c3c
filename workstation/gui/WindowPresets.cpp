#include "workstation/gui/WindowPresets.h"

#include <algorithm>

#include "workstation/render/WindowLevel.h"

namespace workstation {
namespace {

/// Windows for Hounsfield units that suit the spine and what lies around it.
const std::vector<WindowPreset>& ctPresets() {
  static const std::vector<WindowPreset> presets{{"Bone", WindowSetting{450, 1800, {}}, {}},
                                                 {"Spine, soft tissue", WindowSetting{50, 350, {}}, {}},
                                                 {"Soft tissue", WindowSetting{40, 400, {}}, {}},
                                                 {"Lung", WindowSetting{-600, 1500, {}}, {}}};
  return presets;
}

/// What the file calls it, or where it stands in the file.
std::string titleOf(const std::string& explanation, const std::string& kind, std::size_t place) {
  return explanation.empty() ? kind + " " + std::to_string(place + 1) + " of the file" : explanation;
}

/// The first is what "as in the file" means, and is named there.
std::vector<WindowPreset> presetsOfFile(const PixelData& pixels) {
  std::vector<WindowPreset> presets{{"As in the file", std::nullopt, std::nullopt}};
  for (std::size_t place = 0; place < pixels.windows.size(); ++place) {
    const WindowSetting& window = pixels.windows[place];
    if (place > 0) presets.push_back({titleOf(window.explanation, "Window", place), window, std::nullopt});
  }
  for (std::size_t place = pixels.windows.empty() ? 1 : 0; place < pixels.voiLuts.size(); ++place)
    presets.push_back({titleOf(pixels.voiLuts[place].explanation, "Table", place), std::nullopt, place});
  const std::string first = !pixels.windows.empty()   ? pixels.windows.front().explanation
                            : !pixels.voiLuts.empty() ? pixels.voiLuts.front().explanation
                                                      : std::string();
  if (!first.empty()) presets.front().title += ": " + first;
  return presets;
}

}  // namespace

std::vector<WindowPreset> windowPresets(const std::string& modality, const PixelData& pixels,
                                        const WindowSetting& shown) {
  std::vector<WindowPreset> presets = presetsOfFile(pixels);
  presets.push_back({"Whole range", fullWindow(pixels, storedRange(pixels)), {}});
  if (modality == "CT") {
    presets.insert(presets.end(), ctPresets().begin(), ctPresets().end());
  } else {
    presets.push_back({"More contrast", WindowSetting{shown.centre, std::max(1.0, shown.width * 0.7), {}}, {}});
    presets.push_back({"Less contrast", WindowSetting{shown.centre, shown.width * 1.4, {}}, {}});
  }
  return presets;
}

bool isChosen(const WindowPreset& preset, const std::optional<WindowSetting>& window,
              const std::optional<std::size_t>& voiTable) {
  if (preset.voiTable || voiTable) return preset.voiTable == voiTable;
  if (!preset.window || !window) return !preset.window && !window;
  return preset.window->centre == window->centre && preset.window->width == window->width;
}

}  // namespace workstation
