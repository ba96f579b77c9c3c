#pragma once

#include <string>
#include <string_view>

#include "host/Geometry.h"
#include "host/Ref.h"
#include "host/Value.h"

namespace pelmar {

/// A window of the host's platform: a viewer's, or one made from a plug-in's window description.
class Window : public HostObject {
 public:
  /// On the screen, in points. Nil: empty.
  virtual FrameRect frame() const { return {}; }
  /// Moves the window's bottom left corner there; its size stays. Nil: nothing.
  virtual void setFrameOrigin(ScreenPoint) {}
  /// Shows the window, in front of the others and with the keyboard. Nil: nothing.
  virtual void makeKeyAndOrderFront() {}
  /// Tells the delegate that it is about to close, then closes. A window that is not open: nothing. Nil: nothing.
  virtual void close() {}
  /// Whether it is on the screen, also behind others. Nil: false.
  virtual bool isVisible() const { return false; }
  /// From points of this window to the screen. Nil: (0, 0).
  virtual ScreenPoint convertBaseToScreen(WindowPoint) const { return {}; }
  /// The name under which the window description asks for the frame to be remembered. Nil: empty.
  virtual std::string frameAutosaveName() const { return {}; }
};

/// What a plug-in gives the host for a window made from a description: the host calls these when the person acts.
/// The host does not own it and stops calling once the window has closed. No operation lets an exception out.
class WindowOwner {
 public:
  virtual ~WindowOwner() = default;
  /// A control with this action (for example "reset:") was used; returns false for an action it does not know.
  virtual bool performAction(std::string_view action) = 0;
  /// The value of a property that a control is bound to; nil for one it does not know.
  virtual Value valueForKey(std::string_view key) const = 0;
  /// A control bound to this property was set; returns false for a property it does not know.
  virtual bool setValue(const Value& value, std::string_view forKey) = 0;
};

/// Receives what happens to a window. No operation lets an exception out.
class WindowDelegate {
 public:
  virtual ~WindowDelegate() = default;
  /// The window is about to close, whoever closes it. It is still visible.
  virtual void windowWillClose() = 0;
};

/// The platform's windows.
class WindowServices {
 public:
  virtual ~WindowServices() = default;
  /// Makes a hidden window from the description with this name in the plug-in's bundle; nil when there is none.
  /// `owner` must outlive the window's open time.
  virtual Ref<Window> loadWindow(std::string_view windowDescription, WindowOwner& owner) = 0;
  /// Who is told what happens to the window; null: nobody. Not owned; forgotten once the window has closed. A nil
  /// window: nothing, here and below.
  virtual void setDelegate(const Ref<Window>& window, WindowDelegate* delegate) = 0;
  /// Whether new windows of this kind are placed stepwise beside each other.
  virtual void setShouldCascadeWindows(const Ref<Window>& window, bool cascade) = 0;
  /// The name under which the host remembers the window's frame.
  virtual void setWindowFrameAutosaveName(const Ref<Window>& window, std::string_view name) = 0;
  /// A property that controls are bound to has changed without the person's doing.
  virtual void didChangeValue(const Ref<Window>& window, std::string_view forKey) = 0;
};

}  // namespace pelmar
