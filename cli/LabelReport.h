#pragma once

#include <ostream>

#include "cli/Labelling.h"

namespace cli {

/// For people: what was drawn on, the discs, and which slices of each axial series carry which level.
void printLabelling(std::ostream& out, const Labelling& labelling);

/// For programs: one JSON object.
void printLabellingAsJson(std::ostream& out, const Labelling& labelling);

}  // namespace cli
