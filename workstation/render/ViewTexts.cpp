#include "workstation/render/ViewTexts.h"

#include <QRectF>
#include <algorithm>
#include <limits>
#include <utility>

#include "workstation/render/AnnotationPainter.h"

namespace workstation {
namespace {

using Align = TextStamps::Align;

constexpr double cornerTextSize = 12;
constexpr double edgeLetterSize = 15;
constexpr double textEdgeGap = 5;
/// Between texts in one row.
constexpr double wordGap = 8;
/// A cut name shorter than this is little more than its ellipsis.
constexpr double shortestCut = 40;
/// In lower views the bar would lie over the middle of the image.
constexpr double leastHeightForBar = 200;
/// The ends of the scale bar reach so far above it, and the letter is as far below.
constexpr double barGap = 4;
/// Above and below the capital letters a line's box is empty, as shares of its height.
constexpr double aboveCapitals = 0.17;
constexpr double belowCapitals = 0.2;

TextStyle styleOf(double size, bool bold) { return {size, QColor(240, 240, 240), bold}; }

/// The room of one view, of which texts take their share.
class Room {
 public:
  Room(double width, double height) : width_(width), height_(height) {}

  double width() const { return width_; }
  void take(const QRectF& box) { taken_.push_back(box); }
  bool isFree(const QRectF& box) const {
    return std::none_of(taken_.begin(), taken_.end(), [&](const QRectF& other) { return other.intersects(box); });
  }
  /// How long a line of this height may be that begins at the left or right edge; 0 where it has no place.
  double longest(double top, double lineHeight, Align align) const {
    if (top < 0 || top + lineHeight > height_) return 0;
    // The few letters that reach below the others may touch what stands there.
    const QRectF row(textEdgeGap, top + 0.5, width_ - 2 * textEdgeGap, (1 - belowCapitals) * lineHeight);
    double room = row.width();
    for (const QRectF& box : taken_) {
      if (!box.intersects(row)) continue;
      room = std::min(room, (align == Align::left ? box.left() - row.left() : row.right() - box.right()) - wordGap);
    }
    return std::max(0.0, room);
  }

 private:
  double width_;
  double height_;
  std::vector<QRectF> taken_;
};

QRectF boxOfLine(const ViewText& line, double length) {
  const double left = line.align == Align::left    ? line.top.x()
                      : line.align == Align::right ? line.top.x() - length
                                                   : line.top.x() - length / 2;
  return {left, line.top.y(), length, TextStamps::lineHeight(line.style.size)};
}

/// What a line may do when it does not fit.
enum class Fit { whole, cut };

/// Lays out one view.
class Layout {
 public:
  Layout(const ViewPicture& picture, double bottom)
      : picture_(picture), room_(picture.transform.viewWidth, bottom), bottom_(bottom) {}

  void writeLetters() {
    const double lineHeight = TextStamps::lineHeight(edgeLetterSize);
    const double width = room_.width();
    const double middle = (bottom_ - lineHeight) / 2;
    writeLetter(picture_.letters.left, {textEdgeGap, middle}, Align::left);
    writeLetter(picture_.letters.right, {width - textEdgeGap, middle}, Align::right);
    writeLetter(picture_.letters.top, {width / 2, textEdgeGap}, Align::centre);
    writeLetter(picture_.letters.bottom, {width / 2, bottom_ - textEdgeGap - lineHeight}, Align::centre);
  }

  void writeBottom(const WindowLine& window) {
    std::vector<QString> left = linesOf(picture_.corners.bottomLeft);
    std::vector<QString> right = linesOf(picture_.corners.bottomRight);
    if (!window.text.isEmpty()) right.push_back(window.text);
    const double base = baseFor(window);
    const auto topOf = [&](std::size_t index, std::size_t count) {
      return base - rowHeight_ * static_cast<double>(count - index);
    };
    const auto writeLeft = [&](std::size_t index) {
      return write(left[index], topOf(index, left.size()), Align::left, Fit::whole);
    };
    const auto writeRight = [&](std::size_t index) {
      const bool isWindow = !window.text.isEmpty() && index + 1 == right.size();
      write(right[index], topOf(index, right.size()), Align::right,
            isWindow && !window.isNumber ? Fit::cut : Fit::whole);
    };
    // At the left the first line, at the right the last one is what must not be missed.
    if (!left.empty() && !writeLeft(0)) write(left[0], topOf(1, 2), Align::left, Fit::whole);
    if (!right.empty()) writeRight(right.size() - 1);
    placeScaleBar();
    for (std::size_t index = 1; index < left.size(); ++index) writeLeft(index);
    for (std::size_t index = right.empty() ? 0 : right.size() - 1; index > 0; --index) writeRight(index - 1);
  }

  void writeTop() {
    // A level's name says more than the patient's, which is the same everywhere.
    for (const PaintedAnnotation& annotation : picture_.annotations) {
      if (annotation.type == pelmar::ROITypeText && !annotation.vertices.empty()) room_.take(boxOf(annotation));
    }
    const std::vector<QString> left = linesOf(picture_.corners.topLeft);
    const std::vector<QString> right = linesOf(picture_.corners.topRight);
    for (std::size_t row = 0; row < std::max(left.size(), right.size()); ++row) {
      const double top = textEdgeGap + rowHeight_ * static_cast<double>(row);
      const QString other = row < right.size() ? right[row] : QString();
      // What the other side leaves, at least half.
      const double whole = room_.width() - 2 * textEdgeGap - wordGap;
      const double share = std::max(whole / 2, whole - TextStamps::widthOf(other, cornerStyle_));
      if (row < left.size()) write(left[row], top, Align::left, Fit::cut, share);
      write(other, top, Align::right, Fit::cut);
    }
  }

  ViewTexts take() { return std::move(texts_); }

 private:
  /// The capital letters of a text on the image, with their outline.
  QRectF boxOf(const PaintedAnnotation& text) const {
    const TextStyle style{text.thickness, Qt::white};
    double width = 0;
    for (const std::string& line : text.lines)
      width = std::max(width, TextStamps::widthOf(QString::fromStdString(line), style));
    const double lineHeight = TextStamps::lineHeight(text.thickness);
    const double height = lineHeight * (static_cast<double>(text.lines.size()) - aboveCapitals - belowCapitals);
    const QPointF centre = onDisplay(picture_.transform, text.vertices.front());
    return {centre.x() - width / 2, centre.y() - height / 2, width, height};
  }

  static std::vector<QString> linesOf(const std::vector<std::string>& lines) {
    std::vector<QString> made;
    made.reserve(lines.size());
    for (const std::string& line : lines) made.push_back(QString::fromStdString(line));
    return made;
  }

  void writeLetter(const std::string& letters, QPointF top, Align align) {
    if (letters.empty()) return;
    const ViewText line{QString::fromStdString(letters), top, align, styleOf(edgeLetterSize, true)};
    const QRectF box = boxOfLine(line, TextStamps::widthOf(line.text, line.style));
    room_.take(box.adjusted(0, aboveCapitals * box.height(), 0, -belowCapitals * box.height()));
    texts_.lines.push_back(line);
  }

  /// Where the lines at the bottom end: the window has no room beside the lower letter in a narrow view.
  double baseFor(const WindowLine& window) const {
    const double base = bottom_ - textEdgeGap;
    if (!window.isNumber || picture_.letters.bottom.empty()) return base;
    const bool fits =
        TextStamps::widthOf(window.text, cornerStyle_) <= room_.longest(base - rowHeight_, rowHeight_, Align::right);
    return fits ? base : base - TextStamps::lineHeight(edgeLetterSize);
  }

  /// False when it has no place there.
  bool write(const QString& text, double top, Align align, Fit fit, double share = std::numeric_limits<double>::max()) {
    if (text.isEmpty()) return true;
    const double longest = std::min(share, room_.longest(top, rowHeight_, align));
    const double width = TextStamps::widthOf(text, cornerStyle_);
    if (width > longest && (fit == Fit::whole || longest < shortestCut)) return false;
    ViewText line{text, {align == Align::left ? textEdgeGap : room_.width() - textEdgeGap, top}, align, cornerStyle_};
    if (width > longest) line.style.longest = longest;
    room_.take(boxOfLine(line, std::min(width, longest)));
    texts_.lines.push_back(line);
    return true;
  }

  /// Above the lower letter.
  void placeScaleBar() {
    if (!picture_.scaleBar || picture_.transform.viewHeight < leastHeightForBar) return;
    const double middle = room_.width() / 2;
    const double y = bottom_ - textEdgeGap - TextStamps::lineHeight(edgeLetterSize) - barGap;
    const double length = picture_.scaleBar->lengthPoints;
    ViewText text{QString::fromStdString(picture_.scaleBar->text),
                  {middle, y - barGap - rowHeight_},
                  Align::centre,
                  cornerStyle_};
    const double width = std::max(length, TextStamps::widthOf(text.text, cornerStyle_));
    const QRectF box(middle - width / 2 - wordGap, text.top.y(), width + 2 * wordGap, y + barGap - text.top.y());
    if (!room_.isFree(box)) return;
    texts_.scaleBar = QLineF(middle - length / 2, y, middle + length / 2, y);
    texts_.lines.push_back(std::move(text));
    room_.take(box);
  }

  const ViewPicture& picture_;
  Room room_;
  double bottom_;
  TextStyle cornerStyle_ = styleOf(cornerTextSize, false);
  double rowHeight_ = TextStamps::lineHeight(cornerTextSize);
  ViewTexts texts_;
};

}  // namespace

ViewTexts layOutTexts(const ViewPicture& picture, const WindowLine& window, double bottom) {
  Layout layout(picture, bottom);
  layout.writeLetters();
  layout.writeBottom(window);
  layout.writeTop();
  return layout.take();
}

}  // namespace workstation
