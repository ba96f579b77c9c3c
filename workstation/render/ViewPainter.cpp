#include "workstation/render/ViewPainter.h"

#include <QStringList>
#include <QTransform>
#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>

#include "workstation/render/AnnotationPainter.h"
#include "workstation/render/GreyImage.h"
#include "workstation/render/ViewTexts.h"

namespace workstation {
namespace {

constexpr double bannerSize = 13;
constexpr double edgeGap = 5;
constexpr double largestView = 32768;  ///< pixels of the device, a side
/// Square points that a pixel of the slice may cover; beyond, there is nothing to see.
constexpr double smallestPixelArea = 1e-8;
constexpr double largestPixelArea = 1e10;

auto fieldsOf(const ViewTransform& t) {
  return std::make_tuple(t.viewWidth, t.viewHeight, t.columns, t.rows, t.pixelAspect, t.scale, t.origin.x, t.origin.y,
                         t.rotationDegrees, t.flippedHorizontally, t.flippedVertically);
}

bool isSame(const std::optional<WindowSetting>& a, const std::optional<WindowSetting>& b) {
  if (!a || !b) return a.has_value() == b.has_value();
  return a->centre == b->centre && a->width == b->width;
}

/// From pixels of the slice to points of the display.
QTransform displayTransform(const ViewTransform& transform) {
  const auto at = [&](double x, double y) {
    const pelmar::ViewPoint point = transform.toView({x, y});
    return QPointF(point.x, transform.viewHeight - point.y);
  };
  const QPointF origin = at(0, 0);
  const QPointF x = at(1, 0) - origin;
  const QPointF y = at(0, 1) - origin;
  return QTransform(x.x(), x.y(), y.x(), y.y(), origin.x(), origin.y());
}

/// How many pixels of the slice are averaged into one before they are painted: more than two on one pixel of the device
/// would make fine structures flicker.
int reduction(double devicePixelsPerPixel, int pixels) {
  int factor = 1;
  while (factor * 2 <= pixels && devicePixelsPerPixel * factor < 0.5) factor *= 2;
  return factor;
}

void paintSlice(QPainter& painter, const QImage& image, const ViewTransform& transform, double devicePixelRatio) {
  const QTransform toDisplay = displayTransform(transform);
  const double area = std::abs(toDisplay.determinant());
  if (!(area > smallestPixelArea) || !(area < largestPixelArea)) return;
  const QTransform toPixels = toDisplay.inverted();
  const QRectF whole(-0.5, -0.5, image.width(), image.height());
  // Only what is seen, and a little more: at a great zoom the rest would be far away.
  const QRectF seen =
      toPixels.mapRect(QRectF(0, 0, transform.viewWidth, transform.viewHeight)).adjusted(-3, -3, 3, 3) & whole;
  if (seen.isEmpty()) return;
  const double scale = transform.scale * devicePixelRatio;
  const int reductionX = reduction(scale, image.width());
  const int reductionY = reduction(scale * transform.pixelAspect, image.height());
  QImage source = image;
  if (reductionX > 1 || reductionY > 1) {
    source = image.scaled(image.width() / reductionX, image.height() / reductionY, Qt::IgnoreAspectRatio,
                          Qt::SmoothTransformation);
  }
  const double perPixelX = static_cast<double>(source.width()) / image.width();
  const double perPixelY = static_cast<double>(source.height()) / image.height();
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.setTransform(toDisplay, true);
  painter.drawImage(seen, source,
                    QRectF((seen.x() + 0.5) * perPixelX, (seen.y() + 0.5) * perPixelY, seen.width() * perPixelX,
                           seen.height() * perPixelY));
}

/// Breaks a sentence into lines that are not wider than `longest` points.
QStringList wrapped(const QString& text, const TextStyle& style, double longest) {
  QStringList lines;
  QString line;
  for (const QString& word : text.left(1000).split(' ', Qt::SkipEmptyParts)) {
    const QString longer = line.isEmpty() ? word : line + ' ' + word;
    if (!line.isEmpty() && TextStamps::widthOf(longer, style) > longest) {
      lines << line;
      line = word;
    } else {
      line = longer;
    }
  }
  return line.isEmpty() ? lines : lines << line;
}

}  // namespace

void ViewPainter::paint(QPainter& painter, const ViewPicture& picture, const std::shared_ptr<const PixelData>& pixels,
                        const std::string& problem) {
  const double ratio = painter.device()->devicePixelRatioF();
  const double width = picture.transform.viewWidth;
  const double height = picture.transform.viewHeight;
  if (!(width > 0) || !(height > 0) || !(width * ratio <= largestView) || !(height * ratio <= largestView)) return;
  painter.save();
  painter.setClipRect(QRectF(0, 0, width, height), Qt::IntersectClip);
  updateImage(picture, pixels);
  updateLayer(picture, ratio);
  painter.drawImage(QPointF(0, 0), layer_);
  paintReferenceLines(painter, picture);
  paintAnnotations(painter, picture, stamps_);
  paintCrosses(painter, picture);
  if (image_.isNull()) paintProblem(painter, picture, problem);
  const double bottom = height - paintBanners(painter, picture);
  paintTexts(painter, picture, bottom);
  painter.restore();
}

void ViewPainter::updateImage(const ViewPicture& picture, const std::shared_ptr<const PixelData>& pixels) {
  const bool isShownAlike = isSame(picture.window, window_) && picture.voiTable == voiTable_;
  if (pixels == pixels_ && isShownAlike && (pixels || image_.isNull())) return;
  layer_ = {};
  image_ = {};
  if (pixels && pixels != pixels_) range_ = storedRange(*pixels);
  pixels_ = pixels;
  window_ = picture.window;
  voiTable_ = picture.voiTable;
  if (!pixels) return;
  transform_ = voiTransformOf(*pixels, range_, window_, voiTable_);
  image_ = imageOfPixels(*pixels, range_, transform_);
}

void ViewPainter::updateLayer(const ViewPicture& picture, double devicePixelRatio) {
  if (!layer_.isNull() && layerRatio_ == devicePixelRatio && fieldsOf(layerTransform_) == fieldsOf(picture.transform))
    return;
  const QSize size(static_cast<int>(std::ceil(picture.transform.viewWidth * devicePixelRatio)),
                   static_cast<int>(std::ceil(picture.transform.viewHeight * devicePixelRatio)));
  if (layer_.size() != size) layer_ = QImage(size, QImage::Format_RGB32);
  layer_.setDevicePixelRatio(devicePixelRatio);
  layer_.fill(Qt::black);
  layerTransform_ = picture.transform;
  layerRatio_ = devicePixelRatio;
  if (image_.isNull() || layer_.isNull()) return;
  QPainter painter(&layer_);
  paintSlice(painter, image_, picture.transform, devicePixelRatio);
}

void ViewPainter::paintReferenceLines(QPainter& painter, const ViewPicture& picture) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(QColor(90, 200, 255, 220), 1, Qt::DashLine));
  for (const PixelSegment& line : picture.referenceLines)
    painter.drawLine(onDisplay(picture.transform, line.from), onDisplay(picture.transform, line.to));
  painter.restore();
}

void ViewPainter::paintCrosses(QPainter& painter, const ViewPicture& picture) {
  constexpr double gap = 4;
  constexpr double reach = 14;
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  for (const auto& [width, colour] : {std::pair(4.0, QColor(0, 0, 0)), std::pair(2.0, QColor(255, 80, 80))}) {
    painter.setPen(QPen(colour, width));
    for (const pelmar::PixelPoint& cross : picture.crosses) {
      const QPointF at = onDisplay(picture.transform, cross);
      for (const QPointF& arm : {QPointF(1, 0), QPointF(-1, 0), QPointF(0, 1), QPointF(0, -1)})
        painter.drawLine(at + gap * arm, at + reach * arm);
    }
  }
  painter.restore();
}

void ViewPainter::paintProblem(QPainter& painter, const ViewPicture& picture, const std::string& problem) {
  const TextStyle style{bannerSize, QColor(255, 200, 120)};
  const double width = picture.transform.viewWidth;
  const QStringList lines = wrapped(QString::fromStdString(problem), style, width - 4 * edgeGap);
  const double lineHeight = TextStamps::lineHeight(bannerSize);
  double top = (picture.transform.viewHeight - lineHeight * static_cast<double>(lines.size())) / 2;
  for (const QString& line : lines) {
    stamps_.writeBelow(painter, {width / 2, top}, TextStamps::Align::centre, line, style);
    top += lineHeight;
  }
}

double ViewPainter::paintBanners(QPainter& painter, const ViewPicture& picture) {
  const TextStyle style{bannerSize, QColor(255, 230, 120), true};
  const double width = picture.transform.viewWidth;
  QStringList lines;
  for (const std::string& banner : picture.banners)
    lines << wrapped(QString::fromStdString(banner), style, width - 4 * edgeGap);
  if (lines.isEmpty()) return 0;
  const double lineHeight = TextStamps::lineHeight(bannerSize);
  const double height = lineHeight * static_cast<double>(lines.size()) + 2 * edgeGap;
  double top = picture.transform.viewHeight - height;
  painter.fillRect(QRectF(0, top, width, height), QColor(110, 20, 10, 230));
  top += edgeGap;
  for (const QString& line : lines) {
    stamps_.writeBelow(painter, {width / 2, top}, TextStamps::Align::centre, line, style);
    top += lineHeight;
  }
  return height;
}

void ViewPainter::paintTexts(QPainter& painter, const ViewPicture& picture, double bottom) {
  WindowLine window;
  const bool isGrey = pixels_ && pixels_->samplesPerPixel == 1 && !image_.isNull();
  if (picture.showsWindow && isGrey) window = {QString::fromStdString(windowText(transform_)), !transform_.table};
  const ViewTexts texts = layOutTexts(picture, window, bottom);
  if (texts.scaleBar) paintScaleBar(painter, *texts.scaleBar);
  for (const ViewText& line : texts.lines) stamps_.writeBelow(painter, line.top, line.align, line.text, line.style);
}

void ViewPainter::paintScaleBar(QPainter& painter, const QLineF& bar) {
  const QPointF tick(0, 4);
  const QPolygonF line{bar.p1() - tick, bar.p1(), bar.p2(), bar.p2() - tick};
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(Qt::black, 4, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
  painter.drawPolyline(line);
  painter.setPen(QPen(QColor(240, 240, 240), 1.5, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
  painter.drawPolyline(line);
  painter.restore();
}

}  // namespace workstation
