#pragma once

#include <QCache>
#include <QColor>
#include <QImage>
#include <QPainter>
#include <QPointF>
#include <QString>

namespace workstation {

/// How a line of text is written.
struct TextStyle {
  double size = 12;  ///< points
  QColor colour = Qt::white;
  bool bold = false;
  double longest = 0;  ///< points; what does not fit is left out with an ellipsis; 0: 2000
};

/// A line of text with an outline that keeps it readable over any background, painted once and kept.
struct TextStamp {
  QImage image;      ///< with the device pixel ratio that it was asked for
  QPointF baseline;  ///< from the image's top left to the start of the baseline, points
  double width = 0;  ///< advance, points
  double capHeight = 0;
  double ascent = 0;
  double descent = 0;
};

/// Writes text. Needs a QGuiApplication. Text is upright and lies on whole pixels of the device, so the painter must
/// not be turned or enlarged.
class TextStamps {
 public:
  /// How a line lies to the position that is given for it.
  enum class Align { left, centre, right };

  /// Writes a line with the middle of its capital letters at `at`.
  void writeCentred(QPainter& painter, QPointF at, const QString& text, const TextStyle& style);
  /// Writes a line whose box (ascent and descent) begins at `top`.
  void writeBelow(QPainter& painter, QPointF top, Align align, const QString& text, const TextStyle& style);

  /// Height of a line: ascent and descent, points.
  static double lineHeight(double size);
  /// Width of a text, points.
  static double widthOf(const QString& text, const TextStyle& style);

 private:
  const TextStamp& stampOf(const QString& text, const TextStyle& style, double devicePixelRatio);
  void place(QPainter& painter, const TextStamp& stamp, QPointF baseline);

  QCache<QString, TextStamp> stamps_{4 << 20};  ///< by bytes
};

}  // namespace workstation
