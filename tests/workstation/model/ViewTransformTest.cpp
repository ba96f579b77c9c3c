#include "workstation/model/ViewTransform.h"

#include <gtest/gtest.h>

#include "TestImages.h"
#include "workstation/model/Workstation.h"

namespace workstation {
namespace {

/// A 100 x 80 image in a 600 x 400 view; the image's centre is pixel (49.5, 39.5), the view's point (300, 200).
ViewTransform plain() {
  ViewTransform transform;
  transform.viewWidth = 600;
  transform.viewHeight = 400;
  transform.columns = 100;
  transform.rows = 80;
  return transform;
}

struct Row {
  const char* name;
  ViewTransform transform;
  pelmar::ViewPoint seen;  ///< where pixel (59.5, 44.5) is seen: 10 to the right of the centre and 5 below it
};

std::vector<Row> rows() {
  std::vector<Row> all;
  const auto row = [&](const char* name, pelmar::ViewPoint seen, auto change) {
    ViewTransform transform = plain();
    change(transform);
    all.push_back({name, transform, seen});
  };
  row("as it is", {310, 195}, [](ViewTransform&) {});
  row("enlarged three times", {330, 185}, [](ViewTransform& t) { t.scale = 3; });
  row("moved to the right and up", {317, 204}, [](ViewTransform& t) { t.origin = {7, 9}; });
  row("turned a quarter clockwise: right becomes down", {295, 190}, [](ViewTransform& t) { t.rotationDegrees = 90; });
  row("turned by half", {290, 205}, [](ViewTransform& t) { t.rotationDegrees = 180; });
  row("mirrored left to right", {290, 195}, [](ViewTransform& t) { t.flippedHorizontally = true; });
  row("mirrored top to bottom", {310, 205}, [](ViewTransform& t) { t.flippedVertically = true; });
  row("mirrored, enlarged, turned and moved", {310 - 8, 220 + 4}, [](ViewTransform& t) {
    // (10, 5) mirrored: (-10, 5); twice: (-20, 10); a quarter clockwise (x, y) -> (-y, x): (-10, -20), which is 10 to
    // the left and 20 up: (290, 220); moved by (12, 4): (302, 224).
    t.flippedHorizontally = true;
    t.scale = 2;
    t.rotationDegrees = 90;
    t.origin = {12, 4};
  });
  row("pixels twice as high as wide", {310, 190}, [](ViewTransform& t) { t.pixelAspect = 2; });
  return all;
}

TEST(ViewTransform, APixelIsSeenWhereItIsWorkedOutByHand) {
  for (const Row& row : rows()) {
    SCOPED_TRACE(row.name);
    const pelmar::ViewPoint seen = row.transform.toView({59.5, 44.5});
    EXPECT_NEAR(seen.x, row.seen.x, 1e-12);
    EXPECT_NEAR(seen.y, row.seen.y, 1e-12);
  }
}

TEST(ViewTransform, ThereAndBackIsWhereItWas) {
  auto all = rows();
  all.push_back({"an odd angle", plain(), {}});
  all.back().transform.rotationDegrees = 37.5;
  all.back().transform.scale = 1.7;
  all.back().transform.flippedVertically = true;
  for (const Row& row : all) {
    SCOPED_TRACE(row.name);
    const pelmar::PixelPoint back = row.transform.toPixel(row.transform.toView({12.25, 71}));
    EXPECT_NEAR(back.x, 12.25, 1e-9);
    EXPECT_NEAR(back.y, 71, 1e-9);
  }
}

TEST(ViewTransform, TheWholeImageFitsTheView) {
  EXPECT_DOUBLE_EQ(plain().scaleToFit(), 5);  // 600 / 100 = 6, 400 / 80 = 5
  ViewTransform high = plain();
  high.pixelAspect = 2;
  EXPECT_DOUBLE_EQ(high.scaleToFit(), 2.5);
}

/// A sagittal slice: rows to the back (+y), columns to the feet (-z).
class Displayed : public testing::Test {
 protected:
  Displayed() {
    workstation.addImages({test::sagittal("1", 1, 1, 0)});
    viewer = *workstation.openViewer({"1.2.3", 0, 0});
  }
  std::array<float, 9> orientation() const {
    std::array<float, 9> vector{};
    workstation.controller(viewer)->imageView()->orientationCorrectedToView(vector);
    return vector;
  }

  Workstation workstation;
  int viewer = 0;
};

TEST_F(Displayed, UnturnedTheViewHasTheImagesOrientation) {
  EXPECT_EQ(orientation(), (std::array<float, 9>{0, 1, 0, 0, 0, -1, -1, 0, 0}));
}

TEST_F(Displayed, AfterAQuarterTurnClockwiseTheHeadPointsToTheRight) {
  ASSERT_TRUE(workstation.rotate(viewer, 90));
  // What pointed up (+z) now points right, what pointed right (+y) now points down; +z x +y = -x.
  EXPECT_EQ(orientation(), (std::array<float, 9>{0, 0, 1, 0, 1, 0, -1, 0, 0}));
}

TEST_F(Displayed, MirroredLeftToRightTheFrontPointsToTheRightAndTheCrossProductTurnsRound) {
  ASSERT_TRUE(workstation.flip(viewer, FlipAxis::horizontal));
  EXPECT_EQ(orientation(), (std::array<float, 9>{0, -1, 0, 0, 0, -1, 1, 0, 0}));
}

TEST_F(Displayed, TurningAddsUpAndStaysBelowAFullTurn) {
  ASSERT_TRUE(workstation.rotate(viewer, -90));
  EXPECT_DOUBLE_EQ(workstation.viewer(viewer)->rotationDegrees, 270);
  ASSERT_TRUE(workstation.rotate(viewer, 180));
  EXPECT_DOUBLE_EQ(workstation.viewer(viewer)->rotationDegrees, 90);
}

}  // namespace
}  // namespace workstation
