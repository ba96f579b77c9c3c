#include "cli/Labelling.h"

#include <map>

#include "cli/VerticalSlice.h"
#include "host/PelmarAPI.h"

namespace cli {

using pelmar::PixelPoint;
using pelmar::Value;
using workstation::Workstation;

namespace {

constexpr std::string_view axialLabelTag = "VertanaFilterAxialLabel";

Value entry(const Value& value, std::string_view key) {
  const auto* dictionary = value.dictionary();
  if (!dictionary) return {};
  const auto found = dictionary->find(key);
  return found == dictionary->end() ? Value() : found->second;
}

std::array<double, 3> coordinates(const Value& value) {
  const auto point = pelmar::ref_cast<pelmar::Point3D>(value.object());
  return {point->x(), point->y(), point->z()};
}

std::vector<LabelledPlane> planesFrom(const Value& state) {
  std::vector<LabelledPlane> planes;
  const auto records = entry(state, "intervertebralPlanes");
  if (!records.array()) return planes;
  for (const auto& record : *records.array()) {
    const auto name = entry(record, "name");
    planes.push_back({name.string() ? *name.string() : "", coordinates(entry(record, "point")),
                      coordinates(entry(record, "vector"))});
  }
  return planes;
}

std::vector<PixelPoint> curveFrom(const Value& state) {
  std::vector<PixelPoint> curve;
  const auto roi = pelmar::ref_cast<pelmar::ROI>(entry(state, "openPolygonROI").object());
  const auto points = roi->points();
  for (std::size_t i = 0; i < points->count(); ++i) curve.push_back(points->objectAtIndex(i).point());
  return curve;
}

bool isAxial(const workstation::ViewerInfo& viewer) {
  return viewer.orientationCode == 4 || viewer.orientationCode == 5;
}

/// A person sees the levels come while scrolling; the smallest change of zoom names all slices of a viewer at once.
Expected<bool> lookAtAxialSlices(Workstation& workstation) {
  for (const auto& viewer : workstation.viewers()) {
    if (!isAxial(viewer)) continue;
    if (const auto outcome = workstation.zoom(viewer.number, viewer.scale); !outcome) {
      return Failure{ExitNotAllowed, *outcome.problem};
    }
  }
  return true;
}

/// The level of each slice of a viewer; slices without one are absent.
std::map<int, std::string> levelsOfSlices(const Workstation& workstation, int viewer) {
  std::map<int, std::string> levels;
  for (const auto& annotation : workstation.annotations(viewer)) {
    if (!annotation.roi->stringTags()->containsObject(axialLabelTag)) continue;
    for (const int slice : annotation.slices) levels.try_emplace(slice, annotation.roi->name());
  }
  return levels;
}

std::vector<LabelledSlice> axialSlices(const Workstation& workstation, const std::string& frameOfReference) {
  std::vector<LabelledSlice> slices;
  for (const auto& viewer : workstation.viewers()) {
    if (!isAxial(viewer)) continue;
    const auto levels = levelsOfSlices(workstation, viewer.number);
    for (int i = 0; i < viewer.slices; ++i) {
      const auto level = levels.find(i);
      const auto* record = workstation.sliceRecord(viewer.number, i);
      slices.push_back({workstation.series(viewer.stack)->number, viewer.stack.stack, i, record->sopInstanceUid,
                        record->frame, level == levels.end() ? std::nullopt : std::optional(level->second),
                        record->frameOfReferenceUid == frameOfReference});
    }
  }
  return slices;
}

/// The settings of the palette, set as a person would.
Expected<bool> applySettings(Workstation& workstation, const LabelArguments& arguments) {
  std::vector<std::pair<std::string, Value>> settings;
  if (arguments.region) settings.emplace_back("anatomicalRegion", *arguments.region);
  settings.emplace_back("additionalVertebra", arguments.extraVertebra);
  settings.emplace_back("drawMode", arguments.polygon ? 1 : 0);
  for (const auto& [key, value] : settings) {
    if (const auto outcome = workstation.setPaletteValue(key, value); !outcome) {
      return Failure{ExitNotAllowed, *outcome.problem};
    }
  }
  return true;
}

std::optional<Failure> checkPointCount(const LabelArguments& arguments, const Value& discNames, const Value& state) {
  const auto discs = discNames.array() ? discNames.array()->size() : 0;
  if (!arguments.polygon || arguments.points.size() <= discs) return std::nullopt;
  return Failure{ExitNotAllowed, "--polygon has " + std::to_string(arguments.points.size()) + " points, but the " +
                                     regionName(entry(state, "anatomicalRegion").intValue()) + " region has " +
                                     std::to_string(discs) + " discs: give at most one point a disc."};
}

Expected<std::vector<PixelPoint>> draw(Workstation& workstation, int viewer, int slice,
                                       const LabelArguments& arguments) {
  const auto drawn = arguments.polygon ? workstation.drawPolygon(viewer, slice, arguments.points)
                                       : workstation.drawLine(viewer, slice, arguments.points[0], arguments.points[1]);
  if (!drawn) return Failure{ExitNotAllowed, drawn.problem};
  auto curve = curveFrom(workstation.pluginState());
  if (curve.empty()) {
    return Failure{ExitNotAllowed, std::string(arguments.polygon ? "--polygon" : "--line") +
                                       " was not taken as a spine: draw at least 7 cm along it."};
  }
  return curve;
}

}  // namespace

Expected<Labelling> labelStudy(Workstation& workstation, const std::string& studyUid, const LabelArguments& arguments) {
  const auto opened = workstation.openStudy(studyUid);
  if (!opened) return Failure{ExitNotAllowed, opened.problem};
  auto vertical = findVerticalSlice(workstation, arguments);
  if (!vertical) return vertical.failure;
  if (const auto problem = checkPoints(*vertical, arguments)) return *problem;

  if (const auto outcome = workstation.chooseMenu(vertical->viewer, "Labels"); !outcome) {
    return Failure{ExitNotAllowed, *outcome.problem};
  }
  for (const auto& alert : workstation.takeAlerts()) {
    return Failure{ExitNotAllowed, "The plug-in refused the study: " + alert.message};
  }
  if (const auto set = applySettings(workstation, arguments); !set) return set.failure;
  if (const auto problem = checkPointCount(arguments, workstation.pluginAnswer("intervertebralPlanesLabels"),
                                           workstation.pluginState())) {
    return *problem;
  }
  auto curve = draw(workstation, vertical->viewer, vertical->slice, arguments);
  if (!curve) return curve.failure;

  const auto state = workstation.pluginState();
  Labelling labelling;
  labelling.studyUid = studyUid;
  labelling.region = entry(state, "anatomicalRegion").intValue();
  labelling.additionalVertebra = entry(state, "additionalVertebra").boolValue();
  labelling.verticalSeries = vertical->series;
  labelling.verticalStack = vertical->stack;
  labelling.verticalSlice = vertical->slice;
  labelling.verticalSlices = vertical->slices;
  labelling.curve = std::move(*curve);
  if (const auto looked = lookAtAxialSlices(workstation); !looked) return looked.failure;
  if (const auto outcome = workstation.closePalette(); !outcome) return Failure{ExitNotAllowed, *outcome.problem};
  labelling.planes = planesFrom(workstation.pluginState());
  labelling.slices = axialSlices(workstation, vertical->frameOfReference);
  return labelling;
}

}  // namespace cli
