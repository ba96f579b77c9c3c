#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/Geometry.h"

namespace workstation {

class Roi;
class View;

/// What the left button and the keys do to the annotations of one view. Positions are pixels of the shown slice.
///
/// A line, an arrow and a point live from press to release, a polygon over many clicks until a double click, Return, a
/// choice of tool or stop(); a text is there at once. The plug-in hears of every step and may do anything to the
/// annotation meanwhile, so that after each notification the annotation is looked at anew.
class Drawing {
 public:
  explicit Drawing(View& view) : view_(view) {}

  /// Goes on with a polygon, or drags a vertex of a selected annotation within reach, or begins an annotation when
  /// the left button draws; when it does not, or writes text, selects an annotation within reach and drags it as a
  /// whole.
  void press(pelmar::PixelPoint at);
  /// The same without a look for vertices. Answers what was begun or gone on with, which may be gone by then; null
  /// when the left button does not draw.
  std::shared_ptr<Roi> pressToDraw(pelmar::PixelPoint at);
  /// Takes hold of a vertex.
  void pressVertex(const std::shared_ptr<Roi>& roi, std::size_t vertex, pelmar::PixelPoint at);
  /// Selects an annotation, as the only one of the slice, and takes hold of it.
  void pressWhole(const std::shared_ptr<Roi>& roi, pelmar::PixelPoint at);
  void move(pelmar::PixelPoint at);
  void release(pelmar::PixelPoint at);
  /// Ends the polygon that is being drawn, as a double click and Return do.
  void finishPolygon();
  /// Ends drawing and dragging without a notification.
  void stop();
  /// Ends drawing and dragging because a tool was chosen; deletes what has fewer than two distinct points.
  void endForTool();
  /// Puts a vertex of an annotation elsewhere and posts the change with "mouseUp", as at the end of a drag.
  void changeVertex(const std::shared_ptr<Roi>& roi, std::size_t vertex, pelmar::PixelPoint to);
  /// Puts all vertices of an annotation elsewhere and posts the change with "mouseUp".
  void changeShape(const std::shared_ptr<Roi>& roi, const std::vector<pelmar::PixelPoint>& to);
  /// Places a text of the person's, selected, on the slice that is shown, centred there.
  std::shared_ptr<Roi> addText(pelmar::PixelPoint at, const std::string& text);
  /// Changes a text and posts the change with "mouseUp".
  void changeText(const std::shared_ptr<Roi>& roi, const std::string& text);
  /// Posts that an annotation has changed, unless it stands in no list.
  void postChanged(const std::shared_ptr<Roi>& roi, bool mouseUp);
  /// Forgets everything; the view shows something else or goes.
  void forget();

  /// What is being drawn; null when nothing is.
  std::shared_ptr<Roi> drawn() const;
  /// Whether a press there would take hold of an annotation.
  bool wouldHold(pelmar::PixelPoint at) const;
  /// Whether the button that is pressed draws or holds an annotation.
  bool holds() const;
  /// The selectable annotation of the shown slice whose line passes the pixel within reach, or a text of the person's
  /// that covers it, the uppermost one; null when there is none. The place of other texts is not the person's to
  /// choose.
  std::shared_ptr<Roi> annotationWithinReach(pelmar::PixelPoint at) const;
  /// Whether it is one of those that annotationWithinReach looks for; `pointer` as the view has it.
  bool isWithinReach(const Roi& roi, const pelmar::ViewPoint& pointer) const;
  /// Ends the selection of every annotation of the shown slice but this one; null: of all.
  void deselectOthers(const Roi* but);
  /// Where the pointer was last.
  pelmar::PixelPoint pointer() const { return pointer_; }

 private:
  struct Grip {
    std::shared_ptr<Roi> roi;
    std::size_t vertex = 0;
  };

  /// Whether a press beside vertices takes hold of an annotation as a whole.
  bool takesWhole() const;
  Grip vertexWithinReach(pelmar::PixelPoint at) const;
  std::shared_ptr<Roi> begin(pelmar::PixelPoint at, long type);
  void addVertex(const std::shared_ptr<Roi>& roi, pelmar::PixelPoint at);
  void setVertex(const std::shared_ptr<Roi>& roi, std::size_t vertex, pelmar::PixelPoint at);
  void drag(const std::shared_ptr<Roi>& roi, pelmar::PixelPoint at);
  /// Tells the person's log how far the drag has come; `dropped`: that it is over.
  void tellDrag(pelmar::PixelPoint at, bool dropped);
  void endDrag(const std::shared_ptr<Roi>& roi);
  void endDrawing(const std::shared_ptr<Roi>& roi);
  void postAdded(const std::shared_ptr<Roi>& roi);

  View& view_;
  std::weak_ptr<Roi> drawn_;      ///< in mode 1
  std::weak_ptr<Roi> dragged_;    ///< in mode 3
  std::weak_ptr<Roi> pressed_;    ///< what the button was pressed for; its release is told even if drawing has ended
  std::size_t vertex_ = 0;        ///< of the dragged one
  pelmar::PixelPoint grabbedAt_;  ///< where the dragged vertex was
  std::vector<pelmar::PixelPoint> grabbedShape_;  ///< where all vertices were, when the whole is held; else empty
  pelmar::PixelPoint grabOffset_;  ///< from the pointer to the dragged vertex; of a whole, to where it was grabbed
  pelmar::PixelPoint pointer_;
};

}  // namespace workstation
