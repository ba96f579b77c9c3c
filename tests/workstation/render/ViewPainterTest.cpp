#include "workstation/render/ViewPainter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "Canvas.h"

namespace workstation::test {
namespace {

/// 3 columns and 2 rows: 0 100 200 / 50 150 250, with a window that shows values as they are.
std::shared_ptr<const PixelData> sixPixels() {
  auto pixels = std::make_shared<PixelData>();
  pixels->rows = 2;
  pixels->columns = 3;
  pixels->samples = {0, 100, 200, 50, 150, 250};
  pixels->windows = {{128, 256, {}}};
  return pixels;
}

/// Each pixel 40 points a side in a view of 200 x 160: their centres at x = 60, 100, 140 and y = 60, 100.
ViewPicture sixPixelPicture() {
  ViewPicture picture;
  picture.transform.viewWidth = 200;
  picture.transform.viewHeight = 160;
  picture.transform.columns = 3;
  picture.transform.rows = 2;
  picture.transform.scale = 40;
  picture.showsWindow = false;
  return picture;
}

class ViewPainterTest : public testing::Test {
 protected:
  QImage painted(double devicePixelRatio = 1) {
    QImage image = canvas(200, 160, QColor(255, 0, 255), devicePixelRatio);
    QPainter painter(&image);
    painter_.paint(painter, picture_, pixels_, problem_);
    return image;
  }

  /// The grey level at a position in points.
  int levelAt(double x, double y, double ratio = 1) {
    return qGray(painted(ratio).pixel(static_cast<int>(x * ratio), static_cast<int>(y * ratio)));
  }

  ViewPainter painter_;
  ViewPicture picture_ = sixPixelPicture();
  std::shared_ptr<const PixelData> pixels_ = sixPixels();
  std::string problem_;
};

TEST_F(ViewPainterTest, PutsEachPixelWhereTheTransformSays) {
  // Half a point beside a pixel's centre, smooth scaling has changed by 1.25 of the 100 to its neighbour.
  for (const double ratio : {1.0, 2.0}) {
    EXPECT_NEAR(levelAt(60, 60, ratio), 0, 3);
    EXPECT_NEAR(levelAt(100, 60, ratio), 100, 3);
    EXPECT_NEAR(levelAt(140, 60, ratio), 200, 3);
    EXPECT_NEAR(levelAt(60, 100, ratio), 50, 3);
    EXPECT_NEAR(levelAt(100, 100, ratio), 150, 3);
    EXPECT_NEAR(levelAt(140, 100, ratio), 250, 3);
  }
}

TEST_F(ViewPainterTest, ScalesSmoothly) {
  EXPECT_NEAR(levelAt(80, 60), 50, 4);    // halfway from 0 to 100
  EXPECT_NEAR(levelAt(120, 80), 175, 4);  // between 100, 200, 150 and 250
}

TEST_F(ViewPainterTest, ShowsNothingBesideTheImage) {
  const QImage image = painted();
  for (const QPoint at : {QPoint(38, 80), QPoint(162, 80), QPoint(100, 38), QPoint(100, 122)})
    EXPECT_EQ(image.pixel(at), qRgb(0, 0, 0));
  EXPECT_GT(qGray(image.pixel(158, 100)), 200);  // the outermost half of a pixel is shown
}

TEST_F(ViewPainterTest, MirrorsTurnsAndMoves) {
  picture_.transform.flippedHorizontally = true;
  EXPECT_NEAR(levelAt(60, 60), 200, 3);
  picture_.transform.flippedVertically = true;
  EXPECT_NEAR(levelAt(60, 60), 250, 3);
  picture_ = sixPixelPicture();
  picture_.transform.rotationDegrees = 90;  // columns run down, rows to the left
  EXPECT_NEAR(levelAt(120, 40), 0, 3);
  EXPECT_NEAR(levelAt(120, 120), 200, 3);
  EXPECT_NEAR(levelAt(80, 40), 50, 3);
  picture_ = sixPixelPicture();
  picture_.transform.origin = {20, 30};  // right and up
  EXPECT_NEAR(levelAt(80, 30), 0, 3);
  picture_ = sixPixelPicture();
  picture_.transform.pixelAspect = 0.5;  // rows 20 points high, at y = 70 and 90
  EXPECT_NEAR(levelAt(100, 70), 100, 5);
  EXPECT_NEAR(levelAt(100, 90), 150, 5);
  EXPECT_EQ(levelAt(100, 58), 0);
}

TEST_F(ViewPainterTest, FollowsTheChosenWindowAndNewPixels) {
  EXPECT_NEAR(levelAt(100, 60), 100, 3);
  picture_.window = WindowSetting{100, 1, {}};
  EXPECT_NEAR(levelAt(140, 60), 255, 1);
  EXPECT_NEAR(levelAt(60, 60), 0, 5);
  picture_.window.reset();
  EXPECT_NEAR(levelAt(140, 60), 200, 3);
  auto inverted = std::make_shared<PixelData>(*pixels_);
  inverted->monochrome1 = true;
  pixels_ = inverted;
  EXPECT_NEAR(levelAt(140, 60), 55, 3);
}

TEST_F(ViewPainterTest, IsSharpWhereAPointHasTwoPixels) {
  auto stripes = std::make_shared<PixelData>();
  stripes->rows = 10;
  stripes->columns = 200;
  for (int place = 0; place < 2000; ++place) stripes->samples.push_back(place % 2 * 255);
  stripes->windows = {{128, 256, {}}};
  pixels_ = stripes;
  picture_.transform.columns = 200;
  picture_.transform.rows = 10;
  picture_.transform.scale = 0.5;  // a pixel of the slice is one of the device; the first lies at x = 100
  picture_.corners.topLeft = {"Doe, Jane"};
  const QImage image = painted(2);
  for (int x = 0; x < 200; ++x) EXPECT_NEAR(qGray(image.pixel(100 + x, 160)), x % 2 * 255, 12) << x;
  int finer = 0;  // squares of two by two pixels of the text that are not all alike
  for (int y = 0; y < 40; y += 2) {
    for (int x = 0; x < 120; x += 2)
      finer += image.pixel(x, y) != image.pixel(x + 1, y) || image.pixel(x, y) != image.pixel(x, y + 1);
  }
  EXPECT_GT(finer, 50);
}

TEST_F(ViewPainterTest, FollowsTheChosenTable) {
  auto withTable = std::make_shared<PixelData>(*pixels_);
  withTable->voiLuts = {{100, 8, {30, 90}, {}}};  // up to 100: 30, above: 90
  pixels_ = withTable;
  EXPECT_NEAR(levelAt(140, 60), 200, 3);
  picture_.voiTable = 0;
  EXPECT_NEAR(levelAt(140, 60), 90, 3);
  EXPECT_NEAR(levelAt(60, 60), 30, 3);
  picture_.voiTable.reset();
  EXPECT_NEAR(levelAt(140, 60), 200, 3);
}

TEST_F(ViewPainterTest, AveragesWhenPixelsAreSmallerThanTheDisplays) {
  auto stripes = std::make_shared<PixelData>();
  stripes->rows = stripes->columns = 800;
  for (int row = 0; row < 800; ++row)
    for (int column = 0; column < 800; ++column) stripes->samples.push_back(column % 2 * 255);
  pixels_ = stripes;
  picture_.transform.columns = picture_.transform.rows = 800;
  picture_.transform.scale = 0.125;
  for (int x = 60; x < 140; x += 7) EXPECT_NEAR(levelAt(x, 80), 128, 6) << x;
}

TEST_F(ViewPainterTest, AnnotationsComeAndGoWithoutTouchingTheSlice) {
  const QImage before = painted();
  PaintedAnnotation point;
  point.type = 19;
  point.vertices = {{1, 0}};
  point.colour = {1, 0, 0, 1};
  point.thickness = 2;
  picture_.annotations = {point};
  EXPECT_TRUE(isLike(painted().pixel(100, 60), Qt::red));
  picture_.annotations.clear();
  EXPECT_EQ(painted(), before);
}

TEST_F(ViewPainterTest, TellsWhyThereIsNoImage) {
  pixels_ = nullptr;
  problem_ = "The pixels of \"a\" could not be read: it is damaged.";
  const QImage image = painted();
  EXPECT_FALSE(inkOf(image, QColor(255, 200, 120), 30).isNull());
  EXPECT_EQ(image.pixel(100, 20), qRgb(0, 0, 0));
  pixels_ = sixPixels();
  EXPECT_NEAR(levelAt(100, 60), 100, 3);
}

TEST_F(ViewPainterTest, WarningsTakeTheBottomAndPushTheRestUp) {
  picture_.corners.bottomLeft = {"Slice 1 / 1"};
  const auto bottomOfText = [&](const QImage& image) {
    return inkOf(image.copy(0, 0, 60, 160), QColor(240, 240, 240), 20).bottom();
  };
  EXPECT_GT(bottomOfText(painted()), 145);
  picture_.banners = {"The labelling is not yet saved."};
  const QImage image = painted();
  EXPECT_TRUE(isLike(image.pixel(2, 157), QColor(99, 18, 9), 3));  // 230 / 255 of the band's colour over black
  EXPECT_LT(bottomOfText(image), 140);
  EXPECT_FALSE(inkOf(image, QColor(255, 230, 120), 30).isNull());
}

TEST_F(ViewPainterTest, WritesLettersTextsAndScaleBarAtTheirPlaces) {
  pixels_ = nullptr;
  const QColor light(240, 240, 240);
  const auto inkWith = [&](auto change) {
    picture_ = sixPixelPicture();
    change(picture_);
    return inkOf(painted(), light, 40);
  };
  EXPECT_LT(inkWith([](ViewPicture& p) { p.letters.left = "A"; }).right(), 25);
  EXPECT_GT(inkWith([](ViewPicture& p) { p.letters.right = "P"; }).left(), 175);
  const QRect top = inkWith([](ViewPicture& p) { p.letters.top = "H"; });
  EXPECT_NEAR(top.center().x(), 100, 3);
  EXPECT_LT(top.bottom(), 30);
  EXPECT_GT(inkWith([](ViewPicture& p) { p.letters.bottom = "F"; }).top(), 130);
  const QRect corner = inkWith([](ViewPicture& p) { p.corners.topRight = {"T2"}; });
  EXPECT_GT(corner.left(), 160);
  EXPECT_LT(corner.bottom(), 25);
}

TEST_F(ViewPainterTest, DrawsTheScaleBarAsLongAsItIs) {
  pixels_ = nullptr;
  picture_.transform.viewHeight = 240;
  picture_.scaleBar = ScaleBar{50, 80, ""};
  QImage image = canvas(200, 240);
  QPainter painter(&image);
  painter_.paint(painter, picture_, pixels_);
  const QRect bar = inkOf(image, QColor(240, 240, 240), 40);
  EXPECT_NEAR(bar.width(), 81, 3);
  EXPECT_NEAR(bar.center().x(), 100, 2);
}

TEST_F(ViewPainterTest, WritesSliceAndWindowWholeInANarrowView) {
  pixels_ = nullptr;
  picture_.corners.bottomLeft = {"Slice 12 / 24"};
  const auto width = [&](double view) {
    picture_.transform.viewWidth = view;
    return inkOf(painted(), QColor(240, 240, 240), 40).width();
  };
  EXPECT_EQ(width(120), width(200));
}

TEST_F(ViewPainterTest, DrawsReferenceLines) {
  picture_.referenceLines = {{{-0.5, 0.5}, {2.5, 0.5}}};  // between the rows: y = 80
  EXPECT_FALSE(inkOf(painted(), QColor(90, 200, 255), 70).isNull());
  EXPECT_NEAR(inkOf(painted(), QColor(90, 200, 255), 70).center().y(), 80, 1);
}

TEST_F(ViewPainterTest, MarksPointsWithACrossThatLeavesThemFree) {
  picture_.crosses = {{1, 0}};  // at (100, 60)
  const QImage image = painted();
  EXPECT_TRUE(isLike(image.pixel(100, 60), QColor(100, 100, 100)));
  const QRect ink = inkOf(image, QColor(255, 80, 80), 40);
  EXPECT_NEAR(ink.center().x(), 100, 1);
  EXPECT_NEAR(ink.center().y(), 60, 1);
  EXPECT_NEAR(ink.width(), 28, 3);
}

TEST_F(ViewPainterTest, OddTransformsDoNoHarm) {
  const double odd[] = {0, -1, 1e-300, 1e12, 1e300, std::nan(""), std::numeric_limits<double>::infinity()};
  for (const double value : odd) {
    for (double ViewTransform::*field : {&ViewTransform::scale, &ViewTransform::pixelAspect,
                                         &ViewTransform::rotationDegrees, &ViewTransform::columns}) {
      picture_ = sixPixelPicture();
      picture_.transform.*field = value;
      painted();
    }
    picture_ = sixPixelPicture();
    picture_.transform.origin = {value, -value};
    painted();
    picture_ = sixPixelPicture();
    picture_.transform.viewWidth = value;
    painted();
  }
  SUCCEED();
}

}  // namespace
}  // namespace workstation::test
