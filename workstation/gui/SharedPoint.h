#pragma once
// One point of the patient in several viewers. Pure geometry.

#include <optional>
#include <vector>

#include "host/Geometry.h"
#include "workstation/gui/ViewerLook.h"

namespace workstation {

/// The point of the patient at a pixel; nothing without geometry or frame of reference.
std::optional<MarkedPoint> markedPointAt(const ImageRecord& image, pelmar::PixelPoint pixel);

/// The slice nearest to the point, of those in its frame of reference on whose plane it falls within the image;
/// nothing when there is none.
std::optional<std::size_t> nearestSlice(const std::vector<ImageRecord>& slices, const MarkedPoint& point);

/// Where the point falls on the slice; nothing in another frame of reference.
std::optional<pelmar::PixelPoint> pixelOf(const ImageRecord& image, const MarkedPoint& point);

/// How far the point lies from the slice's plane, mm; infinite in another frame of reference.
double distanceMm(const ImageRecord& image, const MarkedPoint& point);

}  // namespace workstation
