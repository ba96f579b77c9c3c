#include "workstation/gui/Thumbnail.h"

#include <QPainter>

#include "workstation/render/GreyImage.h"

namespace workstation {

QImage thumbnailOf(const ImageRecord& image, PixelSource& source, int size) {
  QImage picture(size, size, QImage::Format_RGB32);
  picture.fill(Qt::black);
  std::string problem;
  const auto pixels = source.pixels(image, problem);
  if (!pixels) {
    picture.fill(QColor(70, 70, 74));
    return picture;
  }
  const StoredRange range = storedRange(*pixels);
  const QImage slice = imageOfPixels(*pixels, range, voiTransformOf(*pixels, range, std::nullopt));
  if (slice.isNull()) return picture;
  QSizeF shown(slice.width(), slice.height() * paintedPixelAspect(image));
  shown.scale(size, size, Qt::KeepAspectRatio);
  const QImage scaled =
      slice.scaled(shown.toSize().expandedTo(QSize(1, 1)), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  QPainter painter(&picture);
  painter.drawImage((size - scaled.width()) / 2, (size - scaled.height()) / 2, scaled);
  return picture;
}

QImage labelledMark(int size) {
  QImage mark(size, size, QImage::Format_ARGB32_Premultiplied);
  mark.fill(Qt::transparent);
  QPainter painter(&mark);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(126, 190, 120));
  const double radius = size * 0.28;
  painter.drawEllipse(QPointF(size / 2.0, size / 2.0), radius, radius);
  return mark;
}

}  // namespace workstation
