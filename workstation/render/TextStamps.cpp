#include "workstation/render/TextStamps.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainterPath>
#include <QPolygonF>
#include <QTransform>
#include <algorithm>
#include <cmath>

namespace workstation {
namespace {

/// Outlines are taken from a font of this size and scaled, so that text has exactly the size that is asked for.
constexpr double modelSize = 100;
constexpr double smallestSize = 4;
constexpr double largestSize = 200;
constexpr qsizetype mostCharacters = 300;
constexpr double widest = 2000;  ///< points

double sizeOf(const TextStyle& style) {
  return std::isfinite(style.size) ? std::clamp(style.size, smallestSize, largestSize) : smallestSize;
}

QFont modelFont(bool bold) {
  QFont font(QStringList{"DejaVu Sans", "Liberation Sans", "Noto Sans"});
  font.setStyleHint(QFont::SansSerif);
  font.setPixelSize(static_cast<int>(modelSize));
  font.setHintingPreference(QFont::PreferNoHinting);
  font.setBold(bold);
  return font;
}

QString written(const QString& text, const TextStyle& style) {
  const double longest = style.longest > 0 ? std::min(style.longest, widest) : widest;
  const QFontMetricsF metrics(modelFont(style.bold));
  return metrics.elidedText(text.left(mostCharacters), Qt::ElideRight, longest * modelSize / sizeOf(style));
}

double outlineWidthOfText(double size) { return std::max(1.25, size / 10); }

/// Dark around light text, light around dark text.
QColor outlineColour(const QColor& text) {
  const bool isLight = 0.299 * text.redF() + 0.587 * text.greenF() + 0.114 * text.blueF() >= 0.4;
  return isLight ? QColor(0, 0, 0) : QColor(255, 255, 255);
}

TextStamp makeStamp(const QString& text, const TextStyle& style, double devicePixelRatio) {
  const double size = sizeOf(style);
  const double factor = size / modelSize;
  const QFont font = modelFont(style.bold);
  const QFontMetricsF metrics(font);
  const double margin = std::ceil(outlineWidthOfText(size)) + 1;

  TextStamp stamp;
  stamp.width = metrics.horizontalAdvance(text) * factor;
  stamp.ascent = metrics.ascent() * factor;
  stamp.descent = metrics.descent() * factor;
  stamp.capHeight = metrics.capHeight() * factor;

  QPainterPath outline;
  outline.addText(0, 0, font, text);
  const QPainterPath path = QTransform::fromScale(factor, factor).map(outline);
  const QRectF box = path.boundingRect().adjusted(-margin, -margin, margin, margin);
  // On whole pixels of the device, so that the baseline is where it is said to be.
  const auto pixelsBefore = [&](double points) { return std::ceil(std::max(0.0, points) * devicePixelRatio); };
  stamp.baseline = {pixelsBefore(-box.left()) / devicePixelRatio, pixelsBefore(-box.top()) / devicePixelRatio};
  const int width = static_cast<int>(std::ceil((stamp.baseline.x() + box.right()) * devicePixelRatio));
  const int height = static_cast<int>(std::ceil((stamp.baseline.y() + box.bottom()) * devicePixelRatio));
  stamp.image = QImage(std::max(1, width), std::max(1, height), QImage::Format_ARGB32_Premultiplied);
  stamp.image.setDevicePixelRatio(devicePixelRatio);
  stamp.image.fill(Qt::transparent);

  QPainter painter(&stamp.image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.translate(stamp.baseline);
  QColor opaque = style.colour;
  opaque.setAlpha(255);
  painter.setPen(QPen(outlineColour(opaque), 2 * outlineWidthOfText(size), Qt::SolidLine, Qt::RoundCap, Qt::BevelJoin));
  // One contour at a time: stroking a long text as one path takes time that grows with the square of its length.
  // Curves become lines at twice the device's pixels: finer ones, and round joins, are not seen and cost most of the
  // time.
  const double fineness = 2 * devicePixelRatio;
  for (const QPolygonF& contour :
       outline.toSubpathPolygons(QTransform::fromScale(fineness * factor, fineness * factor)))
    painter.drawPolygon(QTransform::fromScale(1 / fineness, 1 / fineness).map(contour));
  painter.fillPath(path, opaque);
  return stamp;
}

}  // namespace

double TextStamps::lineHeight(double size) {
  const QFontMetricsF metrics(modelFont(false));
  return (metrics.ascent() + metrics.descent()) * size / modelSize;
}

double TextStamps::widthOf(const QString& text, const TextStyle& style) {
  return QFontMetricsF(modelFont(style.bold)).horizontalAdvance(text) * sizeOf(style) / modelSize;
}

const TextStamp& TextStamps::stampOf(const QString& text, const TextStyle& style, double devicePixelRatio) {
  const QString key = QString("%1 %2 %3 %4 %5 %6")
                          .arg(sizeOf(style))
                          .arg(style.colour.rgb())
                          .arg(style.bold)
                          .arg(style.longest)
                          .arg(devicePixelRatio)
                          .arg(text.left(mostCharacters));
  if (const TextStamp* known = stamps_.object(key)) return *known;
  auto* stamp = new TextStamp(makeStamp(written(text, style), style, devicePixelRatio));
  // A stamp larger than the cache would be deleted at once.
  const auto cost = std::min<qsizetype>(stamp->image.sizeInBytes() + 256, stamps_.maxCost());
  stamps_.insert(key, stamp, cost);
  return *stamp;
}

void TextStamps::place(QPainter& painter, const TextStamp& stamp, QPointF baseline) {
  const double ratio = stamp.image.devicePixelRatio();
  const QPointF corner = baseline - stamp.baseline;
  painter.drawImage(QPointF(std::round(corner.x() * ratio) / ratio, std::round(corner.y() * ratio) / ratio),
                    stamp.image);
}

void TextStamps::writeCentred(QPainter& painter, QPointF at, const QString& text, const TextStyle& style) {
  const TextStamp& stamp = stampOf(text, style, painter.device()->devicePixelRatioF());
  painter.save();
  painter.setOpacity(style.colour.alphaF());
  place(painter, stamp, at + QPointF(-stamp.width / 2, stamp.capHeight / 2));
  painter.restore();
}

void TextStamps::writeBelow(QPainter& painter, QPointF top, Align align, const QString& text, const TextStyle& style) {
  const TextStamp& stamp = stampOf(text, style, painter.device()->devicePixelRatioF());
  const double left = align == Align::left ? 0 : align == Align::right ? stamp.width : stamp.width / 2;
  painter.save();
  painter.setOpacity(style.colour.alphaF());
  place(painter, stamp, top + QPointF(-left, stamp.ascent));
  painter.restore();
}

}  // namespace workstation
