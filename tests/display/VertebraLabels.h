#pragma once
// The vertebra labels of a study, and what tests read of them.

#include <string>
#include <vector>

#include "tests/geometry/SpineStudy.h"

namespace vertana {

/// The sagittal display's horizontal axis runs front to back, so labels go to side 1. Lumbar: 30 mm from the spine.
struct VertebraLabels : SpineStudy {
  VertebraLabels() {
    filter.setDisplayLabels(true);
    host.calls.clear();
  }

  static std::vector<pelmar::Ref<testhost::TestROI>> labelsOn(const pelmar::Ref<testhost::TestViewer>& viewer) {
    return viewer->allROIsTagged("VertanaFilterLabel");
  }
  static std::vector<std::string> namesOn(const pelmar::Ref<testhost::TestViewer>& viewer) {
    std::vector<std::string> names;
    for (const auto& label : labelsOn(viewer)) names.push_back(label->caption);
    return names;
  }
  static std::vector<pelmar::PixelPoint> originsOn(const pelmar::Ref<testhost::TestViewer>& viewer) {
    std::vector<pelmar::PixelPoint> origins;
    for (const auto& label : labelsOn(viewer)) origins.push_back(label->rectangle.origin);
    return origins;
  }
  pelmar::Ref<testhost::TestROI> lineOf(const std::string& label) {
    return pelmar::ref_cast<testhost::TestROI>(filter.temporaryROIWithUID("kLabelsLinesTagPrefix " + label));
  }
  /// Planes without a curve, 40 mm apart, straight down.
  void holdPlanes(std::size_t count) {
    std::vector<IntervertebralPlane> planes;
    for (std::size_t i = 0; i < count; ++i) {
      planes.push_back(plane("p", {0, -100, 200 - 40 * static_cast<float>(i)}));
    }
    filter.setIntervertebralPlanes(planes);
  }
};

}  // namespace vertana
