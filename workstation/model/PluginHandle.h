#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/PluginFilter.h"
#include "workstation/model/WindowDescription.h"

namespace workstation {

/// A plug-in object and what its bundle says of it. Destroying the handle destroys the object (after dealloc, if
/// nobody called that before) and gives back what it was loaded from.
class PluginHandle {
 public:
  virtual ~PluginHandle() = default;
  virtual pelmar::PluginFilter& filter() = 0;
  /// Calls the object's dealloc; a second call does nothing.
  virtual void dealloc() = 0;
  /// Titles of the plug-in's menu entries, in menu order.
  virtual const std::vector<std::string>& menuEntries() const = 0;
  /// The window description with this name; nothing when the bundle has none.
  virtual std::optional<WindowDescription> windowDescription(std::string_view name) const = 0;
};

}  // namespace workstation
