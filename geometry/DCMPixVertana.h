#pragma once
// What the plug-in adds to the host's image class. Sent to nil, these answer nil, (0, 0) and false like the rest.

#include "host/DCMPix.h"
#include "host/Point3D.h"

namespace vertana {

/// Patient position (mm) of an image point (pixels) of this slice; the pixels are narrowed to single precision.
pelmar::Ref<pelmar::Point3D> Point3DFromNSPoint(const pelmar::Ref<pelmar::DCMPix>& pix, pelmar::PixelPoint point,
                                                pelmar::Point3DClass& point3D);

/// Image point (pixels) of a patient position (mm), projected onto this slice; its distance from the slice is dropped.
/// A pixel spacing of 0 gives coordinates that are not finite.
pelmar::PixelPoint NSPointFromPoint3D(const pelmar::Ref<pelmar::DCMPix>& pix,
                                      const pelmar::Ref<pelmar::Point3D>& point);

/// Whether the slice normal points mainly along the patient's z axis; ties go to x, then y, then z, and a largest
/// component of 0.2 or less is no orientation at all.
bool isAxial(const pelmar::Ref<pelmar::DCMPix>& pix);

}  // namespace vertana
