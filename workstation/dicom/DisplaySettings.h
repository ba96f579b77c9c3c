#pragma once

#include <vector>

#include "workstation/model/ImageRecord.h"

class DcmItem;

namespace workstation {

/// The ways in which a file wants its values shown (PS3.3 C.11.2). Internal to this folder.
struct DisplaySettings {
  std::vector<WindowSetting> windows;
  WindowFunction function = WindowFunction::linear;
  std::vector<VoiLut> luts;
};

/// Reads them from the item that holds them: the data set, or a frame's group. Windows without a finite centre or a
/// width above 0, and tables that are not whole, are left out. `negativeInput` says that modality values can be below
/// 0; then a first mapped value over 32767 is a negative one that was read as unsigned.
/// `dataset` names the character set.
DisplaySettings readDisplaySettings(DcmItem& item, DcmItem& dataset, bool negativeInput);

}  // namespace workstation
