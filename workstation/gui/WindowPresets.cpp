#include "workstation/gui/WindowPresets.h"

#include <algorithm>

#include "workstation/render/WindowLevel.h"

namespace workstation {
namespace {

/// Windows for Hounsfield units that suit the spine and what lies around it.
const std::vector<WindowPreset>& ctPresets() {
  static const std::vector<WindowPreset> presets{{"Bone", WindowSetting{450, 1800, {}}},
                                                 {"Spine, soft tissue", WindowSetting{50, 350, {}}},
                                                 {"Soft tissue", WindowSetting{40, 400, {}}},
                                                 {"Lung", WindowSetting{-600, 1500, {}}}};
  return presets;
}

}  // namespace

std::vector<WindowPreset> windowPresets(const std::string& modality, const PixelData& pixels,
                                        const WindowSetting& shown) {
  std::vector<WindowPreset> presets{{"As in the file", std::nullopt}};
  // The first is what "as in the file" means.
  for (std::size_t index = 1; index < pixels.windows.size(); ++index) {
    const WindowSetting& window = pixels.windows[index];
    presets.push_back(
        {window.explanation.empty() ? "Window " + std::to_string(index + 1) + " of the file" : window.explanation,
         window});
  }
  presets.push_back({"Whole range", fullWindow(pixels, storedRange(pixels))});
  if (modality == "CT") {
    presets.insert(presets.end(), ctPresets().begin(), ctPresets().end());
  } else {
    presets.push_back({"More contrast", WindowSetting{shown.centre, std::max(1.0, shown.width * 0.7), {}}});
    presets.push_back({"Less contrast", WindowSetting{shown.centre, shown.width * 1.4, {}}});
  }
  return presets;
}

}  // namespace workstation
