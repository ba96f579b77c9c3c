#include "workstation/script/SessionRecorder.h"

#include <algorithm>
#include <utility>

#include "workstation/script/StepWords.h"

namespace workstation::script {

using pelmar::PixelPoint;

namespace {

constexpr const char* unnamedStack = "the opening of a series that a script cannot name";
constexpr const char* unknownViewer = "what was done in a viewer that the script does not open";
constexpr const char* brokenOff = "the rest of a drawing or drag in the middle of which something else was done";
constexpr const char* selection = "the selection of an annotation";
constexpr const char* otherKind = "the drawing of a text, an arrow or a point";
constexpr const char* wholeDrag = "the move of a whole annotation";
constexpr const char* foreignVertex = "the move of a vertex of an annotation that the plug-in does not use";
constexpr const char* foreignDeletion = "the deletion of an annotation that the plug-in does not use";
constexpr const char* otherStudy = "the change of a viewer to another study";
constexpr const char* unknownControl = "a control of the palette that scripts do not know";

}  // namespace

SessionRecorder::SessionRecorder(const Workstation& workstation, PlaceOf placeOf)
    : workstation_(workstation), placeOf_(std::move(placeOf)) {
  script_.defaults = workstation.userDefaults();
}

Script SessionRecorder::script() const {
  Script whole = script_;
  if (stroke_ && !stroke_->written) {
    if (auto step = stepOf(*stroke_, false)) whole.steps.push_back(*std::move(step));
  }
  whole.steps.emplace_back(DumpStep{});
  return whole;
}

// --- steps of viewers ------------------------------------------------------------------------------------------------

std::optional<int> SessionRecorder::numberOf(int viewer) {
  const auto known = viewers_.find(viewer);
  if (known != viewers_.end()) return known->second.number;
  leaveOut(unknownViewer);
  return std::nullopt;
}

template <class ViewerStep>
void SessionRecorder::write(int viewer, ViewerStep step) {
  const auto number = numberOf(viewer);
  if (!number) return;
  step.viewer = *number;
  script_.steps.emplace_back(std::move(step));
}

template <class ViewerStep>
void SessionRecorder::act(int viewer, ViewerStep step) {
  breakOff();
  write(viewer, std::move(step));
}

template <class ViewerStep>
void SessionRecorder::look(int viewer, ViewerStep step) {
  writeEnded();
  write(viewer, std::move(step));
}

bool SessionRecorder::isWritable(const StudyPlace& place) const {
  // With a database a script imports what it opens by a path, so that it cannot do both.
  return place.isDatabase ? !opensInPlace_ && script_.database.value_or(place.path) == place.path : !script_.database;
}

bool SessionRecorder::canName(const StackId& stack) const {
  const Series* series = workstation_.series(stack);
  const auto place = placeOf_(stack.studyUid);
  return place && isWritable(*place) && series && series->number &&
         workstation_.findStack(stack.studyUid, *series->number, stack.stack) == stack;
}

void SessionRecorder::viewerOpened(int viewer) {
  breakOff();
  const auto info = workstation_.viewer(viewer);
  if (!info || !canName(info->stack)) return leaveOut(unnamedStack);
  const StudyPlace place = *placeOf_(info->stack.studyUid);
  OpenViewerStep step;
  step.series = *workstation_.series(info->stack)->number;
  step.stack = static_cast<int>(info->stack.stack);
  if (place.isDatabase) {
    script_.database = place.path;
    step.study = info->stack.studyUid;
  } else {
    opensInPlace_ = true;
    step.path = place.path;
  }
  script_.steps.emplace_back(std::move(step));
  viewers_[viewer] = {openedSoFar_++, info->stack.studyUid};
  // How large an image is shown at first depends on its window, which a script does not place.
  writeZoom(viewers_[viewer].number, info->scale);
}

void SessionRecorder::seriesSwitched(int viewer) {
  const auto info = workstation_.viewer(viewer);
  const auto known = viewers_.find(viewer);
  if (!info || known == viewers_.end()) return leaveOut(unknownViewer);
  const Series* series = workstation_.series(info->stack);
  const bool sameStudy = known->second.study == info->stack.studyUid;
  if (!sameStudy || !canName(info->stack)) {
    breakOff();
    leaveOut(sameStudy ? unnamedStack : otherStudy);
    viewers_.erase(known);
    return;
  }
  act(viewer, SwitchSeriesStep{0, *series->number, static_cast<int>(info->stack.stack)});
  writeZoom(known->second.number, info->scale);
}

void SessionRecorder::viewerClosed(int viewer) { act(viewer, CloseViewerStep{}); }
void SessionRecorder::broughtToFront(int viewer) { look(viewer, FrontStep{}); }
void SessionRecorder::menuChosen(int viewer, const std::string& title) { act(viewer, MenuStep{0, title}); }

void SessionRecorder::scrolled(int viewer, int slice) {
  // A drawing lies on one slice: its own viewer's other slices are none of it.
  if (stroke_ && stroke_->viewer == viewer) return act(viewer, ScrollStep{0, slice});
  look(viewer, ScrollStep{0, slice});
}

void SessionRecorder::writeZoom(int number, double scale) {
  // Of several in a row the last one tells.
  auto* last = script_.steps.empty() ? nullptr : std::get_if<ZoomStep>(&script_.steps.back());
  if (last && last->viewer == number) {
    last->scale = scale;
  } else {
    script_.steps.emplace_back(ZoomStep{number, scale});
  }
}

void SessionRecorder::zoomed(int viewer, double scale) {
  writeEnded();
  if (const auto number = numberOf(viewer)) writeZoom(*number, scale);
}

void SessionRecorder::panned(int viewer, double dx, double dy) {
  if (dx != 0 || dy != 0) look(viewer, PanStep{0, {dx, dy}});
}

void SessionRecorder::rotated(int viewer, double degrees) { look(viewer, RotateStep{0, degrees}); }
void SessionRecorder::flipped(int viewer, FlipAxis axis) { look(viewer, FlipStep{0, axis}); }

void SessionRecorder::mouseToolChosen(int viewer, long tag) {
  act(viewer, ToolStep{0, static_cast<int>(tag), std::nullopt});
}

void SessionRecorder::annotationToolChosen(int viewer, long tag) {
  act(viewer, ToolStep{0, std::nullopt, static_cast<int>(tag)});
}

// --- drawing and dragging --------------------------------------------------------------------------------------------

std::optional<Step> SessionRecorder::stepOf(const Stroke& stroke, bool finished) {
  const int moves = std::clamp(stroke.moves, 1, mostMoves);
  if (const auto* dragged = std::get_if<DragVertexStep>(&stroke.step)) {
    if (!finished && stroke.moves == 0) return std::nullopt;
    DragVertexStep step = *dragged;
    step.moves = moves;
    return step;
  }
  DrawStep step = std::get<DrawStep>(stroke.step);
  step.release = finished;
  if (step.type == DrawnType::line) step.moves = moves;
  return step;
}

void SessionRecorder::breakOff() {
  if (!stroke_ || stroke_->written) return;
  stroke_->written = true;
  if (auto step = stepOf(*stroke_, false)) script_.steps.push_back(*std::move(step));
}

void SessionRecorder::writeEnded() {
  if (stroke_ && std::holds_alternative<DrawStep>(stroke_->step) && !workstation_.isDrawing(stroke_->viewer))
    breakOff();
}

void SessionRecorder::finish() {
  script_.steps.push_back(*stepOf(*stroke_, true));
  stroke_.reset();
}

template <class StrokeStep>
StrokeStep* SessionRecorder::ongoing(int viewer) {
  if (!viewers_.contains(viewer)) return nullptr;
  if (stroke_ && stroke_->viewer == viewer && !stroke_->written) {
    if (auto* step = std::get_if<StrokeStep>(&stroke_->step)) return step;
  }
  leaveOut(brokenOff);
  return nullptr;
}

void SessionRecorder::drawingBegun(int viewer, int slice, long type, PixelPoint at) {
  breakOff();
  stroke_.reset();
  const auto number = numberOf(viewer);
  if (!number) return;
  const bool line = type == pelmar::ROITypeLength;
  if (!line && type != pelmar::ROITypeOpenPolygon) return leaveOut(otherKind);
  DrawStep step;
  step.viewer = *number;
  step.slice = slice;
  step.type = line ? DrawnType::line : DrawnType::polygon;
  step.points.assign(line ? 2 : 1, at);
  stroke_ = Stroke{viewer, std::move(step)};
}

void SessionRecorder::pointAdded(int viewer, PixelPoint at) {
  if (auto* step = ongoing<DrawStep>(viewer)) step->points.push_back(at);
}

void SessionRecorder::textWritten(int) { leaveOut(otherKind); }

void SessionRecorder::lineMoved(int viewer, PixelPoint to) {
  if (!stroke_) return;  // of a kind that was left out when it was begun
  auto* step = ongoing<DrawStep>(viewer);
  if (!step) return;
  step->points.back() = to;
  ++stroke_->moves;
}

void SessionRecorder::lineReleased(int viewer, PixelPoint at) {
  if (!stroke_) return;
  if (stroke_->viewer == viewer && stroke_->written) {
    // A script lets go where the line's end was when it was written.
    const auto* step = std::get_if<DrawStep>(&stroke_->step);
    if (!step || step->points.back() != at) leaveOut(brokenOff);
    stroke_.reset();
    return act(viewer, ReleaseStep{});
  }
  auto* step = ongoing<DrawStep>(viewer);
  if (!step) return;
  step->points.back() = at;
  finish();
}

void SessionRecorder::polygonFinished(int viewer) {
  if (stroke_ && stroke_->viewer == viewer && !stroke_->written) return finish();
  if (stroke_ && stroke_->viewer == viewer) stroke_.reset();
  act(viewer, ReleaseStep{});
}

void SessionRecorder::vertexGrabbed(int viewer, int annotation, int vertex) {
  breakOff();
  stroke_.reset();
  const auto number = numberOf(viewer);
  const auto name = nameOf(annotation);
  if (!name) return leaveOut(foreignVertex);
  if (number) stroke_ = Stroke{viewer, DragVertexStep{*number, *name, vertex, {}, 1}};
}

void SessionRecorder::vertexMoved(int viewer, PixelPoint to) {
  if (!stroke_) return;  // of an annotation that was left out when it was taken hold of
  auto* step = ongoing<DragVertexStep>(viewer);
  if (!step) return;
  step->to = to;
  ++stroke_->moves;
}

void SessionRecorder::vertexDropped(int viewer, PixelPoint at) {
  if (!stroke_) return;
  const auto* held = std::get_if<DragVertexStep>(&stroke_->step);
  const bool staysThere = stroke_->written && stroke_->moves > 0 && held && held->to == at;
  if (!staysThere) {
    if (auto* step = ongoing<DragVertexStep>(viewer)) {
      step->to = at;
      return finish();
    }
  }
  stroke_.reset();
}

// --- other acts on annotations ---------------------------------------------------------------------------------------

std::optional<NamedRoi> SessionRecorder::nameOf(int annotation) const {
  const pelmar::Value state = workstation_.pluginState();
  if (!state.dictionary()) return std::nullopt;
  const std::pair<std::string_view, NamedRoi> names[] = {{"openPolygonROI", NamedRoi::curve},
                                                         {"inputLengthROI", NamedRoi::input},
                                                         {"inputOpenPolygonROI", NamedRoi::input}};
  for (const auto& [key, name] : names) {
    const auto entry = state.dictionary()->find(key);
    if (entry == state.dictionary()->end()) continue;
    if (workstation_.annotationId(entry->second.object()) == annotation) return name;
  }
  return std::nullopt;
}

void SessionRecorder::selecting(int viewer, int annotation) {
  const auto info = workstation_.viewer(viewer);
  if (!info) return;
  for (const AnnotationInfo& each : workstation_.annotations(viewer, info->slice)) {
    const bool selected = each.roi->ROImode() == pelmar::ROIModeSelected;
    if (selected != (each.id == annotation)) return leaveOut(selection);
  }
}

void SessionRecorder::wholeMoved(int) { leaveOut(wholeDrag); }

void SessionRecorder::deleting(int viewer, int annotation) {
  const auto name = nameOf(annotation);
  if (!name) return leaveOut(foreignDeletion);
  act(viewer, DeleteRoiStep{0, *name, std::nullopt});
}

void SessionRecorder::undone() {
  breakOff();
  script_.steps.emplace_back(UndoStep{});
}

void SessionRecorder::redone() {
  breakOff();
  script_.steps.emplace_back(RedoStep{});
}

// --- the palette -----------------------------------------------------------------------------------------------------

void SessionRecorder::palettePressed(const std::string& action) {
  breakOff();
  const std::string word = action.substr(0, action.find(':'));
  for (const auto& [known, button] : words(PaletteButton{})) {
    if (word != known) continue;
    script_.steps.emplace_back(PaletteStep{button, std::nullopt});
    return;
  }
  leaveOut(unknownControl);
}

void SessionRecorder::paletteClosed() {
  breakOff();
  script_.steps.emplace_back(PaletteStep{PaletteButton::close, std::nullopt});
}

void SessionRecorder::paletteValueSet(const std::string& key, const pelmar::Value& value) {
  breakOff();
  PaletteSettings settings;
  if (key == "anatomicalRegion") settings.anatomicalRegion = value.intValue();
  if (key == "additionalVertebra") settings.additionalVertebra = value.boolValue();
  if (key == "drawMode") settings.drawMode = value.intValue();
  if (key == "displayLabels") settings.displayLabels = value.boolValue();
  const bool isKnown =
      settings.anatomicalRegion || settings.additionalVertebra || settings.drawMode || settings.displayLabels;
  if (!isKnown) return leaveOut(unknownControl);
  script_.steps.emplace_back(PaletteStep{std::nullopt, settings});
}

}  // namespace workstation::script
