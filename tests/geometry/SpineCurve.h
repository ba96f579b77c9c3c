#pragma once
// The spine curve, made from what a test gives the plug-in as input.

#include <vector>

#include "tests/geometry/SpineStudy.h"

namespace vertana {

struct SpineCurve : SpineStudy {
  void useRegion(long region, bool additionalVertebra = false) {
    filter.setAnatomicalRegion(region);
    filter.setAdditionalVertebra(additionalVertebra);
    host.calls.clear();
  }
};

/// Down the image from (100, 0), ten pixels a step.
inline std::vector<pelmar::PixelPoint> downFromHead(const std::vector<double>& steps) {
  std::vector<pelmar::PixelPoint> points;
  for (const double step : steps) points.push_back({100, 10 * step});
  return points;
}

}  // namespace vertana
