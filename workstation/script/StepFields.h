#pragma once
// The keys of every step, once for reading and writing. `fields(visitor, step)` calls for each key
//   visitor.required(key, value), visitor.optional(key, optional value), or visitor.defaulted(key, value).
// After the visit, `wrong(step)` tells the first rule between keys that a step breaks.

#include "workstation/script/Script.h"

namespace workstation::script {

/// A key, and what is wrong with it: a phrase that follows its name.
struct WrongKey {
  std::string key;
  std::string reason;
};

// `Of` is a step, const when it is written.
template <class Step, class Of>
concept Is = std::is_same_v<std::remove_const_t<Step>, Of>;

template <class Visitor, Is<OpenStudyStep> Step>
void fields(Visitor& visitor, Step& step) {
  visitor.optional("path", step.path);
  visitor.optional("study", step.study);
}

template <class Visitor, Is<OpenViewerStep> Step>
void fields(Visitor& visitor, Step& step) {
  visitor.optional("path", step.path);
  visitor.optional("study", step.study);
  visitor.required("series", step.series);
  visitor.defaulted("stack", step.stack);
}

template <class Visitor, Is<SwitchSeriesStep> Step>
void fields(Visitor& visitor, Step& step) {
  visitor.required("viewer", step.viewer);
  visitor.required("series", step.series);
  visitor.defaulted("stack", step.stack);
}

template <class Step>
concept NamesOnlyViewer = Is<Step, CloseViewerStep> || Is<Step, FrontStep> || Is<Step, ReleaseStep>;

template <class Visitor, NamesOnlyViewer Step>
void fields(Visitor& visitor, Step& step) {
  visitor.required("viewer", step.viewer);
}

template <class Visitor, Is<MenuStep> Step>
void fields(Visitor& visitor, Step& step) {
  visitor.required("viewer", step.viewer);
  visitor.required("title", step.title);
}

template <class Visitor, Is<DrawStep> Step>
void fields(Visitor& visitor, Step& step) {
  visitor.required("viewer", step.viewer);
  visitor.optional("slice", step.slice);
  visitor.required("type", step.type);
  visitor.required("points", step.points);
  visitor.defaulted("moves", step.moves);
  visitor.defaulted("release", step.release);
}

template <class Visitor, Is<DragVertexStep> Step>
void fields(Visitor& visitor, Step& step) {
  visitor.required("viewer", step.viewer);
  visitor.required("roi", step.roi);
  visitor.required("vertex", step.vertex);
  visitor.required("to", step.to);
  visitor.defaulted("moves", step.moves);
}

template <class Visitor, Is<DeleteRoiStep> Step>
void fields(Visitor& visitor, Step& step) {
  visitor.required("viewer", step.viewer);
  visitor.optional("roi", step.roi);
  visitor.optional("id", step.id);
}

template <class Visitor, Is<ToolStep> Step>
void fields(Visitor& visitor, Step& step) {
  visitor.required("viewer", step.viewer);
  visitor.optional("mouse", step.mouse);
  visitor.optional("roi", step.roi);
}

template <class Visitor, Is<RotateStep> Step>
void fields(Visitor& visitor, Step& step) {
  visitor.required("viewer", step.viewer);
  visitor.required("degrees", step.degrees);
}

template <class Visitor, Is<FlipStep> Step>
void fields(Visitor& visitor, Step& step) {
  visitor.required("viewer", step.viewer);
  visitor.required("axis", step.axis);
}

template <class Visitor, Is<FailSavesStep> Step>
void fields(Visitor& visitor, Step& step) {
  visitor.required("on", step.on);
}

template <class Visitor, Is<ScrollStep> Step>
void fields(Visitor& visitor, Step& step) {
  visitor.required("viewer", step.viewer);
  visitor.required("slice", step.slice);
}

template <class Visitor, Is<ZoomStep> Step>
void fields(Visitor& visitor, Step& step) {
  visitor.required("viewer", step.viewer);
  visitor.required("scale", step.scale);
}

template <class Visitor, Is<PanStep> Step>
void fields(Visitor& visitor, Step& step) {
  visitor.required("viewer", step.viewer);
  visitor.required("by", step.by);
}

template <class Visitor, Is<PaletteStep> Step>
void fields(Visitor& visitor, Step& step) {
  visitor.optional("press", step.press);
  visitor.optional("set", step.set);
}

template <class Visitor, Is<PaletteSettings> Settings>
void fields(Visitor& visitor, Settings& settings) {
  visitor.optional("anatomicalRegion", settings.anatomicalRegion);
  visitor.optional("additionalVertebra", settings.additionalVertebra);
  visitor.optional("drawMode", settings.drawMode);
  visitor.optional("displayLabels", settings.displayLabels);
}

template <class Visitor, Is<AddReportStep> Step>
void fields(Visitor& visitor, Step& step) {
  visitor.required("path", step.path);
  visitor.required("file", step.file);
}

template <class Visitor, Is<DumpStep> Step>
void fields(Visitor& visitor, Step& step) {
  visitor.optional("name", step.name);
}

template <class Step>
concept HasNoKeys = Is<Step, UndoStep> || Is<Step, RedoStep> || Is<Step, RestartStep> || Is<Step, CrashStep>;

template <class Visitor, HasNoKeys Step>
void fields(Visitor&, Step&) {}

// --- rules between keys ----------------------------------------------------------------------------------------------

/// Of two keys exactly one must be there.
inline std::optional<WrongKey> exactlyOne(const char* first, bool hasFirst, const char* second, bool hasSecond) {
  if (hasFirst != hasSecond) return std::nullopt;
  const std::string other = std::string("\"") + second + "\"";
  return WrongKey{first, hasFirst ? "cannot be there together with " + other : "is missing: give it or " + other};
}

inline std::optional<WrongKey> wrongMoves(int moves) {
  if (moves < 1) return WrongKey{"moves", "must be at least 1"};
  if (moves > mostMoves) return WrongKey{"moves", "must be at most " + std::to_string(mostMoves)};
  return std::nullopt;
}

/// Of what a step opens.
template <class Step>
std::optional<WrongKey> wrongSource(const Step& step) {
  if (step.study && step.study->empty()) return WrongKey{"study", "must not be empty: give a Study Instance UID"};
  return exactlyOne("path", step.path.has_value(), "study", step.study.has_value());
}

inline std::optional<WrongKey> wrong(const OpenStudyStep& step) { return wrongSource(step); }
inline std::optional<WrongKey> wrong(const OpenViewerStep& step) { return wrongSource(step); }
inline std::optional<WrongKey> wrong(const DrawStep& step) {
  if (step.type == DrawnType::line && step.points.size() != 2)
    return WrongKey{"points", "must hold two points for a line"};
  if (step.points.empty()) return WrongKey{"points", "must hold at least one point"};
  return wrongMoves(step.moves);
}
inline std::optional<WrongKey> wrong(const DragVertexStep& step) { return wrongMoves(step.moves); }
inline std::optional<WrongKey> wrong(const DeleteRoiStep& step) {
  return exactlyOne("roi", step.roi.has_value(), "id", step.id.has_value());
}
inline std::optional<WrongKey> wrong(const ToolStep& step) {
  return exactlyOne("mouse", step.mouse.has_value(), "roi", step.roi.has_value());
}
inline std::optional<WrongKey> wrong(const PaletteStep& step) {
  return exactlyOne("press", step.press.has_value(), "set", step.set.has_value());
}
inline std::optional<WrongKey> wrong(const PaletteSettings& settings) {
  const auto region = settings.anatomicalRegion.value_or(0);
  if (region < -1 || region > 2) return WrongKey{"anatomicalRegion", "must be a region from -1 to 2"};
  const auto mode = settings.drawMode.value_or(0);
  if (mode < 0 || mode > 1) return WrongKey{"drawMode", "must be 0 for a line or 1 for a polygon"};
  if (settings.anatomicalRegion || settings.additionalVertebra || settings.drawMode || settings.displayLabels)
    return std::nullopt;
  return WrongKey{"anatomicalRegion", "is missing: give it, \"additionalVertebra\", \"drawMode\" or \"displayLabels\""};
}
template <class Step>
std::optional<WrongKey> wrong(const Step&) {
  return std::nullopt;
}

}  // namespace workstation::script
