#include "workstation/render/AnnotationPainter.h"

#include <QPainterPath>
#include <QPainterPathStroker>
#include <QPolygonF>
#include <algorithm>
#include <cmath>

#include "host/ROI.h"

namespace workstation {
namespace {

constexpr double captionSize = 12;
constexpr double captionGap = 8;
constexpr double handleSize = 6;
constexpr double frameGap = 4;
/// Of the dark line around an arrow, which keeps it visible over bright ground.
constexpr double outlineWidth = 1.25;
/// Farther out nothing is seen, and the painter's numbers stay exact.
constexpr double farthest = 1e6;

QColor colourOf(const pelmar::Colour& colour) {
  const auto component = [](double value) { return std::isfinite(value) ? std::clamp(value, 0.0, 1.0) : 1.0; };
  return QColor::fromRgbF(static_cast<float>(component(colour.red)), static_cast<float>(component(colour.green)),
                          static_cast<float>(component(colour.blue)), static_cast<float>(component(colour.alpha)));
}

/// One annotation with its points on the display.
class AnnotationPainting {
 public:
  AnnotationPainting(QPainter& painter, const ViewPicture& picture, const PaintedAnnotation& annotation,
                     TextStamps& stamps)
      : painter_(painter),
        picture_(picture),
        annotation_(annotation),
        stamps_(stamps),
        colour_(colourOf(annotation.colour)),
        thickness_(std::isfinite(annotation.thickness) ? std::clamp(annotation.thickness, 0.5, 200.0) : 1) {}

  void paint() {
    switch (annotation_.type) {
      case pelmar::ROITypeText:
        paintText();
        break;
      case pelmar::ROITypePoint:
        paintPoint();
        paintCaption();
        break;
      case pelmar::ROITypeArrow:
        paintArrow();
        paintCaption();
        break;
      default:
        paintLine(displayed(annotation_.stroke));
        paintCaption();
    }
    if (annotation_.handles && annotation_.type != pelmar::ROITypeText) paintHandles();
  }

 private:
  QPolygonF displayed(const std::vector<pelmar::PixelPoint>& points) const {
    QPolygonF polygon;
    polygon.reserve(static_cast<qsizetype>(points.size()));
    for (const auto& point : points) polygon << onDisplay(picture_.transform, point);
    return polygon;
  }

  void paintLine(const QPolygonF& points) {
    painter_.setPen(QPen(colour_, thickness_, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter_.setBrush(Qt::NoBrush);
    painter_.drawPolyline(points);
  }

  void paintText() {
    const QPointF centre = onDisplay(picture_.transform, annotation_.vertices.front());
    const double lineHeight = TextStamps::lineHeight(thickness_);
    if (annotation_.handles) paintFrame(centre, lineHeight * static_cast<double>(annotation_.lines.size()));
    const double first = -lineHeight * (static_cast<double>(annotation_.lines.size()) - 1) / 2;
    for (std::size_t line = 0; line < annotation_.lines.size(); ++line) {
      const QPointF at = centre + QPointF(0, first + lineHeight * static_cast<double>(line));
      stamps_.writeCentred(painter_, at, QString::fromStdString(annotation_.lines[line]), {thickness_, colour_});
    }
  }

  /// Around a text that is selected.
  void paintFrame(QPointF centre, double height) {
    double widest = 0;
    for (const std::string& line : annotation_.lines)
      widest = std::max(widest, TextStamps::widthOf(QString::fromStdString(line), {thickness_, colour_}));
    const QRectF box(centre.x() - widest / 2 - frameGap, centre.y() - height / 2, widest + 2 * frameGap, height);
    painter_.setBrush(Qt::NoBrush);
    painter_.setPen(QPen(Qt::black, 3));
    painter_.drawRect(box);
    painter_.setPen(QPen(Qt::white, 1, Qt::DashLine));
    painter_.drawRect(box);
  }

  void paintPoint() {
    const double radius = std::max(3.0, 1.5 * thickness_);
    painter_.setPen(QPen(QColor(0, 0, 0, colour_.alpha()), 1));
    painter_.setBrush(colour_);
    painter_.drawEllipse(onDisplay(picture_.transform, annotation_.vertices.front()), radius, radius);
  }

  /// The head is the first vertex. Shaft and head are one shape, so that a see-through arrow has one shade.
  void paintArrow() {
    const QPolygonF points = displayed(annotation_.vertices);
    if (points.size() < 2) return paintPoint();
    const QPointF tip = points[0];
    const QPointF back = points[1] - tip;
    const double length = std::hypot(back.x(), back.y());
    if (!(length > 0)) return paintPoint();
    const QPointF along = back / length;
    const QPointF across(-along.y(), along.x());
    const double headLength = std::min(length, std::max(10.0, 5 * thickness_));
    const double headHalfWidth = 0.4 * headLength;
    const QPointF base = tip + headLength * along;
    const QPointF side = thickness_ / 2 * across;
    QPolygonF shape{tip, base + headHalfWidth * across};
    if (length > headLength) shape << base + side << points[1] + side << points[1] - side << base - side;
    shape << base - headHalfWidth * across;
    QPainterPath whole;
    whole.addPolygon(shape);
    whole.closeSubpath();
    QPainterPathStroker around;
    around.setWidth(2 * outlineWidth);
    around.setJoinStyle(Qt::RoundJoin);
    // Beneath a see-through arrow it would be seen; cut out beneath another, it would leave a bright seam.
    const QPainterPath outline = around.createStroke(whole);
    const bool isOpaque = colour_.alpha() == 255;
    painter_.fillPath(isOpaque ? outline : outline.subtracted(whole), QColor(0, 0, 0, colour_.alpha()));
    painter_.fillPath(whole, colour_);
  }

  /// Beside the last vertex, on the side where there is room.
  void paintCaption() {
    if (annotation_.lines.empty()) return;
    const TextStyle style{captionSize, QColor(colour_.red(), colour_.green(), colour_.blue())};
    double widest = 0;
    for (const std::string& line : annotation_.lines)
      widest = std::max(widest, TextStamps::widthOf(QString::fromStdString(line), style));
    const QPointF end = onDisplay(picture_.transform, annotation_.vertices.back());
    const bool fitsRight = end.x() + captionGap + widest <= picture_.transform.viewWidth;
    const auto align = fitsRight ? TextStamps::Align::left : TextStamps::Align::right;
    const double lineHeight = TextStamps::lineHeight(captionSize);
    const double first = -lineHeight * static_cast<double>(annotation_.lines.size()) / 2;
    for (std::size_t line = 0; line < annotation_.lines.size(); ++line) {
      const QPointF at =
          end + QPointF(fitsRight ? captionGap : -captionGap, first + lineHeight * static_cast<double>(line));
      stamps_.writeBelow(painter_, at, align, QString::fromStdString(annotation_.lines[line]), style);
    }
  }

  void paintHandles() {
    painter_.setPen(QPen(QColor(0, 0, 0), 1));
    painter_.setBrush(QColor(255, 255, 255));
    for (const QPointF& at : displayed(annotation_.vertices))
      painter_.drawRect(QRectF(at.x() - handleSize / 2, at.y() - handleSize / 2, handleSize, handleSize));
  }

  QPainter& painter_;
  const ViewPicture& picture_;
  const PaintedAnnotation& annotation_;
  TextStamps& stamps_;
  QColor colour_;
  double thickness_;
};

}  // namespace

QPointF onDisplay(const ViewTransform& transform, pelmar::PixelPoint pixel) {
  const pelmar::ViewPoint point = transform.toView(pixel);
  const auto bounded = [](double value) {
    return std::isnan(value) ? farthest : std::clamp(value, -farthest, farthest);
  };
  return {bounded(point.x), bounded(transform.viewHeight - point.y)};
}

void paintAnnotations(QPainter& painter, const ViewPicture& picture, TextStamps& stamps) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  for (const PaintedAnnotation& annotation : picture.annotations) {
    if (!annotation.vertices.empty()) AnnotationPainting(painter, picture, annotation, stamps).paint();
  }
  painter.restore();
}

}  // namespace workstation
