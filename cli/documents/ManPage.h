#pragma once

#include <iosfwd>
#include <string>

#include "cli/documents/CommandTable.h"

namespace cli {

/// Writes vertana.1. `date` is that of the page, 2026-11-21.
void writeManPage(std::ostream& out, const ProgramFacts& facts, const std::string& version, const std::string& date);

}  // namespace cli
