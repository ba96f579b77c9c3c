#pragma once
// The discs as markups of 3D Slicer (.mrk.json).

#include <string>

#include "cli/Labelling.h"

namespace cli {

/// The file: a list of points, one a disc, and a plane a disc, all named as the discs; LPS, mm. A Failure names a disc
/// whose plane has no direction.
Expected<std::string> slicerMarkups(const Labelling& labelling);

}  // namespace cli
