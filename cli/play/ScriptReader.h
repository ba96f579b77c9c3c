#pragma once
// Session scripts as the command reads them. Reading is strict: an unknown name or key, a key that is named twice or
// missing, and a value of another type are refused, so that a script that is read means what it says.

#include <string>

#include "cli/ExitStatus.h"
#include "workstation/script/Script.h"

namespace cli {

// The steps are the words of whoever reads and plays a script.
using namespace workstation::script;

/// Reads a script. Refused with one sentence: text that is not JSON is unreadable, what is wrong with a script that is
/// JSON is wrong usage and is told with the number of the step, counted from 1, and the key. What writeScript writes is
/// read back as the same.
Expected<Script> readScript(const std::string& text);

}  // namespace cli
