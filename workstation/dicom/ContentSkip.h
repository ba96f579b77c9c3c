#pragma once

#include <optional>

#include "host/Database.h"

namespace workstation {

/// The bytes of a report's file without its Content Sequence and its evidence: of a study of some thousand slices they
/// are nearly all of it, and the toolkit takes longer over their structure than over all else that opening a study
/// needs. Nothing when the file is not in explicit VR little endian, or when a length in it does not fit. Internal to
/// this folder.
std::optional<pelmar::Bytes> withoutContent(const pelmar::Bytes& file);

}  // namespace workstation
