#pragma once
// Disc labels as the Spinal Cord Toolbox takes them: one voxel a disc, its value the disc's number.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/Labelling.h"
#include "cli/export/Nifti.h"
#include "workstation/model/Stacks.h"

namespace cli {

/// The toolbox's number of a disc: C2-C3 = 3 to L5-S1 = 25. Nothing for any other level.
std::optional<std::uint8_t> sctNumber(std::string_view disc);

/// The labelled voxels of a file. The joint of skull and atlas, C0-C1, is no disc and has none. A Failure's sentence
/// says what keeps the whole labelling from being exported: a disc without a number, outside the grid or in the voxel
/// of another one, or no disc at all.
Expected<std::vector<LabelledVoxel>> sctLabels(const std::vector<LabelledPlane>& planes, const VoxelGrid& grid);

/// Whether the labelling has the level C0-C1, which is left out.
bool hasSkullJoint(const Labelling& labelling);

/// The file, on the voxels of the series that was drawn on. `series` is null where it is not known or not there.
Expected<std::string> sctDiscLabels(const Labelling& labelling, const workstation::Series* series);

}  // namespace cli
