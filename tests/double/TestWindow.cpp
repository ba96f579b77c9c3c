#include "tests/double/TestWindow.h"

namespace testhost {

using pelmar::Ref;
using pelmar::Window;

void TestWindow::setFrameOrigin(pelmar::ScreenPoint origin) {
  record(log, name + ".setFrameOrigin(" + text(origin.x) + "," + text(origin.y) + ")");
  frameRect.x = origin.x;
  frameRect.y = origin.y;
}

void TestWindow::makeKeyAndOrderFront() {
  record(log, name + ".makeKeyAndOrderFront()");
  visible = true;
}

void TestWindow::close() {
  record(log, name + ".close()");
  if (whileClosing) whileClosing();
  if (!visible) return;
  if (delegate) delegate->windowWillClose();
  visible = false;
  delegate = nullptr;
  owner = nullptr;
  record(log, name + " closed");
}

Ref<Window> TestWindowServices::loadWindow(std::string_view windowDescription, pelmar::WindowOwner& owner) {
  log_.add("loadWindow(" + std::string(windowDescription) + ")");
  const auto description = descriptions.find(windowDescription);
  if (description == descriptions.end()) return {};
  const auto window = pelmar::makeRef<TestWindow>(&log_, "palette");
  window->frameRect = description->second;
  window->owner = &owner;
  window->autosaveName = autosaveNameOfDescriptions;
  loaded.push_back(window);
  return window;
}

void TestWindowServices::setDelegate(const Ref<Window>& window, pelmar::WindowDelegate* delegate) {
  if (const auto own = pelmar::ref_cast<TestWindow>(window)) own->delegate = delegate;
}

void TestWindowServices::setShouldCascadeWindows(const Ref<Window>& window, bool cascade) {
  if (const auto own = pelmar::ref_cast<TestWindow>(window)) own->cascades = cascade;
}

void TestWindowServices::setWindowFrameAutosaveName(const Ref<Window>& window, std::string_view name) {
  if (const auto own = pelmar::ref_cast<TestWindow>(window)) own->rememberedAs = name;
}

void TestWindowServices::didChangeValue(const Ref<Window>& window, std::string_view forKey) {
  if (const auto own = pelmar::ref_cast<TestWindow>(window)) own->changedValues.emplace_back(forKey);
}

}  // namespace testhost
