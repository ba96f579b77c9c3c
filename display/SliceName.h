#pragma once
// How a slice gets the name of the level that it cuts, once its distances to the disc planes are known.

#include <cstddef>

#include "host/Geometry.h"

namespace vertana {

/// A neighbour of the plane that is nearest to the slice.
struct NeighbourPlane {
  bool exists = false;
  float distanceMm = 0;  ///< from the slice's query point to the neighbour
  float angleRad = 0;    ///< between the directions from the query point to the nearest plane and to this one
};

/// What a slice is called after.
enum class SliceNameKind {
  NearestPlane,   ///< the nearest plane's name
  OtherPlane,     ///< the plane at `index`
  Vertebra,       ///< the region's vertebra at `index` (which may lie outside the list)
  UpperVertebra,  ///< what lies above the region's first disc
  LowerVertebra,  ///< what lies below its last disc
  None,           ///< no name: far beyond the ends
};

struct SliceNameChoice {
  SliceNameKind kind = SliceNameKind::NearestPlane;
  long index = 0;
};

/// The choice for a slice whose nearest plane is `nearest`, at `distanceMm`. Distances are in single precision, thirds
/// are taken in double; a slice exactly a third of the way still carries the nearest disc's name.
SliceNameChoice chooseSliceName(long nearest, float distanceMm, const NeighbourPlane& previous,
                                const NeighbourPlane& next);

}  // namespace vertana
