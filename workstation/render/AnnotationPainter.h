#pragma once

#include <QPainter>
#include <QPointF>

#include "workstation/render/TextStamps.h"
#include "workstation/render/ViewPicture.h"

namespace workstation {

/// Where a pixel of the slice lies in a view whose y points down, as painting has it; points.
QPointF onDisplay(const ViewTransform& transform, pelmar::PixelPoint pixel);

/// Paints the annotations of a picture, in their order, with smooth edges. Widths and sizes are points whatever the
/// zoom.
void paintAnnotations(QPainter& painter, const ViewPicture& picture, TextStamps& stamps);

}  // namespace workstation
