#include "plugin/VertanaWindowController.h"

#include "plugin/VertanaFilter.h"

namespace vertana {

using pelmar::Ref;
using pelmar::Value;
using pelmar::Window;

namespace {

constexpr std::string_view manualAddress = "https://vertana.example/manual/";

}  // namespace

Ref<Window> VertanaWindowController::window() {
  if (!loaded_) {
    loaded_ = true;
    window_ = api_.windowServices().loadWindow("VertanaWindowController", *this);
    if (window_) windowDidLoad();
  }
  return window_;
}

void VertanaWindowController::windowDidLoad() {
  auto& services = api_.windowServices();
  services.setDelegate(window_, this);
  services.setShouldCascadeWindows(window_, false);
  services.setWindowFrameAutosaveName(window_, window_->frameAutosaveName());
}

void VertanaWindowController::close() { window_->close(); }

void VertanaWindowController::stopWorkFlow() {
  if (plugin_) plugin_->stopWorkflow();
  close();
}

void VertanaWindowController::reset() {
  if (plugin_) plugin_->reset();
}

void VertanaWindowController::openHelp() { api_.application().openURL(manualAddress); }

void VertanaWindowController::windowWillClose() {
  if (!plugin_) return;
  const auto self = shared_from_this();
  // Whatever fails, the window goes and the palette with it; the next event stops the workflow for good.
  try {
    plugin_->stopWorkflow();
  } catch (...) {
  }
  if (plugin_->windowController() == self) plugin_->setWindowController(nullptr);
}

bool VertanaWindowController::performAction(std::string_view action) try {
  const auto self = shared_from_this();  // the action may close the window and so let the palette go
  if (action == "stopWorkFlow:") {
    stopWorkFlow();
  } else if (action == "reset:") {
    reset();
  } else if (action == "openHelp:") {
    openHelp();
  } else {
    return false;
  }
  return true;
} catch (...) {
  return true;  // only an action that it knows can fail
}

Value VertanaWindowController::valueForKey(std::string_view key) const try {
  if (!plugin_) return {};
  if (key == "anatomicalRegion") return static_cast<std::int64_t>(plugin_->anatomicalRegion());
  if (key == "drawMode") return static_cast<std::int64_t>(plugin_->drawMode());
  if (key == "displayLabels") return plugin_->displayLabels();
  if (key == "additionalVertebra") return plugin_->additionalVertebra();
  return {};
} catch (...) {
  return {};
}

bool VertanaWindowController::setValue(const Value& value, std::string_view forKey) try {
  if (!plugin_) return false;
  const auto self = shared_from_this();
  if (forKey == "anatomicalRegion") {
    plugin_->setAnatomicalRegion(value.intValue());
  } else if (forKey == "drawMode") {
    plugin_->setDrawMode(static_cast<unsigned long>(static_cast<long>(value.intValue())));
  } else if (forKey == "displayLabels") {
    plugin_->setDisplayLabels(value.boolValue());
  } else if (forKey == "additionalVertebra") {
    plugin_->setAdditionalVertebra(value.boolValue());
  } else {
    return false;
  }
  return true;
} catch (...) {
  return true;  // only a property that it knows can fail
}

void VertanaWindowController::settingDidChange(std::string_view key) {
  if (window_) api_.windowServices().didChangeValue(window_, key);
}

}  // namespace vertana
