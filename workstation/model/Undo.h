#pragma once

#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "host/Geometry.h"

namespace workstation {

class Roi;
class SeriesRoiLists;
class View;
class Viewer;

/// What a person did to annotations and can take back: moves of vertices and of whole annotations, whoever made the
/// annotation, and drawing, deleting and rewriting annotations of their own. The plug-in hears of taking back and doing
/// again as of an edit by hand: of the change with its "mouseUp", or of the removal. What comes back is told as changed
/// and never as added, for nobody has drawn it now.
///
/// What has become of an annotation since may make an edit meaningless: the plug-in took it away, or put its vertices
/// elsewhere. Such edits are passed over. A fresh edit ends what could be done again. The edits of a viewer are
/// forgotten when it closes or shows another series.
class Undo {
 public:
  // --- what the person did; told before the plug-in hears of its end -------------------------------------------------

  void vertexMoved(View& view, const std::shared_ptr<Roi>& roi, std::size_t vertex, pelmar::PixelPoint from,
                   pelmar::PixelPoint to);
  /// All vertices were moved together.
  void shapeMoved(View& view, const std::shared_ptr<Roi>& roi, std::vector<pelmar::PixelPoint> from,
                  std::vector<pelmar::PixelPoint> to);
  /// A text of the person's says something else.
  void textChanged(View& view, const std::shared_ptr<Roi>& roi, const std::string& from, const std::string& to);
  /// The drawing of the annotation has ended.
  void drawn(View& view, const std::shared_ptr<Roi>& roi);
  /// The annotation is about to be deleted by the person.
  void deleting(View& view, const std::shared_ptr<Roi>& roi);

  // --- taking back ---------------------------------------------------------------------------------------------------

  bool canUndo() const { return lastThatHolds(done_, Direction::back) != done_.rend(); }
  bool canRedo() const { return lastThatHolds(undone_, Direction::again) != undone_.rend(); }
  /// False, and nothing has happened, when there is nothing to take back, or to do again.
  bool undo() { return step(done_, undone_, Direction::back); }
  bool redo() { return step(undone_, done_, Direction::again); }
  void forget(const View& view);

 private:
  enum class Direction { back, again };

  struct VertexMove {
    std::weak_ptr<Roi> roi;
    std::size_t vertex = 0;
    pelmar::PixelPoint from;
    pelmar::PixelPoint to;
  };
  struct ShapeMove {
    std::weak_ptr<Roi> roi;
    std::vector<pelmar::PixelPoint> from;
    std::vector<pelmar::PixelPoint> to;
  };
  /// Where an annotation stood: in the list of a slice, before so many others.
  struct Place {
    std::size_t slice = 0;
    std::size_t index = 0;
  };
  /// An annotation came or went.
  struct Presence {
    std::weak_ptr<Roi> roi;
    std::shared_ptr<Roi> kept;  ///< the same while it stands in no list, so that it can come back
    std::vector<Place> places;  ///< where it is put back
    bool deleted = false;       ///< by the edit; else it was drawn
  };
  struct TextChange {
    std::weak_ptr<Roi> roi;
    std::string from;
    std::string to;
  };
  using Change = std::variant<VertexMove, ShapeMove, Presence, TextChange>;
  struct Edit {
    std::weak_ptr<View> view;
    Change what;
  };
  using Edits = std::vector<Edit>;

  void add(View& view, Change what);
  static bool holds(const Edit& edit, Direction direction);
  static Edits::const_reverse_iterator lastThatHolds(const Edits& edits, Direction direction);
  static bool step(Edits& from, Edits& onto, Direction direction);
  static void move(View& view, const VertexMove& moved, Direction direction);
  static void move(View& view, const ShapeMove& moved, Direction direction);
  static void takeOut(View& view, Presence& presence);
  static void putBack(View& view, Presence& presence);
  static std::vector<Place> placesOf(const View& view, const std::shared_ptr<Roi>& roi);

  Edits done_;    ///< the last one at the end
  Edits undone_;  ///< the one that was taken back last at the end
};

}  // namespace workstation
