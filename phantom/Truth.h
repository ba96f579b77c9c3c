#pragma once

#include <string>
#include <vector>

#include "phantom/Phantom.h"
#include "phantom/SpineShape.h"
#include "phantom/Studies.h"

namespace phantom {

/// The truth about one axial slice.
struct SliceTruth {
  std::string sopInstanceUid;
  std::string level;
};

/// The disc or vertebra in which the spine's centre line crosses the slice's plane; beyond the line's ends its first
/// or last level.
std::string levelOf(const SpineShape& shape, const SlicePlane& slice);

/// The text of truth.json.
std::string truthText(const PhantomOptions& options, const SpineShape& shape, const std::string& frameOfReferenceUid,
                      const std::vector<SliceTruth>& slices);

}  // namespace phantom
