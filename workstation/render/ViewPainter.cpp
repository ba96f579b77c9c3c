#include "workstation/render/ViewPainter.h"

#include <QStringList>
#include <QTransform>
#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>

#include "workstation/render/AnnotationPainter.h"
#include "workstation/render/GreyImage.h"

namespace workstation {
namespace {

constexpr double textSize = 12;
constexpr double letterSize = 15;
constexpr double bannerSize = 13;
constexpr double edgeGap = 5;
/// Room in the middle of the view that the corner texts leave free, where a slice's level is written.
constexpr double middleRoom = 84;
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
  paintLetters(painter, picture, bottom);
  const double barBottom = bottom - edgeGap - TextStamps::lineHeight(letterSize);
  if (picture.scaleBar) paintScaleBar(painter, *picture.scaleBar, width / 2, barBottom);
  paintCorners(painter, picture, bottom);
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

void ViewPainter::paintLetters(QPainter& painter, const ViewPicture& picture, double bottom) {
  const TextStyle style{letterSize, QColor(240, 240, 240), true};
  const double lineHeight = TextStamps::lineHeight(letterSize);
  const double width = picture.transform.viewWidth;
  const double middle = (bottom - lineHeight) / 2;
  const auto write = [&](const std::string& letters, QPointF top, TextStamps::Align align) {
    if (!letters.empty()) stamps_.writeBelow(painter, top, align, QString::fromStdString(letters), style);
  };
  write(picture.letters.left, {edgeGap, middle}, TextStamps::Align::left);
  write(picture.letters.right, {width - edgeGap, middle}, TextStamps::Align::right);
  write(picture.letters.top, {width / 2, edgeGap}, TextStamps::Align::centre);
  write(picture.letters.bottom, {width / 2, bottom - edgeGap - lineHeight}, TextStamps::Align::centre);
}

void ViewPainter::paintScaleBar(QPainter& painter, const ScaleBar& bar, double middle, double bottom) {
  constexpr double tick = 4;
  const double left = middle - bar.lengthPoints / 2;
  const double right = middle + bar.lengthPoints / 2;
  const double y = bottom - tick;
  const QPolygonF line{{left, y - tick}, {left, y}, {right, y}, {right, y - tick}};
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(Qt::black, 4, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
  painter.drawPolyline(line);
  painter.setPen(QPen(QColor(240, 240, 240), 1.5, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
  painter.drawPolyline(line);
  painter.restore();
  stamps_.writeBelow(painter, {middle, y - tick - TextStamps::lineHeight(textSize)}, TextStamps::Align::centre,
                     QString::fromStdString(bar.text), {textSize, QColor(240, 240, 240)});
}

void ViewPainter::paintCorners(QPainter& painter, const ViewPicture& picture, double bottom) {
  const double width = picture.transform.viewWidth;
  const double lineHeight = TextStamps::lineHeight(textSize);
  const TextStyle style{textSize, QColor(240, 240, 240), false, std::max(1.0, (width - middleRoom) / 2 - edgeGap)};
  const auto write = [&](const std::vector<std::string>& lines, double x, double top, TextStamps::Align align) {
    for (const std::string& line : lines) {
      stamps_.writeBelow(painter, {x, top}, align, QString::fromStdString(line), style);
      top += lineHeight;
    }
  };
  const auto topOf = [&](const std::vector<std::string>& lines) {
    return bottom - edgeGap - lineHeight * static_cast<double>(lines.size());
  };
  std::vector<std::string> bottomRight = picture.corners.bottomRight;
  const bool isGrey = pixels_ && pixels_->samplesPerPixel == 1 && !image_.isNull();
  if (picture.showsWindow && isGrey) bottomRight.push_back(windowText(transform_));
  write(picture.corners.topLeft, edgeGap, edgeGap, TextStamps::Align::left);
  write(picture.corners.topRight, width - edgeGap, edgeGap, TextStamps::Align::right);
  write(picture.corners.bottomLeft, edgeGap, topOf(picture.corners.bottomLeft), TextStamps::Align::left);
  write(bottomRight, width - edgeGap, topOf(bottomRight), TextStamps::Align::right);
}

}  // namespace workstation
