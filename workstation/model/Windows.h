#pragma once

#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "host/Window.h"
#include "workstation/model/Seams.h"
#include "workstation/model/WindowDescription.h"

namespace workstation {

/// A window's place on the screen.
class ScreenWindow : public pelmar::Window {
 public:
  void setFrame(const pelmar::FrameRect& frame) { frame_ = frame; }

  pelmar::FrameRect frame() const override { return frame_; }
  void setFrameOrigin(pelmar::ScreenPoint origin) override;
  pelmar::ScreenPoint convertBaseToScreen(pelmar::WindowPoint point) const override {
    return {frame_.x + point.x, frame_.y + point.y};
  }

 private:
  pelmar::FrameRect frame_;
};

class PaletteWindows;

/// A window made from a plug-in's description.
class PaletteWindow final : public ScreenWindow, public std::enable_shared_from_this<PaletteWindow> {
 public:
  PaletteWindow(PaletteWindows& windows, WindowDescription description, pelmar::WindowOwner& owner);

  const WindowDescription& description() const { return description_; }
  /// Null once the window has closed.
  pelmar::WindowOwner* owner() const { return owner_; }
  void setDelegate(pelmar::WindowDelegate* delegate) { delegate_ = delegate; }
  void setAutosaveName(std::string_view name) { autosaveName_ = name; }
  /// The plug-in goes: nobody is told of anything any more.
  void forgetPlugin();

  void setFrameOrigin(pelmar::ScreenPoint origin) override;
  void makeKeyAndOrderFront() override;
  void close() override;
  bool isVisible() const override { return visible_; }
  std::string frameAutosaveName() const override { return autosaveName_; }

 private:
  PaletteWindows* windows_;
  WindowDescription description_;
  pelmar::WindowOwner* owner_;
  pelmar::WindowDelegate* delegate_ = nullptr;
  std::string autosaveName_;
  bool visible_ = false;
  bool closing_ = false;
};

/// Makes the plug-in's windows and knows which one is open.
class PaletteWindows final : public pelmar::WindowServices {
 public:
  using Descriptions = std::function<std::optional<WindowDescription>(std::string_view name)>;

  /// `reports`, told when a window opens and closes, may be null.
  PaletteWindows(const Listeners& listeners, StudyReports* reports) : listeners_(listeners), reports_(reports) {}

  void setDescriptions(Descriptions descriptions) { descriptions_ = std::move(descriptions); }
  /// The study of the viewer from which the person chose the plug-in's menu entry; windows that open belong to it.
  void setCommandStudy(const std::string& studyUid) { commandStudy_ = studyUid; }
  /// The window that was shown last and is still open; null when none is.
  std::shared_ptr<PaletteWindow> open() const { return open_.empty() ? nullptr : open_.back(); }
  /// Takes every window off the screen without telling the plug-in, which goes.
  void forgetPlugin();

  void shown(const std::shared_ptr<PaletteWindow>& window);
  void moved() const;
  void closed(const std::shared_ptr<PaletteWindow>& window);

  pelmar::Ref<pelmar::Window> loadWindow(std::string_view windowDescription, pelmar::WindowOwner& owner) override;
  void setDelegate(const pelmar::Ref<pelmar::Window>& window, pelmar::WindowDelegate* delegate) override;
  /// Nothing: there is only ever one of a kind.
  void setShouldCascadeWindows(const pelmar::Ref<pelmar::Window>&, bool) override {}
  void setWindowFrameAutosaveName(const pelmar::Ref<pelmar::Window>& window, std::string_view name) override;
  void didChangeValue(const pelmar::Ref<pelmar::Window>& window, std::string_view forKey) override;

 private:
  const Listeners& listeners_;
  StudyReports* reports_;
  std::string commandStudy_;
  Descriptions descriptions_;
  std::vector<std::shared_ptr<PaletteWindow>> open_;                  ///< in the order shown
  std::vector<std::weak_ptr<PaletteWindow>> made_;                    ///< all that the plug-in may still hold
  std::map<std::string, pelmar::FrameRect, std::less<>> remembered_;  ///< by autosave name, during the run
};

}  // namespace workstation
