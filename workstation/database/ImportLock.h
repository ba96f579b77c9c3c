#pragma once
// One import at a time into a database folder.

#include <filesystem>
#include <functional>

#include "workstation/database/AtomicFile.h"
#include "workstation/model/Outcome.h"

namespace workstation {

/// Waits until no other process, and no other database in this one, imports into the folder; asks `goesOn` some times a
/// second meanwhile, and not at all when nobody does. Held as long as the descriptor that it answers; one that is not
/// open says that `goesOn` has ended the wait. Where the file system has no locks nothing is waited for. Opening a
/// database never waits for this lock. Refused when the file `import.lock` cannot be opened in the folder.
Result<Descriptor> lockForImport(const std::filesystem::path& folder, const std::function<bool()>& goesOn);

}  // namespace workstation
