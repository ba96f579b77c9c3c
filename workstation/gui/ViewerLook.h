#pragma once

#include <array>
#include <optional>
#include <string>

#include "workstation/model/ImageRecord.h"

namespace workstation {

/// A point in the patient that the person marked.
struct MarkedPoint {
  std::string frameOfReferenceUid;
  std::array<double, 3> positionMm{};  ///< LPS
};

/// How a viewer shows its images, beyond what the model knows: it changes neither what is drawn nor what is stored.
struct ViewerLook {
  std::optional<WindowSetting> window;  ///< chosen by the person; absent: as the files ask for
  std::optional<std::size_t> voiTable;  ///< of each slice's tables the one chosen by the person, before the window
  std::optional<MarkedPoint> marked;
};

}  // namespace workstation
