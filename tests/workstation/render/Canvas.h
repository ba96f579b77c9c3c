#pragma once
// What tests of painting share: a surface, and looking at it.

#include <QImage>
#include <QPainter>
#include <algorithm>
#include <cstdlib>

namespace workstation::test {

/// A surface of one colour, `width` x `height` points.
inline QImage canvas(int width, int height, QColor background = Qt::black, double devicePixelRatio = 1) {
  QImage image(static_cast<int>(width * devicePixelRatio), static_cast<int>(height * devicePixelRatio),
               QImage::Format_RGB32);
  image.setDevicePixelRatio(devicePixelRatio);
  image.fill(background);
  return image;
}

inline bool isLike(QRgb a, QColor b, int tolerance = 12) {
  return std::abs(qRed(a) - b.red()) <= tolerance && std::abs(qGreen(a) - b.green()) <= tolerance &&
         std::abs(qBlue(a) - b.blue()) <= tolerance;
}

/// The smallest rectangle, in pixels of the device, that holds everything of (nearly) this colour; null without any.
inline QRect inkOf(const QImage& image, QColor colour, int tolerance = 12) {
  QRect ink;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      if (isLike(image.pixel(x, y), colour, tolerance)) ink |= QRect(x, y, 1, 1);
  return ink;
}

}  // namespace workstation::test
