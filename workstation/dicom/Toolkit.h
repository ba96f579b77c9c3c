#pragma once

#include <string>

namespace workstation {

/// Sets the DICOM toolkit up once in the process: its decoders are registered and its log is quiet. Safe to call from
/// several threads and as often as one likes; every entry of this folder calls it. Returns a whole sentence when the
/// toolkit's data dictionary is missing (files without explicit value representations can't be read then), else an
/// empty string.
const std::string& prepareToolkit();

}  // namespace workstation
