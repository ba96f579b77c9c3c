#pragma once

#include <array>
#include <optional>

#include "host/Geometry.h"
#include "host/List.h"
#include "host/ROI.h"
#include "host/Ref.h"

namespace pelmar {

class DCMPix;
class DicomStudy;
class ViewerController;
class Window;

/// The image view inside a viewer; shows one slice at a time. Lives as long as its viewer.
class DCMView : public HostObject {
 public:
  /// The viewer it belongs to. Nil: nil.
  virtual Ref<ViewerController> viewer() const { return {}; }
  /// The slice shown, nil when none is. Nil: nil.
  virtual Ref<DCMPix> curDCM() const { return {}; }
  /// Index of the slice shown, from 0. Nil: 0.
  virtual long curImage() const { return 0; }
  /// All slices of the series, in viewer order. Nil: nil.
  virtual Ref<List<Ref<DCMPix>>> dcmPixList() const { return {}; }
  /// The same lists as ViewerController::roiList. Nil: nil.
  virtual Ref<ROILists> dcmRoiList() const { return {}; }
  /// The study shown. Nil: nil.
  virtual Ref<DicomStudy> studyObj() const { return {}; }
  /// Tag of the current mouse tool. Nil: 0.
  virtual long currentTool() const { return 0; }
  /// From pixels of the shown image to points of the view. Nil: (0, 0).
  virtual ViewPoint ConvertFromGL2NSView(PixelPoint) const { return {}; }
  /// From points of the view to pixels of the shown image. Nil: (0, 0).
  virtual PixelPoint ConvertFromNSView2GL(ViewPoint) const { return {}; }
  /// Orientation of the image as displayed, rotation and flips applied: patient-space directions of the view's
  /// horizontal axis (to the right), its vertical axis (downwards) and their cross product. Nil: array untouched.
  virtual void orientationCorrectedToView(std::array<float, 9>& /*vector*/) const {}
  /// Ends the drawing or editing of an annotation in progress on this view, without a notification. Nil: nothing.
  virtual void stopROIEditingForce(bool /*force*/) {}
  /// The view's rectangle in its window, in points. Nil: empty.
  virtual FrameRect frame() const { return {}; }
  /// The window that it is in. Nil: nil.
  virtual Ref<Window> window() const { return {}; }
  /// From points of this view to the window (no target view). Nil: (0, 0).
  virtual WindowPoint convertPoint(ViewPoint, const Ref<DCMView>& /*toView*/) const { return {}; }
};

/// The class operations of DCMView.
class DCMViewClass {
 public:
  virtual ~DCMViewClass() = default;
  /// Unsigned distance in millimetres from a point to the plane through `planePoint` with the normal `planeNormal`
  /// (any length but zero); `footPoint` receives the point's projection onto the plane.
  virtual float pbase_Plane(const Vector3f& point, const Vector3f& planePoint, const Vector3f& planeNormal,
                            Vector3f& footPoint) = 0;
  /// Unsigned angle in radians, 0 .. pi.
  virtual float angleBetweenVector(const Vector3f& a, const Vector3f& andVector) = 0;
};

}  // namespace pelmar
