#pragma once

#include "tests/double/TestHost.h"

namespace testhost {

/// What a person does at the screen of the in-memory host: each operation changes the objects and posts as a host does.
/// Draws length lines and open polygons; the vertices of finished annotations are not dragged.
class TestPerson {
 public:
  explicit TestPerson(TestHost& host) : host_(host) {}

  /// The viewer comes to the front, and its loaded-notification is posted.
  pelmar::Ref<TestViewer> open(const pelmar::Ref<TestStudy>& study, const Series& series);
  /// Nothing is posted when the slice is shown already.
  void scroll(const pelmar::Ref<TestViewer>& viewer, long slice);
  /// Points a pixel, from the view's top left corner.
  void zoom(const pelmar::Ref<TestViewer>& viewer, double pointsPerPixel);

  /// The left button, at a pixel of the slice shown. It draws while an ROI tool is chosen.
  void press(const pelmar::Ref<TestViewer>& viewer, pelmar::PixelPoint at);
  void move(const pelmar::Ref<TestViewer>& viewer, pelmar::PixelPoint at);
  void release(const pelmar::Ref<TestViewer>& viewer, pelmar::PixelPoint at);
  /// The second press of a double click, or Return: a polygon that is being drawn is finished.
  void finishPolygon(const pelmar::Ref<TestViewer>& viewer);

 private:
  void begin(TestViewer& viewer, pelmar::PixelPoint at);
  void postChange(const pelmar::Ref<TestROI>& roi, bool mouseUp);
  TestHost& host_;
};

}  // namespace testhost
