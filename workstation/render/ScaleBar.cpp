#include "workstation/render/ScaleBar.h"

#include <array>
#include <cmath>

#include "workstation/render/NumberText.h"

namespace workstation {

std::optional<ScaleBar> scaleBarFor(double pointsPerMm, double longestPoints) {
  if (!std::isfinite(pointsPerMm) || !(pointsPerMm > 0)) return std::nullopt;
  constexpr std::array<double, 10> lengthsMm{1000, 500, 200, 100, 50, 20, 10, 5, 2, 1};
  for (const double lengthMm : lengthsMm) {
    const double lengthPoints = lengthMm * pointsPerMm;
    if (lengthPoints > longestPoints) continue;
    const std::string text = lengthMm >= 10 ? numberText(lengthMm / 10) + " cm" : numberText(lengthMm) + " mm";
    return ScaleBar{lengthMm, lengthPoints, text};
  }
  return std::nullopt;
}

}  // namespace workstation
