#pragma once
// Label volumes as NIfTI-1 files.

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "cli/export/VoxelGrid.h"

namespace cli {

/// One voxel that is not 0.
struct LabelledVoxel {
  std::array<int, 3> voxel{};  ///< column, row, slice; inside the grid
  std::uint8_t value = 0;
};

/// A single NIfTI-1 file ("n+1", little endian, unsigned bytes, no extensions): the voxels in the order of the grid,
/// columns fastest, and the grid's place in the patient as sform and qform (scanner coordinates, mm, RAS), which agree.
/// `description` is cut after 79 bytes.
std::string niftiFile(const VoxelGrid& grid, const std::vector<LabelledVoxel>& labels, const std::string& description);

/// The bytes as a gzip file; the same bytes give the same file.
std::string gzipped(const std::string& bytes);

}  // namespace cli
