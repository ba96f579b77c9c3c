#pragma once

#include <functional>
#include <optional>

#include "workstation/gui/ViewerLook.h"
#include "workstation/model/Workstation.h"

namespace workstation {

enum class PointerButton { left, middle, right };

/// A button that goes down in a viewer.
struct PointerPress {
  pelmar::ViewPoint at;
  PointerButton button = PointerButton::left;
  bool doubled = false;  ///< the second press of a double click
};

/// What the pointer does in one viewer, without a widget. The left button draws, holds annotations, or does what the
/// viewer's mouse tool says; the middle one moves the image, the right one enlarges it. From press to release only the
/// button that went down first counts. A viewer that closes meanwhile refuses everything, so nothing happens then.
///
/// In a polygon every click is a vertex, but one on the vertex that was set last: a hand that ends the polygon there
/// with a double click means no other. The second press of a double click ends it and adds none; where the polygon has
/// no more than the vertex of the first press, it goes.
class PointerGestures {
 public:
  /// What the image is shown with just now; nothing for a colour image.
  using ShownWindow = std::function<std::optional<WindowSetting>()>;

  /// The workstation and the look must outlive this.
  PointerGestures(Workstation& workstation, int viewer, ViewerLook& look, ShownWindow shownWindow)
      : workstation_(workstation), viewer_(viewer), look_(look), shownWindow_(std::move(shownWindow)) {}

  void press(const PointerPress& press);
  void move(pelmar::ViewPoint at);
  void release(PointerButton button, pelmar::ViewPoint at);
  /// The viewer is hidden or the pointer was taken away: what is held is let go where it was last.
  void cancel();

  bool isActive() const { return doing_ != Doing::nothing; }
  /// Whether the pointer went farther than a click since the press.
  bool wentFar() const { return wentFar_; }

  /// Enlarges by a factor so that what lies at the point stays there.
  void zoomAbout(pelmar::ViewPoint at, double factor);
  /// Scrolls by so many slices, as far as there are any.
  void scrollBy(int slices);

 private:
  enum class Doing { nothing, annotation, window, pan, zoom, rotate, scroll };

  Doing doingOf(const PointerPress& press) const;
  void pressTwice(pelmar::ViewPoint at);
  /// Nil when none is being drawn.
  pelmar::Ref<pelmar::ROI> drawnPolygon() const;
  bool isOnLastVertex(pelmar::ViewPoint at) const;
  void dragWindow(pelmar::ViewPoint at);
  void dragRotation(pelmar::ViewPoint at);
  void dragSlices(pelmar::ViewPoint at);

  Workstation& workstation_;
  int viewer_;
  ViewerLook& look_;
  ShownWindow shownWindow_;
  Doing doing_ = Doing::nothing;
  PointerButton button_ = PointerButton::left;
  pelmar::ViewPoint pressedAt_;
  pelmar::ViewPoint last_;
  bool wentFar_ = false;
  std::optional<WindowSetting> windowAtPress_;
  int sliceAtPress_ = 0;
};

}  // namespace workstation
