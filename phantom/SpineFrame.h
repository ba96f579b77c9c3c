#pragma once

#include <cstddef>
#include <vector>

#include "phantom/SpineShape.h"
#include "phantom/Vec3.h"

namespace phantom {

/// A position seen from the spine, mm: along the centre line from its head end, and from there across the line to the
/// patient's left and to the back.
struct SpinePoint {
  double along = 0;
  double left = 0;
  double back = 0;
};

/// Turns patient positions into positions along and across the spine, quickly: the nearest place on the centre line is
/// looked up in a grid over the sagittal plane and then made exact.
class SpineFrame {
 public:
  explicit SpineFrame(const SpineShape& shape);

  /// Beyond the ends of the line `along` runs on straight: it may be negative or more than the line's length.
  SpinePoint locate(Vec3 patient) const;

 private:
  struct Station {
    Vec3 point;
    Vec3 tangent;
    Vec3 left;
    Vec3 back;
  };

  std::size_t nearestStation(double y, double z) const;

  std::vector<Station> stations_;  ///< every stationMm along the line
  std::vector<unsigned short> nearest_;
  double yStart_ = 0;
  double zStart_ = 0;
  std::size_t yCells_ = 0;
  std::size_t zCells_ = 0;
};

}  // namespace phantom
