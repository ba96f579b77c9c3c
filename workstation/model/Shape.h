#pragma once
// Where an annotation stands and what of it can be taken hold of.

#include <vector>

#include "host/Geometry.h"

namespace workstation {

class Roi;
class View;

/// How many vertices an annotation has that is drawn from press to release: a line and an arrow 2 (the arrow's head is
/// the first), a point 1. 0: it is drawn otherwise.
std::size_t verticesOfStroke(long type);

/// Where it stands, as it is moved whole: its vertices; of a text, the point that it is centred on. Pixels.
std::vector<pelmar::PixelPoint> shapeOf(const Roi& roi);
/// Puts it there; as many points as shapeOf gives.
void setShape(Roi& roi, const std::vector<pelmar::PixelPoint>& shape);

/// Whether the point lies within reach of the annotation's line: 6 points; of a polygon, its spline.
bool isOnLine(const View& view, const Roi& roi, pelmar::ViewPoint at);
/// Whether the point lies on the text. How wide its letters are is known to painting only: an ordinary font is taken.
bool isOnText(const View& view, const Roi& roi, pelmar::ViewPoint at);

}  // namespace workstation
