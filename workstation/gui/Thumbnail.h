#pragma once

#include <QImage>

#include "workstation/model/ImageRecord.h"

namespace workstation {

/// A small square picture of a slice, in its true proportions on black, as its file asks to be shown. With a grey
/// square where it cannot be read.
QImage thumbnailOf(const ImageRecord& image, PixelSource& source, int size);

/// The mark of a study that holds a labelling.
QImage labelledMark(int size);

}  // namespace workstation
