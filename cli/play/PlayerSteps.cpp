// The steps that act on viewers, annotations and the palette.
#include <algorithm>

#include "cli/Console.h"
#include "cli/play/Player.h"
#include "workstation/script/StepWords.h"

namespace cli {

using pelmar::Value;
using workstation::Outcome;

namespace {

std::optional<Failure> failed(const Outcome& outcome) {
  if (outcome) return std::nullopt;
  return Failure{ExitNotAllowed, *outcome.problem};
}

template <class T>
std::optional<Failure> failed(const workstation::Result<T>& result) {
  if (result) return std::nullopt;
  return Failure{ExitNotAllowed, result.problem};
}

/// Negative numbers name no stack.
std::optional<workstation::StackId> findStack(const workstation::Workstation& workstation, const std::string& study,
                                              int series, int stack) {
  if (stack < 0) return std::nullopt;
  return workstation.findStack(study, series, static_cast<std::size_t>(stack));
}

Failure noStack(const std::string& study, int series, int stack) {
  return {ExitNotAllowed, "The study " + study + " has no stack " + std::to_string(stack) +
                              " in a series with the number " + std::to_string(series) + "."};
}

}  // namespace

// --- studies and viewers ---------------------------------------------------------------------------------------------

void Player::noteOpened(const std::string& studyUid) {
  if (std::find(studies_.begin(), studies_.end(), studyUid) == studies_.end()) studies_.push_back(studyUid);
}

Expected<std::vector<std::string>> Player::studiesOf(const std::optional<std::string>& path,
                                                     const std::optional<std::string>& study) {
  if (study && workstation().study(*study)) return std::vector{*study};
  if (study) {
    auto images = process_->studies->images(*study);
    if (images.empty()) {
      return Failure{ExitNotAllowed,
                     "The study " + *study + " is not in the database, nor in a folder opened before: give its path."};
    }
    return workstation().addImages(std::move(images));
  }
  auto images = process_->studies->addPath(*path);
  if (!images) return images.failure;
  return workstation().addImages(std::move(*images));
}

std::optional<Failure> Player::runStep(const OpenStudyStep& step) {
  const auto studies = studiesOf(step.path, step.study);
  if (!studies) return studies.failure;
  for (const auto& study : *studies) {
    noteOpened(study);
    if (auto failure = failed(workstation().openStudy(study))) return failure;
  }
  return std::nullopt;
}

std::optional<Failure> Player::runStep(const OpenViewerStep& step) {
  const auto studies = studiesOf(step.path, step.study);
  if (!studies) return studies.failure;
  if (studies->size() > 1) {
    return Failure{ExitNotAllowed, *step.path + " holds " + std::to_string(studies->size()) +
                                       " studies: open it with \"openStudy\", then name one as \"study\"."};
  }
  const auto& study = studies->front();
  const auto stack = findStack(workstation(), study, step.series, step.stack);
  if (!stack) return noStack(study, step.series, step.stack);
  noteOpened(study);
  return failed(workstation().openViewer(*stack));
}

std::optional<Failure> Player::runStep(const CloseViewerStep& step) {
  return failed(workstation().closeViewer(step.viewer));
}

std::optional<Failure> Player::runStep(const SwitchSeriesStep& step) {
  const auto viewer = workstation().viewer(step.viewer);
  // Let the workstation say that there is no such viewer.
  if (!viewer) return failed(workstation().bringToFront(step.viewer));
  const auto& study = viewer->stack.studyUid;
  const auto stack = findStack(workstation(), study, step.series, step.stack);
  if (!stack) return noStack(study, step.series, step.stack);
  return failed(workstation().switchSeries(step.viewer, *stack));
}

std::optional<Failure> Player::runStep(const FrontStep& step) {
  return failed(workstation().bringToFront(step.viewer));
}

std::optional<Failure> Player::runStep(const MenuStep& step) {
  if (auto failure = failed(workstation().chooseMenu(step.viewer, step.title))) return failure;
  const auto entries = workstation().menuEntries();
  if (std::find(entries.begin(), entries.end(), step.title) != entries.end()) return std::nullopt;
  // A rule of the plug-in, which a script must be able to show; by hand nobody can choose it.
  std::string known;
  for (const auto& entry : entries) known += (known.empty() ? "\"" : ", \"") + entry + '"';
  printMessage("The plug-in has no menu entry \"" + step.title + "\", but " + known + ": it was called all the same.");
  return std::nullopt;
}

std::optional<Failure> Player::runStep(const RotateStep& step) {
  return failed(workstation().rotate(step.viewer, step.degrees));
}

std::optional<Failure> Player::runStep(const FlipStep& step) {
  return failed(workstation().flip(step.viewer, step.axis));
}

std::optional<Failure> Player::runStep(const ScrollStep& step) {
  return failed(workstation().scroll(step.viewer, step.slice));
}

std::optional<Failure> Player::runStep(const ZoomStep& step) {
  return failed(workstation().zoom(step.viewer, step.scale));
}

std::optional<Failure> Player::runStep(const PanStep& step) {
  return failed(workstation().pan(step.viewer, step.by.x, step.by.y));
}

// --- annotations -----------------------------------------------------------------------------------------------------

std::optional<Failure> Player::runStep(const DrawStep& step) {
  const auto viewer = workstation().viewer(step.viewer);
  const int slice = step.slice.value_or(viewer ? viewer->slice : 0);
  if (step.type == DrawnType::polygon)
    return failed(workstation().drawPolygon(step.viewer, slice, step.points, step.release));
  return failed(workstation().drawLine(step.viewer, slice, step.points[0], step.points[1], step.moves, step.release));
}

std::optional<Failure> Player::runStep(const ReleaseStep& step) {
  return failed(workstation().endDrawing(step.viewer));
}

Expected<int> Player::annotationNamed(NamedRoi roi) const {
  const Value state = workstation().pluginState();
  const auto idOf = [&](std::string_view key) -> std::optional<int> {
    if (!state.dictionary()) return std::nullopt;
    const auto entry = state.dictionary()->find(key);
    return entry == state.dictionary()->end() ? std::nullopt : workstation().annotationId(entry->second.object());
  };
  const bool curve = roi == NamedRoi::curve;
  auto id = idOf(curve ? "openPolygonROI" : "inputLengthROI");
  if (!id && !curve) id = idOf("inputOpenPolygonROI");
  if (id) return *id;
  return Failure{ExitNotAllowed, curve ? "The plug-in has no curve." : "The plug-in takes no annotation as input."};
}

std::optional<Failure> Player::runStep(const DragVertexStep& step) {
  const auto id = annotationNamed(step.roi);
  if (!id) return id.failure;
  return failed(workstation().dragVertex(step.viewer, *id, step.vertex, step.to, step.moves));
}

std::optional<Failure> Player::runStep(const DeleteRoiStep& step) {
  const auto id = step.id ? Expected<int>(*step.id) : annotationNamed(*step.roi);
  if (!id) return id.failure;
  return failed(workstation().deleteAnnotation(step.viewer, *id));
}

std::optional<Failure> Player::runStep(const ToolStep& step) {
  return failed(step.mouse ? workstation().selectMouseTool(step.viewer, *step.mouse)
                           : workstation().selectRoiTool(step.viewer, *step.roi));
}

std::optional<Failure> Player::runStep(const UndoStep&) { return failed(workstation().undo()); }

std::optional<Failure> Player::runStep(const RedoStep&) { return failed(workstation().redo()); }

// --- the palette -----------------------------------------------------------------------------------------------------

std::optional<Failure> Player::runStep(const PaletteStep& step) {
  if (step.press == PaletteButton::close) return failed(workstation().closePalette());
  if (step.press) {
    for (const auto& [word, button] : words(*step.press)) {
      if (button == *step.press) return failed(workstation().pressPalette(word));
    }
  }
  const PaletteSettings& settings = *step.set;
  const auto set = [&](const char* key, const auto& value) {
    return value ? failed(workstation().setPaletteValue(key, *value)) : std::nullopt;
  };
  auto failure = set("anatomicalRegion", settings.anatomicalRegion);
  if (!failure) failure = set("additionalVertebra", settings.additionalVertebra);
  if (!failure) failure = set("drawMode", settings.drawMode);
  if (!failure) failure = set("displayLabels", settings.displayLabels);
  return failure;
}

}  // namespace cli
