#pragma once

#include <optional>
#include <string>

#include "cli/Arguments.h"
#include "cli/ExitStatus.h"
#include "workstation/model/Workstation.h"

namespace cli {

/// The slice that is drawn on.
struct VerticalSlice {
  int viewer = 0;
  int slice = 0;
  int slices = 0;
  std::optional<int> series;
  std::size_t stack = 0;
  std::string frameOfReference;
  workstation::ImageRecord record;
};

/// The slice that --series and --slice name; without them the middle slice of the series that the plug-in would take:
/// the one in front if it is sagittal (after opening a study, the last), else the first that is sagittal, else the
/// first that is coronal. A Failure says what the study lacks.
Expected<VerticalSlice> findVerticalSlice(const workstation::Workstation& workstation, const LabelArguments& arguments);

/// Whether the points lie on the image and are long enough (7 cm on the patient; of a polygon, along its smooth
/// curve) to be taken as a spine.
std::optional<Failure> checkPoints(const VerticalSlice& slice, const LabelArguments& arguments);

}  // namespace cli
