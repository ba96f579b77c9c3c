#pragma once
// A viewer that a person draws on.

#include <gtest/gtest.h>

#include "Recorder.h"
#include "TestImages.h"
#include "workstation/model/Workstation.h"

namespace workstation::test {

/// The small study's sagittal series in a viewer, and the hand over it. Nothing is recorded yet.
class DrawnOn : public testing::Test {
 protected:
  DrawnOn() {
    workstation.addImages(smallStudy());
    viewer = *workstation.openViewer({"1.2.3", 0, 0});
    recorder.take();
  }
  void press(double x, double y) { ASSERT_TRUE(workstation.press(viewer, pelmar::PixelPoint{x, y})); }
  void move(double x, double y) { ASSERT_TRUE(workstation.move(viewer, pelmar::PixelPoint{x, y})); }
  void release(double x, double y) { ASSERT_TRUE(workstation.release(viewer, pelmar::PixelPoint{x, y})); }
  /// Nil when the viewer has none of that number.
  pelmar::Ref<pelmar::ROI> annotation(int id) const {
    for (const auto& info : workstation.annotations(viewer)) {
      if (info.id == id) return info.roi;
    }
    return {};
  }

  Workstation workstation;
  Recorder recorder{workstation.api()};
  int viewer = 0;
};

}  // namespace workstation::test
