// Where a pixel is seen: view, window and screen.
#include "ContractHost.h"

namespace contract {
namespace {

using pelmar::PixelPoint;
using pelmar::ViewPoint;

class View : public OnEveryHost {};
ON_EVERY_HOST(View);

TEST_P(View, takesPixelsToPointsAndBackAtAnyZoom) {
  for (const double zoom : {0.3, 1.0, 2.5, 17.0}) {
    host->zoom(0, zoom);
    for (const PixelPoint pixel : {PixelPoint{0, 0}, {99, 79}, {12.25, 70.5}, {-40, 200}}) {
      const PixelPoint back = view()->ConvertFromNSView2GL(view()->ConvertFromGL2NSView(pixel));
      EXPECT_NEAR(back.x, pixel.x, 1e-9) << zoom;
      EXPECT_NEAR(back.y, pixel.y, 1e-9) << zoom;
    }
    const ViewPoint again = view()->ConvertFromGL2NSView(view()->ConvertFromNSView2GL({33, 44}));
    EXPECT_NEAR(again.x, 33, 1e-9) << zoom;
    EXPECT_NEAR(again.y, 44, 1e-9) << zoom;
  }
}

TEST_P(View, hasSoManyPointsAPixelAsItsZoomAndItsYUpwards) {
  for (const double zoom : {0.5, 3.0}) {
    host->zoom(0, zoom);
    const ViewPoint from = view()->ConvertFromGL2NSView({20, 20});
    const ViewPoint to = view()->ConvertFromGL2NSView({30, 25});
    EXPECT_NEAR(to.x - from.x, 10 * zoom, 1e-9);
    EXPECT_NEAR(to.y - from.y, -5 * zoom, 1e-9) << "down the image is down the view";
  }
}

TEST_P(View, liesInItsWindowAndThatOnTheScreen) {
  host->placeWindow(0, {300, 150, 640, 480});
  EXPECT_EQ(view()->frame().width, 640);
  EXPECT_EQ(view()->frame().height, 480);
  EXPECT_EQ(view()->window()->frame().x, 300);
  const pelmar::WindowPoint inWindow = view()->convertPoint({10, 20}, nullptr);
  EXPECT_EQ(inWindow.x, view()->frame().x + 10);
  EXPECT_EQ(inWindow.y, view()->frame().y + 20);
  const pelmar::ScreenPoint onScreen = view()->window()->convertBaseToScreen({10, 20});
  EXPECT_EQ(onScreen.x, 310);
  EXPECT_EQ(onScreen.y, 170);
  view()->window()->setFrameOrigin({7, 8});
  EXPECT_EQ(viewer()->window()->frame().x, 7);
  EXPECT_EQ(viewer()->window()->frame().y, 8);
  EXPECT_EQ(viewer()->window()->frame().width, 640);
}

TEST_P(View, uprightShowsTheImagesOwnDirections) {
  std::array<float, 9> displayed{};
  view()->orientationCorrectedToView(displayed);
  // Rows to the back, columns to the feet; their cross product points to the right.
  EXPECT_EQ(displayed, (std::array<float, 9>{0, 1, 0, 0, 0, -1, -1, 0, 0}));
}

TEST_P(View, showsAnotherSliceAndTellsOnce) {
  Recorder recorder(api());
  pelmar::Ref<pelmar::HostObject> told;
  recorder.react = [&](const std::string&, const pelmar::Notification& posted) {
    told = posted.object;
    EXPECT_EQ(view()->curImage(), 2) << "it is shown by then";
  };
  host->scroll(0, 2);
  host->scroll(0, 2);
  EXPECT_EQ(recorder.take(), Lines{"DCMViewIndexChanged"});
  EXPECT_TRUE(told == view());
  EXPECT_TRUE(view()->curDCM() == view()->dcmPixList()->objectAtIndex(2));
}

TEST_P(View, tellsOfItsZoom) {
  Recorder recorder(api());
  pelmar::Ref<pelmar::HostObject> told;
  recorder.react = [&](const std::string&, const pelmar::Notification& posted) { told = posted.object; };
  host->zoom(0, 2);
  EXPECT_EQ(recorder.take(), Lines{"ViewScaleChanged"});
  EXPECT_TRUE(told == view());
}

}  // namespace
}  // namespace contract
