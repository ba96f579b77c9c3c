#pragma once
// One study with a sagittal viewer, and the plug-in's controller set to it: what most tests of the spine start from.

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "plugin/VertanaFilter.h"
#include "tests/double/TestHost.h"

namespace vertana {

/// Three sagittal slices at x = -4, 0 and 4 mm, 401 pixels of 1 mm: pixel (x, y) lies at y = x - 200, z = 200 - y, so
/// that further down the image is further towards the feet. Region lumbar, draw mode line. The call log is empty.
struct SpineStudy : ::testing::Test {
  testhost::TestHost host;
  pelmar::Ref<testhost::TestStudy> study = host.addStudy("1.2.3", "MRI");
  pelmar::Ref<testhost::TestViewer> sagittal = host.addViewer(study, testhost::sagittalSeries(3, 401));
  VertanaFilter filter{host};

  SpineStudy() {
    filter.setStudy(study);
    filter.setAnatomicalRegion(AnatomicalRegionLumbar);
    host.calls.clear();
  }

  /// The person's length line, adopted as input.
  pelmar::Ref<testhost::TestROI> inputLine(pelmar::PixelPoint a, pelmar::PixelPoint b,
                                           long mode = pelmar::ROIModeFinished,
                                           std::optional<float> lengthCm = std::nullopt) {
    const auto roi = host.addROI(pelmar::ROITypeLength, sagittal, 0, {a, b});
    roi->mode = mode;
    roi->lengthOverride = lengthCm;
    filter.setInputLengthROI(roi);
    return roi;
  }

  /// The person's open polygon, adopted as input.
  pelmar::Ref<testhost::TestROI> inputPolygon(const std::vector<pelmar::PixelPoint>& points,
                                              long mode = pelmar::ROIModeFinished,
                                              std::optional<float> lengthCm = std::nullopt) {
    const auto roi = host.addROI(pelmar::ROITypeOpenPolygon, sagittal, 0, points);
    roi->mode = mode;
    roi->lengthOverride = lengthCm;
    filter.setInputOpenPolygonROI(roi);
    return roi;
  }

  /// The plug-in's own curve, as an earlier step would have left it: on every slice.
  pelmar::Ref<testhost::TestROI> curveThrough(const std::vector<pelmar::PixelPoint>& points) {
    const auto roi =
        host.addROI(pelmar::ROITypeOpenPolygon, sagittal, 0, points, {"kConstructionOpenPolygonStringTag"});
    for (std::size_t slice = 1; slice < sagittal->sliceLists.size(); ++slice) {
      sagittal->sliceLists[slice]->elements().push_back(roi);
    }
    filter.setOpenPolygonROI(roi);
    return roi;
  }

  /// The curve as the plug-in holds it, nil when it holds none.
  pelmar::Ref<testhost::TestROI> curve() const { return pelmar::ref_cast<testhost::TestROI>(filter.openPolygonROI()); }
  std::vector<pelmar::PixelPoint> curvePoints() const {
    return curve() ? curve()->positions() : std::vector<pelmar::PixelPoint>();
  }

  static IntervertebralPlane plane(const std::string& name, const pelmar::Vector3f& point,
                                   const pelmar::Vector3f& vector = {0, 0, -1}) {
    const auto made = [](const pelmar::Vector3f& v) {
      return testhost::makePoint(static_cast<double>(v.x), static_cast<double>(v.y), static_cast<double>(v.z));
    };
    return {name, made(point), made(vector)};
  }

  /// Whether planes are held right now; asking the controller itself would compute them.
  bool holdsPlanes() const {
    const auto snapshot = filter.stateSnapshot();
    return !snapshot.dictionary()->at("intervertebralPlanes").isNil();
  }

  /// Names of the planes that are held right now, without computing any.
  std::vector<std::string> heldPlaneNames() const {
    std::vector<std::string> names;
    const auto snapshot = filter.stateSnapshot();
    const auto* records = snapshot.dictionary()->at("intervertebralPlanes").array();
    if (!records) return names;
    for (const auto& record : *records) names.push_back(*record.dictionary()->at("name").string());
    return names;
  }

  /// Planes that no curve has; whoever clears or recomputes loses them.
  void holdForeignPlane() { filter.setIntervertebralPlanes({{plane("foreign", {0, 0, 100})}}); }
  bool holdsForeignPlane() const { return heldPlaneNames() == std::vector<std::string>{"foreign"}; }
};

inline void expectVector(const pelmar::Ref<pelmar::Point3D>& vector, double x, double y, double z,
                         double tolerance = 1e-5) {
  EXPECT_NEAR(vector->x(), x, tolerance);
  EXPECT_NEAR(vector->y(), y, tolerance);
  EXPECT_NEAR(vector->z(), z, tolerance);
}

}  // namespace vertana
