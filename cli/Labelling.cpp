#include "cli/Labelling.h"

#include <map>

#include "cli/Console.h"
#include "cli/PluginFacts.h"
#include "cli/VerticalSlice.h"
#include "host/PelmarAPI.h"

namespace cli {

using pelmar::PixelPoint;
using pelmar::Value;
using workstation::Workstation;

namespace {

constexpr std::string_view axialLabelTag = "VertanaFilterAxialLabel";

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

void warnOfOtherFrames(const Labelling& labelling, const std::string& title) {
  for (const auto& slice : labelling.slices) {
    if (slice.sameFrameOfReference) continue;
    printMessage(title +
                 " has axial slices in another frame of reference than the drawing: their levels are not sure.");
    return;
  }
}

Expected<Labelling> labelStudy(StudySession& session, const std::string& studyUid, const LabelArguments& arguments) {
  auto& workstation = session.workstation();
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

Expected<Labelling> labelAndQuit(StudySession& session, const std::string& studyUid, const LabelArguments& arguments) {
  auto labelling = labelStudy(session, studyUid, arguments);
  if (!labelling) {
    session.printNotices();
    return labelling.failure;
  }
  session.workstation().quit();  // a labelling that could not be stored yet is tried once more
  const auto status = session.store().status(studyUid);
  session.printNotices(status.problem);
  if (status.unsaved) return Failure{ExitNotAllowed, "The labelling could not be stored: " + status.problem};
  return labelling;
}

}  // namespace cli
