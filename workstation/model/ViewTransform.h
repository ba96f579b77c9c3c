#pragma once
// From pixels of the shown slice to points of the view and back. Pure arithmetic.

#include <array>

#include "host/Geometry.h"

namespace workstation {

/// How an image lies in a view. From the image's centre, ((columns - 1) / 2, (rows - 1) / 2): mirrored as stored,
/// then enlarged, then turned clockwise, then moved. The view's y points up, the image's down.
struct ViewTransform {
  double viewWidth = 0;   ///< points
  double viewHeight = 0;  ///< points
  double columns = 0;
  double rows = 0;
  double pixelAspect = 1;    ///< height of a pixel as a multiple of its width
  double scale = 1;          ///< points per pixel from column to column; > 0
  pelmar::ViewPoint origin;  ///< of the image's centre, from the centre of the view, in points
  double rotationDegrees = 0;
  bool flippedHorizontally = false;
  bool flippedVertically = false;

  pelmar::ViewPoint toView(pelmar::PixelPoint pixel) const;
  pelmar::PixelPoint toPixel(pelmar::ViewPoint point) const;

  /// A direction on the image, in equal lengths along its rows and columns.
  struct Direction {
    double alongRow = 0;
    double alongColumn = 0;
  };
  /// What points to the right and downwards on the display.
  Direction displayedRight() const;
  Direction displayedDown() const;

  /// The largest scale at which the whole image is seen, as far as it is turned.
  double scaleToFit() const;
};

}  // namespace workstation
