#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "host/Window.h"
#include "tests/double/CallLog.h"

namespace testhost {

/// A window that exists only as numbers.
class TestWindow : public pelmar::Window {
 public:
  TestWindow() = default;
  TestWindow(CallLog* callLog, std::string windowName) : log(callLog), name(std::move(windowName)) {}

  CallLog* log = nullptr;
  std::string name;  ///< as in the call log
  pelmar::FrameRect frameRect{0, 0, 240, 180};
  bool visible = false;
  std::string autosaveName;  ///< as the description names it
  std::string rememberedAs;  ///< as setWindowFrameAutosaveName named it
  bool cascades = true;
  pelmar::WindowOwner* owner = nullptr;        ///< null for a viewer's window and once it has closed
  pelmar::WindowDelegate* delegate = nullptr;  ///< null once it has closed
  std::vector<std::string> changedValues;      ///< keys of didChangeValue, in order
  std::function<void()> whileClosing;          ///< called first by each close; may throw

  /// What a person does: uses a control. Returns what the owner answered, false without an owner.
  bool click(std::string_view action) { return owner && owner->performAction(action); }

  pelmar::FrameRect frame() const override { return frameRect; }
  void setFrameOrigin(pelmar::ScreenPoint origin) override;
  void makeKeyAndOrderFront() override;
  void close() override;
  bool isVisible() const override { return visible; }
  pelmar::ScreenPoint convertBaseToScreen(pelmar::WindowPoint point) const override {
    return {frameRect.x + point.x, frameRect.y + point.y};
  }
  std::string frameAutosaveName() const override { return autosaveName; }
};

class TestWindowServices : public pelmar::WindowServices {
 public:
  explicit TestWindowServices(CallLog& log) : log_(log) {}

  /// The descriptions that the bundle has, and the size of the window made from each.
  std::map<std::string, pelmar::FrameRect, std::less<>> descriptions{{"VertanaWindowController", {0, 0, 240, 180}}};
  std::string autosaveNameOfDescriptions = "VertanaPalette";
  std::vector<pelmar::Ref<TestWindow>> loaded;  ///< every window made from a description, oldest first

  /// The newest window made from a description, nil when there is none.
  pelmar::Ref<TestWindow> newest() const { return loaded.empty() ? pelmar::Ref<TestWindow>() : loaded.back(); }

  pelmar::Ref<pelmar::Window> loadWindow(std::string_view windowDescription, pelmar::WindowOwner& owner) override;
  void setDelegate(const pelmar::Ref<pelmar::Window>& window, pelmar::WindowDelegate* delegate) override;
  void setShouldCascadeWindows(const pelmar::Ref<pelmar::Window>& window, bool cascade) override;
  void setWindowFrameAutosaveName(const pelmar::Ref<pelmar::Window>& window, std::string_view name) override;
  void didChangeValue(const pelmar::Ref<pelmar::Window>& window, std::string_view forKey) override;

 private:
  CallLog& log_;
};

}  // namespace testhost
