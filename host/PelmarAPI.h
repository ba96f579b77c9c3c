#pragma once
// The host's plug-in interface. Start here: PluginFilter.h is what a plug-in derives from, PelmarAPI is what it is
// given, and the classes below are what it meets.

#include "host/Capability.h"
#include "host/DCMPix.h"
#include "host/DCMView.h"
#include "host/Database.h"
#include "host/Geometry.h"
#include "host/List.h"
#include "host/MyPoint.h"
#include "host/Notification.h"
#include "host/Point3D.h"
#include "host/ROI.h"
#include "host/Ref.h"
#include "host/Services.h"
#include "host/StringTags.h"
#include "host/Value.h"
#include "host/ViewerController.h"
#include "host/Window.h"

namespace pelmar {

/// Everything that the host offers: class operations, functions and platform services. Owned by the host; outlives
/// every plug-in object. All of it on the main thread, except where an operation says otherwise.
class PelmarAPI {
 public:
  virtual ~PelmarAPI() = default;

  /// Whether this host's classes offer an operation that some hosts lack.
  virtual bool supports(Capability capability) const = 0;

  /// All open 2D viewers, in the host's order.
  virtual std::vector<Ref<ViewerController>> viewerControllersList() const = 0;

  virtual ViewerControllerClass& viewerControllerClass() = 0;
  virtual DCMViewClass& dcmViewClass() = 0;
  virtual ROIClass& roiClass() = 0;
  virtual Point3DClass& point3DClass() = 0;
  virtual BrowserControllerClass& browserControllerClass() = 0;
  virtual SRAnnotationClass& srAnnotationClass() = 0;

  /// The vector at unit length, computed in double precision; a zero vector stays zero.
  virtual N3Vector N3VectorNormalize(const N3Vector& vector) const = 0;

  virtual NotificationCenter& defaultCenter() = 0;
  virtual UserDefaults& standardUserDefaults() = 0;
  virtual AlertPanels& alertPanels() = 0;
  virtual Application& application() = 0;
  virtual TextServices& textServices() = 0;
  virtual KeyedArchiving& keyedArchiving() = 0;
  virtual WindowServices& windowServices() = 0;
};

}  // namespace pelmar
