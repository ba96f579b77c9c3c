#pragma once

#include <cstdint>
#include <vector>

#include "phantom/Studies.h"
#include "phantom/Tissue.h"

namespace phantom {

/// The pixels of one slice, row by row: the tissue's signal blurred over neighbouring pixels as a scanner does, with
/// noise that `noiseKey` determines. T2: 0 .. 4095; CT: Hounsfield units, -1024 .. 3071. Callable from several threads.
std::vector<std::int16_t> renderSlice(const Tissue& tissue, const SlicePlane& plane, Contrast contrast,
                                      std::uint64_t noiseKey);

}  // namespace phantom
