#include "workstation/model/Workstation.h"

#include <algorithm>

#include "workstation/model/Interior.h"

namespace workstation {

std::optional<pelmar::Capability> capabilityNamed(std::string_view name) {
  using pelmar::Capability;
  if (name == "bodyPartExamined") return Capability::DCMPixBodyPartExamined;
  if (name == "stringTags") return Capability::ROIStringTags;
  if (name == "dontDisplayInKeyImagesWindow") return Capability::ROIDontDisplayInKeyImagesWindow;
  if (name == "resamplePoints") return Capability::ROIResamplePoints;
  if (name == "Point3DCoding") return Capability::Point3DKeyedArchiving;
  if (name == "ROIToolTag") return Capability::ViewerControllerROIToolTag;
  return std::nullopt;
}

Workstation::Workstation(Options options) : interior_(std::make_unique<Interior>(std::move(options))) {}

Workstation::~Workstation() { interior_->letGoOfPlugin(); }

pelmar::PelmarAPI& Workstation::api() { return interior_->host; }

EventLoop& Workstation::events() { return interior_->host.events(); }

void Workstation::setPersonLog(PersonLog* log) { interior_->host.setLog(log); }

// --- the plug-in ---------------------------------------------------------------------------------------------------

void Workstation::Interior::letGoOfPlugin() {
  if (!plugin) return;
  plugin->dealloc();
  // What the plug-in left with the host has code in its module, which may be unloaded with the handle.
  host.notifications().removeAll();
  host.palettes().forgetPlugin();
  drawn.reset();
  plugin.reset();
}

void Workstation::setPlugin(std::unique_ptr<PluginHandle> plugin) {
  interior_->run([&] {
    interior_->letGoOfPlugin();
    interior_->plugin = std::move(plugin);
    if (!interior_->plugin) return;
    interior_->host.palettes().setDescriptions(
        [handle = interior_->plugin.get()](std::string_view name) { return handle->windowDescription(name); });
    interior_->plugin->filter().initPlugin();
  });
}

std::vector<std::string> Workstation::menuEntries() const {
  return interior_->plugin ? interior_->plugin->menuEntries() : std::vector<std::string>();
}

Outcome Workstation::chooseMenu(int viewer, const std::string& title) {
  return interior_->run([&]() -> Outcome {
    const auto chosen = interior_->find(viewer);
    if (!chosen) return interior_->notOpen(viewer);
    if (!interior_->plugin) {
      return Outcome::refused("The menu entry \"" + title + "\" cannot be chosen: no plug-in is loaded.");
    }
    interior_->host.bringToFront(chosen);
    interior_->host.palettes().setCommandStudy(chosen->stackId().studyUid);
    pelmar::PluginFilter& filter = interior_->plugin->filter();
    filter.setViewerController(pelmar::Ref<pelmar::ViewerController>(chosen));
    filter.filterImage(title);
    interior_->host.log().menuChosen(viewer, title);
    return Outcome::done();
  });
}

pelmar::Value Workstation::pluginState() const {
  return interior_->plugin ? interior_->plugin->filter().stateSnapshot() : pelmar::Value();
}

pelmar::Value Workstation::pluginAnswer(std::string_view question) const {
  return interior_->plugin ? interior_->plugin->filter().valueForKey(question) : pelmar::Value();
}

// --- studies -------------------------------------------------------------------------------------------------------

std::vector<std::string> Workstation::addImages(std::vector<ImageRecord> images) {
  return interior_->run([&] { return interior_->host.addImages(std::move(images)); });
}

Outcome Workstation::replaceStudy(std::vector<ImageRecord> images) {
  return interior_->run([&]() -> Outcome {
    std::vector<Study> found = groupIntoStudies(std::move(images));
    if (found.size() != 1 || !study(found.front().uid))
      return Outcome::refused("A study is only replaced by images of the same one study.");
    const std::string uid = found.front().uid;
    const auto open = viewers();
    if (std::any_of(open.begin(), open.end(), [&](const ViewerInfo& viewer) { return viewer.stack.studyUid == uid; })) {
      return Outcome::refused("The images of the study \"" + uid +
                              "\" cannot be taken anew while a viewer shows it: close its viewers first.");
    }
    if (interior_->drawn && interior_->drawn->stack.studyUid == uid) interior_->followDrawnStack(found.front());
    interior_->host.replaceStudy(std::move(found.front()));
    return Outcome::done();
  });
}

const Study* Workstation::study(const std::string& studyUid) const {
  const auto object = interior_->host.study(studyUid);
  return object ? &object->data() : nullptr;
}

std::vector<StackId> Workstation::stacks(const std::string& studyUid) const {
  std::vector<StackId> result;
  const Study* found = study(studyUid);
  if (!found) return result;
  for (std::size_t series = 0; series < found->series.size(); ++series) {
    for (std::size_t stack = 0; stack < found->series[series].stacks.size(); ++stack) {
      result.push_back({studyUid, series, stack});
    }
  }
  return result;
}

std::optional<StackId> Workstation::findStack(const std::string& studyUid, int seriesNumber, std::size_t stack) const {
  const Study* found = study(studyUid);
  if (!found) return std::nullopt;
  for (std::size_t series = 0; series < found->series.size(); ++series) {
    if (found->series[series].number != seriesNumber) continue;
    if (stack >= found->series[series].stacks.size()) return std::nullopt;
    return StackId{studyUid, series, stack};
  }
  return std::nullopt;
}

const Series* Workstation::series(const StackId& id) const {
  const Study* found = study(id.studyUid);
  return found && id.series < found->series.size() ? &found->series[id.series] : nullptr;
}

const Stack* Workstation::stack(const StackId& id) const {
  const Series* found = series(id);
  return found && id.stack < found->stacks.size() ? &found->stacks[id.stack] : nullptr;
}

// --- the plug-in's window ------------------------------------------------------------------------------------------

std::optional<PaletteInfo> Workstation::palette() const {
  const auto window = interior_->host.palettes().open();
  if (!window) return std::nullopt;
  return PaletteInfo{window->isVisible(), window->frame(), window->frameAutosaveName(), window->description()};
}

Outcome Workstation::pressPalette(const std::string& action) {
  return interior_->usePalette([&](PaletteWindow& window) -> Outcome {
    const std::string whole = !action.empty() && action.back() == ':' ? action : action + ":";
    if (!window.owner()->performAction(whole)) {
      return Outcome::refused("The palette has no control with the action \"" + action + "\".");
    }
    interior_->host.log().palettePressed(whole);
    return Outcome::done();
  });
}

Outcome Workstation::closePalette() {
  return interior_->usePalette([&](PaletteWindow& window) {
    window.close();
    interior_->host.log().paletteClosed();
    return Outcome::done();
  });
}

Outcome Workstation::setPaletteValue(const std::string& key, const pelmar::Value& value) {
  return interior_->usePalette([&](PaletteWindow& window) -> Outcome {
    if (!window.owner()->setValue(value, key)) {
      return Outcome::refused("The palette has no setting \"" + key + "\" that takes this value.");
    }
    interior_->host.log().paletteValueSet(key, value);
    return Outcome::done();
  });
}

pelmar::Value Workstation::paletteValue(const std::string& key) const {
  const auto window = interior_->host.palettes().open();
  return window && window->owner() ? window->owner()->valueForKey(key) : pelmar::Value();
}

Outcome Workstation::movePalette(pelmar::ScreenPoint origin) {
  return interior_->withPalette([&](PaletteWindow& window) {
    window.setFrameOrigin(origin);
    return Outcome::done();
  });
}

// --- what was shown to the person ----------------------------------------------------------------------------------

std::vector<Alert> Workstation::takeAlerts() { return interior_->host.alerts().take(); }

std::vector<std::string> Workstation::takeOpenedAddresses() { return interior_->host.desktop().takeOpenedAddresses(); }

pelmar::Value::Dictionary Workstation::userDefaults() const { return interior_->host.defaults().all(); }

void Workstation::quit() {
  while (const auto window = interior_->host.palettes().open()) {
    interior_->run([&] { window->close(); });
    // A plug-in that shows its window again while it closes must not keep the program from ending.
    if (interior_->host.palettes().open() == window) break;
  }
  while (!interior_->host.viewers().empty()) {
    const auto viewer = interior_->host.viewers().front();
    interior_->run([&] { interior_->host.closeViewer(viewer); });
  }
  if (StudyReports* reports = interior_->host.reports()) reports->quitting();
}

}  // namespace workstation
