#include "tests/double/TestPerson.h"

namespace testhost {
namespace {

using pelmar::MyPoint;
using pelmar::PixelPoint;
using pelmar::Ref;

/// What is being drawn; nil when nothing is, or when code has deleted or finished it meanwhile.
Ref<TestROI> drawnOn(TestView& view) {
  if (view.drawn && (view.drawn->deleted || view.drawn->mode != pelmar::ROIModeDrawing)) view.drawn = nullptr;
  return view.drawn;
}

}  // namespace

Ref<TestViewer> TestPerson::open(const Ref<TestStudy>& study, const Series& series) {
  const auto viewer = host_.addViewer(study, series);
  host_.frontMost = viewer;
  host_.post(pelmar::PelmarViewerControllerDidLoadImagesNotification, viewer);
  return viewer;
}

void TestPerson::scroll(const Ref<TestViewer>& viewer, long slice) {
  if (viewer->view->current == slice) return;
  viewer->view->current = slice;
  host_.post(pelmar::PelmarDCMViewIndexChangedNotification, viewer->view);
}

void TestPerson::zoom(const Ref<TestViewer>& viewer, double pointsPerPixel) {
  viewer->view->zoom = pointsPerPixel;
  host_.post(pelmar::PelmarViewScaleChanged, viewer->view);
}

void TestPerson::begin(TestViewer& viewer, PixelPoint at) {
  TestView& view = *viewer.view;
  const long type = viewer.roiToolTag;
  const auto roi = pelmar::makeRef<TestROI>(&host_.calls, type, viewer.view);
  const bool line = type == pelmar::ROITypeLength;
  roi->mode = pelmar::ROIModeDrawing;
  roi->image = view.curDCM();
  roi->setPoints(std::vector<MyPoint>(line ? 2 : 1, MyPoint::point(at)));
  viewer.sliceLists[static_cast<std::size_t>(view.current)]->elements().push_back(roi);
  view.drawn = roi;
  view.pressed = roi;
  host_.post(pelmar::PelmarAddROINotification, roi);
  if (!line) postChange(roi, false);
}

void TestPerson::press(const Ref<TestViewer>& viewer, PixelPoint at) {
  TestView& view = *viewer->view;
  const Ref<TestROI> drawn = drawnOn(view);
  if (drawn && drawn->kind == pelmar::ROITypeOpenPolygon) {
    view.pressed = drawn;
    drawn->pointList->addObject(MyPoint::point(at));
    postChange(drawn, false);
  } else if (!drawn && viewer->drawsWithLeftButton) {
    begin(*viewer, at);
  }
}

void TestPerson::move(const Ref<TestViewer>& viewer, PixelPoint at) {
  const Ref<TestROI> line = drawnOn(*viewer->view);
  if (!line || line->kind != pelmar::ROITypeLength) return;
  line->setPoints({MyPoint::point(line->pointAtIndex(0)), MyPoint::point(at)});
  postChange(line, false);
}

void TestPerson::release(const Ref<TestViewer>& viewer, PixelPoint at) {
  TestView& view = *viewer->view;
  const Ref<TestROI> released = view.pressed;
  view.pressed = nullptr;
  if (released && released == drawnOn(view) && released->kind == pelmar::ROITypeLength) {
    released->setPoints({MyPoint::point(released->pointAtIndex(0)), MyPoint::point(at)});
    released->mode = pelmar::ROIModeSelected;
    view.drawn = nullptr;
  }
  postChange(released, true);
}

void TestPerson::finishPolygon(const Ref<TestViewer>& viewer) {
  TestView& view = *viewer->view;
  const Ref<TestROI> polygon = drawnOn(view);
  if (!polygon || polygon->kind != pelmar::ROITypeOpenPolygon) return;
  polygon->mode = pelmar::ROIModeSelected;
  view.drawn = nullptr;
  view.pressed = nullptr;
  postChange(polygon, true);
}

void TestPerson::postChange(const Ref<TestROI>& roi, bool mouseUp) {
  // What was deleted in answer to an earlier posting is not told of any more.
  if (!roi || roi->deleted) return;
  std::optional<pelmar::Value::Dictionary> userInfo;
  if (mouseUp) userInfo.emplace().emplace("action", "mouseUp");
  host_.post(pelmar::PelmarROIChangeNotification, roi, std::move(userInfo));
}

}  // namespace testhost
