#include "workstation/model/Windows.h"

#include <algorithm>
#include <utility>

namespace workstation {
namespace {

/// Where a window stands that nobody has placed yet.
constexpr pelmar::ScreenPoint firstPlace{100, 100};

}  // namespace

using pelmar::Ref;

void ScreenWindow::setFrameOrigin(pelmar::ScreenPoint origin) {
  frame_.x = origin.x;
  frame_.y = origin.y;
}

PaletteWindow::PaletteWindow(PaletteWindows& windows, WindowDescription description, pelmar::WindowOwner& owner)
    : windows_(&windows),
      description_(std::move(description)),
      owner_(&owner),
      autosaveName_(description_.frameAutosaveName) {
  setFrame({firstPlace.x, firstPlace.y, description_.width, description_.height});
}

void PaletteWindow::forgetPlugin() {
  owner_ = nullptr;
  delegate_ = nullptr;
  windows_ = nullptr;
  visible_ = false;
}

void PaletteWindow::setFrameOrigin(pelmar::ScreenPoint origin) {
  ScreenWindow::setFrameOrigin(origin);
  if (windows_ && visible_) windows_->moved();
}

void PaletteWindow::makeKeyAndOrderFront() {
  if (!windows_) return;
  visible_ = true;
  windows_->shown(shared_from_this());
}

void PaletteWindow::close() {
  if (!visible_ || closing_) return;
  // The delegate may let this window, its owner and itself go while it is told.
  const auto self = shared_from_this();
  closing_ = true;
  if (delegate_) delegate_->windowWillClose();
  closing_ = false;
  visible_ = false;
  delegate_ = nullptr;
  owner_ = nullptr;
  if (windows_) windows_->closed(self);
}

void PaletteWindows::forgetPlugin() {
  open_.clear();
  for (const auto& window : std::exchange(made_, {})) {
    if (const auto object = window.lock()) object->forgetPlugin();
  }
  descriptions_ = nullptr;
}

void PaletteWindows::shown(const std::shared_ptr<PaletteWindow>& window) {
  const bool opens = std::erase(open_, window) == 0;
  open_.push_back(window);
  if (opens && reports_) reports_->paletteOpened(commandStudy_);
  moved();
}

void PaletteWindows::moved() const {
  if (listeners_.paletteChanged) listeners_.paletteChanged();
}

void PaletteWindows::closed(const std::shared_ptr<PaletteWindow>& window) {
  std::erase(open_, window);
  if (reports_) reports_->paletteClosed();
  if (!window->frameAutosaveName().empty()) remembered_[window->frameAutosaveName()] = window->frame();
  moved();
}

Ref<pelmar::Window> PaletteWindows::loadWindow(std::string_view windowDescription, pelmar::WindowOwner& owner) {
  auto description = descriptions_ ? descriptions_(windowDescription) : std::nullopt;
  if (!description) return {};
  auto window = std::make_shared<PaletteWindow>(*this, *std::move(description), owner);
  std::erase_if(made_, [](const auto& made) { return made.expired(); });
  made_.push_back(window);
  return Ref<pelmar::Window>(window);
}

void PaletteWindows::setDelegate(const Ref<pelmar::Window>& window, pelmar::WindowDelegate* delegate) {
  if (const auto palette = ref_cast<PaletteWindow>(window).shared()) palette->setDelegate(delegate);
}

void PaletteWindows::setWindowFrameAutosaveName(const Ref<pelmar::Window>& window, std::string_view name) {
  const auto palette = ref_cast<PaletteWindow>(window).shared();
  if (!palette) return;
  palette->setAutosaveName(name);
  const auto frame = remembered_.find(name);
  if (frame != remembered_.end()) palette->setFrameOrigin({frame->second.x, frame->second.y});
}

void PaletteWindows::didChangeValue(const Ref<pelmar::Window>&, std::string_view forKey) {
  if (listeners_.paletteValueChanged) listeners_.paletteValueChanged(std::string(forKey));
}

}  // namespace workstation
