#pragma once

#include <filesystem>
#include <string>

#include "workstation/database/AtomicFile.h"

namespace cli {

/// Writes an export, whole or not at all. An ordinary file of that name is replaced, the one that a link leads to
/// rather than the link; a DICOM file and what is no ordinary file (a folder, a device) are left as they are, which the
/// sentence of a refusal says.
workstation::Outcome writeExport(const std::filesystem::path& file, const std::string& bytes,
                                 const workstation::DiskCalls& disk = {});

}  // namespace cli
