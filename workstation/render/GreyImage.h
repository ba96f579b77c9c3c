#pragma once

#include <QImage>

#include "workstation/model/ImageRecord.h"
#include "workstation/render/WindowLevel.h"

namespace workstation {

/// The picture of a slice, a pixel of it a pixel of the image (Format_RGB32): grey values through rescale and the VOI
/// transform, turned round for MONOCHROME1; colours as they are. A null image where the samples do not fill rows and
/// columns.
QImage imageOfPixels(const PixelData& pixels, const StoredRange& range, const VoiTransform& transform);

}  // namespace workstation
