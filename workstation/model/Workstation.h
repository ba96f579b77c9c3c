#pragma once
// Start here. A DICOM workstation without a window: studies, viewers, annotations and tools as a person at the screen
// has them, and a host for one plug-in. A script and a window call the same operations, so that what either does is
// the same. Main thread only.
//
// Studies are named by their Study Instance UID, viewers by numbers that count up from 0 in the order of opening and
// are never used again, slices by their index in the viewer from 0, annotations by ids that stay the same in a run.
// Every operation that can be refused says so in a whole sentence and then has done nothing.

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "host/PelmarAPI.h"
#include "workstation/model/Outcome.h"
#include "workstation/model/PluginHandle.h"
#include "workstation/model/ReportContext.h"
#include "workstation/model/Seams.h"
#include "workstation/model/Stacks.h"

namespace workstation {

class EventLoop;
class Host;
class PersonLog;

/// What the workstation is made with. The pointers are not owned, may be null and must outlive it.
struct Options {
  std::optional<std::string> hostVersion = "9.0";  ///< what the host says of itself; absent: nothing
  std::set<pelmar::Capability> lacking;            ///< operations that it pretends not to have
  pelmar::Value::Dictionary defaults;              ///< user defaults to begin with, over those of the store
  DefaultsStore* defaultsStore = nullptr;
  StudyReports* reports = nullptr;
  pelmar::KeyedArchiving* keyedArchiving = nullptr;
  double screenWidth = 1920;  ///< points
  double screenHeight = 1200;
  Listeners listeners;
};

/// The capability that a script means by this name ("bodyPartExamined", "stringTags", "dontDisplayInKeyImagesWindow",
/// "resamplePoints", "Point3DCoding", "ROIToolTag"); nothing for another name.
std::optional<pelmar::Capability> capabilityNamed(std::string_view name);

/// Names a stack of a study that was added.
struct StackId {
  std::string studyUid;
  std::size_t series = 0;  ///< index in Study::series
  std::size_t stack = 0;   ///< index in Series::stacks
  friend bool operator==(const StackId&, const StackId&) = default;
};

enum class FlipAxis { horizontal, vertical };

/// A viewer as it is now.
struct ViewerInfo {
  int number = 0;
  StackId stack;
  long orientationCode = -1;
  int slice = 0;
  int slices = 0;
  long tool = 0;     ///< mouse tool, see MouseTool
  long roiTool = 0;  ///< annotation tool; 0: none was chosen yet
  bool front = false;
  pelmar::FrameRect frame;      ///< on the screen
  pelmar::FrameRect viewFrame;  ///< of its image view, in its window
  double scale = 1;             ///< zoom: points per pixel, from column to column
  pelmar::ViewPoint origin;     ///< pan: where the image's centre lies, from the centre of the view, in points
  double rotationDegrees = 0;   ///< clockwise, 0 <= degrees < 360
  bool flippedHorizontally = false;
  bool flippedVertically = false;
  bool needsDisplay = false;  ///< someone asked for a redraw since markDisplayed
};

/// An annotation in a viewer.
struct AnnotationInfo {
  int id = 0;
  pelmar::Ref<pelmar::ROI> roi;
  std::vector<int> slices;  ///< ascending: those whose list holds it
  bool drawnByPerson = false;
};

/// The plug-in's window.
struct PaletteInfo {
  bool visible = false;
  pelmar::FrameRect frame;  ///< on the screen
  std::string frameAutosaveName;
  WindowDescription description;
};

enum class Key { returnKey };

/// The workstation's own numbers of its mouse tools.
enum MouseTool : long {
  MouseToolWindowLevel = 0,
  MouseToolPan = 1,
  MouseToolZoom = 2,
  MouseToolRotate = 3,
  MouseToolScroll = 4,
  MouseToolAnnotate = 9,  ///< the left button draws with the viewer's annotation tool
};

class Workstation {
 public:
  explicit Workstation(Options options = {});
  /// Takes the plug-in out as a crash would: nothing is closed or saved. Call quit() first to end as a person would.
  ~Workstation();
  Workstation(const Workstation&) = delete;
  Workstation& operator=(const Workstation&) = delete;

  /// The contract's interface, to make a plug-in object with. Lives as long as the workstation.
  pelmar::PelmarAPI& api();

  // --- the plug-in -------------------------------------------------------------------------------------------------

  /// Takes the plug-in in and calls its initPlugin. One that was there before is let go first; null only does that.
  void setPlugin(std::unique_ptr<PluginHandle> plugin);
  /// Titles of its menu entries; empty without a plug-in.
  std::vector<std::string> menuEntries() const;
  /// Chooses a menu entry while the viewer is in front. Any title is passed on; it is the plug-in that knows them.
  Outcome chooseMenu(int viewer, const std::string& title);
  /// The plug-in's state (PluginFilter::stateSnapshot); nil without a plug-in. Changes nothing.
  pelmar::Value pluginState() const;
  /// The plug-in's answer to a named question (PluginFilter::valueForKey); nil without a plug-in. Changes nothing.
  pelmar::Value pluginAnswer(std::string_view question) const;
  /// The level that the plug-in gives a slice by the planes that it has in memory, whether a viewer shows the slice or
  /// not. Nothing for a slice beyond the ends, one that is not there, and one in colour, which the plug-in never names.
  std::optional<std::string> levelOfSlice(const StackId& id, std::size_t slice) const;
  /// The stack on which the curve in the plug-in's memory lies, or lay until its viewer let go of it, when it is one of
  /// this study. Nothing for a labelling that was read from the study: its curve is not stored.
  std::optional<StackId> drawnStack(const std::string& studyUid) const;
  /// What a report of the labelling in the plug-in's memory tells beyond it: where it was drawn, and every axial slice
  /// that has a level, stacks in order of Series Number. Nothing for a study that was not added or has no vertical
  /// stack.
  std::optional<ReportContext> reportContext(const std::string& studyUid) const;

  // --- studies -----------------------------------------------------------------------------------------------------

  /// Adds images of any number of studies and answers those studies' UIDs, by date, then UID. A study that is there
  /// already stays as it is.
  std::vector<std::string> addImages(std::vector<ImageRecord> images);
  /// Takes the images of a study anew, because files have come or gone since it was added. The person's own annotations
  /// stay with their slices. Refused where a viewer shows the study, where it was not added, and where the images are
  /// none or of several studies. What was told of the study before (records, stacks and their ids) is no longer valid.
  Outcome replaceStudy(std::vector<ImageRecord> images);
  /// Null when no such study was added. Stays valid and unchanged until it is replaced.
  const Study* study(const std::string& studyUid) const;
  /// Every stack of a study, in order of Series Number, then stack; empty for an unknown study.
  std::vector<StackId> stacks(const std::string& studyUid) const;
  /// The stack with this index in the first series with this number; nothing when there is none.
  std::optional<StackId> findStack(const std::string& studyUid, int seriesNumber, std::size_t stack = 0) const;
  const Series* series(const StackId& id) const;  ///< null when there is none
  const Stack* stack(const StackId& id) const;    ///< null when there is none

  // --- viewers -----------------------------------------------------------------------------------------------------

  /// Opens a viewer for every stack, in order; each is in front as it opens and its loaded-notification is posted
  /// before the next opens. Answers their numbers.
  Result<std::vector<int>> openStudy(const std::string& studyUid);
  /// Opens one viewer, in front of the others, on the first slice; posts its loaded-notification.
  Result<int> openViewer(const StackId& id);
  /// Takes the viewer from the list, posts its closing while it is still whole, then lets it go.
  Outcome closeViewer(int viewer);
  /// Shows another stack in the viewer: posts that it will change, lets go of its annotations (the person's own come
  /// back with their stack), loads, and posts that it has loaded. Zoom, pan, rotation and flips begin anew.
  Outcome switchSeries(int viewer, const StackId& id);
  Outcome bringToFront(int viewer);
  /// Every open viewer, in the order of opening.
  std::vector<ViewerInfo> viewers() const;
  std::optional<ViewerInfo> viewer(int number) const;
  /// The number of the viewer in front, of those open; nothing when none is open.
  std::optional<int> frontViewer() const;
  /// The record of a slice; null when there is no such viewer or slice.
  const ImageRecord* sliceRecord(int viewer, int slice) const;
  /// The viewer as the plug-in sees it; nil when it is not open.
  pelmar::Ref<pelmar::ViewerController> controller(int viewer) const;
  /// The person moved or resized the window; `frame` on the screen, in points.
  Outcome setViewerFrame(int viewer, const pelmar::FrameRect& frame);
  /// The window has painted the viewer.
  void markDisplayed(int viewer);

  /// Shows another slice; posts the index-changed notification if it is another one.
  Outcome scroll(int viewer, int slice);
  /// Sets the zoom, in points per pixel (> 0); posts the scale-changed notification.
  Outcome zoom(int viewer, double scale);
  /// Moves the image by so many points (x to the right, y up); posts the origin-changed notification.
  Outcome pan(int viewer, double dx, double dy);
  /// Zooms so that the whole image is seen, and centres it; posts both changes.
  Outcome fit(int viewer);
  /// Turns the image clockwise by so many degrees.
  Outcome rotate(int viewer, double degrees);
  /// Mirrors the image left to right (horizontal) or top to bottom (vertical) as it is stored, before rotation.
  Outcome flip(int viewer, FlipAxis axis);

  /// Between the image view's points and pixels of the shown slice; (0, 0) when the viewer is not open.
  pelmar::PixelPoint pixelAt(int viewer, pelmar::ViewPoint point) const;
  pelmar::ViewPoint viewPointAt(int viewer, pelmar::PixelPoint pixel) const;

  // --- mouse, keys and tools ---------------------------------------------------------------------------------------

  /// Chooses a mouse tool (see MouseTool; other tags are kept and do nothing).
  Outcome selectMouseTool(int viewer, long tag);
  /// Chooses an annotation tool: 5 length line, 10 open polygon, 13 text, 14 arrow (from its head to its other end), 19
  /// point. The left button then draws with it; with a text it only takes hold of what is there, see addText.
  Outcome selectRoiTool(int viewer, long tag);

  /// The left button, with the pointer at a pixel of the shown slice, which need not be whole nor inside the image.
  /// A press draws, drags the vertex of a selected annotation (within 8 points), or, when the left button does not
  /// draw, selects a selectable annotation whose line passes within 6 points, as the only one of the slice, and moves
  /// it as a whole; or does nothing.
  Outcome press(int viewer, pelmar::PixelPoint at);
  Outcome move(int viewer, pelmar::PixelPoint at);
  Outcome release(int viewer, pelmar::PixelPoint at);
  /// The second press of a double click; its first press and release come as such before.
  Outcome doubleClick(int viewer, pelmar::PixelPoint at);
  Outcome key(int viewer, Key key);
  /// Whether the left button, as it is pressed now, draws or holds an annotation.
  bool holdsAnnotation(int viewer) const;
  /// Whether something is being drawn in the viewer, between its first press and its end.
  bool isDrawing(int viewer) const;
  /// Whether a press there would take hold of an annotation instead of drawing or doing nothing.
  bool wouldHold(int viewer, pelmar::ViewPoint at) const;
  /// No annotation of the shown slice is selected any more, but for one that is being drawn or dragged.
  Outcome deselect(int viewer);
  /// The same in points of the image view.
  Outcome press(int viewer, pelmar::ViewPoint at);
  Outcome move(int viewer, pelmar::ViewPoint at);
  Outcome release(int viewer, pelmar::ViewPoint at);
  Outcome doubleClick(int viewer, pelmar::ViewPoint at);

  // --- whole drawings, made of the events above --------------------------------------------------------------------

  /// Scrolls to the slice, chooses the length tool unless the left button draws with it already, presses at `a`, moves
  /// `moves` (at least 1) times in equal steps, the last time to `b`, and, if asked, releases there. Never drags.
  /// Answers the id of the annotation that was drawn, which may be gone by then.
  Result<int> drawLine(int viewer, int slice, pelmar::PixelPoint a, pelmar::PixelPoint b, int moves = 8,
                       bool release = true);
  /// The same with the polygon tool: a click a point, then, if asked, a double click at the last point. Nothing more is
  /// sent once the polygon has been ended.
  Result<int> drawPolygon(int viewer, int slice, const std::vector<pelmar::PixelPoint>& points, bool finish = true);
  /// Ends what is being drawn: releases a line where it is, double-clicks a polygon at its last vertex.
  Outcome endDrawing(int viewer);
  /// Drags a vertex of an annotation to a pixel in `moves` (at least 1) equal steps, first showing a slice that holds
  /// the annotation and selecting it where that is needed.
  Outcome dragVertex(int viewer, int annotation, int vertex, pelmar::PixelPoint to, int moves = 4);
  /// Deletes an annotation of the viewer as a person does; its removal is posted.
  Outcome deleteAnnotation(int viewer, int annotation);
  /// Writes a text of the person's on the shown slice, centred at the pixel, and selects it. Answers its id. The text
  /// must not be empty.
  Result<int> addText(int viewer, pelmar::PixelPoint at, const std::string& text);
  /// Changes such a text; not to an empty one.
  Outcome changeText(int viewer, int annotation, const std::string& text);
  /// The text of the person's that covers a point of the image view; nothing when there is none.
  std::optional<AnnotationInfo> textAt(int viewer, pelmar::ViewPoint at) const;
  /// Takes the person's last edit back, in whichever viewer it was: the move of a vertex or of a whole annotation, or
  /// the drawing, change or deletion of an annotation of their own. The plug-in hears of it as of an edit. Edits that
  /// have lost their meaning, because the plug-in took the annotation or its vertices elsewhere, are passed over; those
  /// of a viewer go when it closes or shows another series.
  Outcome undo();
  /// Does again what was taken back last; a fresh edit ends that.
  Outcome redo();
  bool canUndo() const;
  bool canRedo() const;

  /// The annotations of a viewer, each once, in the order of slices and their lists.
  std::vector<AnnotationInfo> annotations(int viewer) const;
  /// Those of one slice, in drawing order.
  std::vector<AnnotationInfo> annotations(int viewer, int slice) const;
  /// The id of an annotation of this workstation; nothing for any other object.
  std::optional<int> annotationId(const pelmar::Ref<pelmar::HostObject>& annotation) const;

  // --- the plug-in's window ----------------------------------------------------------------------------------------

  /// The plug-in's window while it is open (shown and not closed yet).
  std::optional<PaletteInfo> palette() const;
  /// Uses the control with this action ("reset:"; the colon may be left out).
  Outcome pressPalette(const std::string& action);
  /// Closes it with its close box.
  Outcome closePalette();
  /// Sets the property that a control is bound to.
  Outcome setPaletteValue(const std::string& key, const pelmar::Value& value);
  /// The value of a property; nil without a palette or property.
  pelmar::Value paletteValue(const std::string& key) const;
  /// The person moved it; origin at its bottom left.
  Outcome movePalette(pelmar::ScreenPoint origin);

  // --- what was shown to the person --------------------------------------------------------------------------------

  /// The panels since the last call, oldest first.
  std::vector<Alert> takeAlerts();
  std::vector<std::string> takeOpenedAddresses();
  pelmar::Value::Dictionary userDefaults() const;

  /// Ends as a person does: closes the palette, then each viewer in the order of opening; then tells the reports.
  void quit();

  /// Who hears what the person does, by the operations above; null: nobody. Not owned: it is taken away before it goes.
  void setPersonLog(PersonLog* log);

  /// The loop in which all of the above run as events.
  EventLoop& events();

 private:
  struct Interior;
  std::unique_ptr<Interior> interior_;
};

}  // namespace workstation
