#include "cli/play/Dump.h"

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>

#include "host/Point3D.h"
#include "workstation/model/Points.h"

namespace cli {

using nlohmann::ordered_json;
using pelmar::Value;
using workstation::Workstation;

namespace {

ordered_json jsonOf(const pelmar::FrameRect& rect) { return {rect.x, rect.y, rect.width, rect.height}; }
ordered_json jsonOf(pelmar::PixelPoint point) { return {point.x, point.y}; }

template <class T>
ordered_json jsonOf(const std::optional<T>& value) {
  return value ? ordered_json(*value) : ordered_json(nullptr);
}

/// An empty list is [], never null.
template <class T>
ordered_json listOf(const std::vector<T>& values) {
  auto list = ordered_json::array();
  for (const auto& value : values) list.push_back(value);
  return list;
}

// --- annotations -----------------------------------------------------------------------------------------------------

/// Where every annotation stands that a viewer shows, by id.
using Places = std::map<int, std::vector<int>>;

ordered_json jsonOf(const pelmar::ROI& roi, int id, const std::vector<int>& slices) {
  auto points = ordered_json::array();
  const auto list = roi.points();
  for (std::size_t index = 0; index < list->count(); ++index)
    points.push_back(jsonOf(list->objectAtIndex(index).point()));
  auto tags = roi.stringTags()->allObjects();
  std::sort(tags.begin(), tags.end());
  const auto rect = roi.rect();
  const auto colour = roi.NSColor();
  return {{"id", id},
          {"type", roi.type()},
          {"mode", roi.ROImode()},
          {"name", roi.name()},
          {"points", std::move(points)},
          {"rect", {rect.origin.x, rect.origin.y, rect.size.width, rect.size.height}},
          {"tags", listOf(tags)},
          {"colour", {colour.red, colour.green, colour.blue, colour.alpha}},
          {"thickness", static_cast<double>(roi.thickness())},
          {"selectable", roi.selectable()},
          {"textualData", roi.displayTextualData()},
          {"aliased", roi.isAliased()},
          {"originalIndex", roi.originalIndexForAlias()},
          {"inKeyImages", !roi.dontDisplayInKeyImagesWindow()},
          {"savesWindow", !roi.dontSavePreferredWLWW()},
          {"slices", listOf(slices)}};
}

// --- the plug-in -----------------------------------------------------------------------------------------------------

/// Writes property values; points become [x, y, z], annotations whole objects.
class ValueWriter {
 public:
  ValueWriter(const Workstation& workstation, const Places& places) : workstation_(workstation), places_(places) {}

  ordered_json operator()(const Value& value) const {
    if (value.isBool()) return value.boolValue();
    if (value.isInteger()) return static_cast<std::int64_t>(value.doubleValue());
    if (value.isReal()) return value.doubleValue();
    if (const auto* text = value.string()) return *text;
    if (const auto* array = value.array()) {
      auto json = ordered_json::array();
      for (const auto& element : *array) json.push_back((*this)(element));
      return json;
    }
    if (const auto* dictionary = value.dictionary()) {
      auto json = ordered_json::object();
      for (const auto& [key, element] : *dictionary) json[key] = (*this)(element);
      return json;
    }
    return object(value.object());
  }

 private:
  ordered_json object(const pelmar::Ref<pelmar::HostObject>& held) const {
    if (const auto point = pelmar::ref_cast<pelmar::Point3D>(held)) return {point->x(), point->y(), point->z()};
    const auto roi = pelmar::ref_cast<pelmar::ROI>(held);
    const auto id = workstation_.annotationId(held);
    if (!roi || !id) return nullptr;
    const auto place = places_.find(*id);
    return jsonOf(*roi, *id, place == places_.end() ? std::vector<int>() : place->second);
  }

  const Workstation& workstation_;
  const Places& places_;
};

constexpr const char* pluginKeys[] = {"isActive",         "isEditingActive",
                                      "displayLabels",    "additionalVertebra",
                                      "previousTool",     "previousROITool",
                                      "workflow",         "drawMode",
                                      "anatomicalRegion", "study",
                                      "inputLengthROI",   "inputOpenPolygonROI",
                                      "openPolygonROI",   "intervertebralPlanes",
                                      "savedDictionary"};

ordered_json pluginOf(const Value& state, const ValueWriter& write) {
  if (!state.dictionary()) return nullptr;
  auto json = ordered_json::object();
  for (const char* key : pluginKeys) {
    const auto entry = state.dictionary()->find(std::string_view(key));
    json[key] = entry == state.dictionary()->end() ? ordered_json(nullptr) : write(entry->second);
  }
  return json;
}

// --- what the person sees --------------------------------------------------------------------------------------------

ordered_json paletteOf(const Workstation& workstation) {
  const auto palette = workstation.palette();
  if (!palette) return nullptr;
  return {{"visible", palette->visible}, {"frame", jsonOf(palette->frame)}};
}

ordered_json alertsOf(const std::vector<workstation::Alert>& alerts) {
  auto json = ordered_json::array();
  for (const auto& alert : alerts) {
    const bool modal = alert.kind == workstation::Alert::Kind::modal;
    const std::string below = alert.informativeText.empty() ? "" : "\n" + alert.informativeText;
    json.push_back({{"kind", modal ? "modal" : "critical"},
                    {"title", alert.title},
                    {"message", alert.message + below},
                    {"buttons", listOf(alert.buttons)}});
  }
  return json;
}

ordered_json storedOf(const workstation::StoredStatus& status, const ValueWriter& write) {
  if (status.objects == 0 && !status.held && !status.unsaved) return nullptr;
  workstation::PatientPointClass points;
  const bool counts = !status.counting.empty();
  const auto state = counts && status.state ? write(valueFromLabelling(*status.state, points)) : ordered_json(nullptr);
  return {{"objects", status.objects},
          {"counting", counts ? ordered_json(status.counting) : ordered_json(nullptr)},
          {"state", state},
          {"held", status.held},
          {"unsaved", status.unsaved}};
}

ordered_json viewerOf(const Workstation& workstation, const workstation::ViewerInfo& viewer) {
  auto rois = ordered_json::array();
  for (const auto& each : workstation.annotations(viewer.number))
    rois.push_back(jsonOf(*each.roi, each.id, each.slices));
  return {{"viewer", viewer.number},
          {"series", jsonOf(workstation.series(viewer.stack)->number)},
          {"stack", viewer.stack.stack},
          {"study", viewer.stack.studyUid},
          {"orientation", viewer.orientationCode},
          {"slice", viewer.slice},
          {"slices", viewer.slices},
          {"tool", viewer.tool},
          {"roiTool", viewer.roiTool},
          {"front", viewer.front},
          {"frame", jsonOf(viewer.frame)},
          {"scale", viewer.scale},
          {"origin", {viewer.origin.x, viewer.origin.y}},
          {"rotation", viewer.rotationDegrees},
          {"flips", {viewer.flippedHorizontally, viewer.flippedVertically}},
          {"rois", std::move(rois)}};
}

Places placesOf(const Workstation& workstation) {
  Places places;
  for (const auto& viewer : workstation.viewers()) {
    for (const auto& each : workstation.annotations(viewer.number)) places.emplace(each.id, each.slices);
  }
  return places;
}

}  // namespace

std::string dumpLine(const Workstation& workstation, const workstation::LabellingStore& store,
                     const DumpHeader& header) {
  const auto places = placesOf(workstation);
  const ValueWriter write(workstation, places);
  auto stored = ordered_json::object();
  for (const auto& study : header.studies) stored[study] = storedOf(store.status(study), write);
  auto viewers = ordered_json::array();
  for (const auto& viewer : workstation.viewers()) viewers.push_back(viewerOf(workstation, viewer));
  const ordered_json dump{{"name", jsonOf(header.name)},
                          {"plugin", pluginOf(workstation.pluginState(), write)},
                          {"palette", paletteOf(workstation)},
                          {"alerts", alertsOf(header.alerts)},
                          {"openedAddresses", listOf(header.openedAddresses)},
                          {"defaults", write(workstation.userDefaults())},
                          {"stored", std::move(stored)},
                          {"viewers", std::move(viewers)}};
  return dump.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

}  // namespace cli
