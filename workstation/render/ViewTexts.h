#pragma once
// Where a view's texts stand. Pure geometry but for the widths of texts.

#include <QLineF>
#include <QString>
#include <optional>
#include <vector>

#include "workstation/render/TextStamps.h"
#include "workstation/render/ViewPicture.h"

namespace workstation {

/// A line of text in a view, in points of the display.
struct ViewText {
  QString text;
  QPointF top;  ///< of its box, at the side that `align` names
  TextStamps::Align align = TextStamps::Align::left;
  TextStyle style;  ///< its `longest` is the room that the line has
};

/// What is written around an image.
struct ViewTexts {
  std::vector<ViewText> lines;
  std::optional<QLineF> scaleBar;  ///< from left to right; its text is one of the lines
};

/// What the image is shown with, as the view tells it.
struct WindowLine {
  QString text;           ///< empty: none
  bool isNumber = false;  ///< not cut: a part of a number would be another one
};

/// Lays out orientation letters and corner texts above `bottom`, so that nothing stands over anything else. The letters
/// come first, then the number of the slice and the window, whole, above the lower letter where they have no room
/// beside it; then the scale bar, in views high enough to have room for it, the slice's position and the zoom, each
/// whole or not at all; last, beside texts on the image, the names at the top. A name may be cut; of one too short to
/// be read nothing is written.
ViewTexts layOutTexts(const ViewPicture& picture, const WindowLine& window, double bottom);

}  // namespace workstation
