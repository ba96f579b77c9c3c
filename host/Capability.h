#pragma once

namespace pelmar {

/// Operations that a host may lack. PelmarAPI::supports asks for a whole class, HostObject::supports for one object.
enum class Capability {
  Point3DKeyedArchiving,            ///< Point3D objects can be put into a keyed archive
  DCMPixBodyPartExamined,           ///< DCMPix::bodyPartExamined
  ROIDontDisplayInKeyImagesWindow,  ///< ROI::dontDisplayInKeyImagesWindow
  ROIStringTags,                    ///< ROI::stringTags
  ROIResamplePoints,                ///< ROIClass::resamplePoints
  ViewerControllerROIToolTag,       ///< ViewerController::ROIToolTag
};

}  // namespace pelmar
