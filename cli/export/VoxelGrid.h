#pragma once
// A stack of slices as a regular grid of voxels, which is what volume files can tell.

#include <array>
#include <cstddef>
#include <optional>

#include "workstation/model/Outcome.h"
#include "workstation/model/Stacks.h"
#include "workstation/model/Vector3.h"

namespace cli {

/// Voxel (i, j, k) is column i, row j and slice k (in the order of the stack), from 0. Its centre lies at
/// origin + i * columnStep + j * rowStep + k * sliceStep: patient position, mm, LPS. The steps are at right angles.
struct VoxelGrid {
  std::array<int, 3> size{};  ///< columns, rows, slices
  workstation::Vector3 origin{};
  workstation::Vector3 columnStep{};
  workstation::Vector3 rowStep{};
  workstation::Vector3 sliceStep{};

  std::size_t voxelCount() const {
    return static_cast<std::size_t>(size[0]) * static_cast<std::size_t>(size[1]) * static_cast<std::size_t>(size[2]);
  }
};

/// The sides of a grid are told in 16 bits by the files that are made of it, and all of it is held in memory.
constexpr int maximumGridSide = 32767;
constexpr std::size_t maximumGridVoxels = std::size_t{1} << 30;

/// How far a corner of a slice may lie from its place in the grid, mm: positions are often rounded to a tenth.
constexpr double gridToleranceMm = 0.2;

/// The grid of a stack. Where there is none, the problem is a phrase that goes on after "series 1": that its slices
/// lack positions, are fewer than two, differ in size, spacing or direction, are shifted (a tilted stack), not evenly
/// spaced, or too many.
workstation::Result<VoxelGrid> gridOf(const workstation::Stack& stack);

/// The voxel whose centre is nearest to a patient position; nothing where that lies outside of all voxels.
std::optional<std::array<int, 3>> nearestVoxel(const VoxelGrid& grid, const workstation::Vector3& position);

}  // namespace cli
