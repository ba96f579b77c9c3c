#pragma once

#include "host/List.h"
#include "host/ROI.h"
#include "host/Ref.h"

namespace pelmar {

class DCMPix;
class DCMView;
class DicomStudy;
class Window;

/// Tags of the annotation tools that the plug-in selects (ViewerController::ROIToolTag).
enum ROIToolTag : long {
  ROIToolTagLength = 5,        ///< draws annotations of type 5
  ROIToolTagOpenPolygon = 10,  ///< draws annotations of type 10
};

/// One 2D viewer window, showing one series. Owned by the host; leaves its list when it closes.
class ViewerController : public HostObject {
 public:
  /// The study of the shown series. Nil: nil.
  virtual Ref<DicomStudy> currentStudy() const { return {}; }
  /// Its image view. Nil: nil.
  virtual Ref<DCMView> imageView() const { return {}; }
  /// Its window. Nil: nil.
  virtual Ref<Window> window() const { return {}; }
  /// Orientation code of the shown series: 0/1 sagittal, 2/3 coronal, 4/5 axial, -1 unknown. Nil: 0.
  virtual long orientationVector() const { return 0; }
  /// Whether all images are loaded. Nil: false.
  virtual bool isEverythingLoaded() const { return false; }
  /// Each slice's mutable list of annotations; adding one to a list shows it on that slice. Nil: nil.
  virtual Ref<ROILists> roiList() const { return {}; }
  /// Asks for a redraw after annotations have changed. Nil: nothing.
  virtual void needsDisplayUpdate() {}
  /// Tag of the current annotation tool. Older hosts lack it: ask supports(Capability::ViewerControllerROIToolTag)
  /// first. Nil: 0.
  virtual long ROIToolTag() const { return 0; }
  /// Selects an annotation tool; the left mouse button then draws with it. Nil: nothing.
  virtual void setROIToolTag(long) {}
  /// Selects a mouse tool. Nil: nothing.
  virtual void setToolTag(long) {}
};

/// The class operations of ViewerController.
class ViewerControllerClass {
 public:
  virtual ~ViewerControllerClass() = default;
  /// The 2D viewer in front, or nil.
  virtual Ref<ViewerController> frontMostDisplayed2DViewer() = 0;
  /// Writes the orientation code of a series (see ViewerController::orientationVector) given its slices; a nil list
  /// writes nothing.
  virtual void computeOriginalOrientationForPixArray(const Ref<List<Ref<DCMPix>>>& pixArray,
                                                     long& orientationVector) = 0;
};

}  // namespace pelmar
