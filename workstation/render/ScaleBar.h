#pragma once

#include <optional>
#include <string>

namespace workstation {

/// A bar of a round length.
struct ScaleBar {
  double lengthMm = 0;
  double lengthPoints = 0;
  std::string text;  ///< "5 cm", "2 mm"
};

/// The longest bar of 1, 2 or 5 times a power of ten millimetres, from 1 mm to 1 m, that is not longer than
/// `longestPoints`; nothing where none fits or the scale is not a number above 0.
std::optional<ScaleBar> scaleBarFor(double pointsPerMm, double longestPoints);

}  // namespace workstation
