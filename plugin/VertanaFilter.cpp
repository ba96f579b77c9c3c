#include "plugin/VertanaFilter.h"

#include "plugin/VertanaWindowController.h"

namespace vertana {

using pelmar::Notification;
using pelmar::Ref;
using pelmar::Value;

VertanaFilter::VertanaFilter(pelmar::PelmarAPI& api) : PluginFilter(api) {}

VertanaFilter::~VertanaFilter() {
  VertanaFilter::dealloc();
  // A palette that is still open must not call a controller that is gone.
  try {
    if (windowController_) {
      windowController_->setPlugin(nullptr);
      windowController_->close();
    }
  } catch (...) {
  }
}

void VertanaFilter::observe(std::string_view notification, void (VertanaFilter::*handler)(const Notification&)) {
  api().defaultCenter().addObserver(this, notification, nullptr, [this, handler](const Notification& posted) {
    try {
      (this->*handler)(posted);
    } catch (...) {
    }
  });
}

void VertanaFilter::initPlugin() try {
  if (requirementsError()) return;
  observe(pelmar::PelmarROIChangeNotification, &VertanaFilter::PelmarROIChanged);
  observe(pelmar::PelmarRemoveROINotification, &VertanaFilter::PelmarROIRemoved);
  observe(pelmar::PelmarAddROINotification, &VertanaFilter::PelmarROIAdded);
  observe(pelmar::PelmarCloseViewerNotification, &VertanaFilter::PelmarCloseViewer);
  observe(pelmar::PelmarViewerControllerDidLoadImagesNotification, &VertanaFilter::PelmarViewerControllerDidLoadImages);
  observe(pelmar::PelmarDCMViewIndexChangedNotification, &VertanaFilter::PelmarDCMViewIndexChanged);
  observe(pelmar::PelmarViewerWillChangeNotification, &VertanaFilter::PelmarViewerWillChange);
  observe(pelmar::PelmarViewOriginChanged, &VertanaFilter::PelmarScaleOrOriginViewChanged);
  observe(pelmar::PelmarViewScaleChanged, &VertanaFilter::PelmarScaleOrOriginViewChanged);
  setDisplayLabels(true);
  setAdditionalVertebra(false);
} catch (...) {
}

void VertanaFilter::dealloc() try {
  api().defaultCenter().removeObserver(this);
  study_ = nullptr;
  openPolygonROI_ = nullptr;
  intervertebralPlanes_ = std::nullopt;
  savedDictionary_ = std::nullopt;
  PluginFilter::dealloc();
} catch (...) {
}

void VertanaFilter::setIsActive(bool isActive) {
  isActive_ = isActive;
  removeInputLengthROI();
  removeInputOpenPolygonROI();
}

void VertanaFilter::setWindowController(std::shared_ptr<VertanaWindowController> palette) {
  windowController_ = std::move(palette);
}

bool VertanaFilter::isEditingActive() const {
  if (workflow_ == -1) return false;
  return windowController_ && windowController_->window()->isVisible();
}

void VertanaFilter::settingDidChange(std::string_view key) {
  if (windowController_) windowController_->settingDidChange(key);
}

Value VertanaFilter::stateSnapshot() const try {
  Value planes;
  if (intervertebralPlanes_) {
    Value::Array records;
    for (const auto& plane : *intervertebralPlanes_) {
      records.push_back(Value::Dictionary{{"name", plane.name}, {"point", plane.point}, {"vector", plane.vector}});
    }
    planes = std::move(records);
  }
  const auto studyUID = study_->studyInstanceUID();
  return Value::Dictionary{{"isActive", isActive_},
                           {"isEditingActive", isEditingActive()},
                           {"displayLabels", displayLabels_},
                           {"additionalVertebra", additionalVertebra_},
                           {"previousTool", previousTool_},
                           {"previousROITool", previousROITool_},
                           {"workflow", workflow_},
                           {"drawMode", static_cast<std::int64_t>(drawMode_)},
                           {"anatomicalRegion", static_cast<std::int64_t>(anatomicalRegion_)},
                           {"study", studyUID ? Value(*studyUID) : Value()},
                           {"inputLengthROI", inputLengthROI()},
                           {"inputOpenPolygonROI", inputOpenPolygonROI()},
                           {"openPolygonROI", openPolygonROI_},
                           {"intervertebralPlanes", planes},
                           {"savedDictionary", savedDictionary_ ? Value(*savedDictionary_) : Value()}};
} catch (...) {
  return {};
}

Value VertanaFilter::valueForKey(std::string_view key) const try {
  if (key == "guessedAnatomicalRegion") return static_cast<std::int64_t>(guessedAnatomicalRegion());
  if (key == "intervertebralPlanesLabels") {
    const auto discs = currentIntervertebralPlanesLabels();
    return Value::Array(discs.begin(), discs.end());
  }
  return {};
} catch (...) {
  return {};
}

Value VertanaFilter::valueForObject(const Ref<pelmar::HostObject>& object, std::string_view key) const try {
  const auto slice = pelmar::ref_cast<pelmar::DCMPix>(object);
  if (key != "sliceName" || !slice || !intervertebralPlanes_) return {};
  const auto name = nameForSlice(slice, *intervertebralPlanes_);
  return name ? Value(*name) : Value();
} catch (...) {
  return {};
}

}  // namespace vertana
