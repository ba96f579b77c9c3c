#include "cli/export/VoxelGrid.h"

#include <cmath>
#include <string>

namespace cli {

using workstation::cross;
using workstation::dot;
using workstation::ImageRecord;
using workstation::lengthOf;
using workstation::normalized;
using workstation::Result;
using workstation::Stack;
using workstation::Vector3;
// NOLINTBEGIN(misc-unused-using-decls): operators that are used, which the check does not see
using workstation::operator-;
using workstation::operator*;
// NOLINTEND(misc-unused-using-decls)

namespace {

Result<VoxelGrid> noGrid(std::string problem) { return Result<VoxelGrid>::refused(std::move(problem)); }

/// From the first pixel of a slice to the last one of its first row, and of its first column.
Vector3 alongFirstRow(const ImageRecord& slice) {
  return (slice.columns - 1) * slice.geometry->spacingX * slice.geometry->row;
}
Vector3 alongFirstColumn(const ImageRecord& slice) {
  return (slice.rows - 1) * slice.geometry->spacingY * slice.geometry->column;
}

bool isNear(const Vector3& a, const Vector3& b) { return lengthOf(a - b) <= gridToleranceMm; }

/// Whether a slice lies like another one, moved but not turned or stretched.
bool isAlike(const ImageRecord& a, const ImageRecord& b) {
  return a.columns == b.columns && a.rows == b.rows && isNear(alongFirstRow(a), alongFirstRow(b)) &&
         isNear(alongFirstColumn(a), alongFirstColumn(b));
}

/// What keeps the slices from being one behind the other; empty where nothing does.
std::string problemOfSlices(const Stack& stack) {
  for (const auto& slice : stack.slices) {
    if (!slice.geometry) return "has slices without a position in the patient";
  }
  if (stack.slices.size() < 2) return "has one slice only, which has no thickness";
  for (const auto& slice : stack.slices) {
    if (!isAlike(slice, stack.slices.front())) return "has slices that differ in size, pixel spacing or direction";
  }
  return "";
}

/// What is uneven in the places of the slices, which should be those of the grid; empty where nothing is.
std::string problemOfPlaces(const Stack& stack, const VoxelGrid& grid) {
  const auto normal = normalized(grid.sliceStep);
  bool tilted = false;
  for (std::size_t k = 0; k < stack.slices.size(); ++k) {
    const auto aside = stack.slices[k].geometry->position - grid.origin - static_cast<double>(k) * grid.sliceStep;
    const double along = dot(aside, normal);
    if (std::fabs(along) > gridToleranceMm) return "has slices that are not evenly spaced";
    tilted = tilted || lengthOf(aside - along * normal) > gridToleranceMm;
  }
  return tilted ? "is tilted: its slices are shifted against each other" : "";
}

std::string problemOfSize(const VoxelGrid& grid) {
  for (const int side : grid.size) {
    if (side > maximumGridSide) return "has more than " + std::to_string(maximumGridSide) + " voxels along a side";
  }
  if (grid.voxelCount() <= maximumGridVoxels) return "";
  return "has more than " + std::to_string(maximumGridVoxels) + " voxels";
}

}  // namespace

Result<VoxelGrid> gridOf(const Stack& stack) {
  if (const auto problem = problemOfSlices(stack); !problem.empty()) return noGrid(problem);
  const auto& slice = stack.slices.front();
  const auto& first = *slice.geometry;
  const auto gaps = static_cast<double>(stack.slices.size() - 1);
  // Directions in files are rounded; those of a grid are exactly at right angles.
  const auto row = normalized(first.row);
  const auto normal = normalized(cross(first.row, first.column));
  const double extent = dot(stack.slices.back().geometry->position - first.position, normal);
  if (std::fabs(extent) <= gridToleranceMm) return noGrid("has slices that lie in one plane");

  VoxelGrid grid;
  grid.size = {slice.columns, slice.rows, static_cast<int>(stack.slices.size())};
  grid.origin = first.position;
  grid.columnStep = first.spacingX * row;
  grid.rowStep = first.spacingY * cross(normal, row);
  grid.sliceStep = extent / gaps * normal;
  for (const auto& problem : {problemOfPlaces(stack, grid), problemOfSize(grid)}) {
    if (!problem.empty()) return noGrid(problem);
  }
  return Result<VoxelGrid>::of(grid);
}

std::optional<std::array<int, 3>> nearestVoxel(const VoxelGrid& grid, const Vector3& position) {
  const std::array<Vector3, 3> steps{grid.columnStep, grid.rowStep, grid.sliceStep};
  std::array<int, 3> voxel{};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const double along = dot(position - grid.origin, steps[axis]) / dot(steps[axis], steps[axis]);
    const double nearest = std::floor(along + 0.5);
    if (!(nearest >= 0 && nearest < grid.size[axis])) return std::nullopt;
    voxel[axis] = static_cast<int>(nearest);
  }
  return voxel;
}

}  // namespace cli
