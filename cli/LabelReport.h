#pragma once

#include <ostream>

#include "cli/Labelling.h"

namespace cli {

/// "series 3"; with a stack after the first, "series 3, stack 1".
std::string seriesTitle(const std::optional<int>& series, std::size_t stack = 0);

/// For people: what was drawn on, the discs, and which slices of each axial series carry which level. `beginning`
/// stands before "the lumbar spine ...".
void printLabelling(std::ostream& out, const Labelling& labelling, std::string_view beginning = "Labelled");

/// For programs: one JSON object.
void printLabellingAsJson(std::ostream& out, const Labelling& labelling);

/// The header line of the table.
extern const char* const csvHeader;

/// The rows of a table: one a disc, then one a slice. Texts are quoted where they need it (RFC 4180).
void printLabellingAsCsv(std::ostream& out, const Labelling& labelling);

}  // namespace cli
