#pragma once
// One point of the patient in several viewers. Pure geometry.

#include <optional>
#include <vector>

#include "host/Geometry.h"
#include "workstation/gui/ViewerLook.h"

namespace workstation {

/// The point of the patient at a pixel; nothing without geometry or frame of reference.
std::optional<MarkedPoint> markedPointAt(const ImageRecord& image, pelmar::PixelPoint pixel);

/// Of the slices of a stack that the point lies on, within the image, the nearest; nothing when there is none.
std::optional<std::size_t> sliceAt(const std::vector<ImageRecord>& slices, const MarkedPoint& point);

/// Whether the point lies on that slice of the stack: no farther from its plane than halfway to the next slice, or
/// 2.5 mm where slices are closer.
bool isOnSlice(const std::vector<ImageRecord>& slices, std::size_t slice, const MarkedPoint& point);

/// Where the point falls on the slice; nothing in another frame of reference.
std::optional<pelmar::PixelPoint> pixelOf(const ImageRecord& image, const MarkedPoint& point);

/// How far the point lies from the slice's plane, mm; infinite in another frame of reference.
double distanceMm(const ImageRecord& image, const MarkedPoint& point);

}  // namespace workstation
