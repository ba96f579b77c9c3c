#pragma once

#include <string>

#include "host/Geometry.h"
#include "host/Value.h"

namespace workstation {

enum class FlipAxis;

/// Hears what the person does with viewers, annotations and the palette, by whichever way it comes. Each act is told
/// once it is done, where nothing else is said, and only if it was not refused. What the plug-in does in answer is no
/// act, nor is the end of the program. Main thread only; who hears may look at the workstation, but not act on it.
class PersonLog {
 public:
  PersonLog() = default;
  virtual ~PersonLog() = default;
  PersonLog(const PersonLog&) = delete;
  PersonLog& operator=(const PersonLog&) = delete;

  // --- viewers -----------------------------------------------------------------------------------------------------
  virtual void viewerOpened(int /*viewer*/) {}
  virtual void viewerClosed(int /*viewer*/) {}
  virtual void seriesSwitched(int /*viewer*/) {}
  virtual void broughtToFront(int /*viewer*/) {}
  virtual void menuChosen(int /*viewer*/, const std::string& /*title*/) {}
  /// To another slice than before.
  virtual void scrolled(int /*viewer*/, int /*slice*/) {}
  virtual void zoomed(int /*viewer*/, double /*scale*/) {}
  virtual void panned(int /*viewer*/, double /*dx*/, double /*dy*/) {}
  virtual void rotated(int /*viewer*/, double /*degrees*/) {}
  virtual void flipped(int /*viewer*/, FlipAxis /*axis*/) {}
  virtual void mouseToolChosen(int /*viewer*/, long /*tag*/) {}
  virtual void annotationToolChosen(int /*viewer*/, long /*tag*/) {}

  // --- annotations -------------------------------------------------------------------------------------------------
  // Points are pixels of the shown slice. What happens while the button is down is told before the plug-in hears of it.

  /// A line, polygon, arrow or point is there, with its first point.
  virtual void drawingBegun(int /*viewer*/, int /*slice*/, long /*type*/, pelmar::PixelPoint /*at*/) {}
  /// Another point of the polygon.
  virtual void pointAdded(int /*viewer*/, pelmar::PixelPoint /*at*/) {}
  /// The free end of the line, arrow or point was moved.
  virtual void lineMoved(int /*viewer*/, pelmar::PixelPoint /*to*/) {}
  /// It is ended, where it was let go.
  virtual void lineReleased(int /*viewer*/, pelmar::PixelPoint /*at*/) {}
  /// A text of the person's is there or was changed.
  virtual void textWritten(int /*viewer*/) {}
  /// The polygon is ended by the person.
  virtual void polygonFinished(int /*viewer*/) {}
  virtual void vertexGrabbed(int /*viewer*/, int /*annotation*/, int /*vertex*/) {}
  virtual void vertexMoved(int /*viewer*/, pelmar::PixelPoint /*to*/) {}
  virtual void vertexDropped(int /*viewer*/, pelmar::PixelPoint /*at*/) {}
  /// An annotation is about to be selected as the only one of the slice, or, with -1, none.
  virtual void selecting(int /*viewer*/, int /*annotation*/) {}
  /// The selected annotation was moved as a whole.
  virtual void wholeMoved(int /*viewer*/) {}
  /// The annotation is about to be deleted.
  virtual void deleting(int /*viewer*/, int /*annotation*/) {}
  virtual void undone() {}
  virtual void redone() {}

  // --- the palette -------------------------------------------------------------------------------------------------
  virtual void palettePressed(const std::string& /*action*/) {}
  virtual void paletteClosed() {}
  virtual void paletteValueSet(const std::string& /*key*/, const pelmar::Value& /*value*/) {}
};

}  // namespace workstation
