#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/PelmarAPI.h"

namespace pelmar {

/// Base class of a plug-in's object. The host makes one through the bundle's entry point, calls initPlugin once,
/// filterImage each time one of the plug-in's menu entries is chosen, and dealloc before it lets the object go. No
/// operation that the host calls lets an exception out.
class PluginFilter {
 public:
  explicit PluginFilter(PelmarAPI& api) : api_(api) {}
  PluginFilter(const PluginFilter&) = delete;
  PluginFilter& operator=(const PluginFilter&) = delete;
  virtual ~PluginFilter() = default;

  /// Called once, after loading: the plug-in registers for what it wants to be told.
  virtual void initPlugin() {}
  /// `menuName`: title of the chosen menu entry. 0 on success.
  virtual long filterImage(const std::string& /*menuName*/) { return 0; }
  /// Unregisters the object from everything; called once, last.
  virtual void dealloc() { viewerController_ = nullptr; }

  /// The plug-in's state as a dictionary, for logs and tests. Reading it computes and changes nothing.
  virtual Value stateSnapshot() const { return {}; }

  /// The answer to a named question that the plug-in documents; nil for one it does not know. Changes nothing.
  virtual Value valueForKey(std::string_view /*key*/) const { return {}; }

  /// The same about an object of the host, such as the name of a slice. Nil for an object of another kind.
  virtual Value valueForObject(const Ref<HostObject>& /*object*/, std::string_view /*key*/) const { return {}; }

  /// All open 2D viewers, in the host's order.
  std::vector<Ref<ViewerController>> viewerControllersList() const { return api_.viewerControllersList(); }

  /// The viewer from which the menu command came; the host sets it before filterImage. Not kept alive.
  Ref<ViewerController> viewerController() const { return viewerController_.lock(); }
  void setViewerController(const Ref<ViewerController>& viewer) { viewerController_ = viewer; }

 protected:
  PelmarAPI& api() const { return api_; }

 private:
  PelmarAPI& api_;
  WeakRef<ViewerController> viewerController_;
};

}  // namespace pelmar
