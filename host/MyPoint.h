#pragma once

#include "host/Geometry.h"

namespace pelmar {

/// A 2D point in image pixels, element of an annotation's point list. A value: lists hold their own copies.
class MyPoint {
 public:
  MyPoint() = default;
  /// Makes one.
  static MyPoint point(PixelPoint position) { return MyPoint(position); }
  /// Its position.
  PixelPoint point() const { return position_; }
  friend bool operator==(const MyPoint&, const MyPoint&) = default;

 private:
  explicit MyPoint(PixelPoint position) : position_(position) {}
  PixelPoint position_;
};

}  // namespace pelmar
