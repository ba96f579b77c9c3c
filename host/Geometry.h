#pragma once
// Plain values for points, sizes, rectangles, vectors and colours. The frame of a point is its type, so that a pixel
// cannot be passed where millimetres are meant.

namespace pelmar {

/// A position on one slice, in pixels: x to the right, y down, whole numbers at pixel centres, (0, 0) the first pixel.
/// The coordinates of a view's drawing surface ("GL") are the same numbers, of the image that the view shows.
struct PixelPoint {
  double x = 0;
  double y = 0;
  friend bool operator==(const PixelPoint&, const PixelPoint&) = default;
};

/// An extent on one slice, in pixels.
struct PixelSize {
  double width = 0;
  double height = 0;
  friend bool operator==(const PixelSize&, const PixelSize&) = default;
};

/// A rectangle on one slice, in pixels.
struct PixelRect {
  PixelPoint origin;
  PixelSize size;
  friend bool operator==(const PixelRect&, const PixelRect&) = default;
};

/// A position in a slice's own plane, in millimetres from the centre of its first pixel along rows and columns.
struct SlicePoint {
  double x = 0;
  double y = 0;
};

/// A position in a view, in points: origin at the bottom left of the view, y up.
struct ViewPoint {
  double x = 0;
  double y = 0;
};

/// A position in a window, in points: origin at the bottom left of the window, y up.
struct WindowPoint {
  double x = 0;
  double y = 0;
};

/// A position on the screen, in points: origin at the bottom left of the primary screen, y up.
struct ScreenPoint {
  double x = 0;
  double y = 0;
};

/// A rectangle in points, in the frame that the operation names (a view's in its window, a window's on the screen).
struct FrameRect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;
};

/// Three single-precision numbers: a patient position in millimetres (LPS: x to the patient's left, y to the back,
/// z to the head) or a direction in the same axes.
struct Vector3f {
  float x = 0;
  float y = 0;
  float z = 0;
};

/// Three double-precision numbers in the same axes, as the host's vector functions take them.
struct N3Vector {
  double x = 0;
  double y = 0;
  double z = 0;
};

/// Device-independent colour, each component 0..1.
struct Colour {
  double red = 0;
  double green = 0;
  double blue = 0;
  double alpha = 1;
  friend bool operator==(const Colour&, const Colour&) = default;
};

}  // namespace pelmar
