#pragma once

#include <iosfwd>

#include "cli/documents/CommandTable.h"

namespace cli {

/// Writes the completion script for bash. It needs nothing but bash itself.
void writeCompletion(std::ostream& out, const ProgramFacts& facts);

}  // namespace cli
