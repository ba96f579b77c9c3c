#include "workstation/render/AnnotationPainter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "Canvas.h"
#include "host/ROI.h"

namespace workstation::test {
namespace {

using pelmar::PixelPoint;

const pelmar::Colour red{1, 0, 0, 1};

/// An image of 101 x 101 pixels in the middle of a view of 200 x 200 points, so that pixel (50, 50) lies at (100, 100).
ViewPicture emptyPicture() {
  ViewPicture picture;
  picture.transform.viewWidth = 200;
  picture.transform.viewHeight = 200;
  picture.transform.columns = 101;
  picture.transform.rows = 101;
  return picture;
}

PaintedAnnotation annotationOf(long type, std::vector<PixelPoint> points) {
  PaintedAnnotation annotation;
  annotation.type = type;
  annotation.vertices = points;
  annotation.stroke = std::move(points);
  annotation.colour = red;
  annotation.thickness = 3;
  return annotation;
}

QImage painted(const ViewPicture& picture, double devicePixelRatio = 1) {
  TextStamps stamps;
  QImage image = canvas(200, 200, Qt::black, devicePixelRatio);
  QPainter painter(&image);
  paintAnnotations(painter, picture, stamps);
  return image;
}

QImage painted(const PaintedAnnotation& annotation) {
  ViewPicture picture = emptyPicture();
  picture.annotations = {annotation};
  return painted(picture);
}

TEST(AnnotationPainter, PutsAPointWhereItsPixelLies) {
  struct Row {
    const char* name;
    PixelPoint pixel;
    void (*change)(ViewTransform&);
    double x;
    double y;
  };
  const Row rows[] = {
      {"as stored", {60, 70}, [](ViewTransform&) {}, 110, 120},
      {"enlarged", {60, 70}, [](ViewTransform& t) { t.scale = 2; }, 120, 140},
      {"turned a quarter clockwise", {60, 50}, [](ViewTransform& t) { t.rotationDegrees = 90; }, 100, 110},
      {"turned by 30 degrees", {70, 50}, [](ViewTransform& t) { t.rotationDegrees = 30; }, 117.32, 110},
      {"mirrored left to right", {60, 70}, [](ViewTransform& t) { t.flippedHorizontally = true; }, 90, 120},
      {"mirrored top to bottom", {60, 70}, [](ViewTransform& t) { t.flippedVertically = true; }, 110, 80},
      {"mirrored, then turned",
       {60, 50},
       [](ViewTransform& t) {
         t.flippedHorizontally = true;
         t.rotationDegrees = 90;
       },
       100,
       90},
      {"pixels twice as high as wide", {60, 70}, [](ViewTransform& t) { t.pixelAspect = 2; }, 110, 140},
      {"moved right and up",
       {60, 70},
       [](ViewTransform& t) {
         t.origin = {10, 25};
       },
       120,
       95},
  };
  for (const Row& row : rows) {
    ViewPicture picture = emptyPicture();
    row.change(picture.transform);
    picture.annotations = {annotationOf(pelmar::ROITypePoint, {row.pixel})};
    const QRectF ink = inkOf(painted(picture), Qt::red, 100);
    EXPECT_NEAR(ink.center().x() + 0.5, row.x, 1) << row.name;
    EXPECT_NEAR(ink.center().y() + 0.5, row.y, 1) << row.name;
    EXPECT_NEAR(ink.width(), 9, 2) << row.name;  // a disc of 4.5 points, whatever the zoom
  }
}

TEST(AnnotationPainter, FollowsTheDevicePixelRatio) {
  ViewPicture picture = emptyPicture();
  picture.annotations = {annotationOf(pelmar::ROITypePoint, {{60, 70}})};
  const QRectF ink = inkOf(painted(picture, 2), Qt::red, 100);
  EXPECT_NEAR(ink.center().x() + 0.5, 220, 1);
  EXPECT_NEAR(ink.center().y() + 0.5, 240, 1);
  EXPECT_NEAR(ink.width(), 18, 2);
}

TEST(AnnotationPainter, DrawsALineOfItsThicknessInPoints) {
  for (const double scale : {0.5, 1.0, 3.0}) {
    ViewPicture picture = emptyPicture();
    picture.transform.scale = scale;
    picture.annotations = {annotationOf(pelmar::ROITypeLength, {{30, 50}, {70, 50}})};
    const QImage image = painted(picture);
    const QRect ink = inkOf(image, Qt::red, 60);
    EXPECT_NEAR(ink.left(), 100 - 20 * scale, 2) << scale;
    EXPECT_NEAR(ink.right(), 99 + 20 * scale, 2) << scale;
    int covered = 0;
    for (int y = 0; y < 200; ++y) covered += qRed(image.pixel(100, y));
    EXPECT_NEAR(covered, 3 * 255, 6) << scale;
  }
}

TEST(AnnotationPainter, DrawsTheStrokeOfAPolygonNotItsVertices) {
  PaintedAnnotation annotation = annotationOf(pelmar::ROITypeOpenPolygon, {{20, 50}, {80, 50}});
  annotation.stroke = {{20, 50}, {50, 20}, {80, 50}};
  const QImage image = painted(annotation);
  EXPECT_TRUE(isLike(image.pixel(100, 71), Qt::red, 60));  // the corner at (100, 70)
  EXPECT_TRUE(isLike(image.pixel(100, 100), Qt::black));   // the straight way between the vertices
}

TEST(AnnotationPainter, SeeThroughLinesHaveOneShade) {
  PaintedAnnotation annotation = annotationOf(pelmar::ROITypeOpenPolygon, {{20, 50}, {80, 50}});
  annotation.colour.alpha = 0.5;
  for (int x = 20; x <= 80; ++x) annotation.stroke.push_back({static_cast<double>(x), 50});
  const QImage image = painted(annotation);
  for (int x = 75; x < 125; ++x) EXPECT_NEAR(qRed(image.pixel(x, 100)), 128, 3) << x;
}

TEST(AnnotationPainter, ArrowHasItsHeadAtTheFirstPoint) {
  const QImage image = painted(annotationOf(pelmar::ROITypeArrow, {{70, 50}, {30, 50}}));
  const auto heightAt = [&](int x) {
    int covered = 0;
    for (int y = 0; y < 200; ++y) covered += qRed(image.pixel(x, y)) > 127;
    return covered;
  };
  EXPECT_NEAR(heightAt(85), 3, 1);  // shaft
  EXPECT_GE(heightAt(107), 8);      // broad end of the head
  EXPECT_LE(heightAt(117), 4);      // towards the tip
  EXPECT_EQ(heightAt(121), 0);      // beyond the tip at x = 120
}

TEST(AnnotationPainter, ArrowAndPointHaveADarkOutlineOnBrightGround) {
  for (const long type : {pelmar::ROITypeArrow, pelmar::ROITypePoint}) {
    ViewPicture picture = emptyPicture();
    picture.annotations = {annotationOf(type, {{50, 50}, {20, 50}})};
    TextStamps stamps;
    QImage image = canvas(200, 200, Qt::white);
    QPainter painter(&image);
    paintAnnotations(painter, picture, stamps);
    painter.end();
    int dark = 0;
    for (int y = 0; y < 200; ++y) dark += qGray(image.pixel(96, y)) < 60;  // red is brighter than that
    EXPECT_GE(dark, 2) << type << ": above and below";
  }
}

TEST(AnnotationPainter, ASelectedTextHasAFrame) {
  PaintedAnnotation annotation = annotationOf(pelmar::ROITypeText, {{50, 50}});
  annotation.lines = {"HHH"};
  annotation.thickness = 20;
  annotation.colour = {1, 0.8, 0.2, 1};
  EXPECT_TRUE(inkOf(painted(annotation), Qt::white).isNull());
  annotation.handles = true;
  const QImage image = painted(annotation);
  const QRect frame = inkOf(image, Qt::white, 120);
  EXPECT_TRUE(frame.contains(inkOf(image, QColor(255, 204, 51), 60)));
  EXPECT_LT(frame.width(), 110);
}

TEST(AnnotationPainter, TextIsCentredAndUprightHoweverTheImageLies) {
  ViewPicture picture = emptyPicture();
  picture.annotations = {annotationOf(pelmar::ROITypeText, {{60, 30}})};
  picture.annotations[0].lines = {"HHH"};
  picture.annotations[0].thickness = 20;
  const QRectF plain = inkOf(painted(picture), Qt::red, 60);
  EXPECT_NEAR(plain.center().x() + 0.5, 110, 1.5);
  EXPECT_NEAR(plain.center().y() + 0.5, 80, 1.5);
  picture.transform.rotationDegrees = 90;      // (10, -20) becomes (20, 10)
  picture.transform.flippedVertically = true;  // before that it became (10, 20), and so (-20, 10)
  picture.transform.scale = 2;
  const QRectF turned = inkOf(painted(picture), Qt::red, 60);
  EXPECT_NEAR(turned.center().x() + 0.5, 60, 1.5);
  EXPECT_NEAR(turned.center().y() + 0.5, 120, 1.5);
  EXPECT_EQ(turned.size(), plain.size());
}

TEST(AnnotationPainter, LinesOfATextStandOneBelowTheOther) {
  PaintedAnnotation annotation = annotationOf(pelmar::ROITypeText, {{50, 50}});
  annotation.lines = {"HH", "HH"};
  annotation.thickness = 20;
  const QRectF ink = inkOf(painted(annotation), Qt::red, 60);
  EXPECT_NEAR(ink.center().y() + 0.5, 100, 1.5);
  EXPECT_GT(ink.height(), 30);
}

TEST(AnnotationPainter, CaptionStandsBesideTheLastPointWhereThereIsRoom) {
  PaintedAnnotation annotation = annotationOf(pelmar::ROITypeLength, {{20, 50}, {60, 50}});
  annotation.lines = {"4.00 cm"};
  QImage image = painted(annotation);
  EXPECT_GT(inkOf(image, Qt::red, 60).right(), 140);
  annotation = annotationOf(pelmar::ROITypeLength, {{20, 80}, {140, 50}});  // ends near the right edge
  annotation.lines = {"4.00 cm"};
  image = painted(annotation);
  EXPECT_LT(inkOf(image, Qt::red, 60).right(), 195);
}

TEST(AnnotationPainter, HandlesMarkTheVertices) {
  PaintedAnnotation annotation = annotationOf(pelmar::ROITypeLength, {{30, 50}, {70, 50}});
  EXPECT_TRUE(inkOf(painted(annotation), Qt::white).isNull());
  annotation.handles = true;
  const QImage image = painted(annotation);
  EXPECT_TRUE(isLike(image.pixel(80, 100), Qt::white));
  EXPECT_TRUE(isLike(image.pixel(120, 100), Qt::white));
  EXPECT_TRUE(isLike(image.pixel(100, 100), Qt::red));
}

TEST(AnnotationPainter, OddAnnotationsDoNoHarm) {
  const double far = std::numeric_limits<double>::max();
  for (const long type : {0L, 5L, 10L, 13L, 14L, 19L, 999L}) {
    for (const auto& points : {std::vector<PixelPoint>{}, {{1, 1}}, {{1, 1}, {1, 1}}, {{far, -far}, {-far, far}}}) {
      PaintedAnnotation annotation = annotationOf(type, points);
      annotation.lines = {"", "x"};
      annotation.handles = true;
      annotation.thickness = std::nan("");
      annotation.colour = {std::nan(""), -1, 7, 1};
      painted(annotation);
    }
  }
  SUCCEED();
}

}  // namespace
}  // namespace workstation::test
