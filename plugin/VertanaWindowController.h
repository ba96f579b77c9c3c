#pragma once

#include <memory>
#include <string_view>

#include "host/PelmarAPI.h"

namespace vertana {

class VertanaFilter;

/// The palette: forwards its buttons and settings to the controller. Every way of closing it ends the workflow.
/// Owned by the controller, which lets it go when it has closed. What the host calls lets no exception out.
class VertanaWindowController final : public pelmar::WindowOwner,
                                      public pelmar::WindowDelegate,
                                      public std::enable_shared_from_this<VertanaWindowController> {
 public:
  explicit VertanaWindowController(pelmar::PelmarAPI& api) : api_(api) {}

  /// The controller that owns this palette; not kept alive. Null until the palette has been placed.
  VertanaFilter* plugin() const { return plugin_; }
  void setPlugin(VertanaFilter* plugin) { plugin_ = plugin; }

  /// The window, loaded hidden from its description when first asked for.
  pelmar::Ref<pelmar::Window> window();
  void windowDidLoad();
  /// Closes the window, if it was ever loaded.
  void close();

  /// The person has finished: stops the workflow, then closes.
  void stopWorkFlow();
  /// Empties the labelling; the palette stays.
  void reset();
  /// Opens the manual in the person's browser.
  void openHelp();
  void windowWillClose() override;

  bool performAction(std::string_view action) override;
  pelmar::Value valueForKey(std::string_view key) const override;
  bool setValue(const pelmar::Value& value, std::string_view forKey) override;
  /// Tells the window that the controller has changed a setting.
  void settingDidChange(std::string_view key);

 private:
  pelmar::PelmarAPI& api_;
  VertanaFilter* plugin_ = nullptr;
  bool loaded_ = false;
  pelmar::Ref<pelmar::Window> window_;
};

}  // namespace vertana
