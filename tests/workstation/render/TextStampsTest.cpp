#include "workstation/render/TextStamps.h"

#include <gtest/gtest.h>

#include <cmath>

#include "Canvas.h"

namespace workstation::test {
namespace {

/// Relative luminance and contrast ratio as accessibility guidelines define them for sRGB.
double luminanceOf(QColor colour) {
  const auto linear = [](double value) {
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}
double contrastOf(QColor a, QColor b) {
  const auto [darker, lighter] = std::minmax({luminanceOf(a), luminanceOf(b)});
  return (lighter + 0.05) / (darker + 0.05);
}

const QColor colours[] = {Qt::white, Qt::yellow, QColor(255, 204, 51), QColor(0, 255, 0), QColor(0, 0, 200), Qt::black};
const QColor backgrounds[] = {Qt::black, Qt::white, QColor(128, 128, 128), QColor(255, 204, 51)};

TEST(TextStamps, OutlineKeepsTextReadableOverAnyBackground) {
  for (const QColor& colour : colours) {
    for (const QColor& background : backgrounds) {
      TextStamps stamps;
      QImage image = canvas(120, 40, background);
      QPainter painter(&image);
      stamps.writeCentred(painter, {60, 20}, "L4-L5", {20, colour});
      painter.end();
      ASSERT_FALSE(inkOf(image, colour).isNull()) << "the text's own colour is there";
      // Every pixel of the text is next to the outline before it is next to the background.
      const QColor outline = contrastOf(colour, Qt::black) > contrastOf(colour, Qt::white) ? Qt::black : Qt::white;
      EXPECT_GE(contrastOf(colour, outline), 4.5);
      const QRect ink = inkOf(image, colour, 2);
      if (background == colour) continue;
      for (int y = ink.top(); y <= ink.bottom(); ++y) {
        int first = ink.left();
        while (first <= ink.right() && !isLike(image.pixel(first, y), colour, 2)) ++first;
        if (first > ink.right()) continue;
        bool hasOutline = false;
        for (int x = first - 4; x < first; ++x) hasOutline = hasOutline || isLike(image.pixel(x, y), outline, 40);
        EXPECT_TRUE(hasOutline) << "row " << y << " of " << colour.name().toStdString() << " on "
                                << background.name().toStdString();
      }
    }
  }
}

TEST(TextStamps, TextOfTheBackgroundsColourShowsByItsOutline) {
  for (const QColor colour : {Qt::white, Qt::black}) {
    TextStamps stamps;
    QImage image = canvas(120, 40, colour);
    QPainter painter(&image);
    stamps.writeCentred(painter, {60, 20}, "S1", {15, colour});
    painter.end();
    EXPECT_FALSE(inkOf(image, colour == Qt::white ? Qt::black : Qt::white, 40).isNull());
  }
}

TEST(TextStamps, CentresTheInkOnThePosition) {
  for (const double ratio : {1.0, 1.5, 2.0}) {
    TextStamps stamps;
    QImage image = canvas(200, 100, Qt::black, ratio);
    QPainter painter(&image);
    stamps.writeCentred(painter, {110, 40}, "H", {30, Qt::white});
    painter.end();
    const QRectF ink = inkOf(image, Qt::white, 127);
    EXPECT_NEAR(ink.center().x() + 0.5, 110 * ratio, 1.5) << ratio;
    EXPECT_NEAR(ink.center().y() + 0.5, 40 * ratio, 1.5) << ratio;
    // Capitals of this typeface are 0.73 of the font's size.
    EXPECT_NEAR(ink.height(), 0.73 * 30 * ratio, 2) << ratio;
  }
}

TEST(TextStamps, AlignsToTheSideThatIsAskedFor) {
  const auto inkWith = [](TextStamps::Align align) {
    TextStamps stamps;
    QImage image = canvas(200, 60);
    QPainter painter(&image);
    stamps.writeBelow(painter, {100, 10}, align, "HHH", {20, Qt::white});
    painter.end();
    return inkOf(image, Qt::white, 127);
  };
  EXPECT_NEAR(inkWith(TextStamps::Align::left).left(), 100, 4);
  EXPECT_NEAR(inkWith(TextStamps::Align::right).right(), 100, 4);
  EXPECT_NEAR(inkWith(TextStamps::Align::centre).center().x(), 100, 2);
  EXPECT_GE(inkWith(TextStamps::Align::left).top(), 10);
}

TEST(TextStamps, LeavesOutWhatDoesNotFit) {
  const QString text = "a series description that is far too long for its corner";
  TextStamps stamps;
  QImage image = canvas(600, 30);
  QPainter painter(&image);
  stamps.writeBelow(painter, {0, 5}, TextStamps::Align::left, text, {12, Qt::white, false, 100});
  painter.end();
  EXPECT_LE(inkOf(image, Qt::white, 127).right(), 101);
  EXPECT_GE(inkOf(image, Qt::white, 127).right(), 80);
}

TEST(TextStamps, SeeThroughTextIsFainterAndKeepsItsOutline) {
  const auto brightest = [](double alpha) {
    TextStamps stamps;
    QImage image = canvas(100, 40);
    QPainter painter(&image);
    stamps.writeCentred(painter, {50, 20}, "H", {30, QColor::fromRgbF(1, 1, 1, static_cast<float>(alpha))});
    painter.end();
    int level = 0;
    for (int x = 0; x < 100; ++x) level = std::max(level, qRed(image.pixel(x, 20)));
    return level;
  };
  EXPECT_EQ(brightest(1), 255);
  EXPECT_NEAR(brightest(0.5), 128, 3);
}

TEST(TextStamps, OddTextAndSizesDoNoHarm) {
  TextStamps stamps;
  QImage image = canvas(100, 100);
  QPainter painter(&image);
  for (const double size : {0.0, -3.0, 1e9, std::nan("")})
    for (const QString& text : {QString(), QString(" "), QString(100000, 'W'), QString("\u202e\n\t\u0000")})
      stamps.writeCentred(painter, {50, 50}, text, {size, Qt::white});
  SUCCEED();
}

}  // namespace
}  // namespace workstation::test
