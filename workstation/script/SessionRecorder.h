#pragma once

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <variant>

#include "workstation/model/PersonLog.h"
#include "workstation/script/Script.h"

namespace workstation::script {

/// Where a study is found again.
struct StudyPlace {
  std::string path;         ///< a folder that holds this study alone, or a database folder
  bool isDatabase = false;  ///< it is a database folder
};

/// Writes down as a session script what a person does from here on. Playing the script, on the studies as they were
/// when it began, ends in the same state but for where windows lie, as long as gaps() is empty; and only if the
/// workstation had just begun, since a script begins with a workstation in which nothing has happened yet.
///
/// Most acts become a step each. A drawing or a drag becomes one step when it ends; a change of what a viewer shows
/// that comes meanwhile stands before it.
class SessionRecorder final : public PersonLog {
 public:
  /// Nothing for a study that a script cannot name.
  using PlaceOf = std::function<std::optional<StudyPlace>(const std::string& studyUid)>;

  /// Begins with the defaults as they are now. Must be made the workstation's log, which outlives it.
  SessionRecorder(const Workstation& workstation, PlaceOf placeOf);

  /// The script so far, with a dump as its last step.
  Script script() const;
  /// What was done that the script does not tell, each once, as phrases that fit "The script leaves out ...".
  const std::set<std::string>& gaps() const { return gaps_; }
  /// Whether a script can name the stack, which must exist, and its study.
  bool canName(const StackId& stack) const;

  void viewerOpened(int viewer) override;
  void viewerClosed(int viewer) override;
  void seriesSwitched(int viewer) override;
  void broughtToFront(int viewer) override;
  void menuChosen(int viewer, const std::string& title) override;
  void scrolled(int viewer, int slice) override;
  void zoomed(int viewer, double scale) override;
  void panned(int viewer, double dx, double dy) override;
  void rotated(int viewer, double degrees) override;
  void flipped(int viewer, FlipAxis axis) override;
  void mouseToolChosen(int viewer, long tag) override;
  void annotationToolChosen(int viewer, long tag) override;
  void drawingBegun(int viewer, int slice, long type, pelmar::PixelPoint at) override;
  void pointAdded(int viewer, pelmar::PixelPoint at) override;
  void lineMoved(int viewer, pelmar::PixelPoint to) override;
  void lineReleased(int viewer, pelmar::PixelPoint at) override;
  void textWritten(int viewer) override;
  void polygonFinished(int viewer) override;
  void vertexGrabbed(int viewer, int annotation, int vertex) override;
  void vertexMoved(int viewer, pelmar::PixelPoint to) override;
  void vertexDropped(int viewer, pelmar::PixelPoint at) override;
  void selecting(int viewer, int annotation) override;
  void wholeMoved(int viewer) override;
  void deleting(int viewer, int annotation) override;
  void undone() override;
  void redone() override;
  void palettePressed(const std::string& action) override;
  void paletteClosed() override;
  void paletteValueSet(const std::string& key, const pelmar::Value& value) override;

 private:
  /// A viewer that the script has opened.
  struct Known {
    int number = 0;     ///< in the script
    std::string study;  ///< that it shows
  };
  /// What the button is down for, or a polygon between its clicks.
  struct Stroke {
    int viewer = 0;  ///< as the workstation numbers it
    std::variant<DrawStep, DragVertexStep> step;
    int moves = 0;
    bool written = false;  ///< before its end, because something else was done that may end it
  };

  std::optional<int> numberOf(int viewer);
  std::optional<NamedRoi> nameOf(int annotation) const;
  bool isWritable(const StudyPlace& place) const;
  /// Writes a step of a viewer that may end what is being drawn, or one that cannot.
  template <class ViewerStep>
  void act(int viewer, ViewerStep step);
  template <class ViewerStep>
  void look(int viewer, ViewerStep step);
  template <class ViewerStep>
  void write(int viewer, ViewerStep step);
  /// The stroke as it would be written now; `finished`: by the person. Nothing for one that has changed nothing yet.
  static std::optional<Step> stepOf(const Stroke& stroke, bool finished);
  /// Writes what is being drawn as far as it has come.
  void breakOff();
  /// The same with what the plug-in has ended by itself.
  void writeEnded();
  /// The step of the stroke that goes on in this viewer; null, and a gap, when it was broken off.
  template <class StrokeStep>
  StrokeStep* ongoing(int viewer);
  void finish();
  void writeZoom(int number, double scale);
  void leaveOut(const char* what) { gaps_.insert(what); }

  const Workstation& workstation_;
  PlaceOf placeOf_;
  Script script_;
  std::set<std::string> gaps_;
  std::map<int, Known> viewers_;
  int openedSoFar_ = 0;
  bool opensInPlace_ = false;
  std::optional<Stroke> stroke_;
};

}  // namespace workstation::script
