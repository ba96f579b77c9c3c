#pragma once
// A session script: what a person at the window would do, written down as one JSON object
//   {"database": DIR, "defaults": {...}, "host": {"version": ..., "lacks": [...]}, "steps": [{"do": NAME, ...}, ...]}
// of which only "steps" must be there. Here it is a value and is written; the command reads and plays it.

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "host/Geometry.h"
#include "host/Value.h"
#include "workstation/model/Workstation.h"

namespace workstation::script {

// Viewers are numbered in the order opened, from 0; slices and vertices count from 0; points are pixels of the slice.

/// Opens every series, a viewer for each stack. Of `path` (a folder of DICOM files or one file) and `study` (a Study
/// Instance UID) exactly one is there.
struct OpenStudyStep {
  static constexpr const char* word = "openStudy";
  std::optional<std::string> path;
  std::optional<std::string> study;
};
struct OpenViewerStep {
  static constexpr const char* word = "openViewer";
  std::optional<std::string> path;
  std::optional<std::string> study;
  int series = 0;  ///< Series Number
  int stack = 0;
};
struct CloseViewerStep {
  static constexpr const char* word = "closeViewer";
  int viewer = 0;
};
/// Loads another series of the same study into the viewer.
struct SwitchSeriesStep {
  static constexpr const char* word = "switchSeries";
  int viewer = 0;
  int series = 0;  ///< Series Number
  int stack = 0;
};
struct FrontStep {
  static constexpr const char* word = "front";
  int viewer = 0;
};
struct MenuStep {
  static constexpr const char* word = "menu";
  int viewer = 0;
  std::string title;
};
/// The most moves of the mouse in a line or a drag: the plug-in works at each, and a script that ends is wanted.
constexpr int mostMoves = 10000;
enum class DrawnType { line, polygon };
struct DrawStep {
  static constexpr const char* word = "draw";
  int viewer = 0;
  std::optional<int> slice;  ///< the one that is shown, where absent
  DrawnType type = DrawnType::line;
  std::vector<pelmar::PixelPoint> points;  ///< two of a line, at least one of a polygon
  int moves = 8;                           ///< of a line, 1 to mostMoves
  bool release = true;
};
/// Ends what is being drawn.
struct ReleaseStep {
  static constexpr const char* word = "release";
  int viewer = 0;
};
/// An annotation that the plug-in knows: its curve, or the line or polygon that it takes as input.
enum class NamedRoi { curve, input };
struct DragVertexStep {
  static constexpr const char* word = "dragVertex";
  int viewer = 0;
  NamedRoi roi = NamedRoi::curve;
  int vertex = 0;
  pelmar::PixelPoint to;
  int moves = 4;  ///< 1 to mostMoves
};
/// Exactly one of the two is there.
struct DeleteRoiStep {
  static constexpr const char* word = "deleteROI";
  int viewer = 0;
  std::optional<NamedRoi> roi;
  std::optional<int> id;
};
/// Chooses a mouse tool or an annotation tool by its tag: exactly one of the two is there.
struct ToolStep {
  static constexpr const char* word = "tool";
  int viewer = 0;
  std::optional<int> mouse;
  std::optional<int> roi;
};
struct RotateStep {
  static constexpr const char* word = "rotate";
  int viewer = 0;
  double degrees = 0;  ///< clockwise
};
struct FlipStep {
  static constexpr const char* word = "flip";
  int viewer = 0;
  FlipAxis axis = FlipAxis::horizontal;
};
struct UndoStep {
  static constexpr const char* word = "undo";
};
struct RedoStep {
  static constexpr const char* word = "redo";
};
/// From here on writing a report fails as on a full disk, or no longer does.
struct FailSavesStep {
  static constexpr const char* word = "failSaves";
  bool on = false;
};
struct ScrollStep {
  static constexpr const char* word = "scroll";
  int viewer = 0;
  int slice = 0;
};
struct ZoomStep {
  static constexpr const char* word = "zoom";
  int viewer = 0;
  double scale = 1;  ///< points per pixel
};
struct PanStep {
  static constexpr const char* word = "pan";
  int viewer = 0;
  pelmar::ViewPoint by;  ///< points, y up
};
enum class PaletteButton { stopWorkFlow, reset, openHelp, close };
/// At least one is there; they are set in the order of the members.
struct PaletteSettings {
  std::optional<int> anatomicalRegion;  ///< -1 (none) to 2
  std::optional<bool> additionalVertebra;
  std::optional<int> drawMode;  ///< 0 (line) or 1 (polygon)
  std::optional<bool> displayLabels;
};
/// Exactly one of the two is there.
struct PaletteStep {
  static constexpr const char* word = "palette";
  std::optional<PaletteButton> press;
  std::optional<PaletteSettings> set;
};
/// Another program puts the report in `file` into the study at `path`.
struct AddReportStep {
  static constexpr const char* word = "addReport";
  std::string path;
  std::string file;
};
struct DumpStep {
  static constexpr const char* word = "dump";
  std::optional<std::string> name;
};
struct RestartStep {
  static constexpr const char* word = "restart";
};
struct CrashStep {
  static constexpr const char* word = "crash";
};

using Step = std::variant<OpenStudyStep, OpenViewerStep, CloseViewerStep, SwitchSeriesStep, FrontStep, MenuStep,
                          DrawStep, ReleaseStep, DragVertexStep, DeleteRoiStep, ToolStep, RotateStep, FlipStep,
                          UndoStep, RedoStep, FailSavesStep, ScrollStep, ZoomStep, PanStep, PaletteStep, AddReportStep,
                          DumpStep, RestartStep, CrashStep>;

struct Script {
  std::optional<std::string> database;
  pelmar::Value::Dictionary defaults;
  std::string hostVersion = "9.0";
  std::vector<std::string> hostLacks;  ///< names that capabilityNamed knows
  std::vector<Step> steps;
};

/// The step's name in a script: "openStudy".
std::string stepName(const Step& step);
/// Where a step stands, in messages: `Step 3 of 7`; `index` counts from 0.
std::string stepPlace(const Script& script, std::size_t index);
/// The same with its name: `Step 3 of 7, "draw"`.
std::string stepTitle(const Script& script, std::size_t index);

/// The script as text, one step a line. Numbers read back to the same values.
std::string writeScript(const Script& script);

}  // namespace workstation::script
