#pragma once
// A study with an axial series whose slices are named.

#include <optional>
#include <string>
#include <vector>

#include "tests/geometry/SpineStudy.h"

namespace vertana {

inline const std::string axialTag = "VertanaFilterAxialLabel";

/// Axial slices 1 mm apart, z = 120 at index 0 down to -120; 101 pixels of 1 mm, so that the centre pixel position
/// (50.5, 50.5) lies at x = y = 0.5 mm.
struct AxialNames : SpineStudy {
  pelmar::Ref<testhost::TestViewer> axial = host.addViewer(study, testhost::axialSeries(241, 101, 1, 1));

  AxialNames() {
    filter.setDisplayLabels(true);
    host.calls.clear();
  }

  /// The six lumbar discs straight down the patient's z axis, 30 mm apart from z = 90: thirds of 10 mm.
  void holdLumbarPlanes() {
    std::vector<IntervertebralPlane> planes;
    float z = 90;
    for (const char* name : {"T12-L1", "L1-L2", "L2-L3", "L3-L4", "L4-L5", "L5-S1"}) {
      planes.push_back(plane(name, {0, 0, z}));
      z -= 30;
    }
    filter.setIntervertebralPlanes(planes);
  }
  std::optional<std::string> nameAtZ(long z) { return filter.nameForSliceAtIndex(120 - z, axial->view); }
  std::vector<pelmar::Ref<testhost::TestROI>> namesOnSlice(std::size_t slice) const {
    auto rois = axial->roisOnSlice(slice);
    std::erase_if(rois, [](const auto& roi) { return !roi->tags->containsObject(axialTag); });
    return rois;
  }
};

}  // namespace vertana
