#include "cli/export/SctDiscLabels.h"

#include <algorithm>
#include <array>

#include "cli/LabelReport.h"

namespace cli {

namespace {

constexpr std::array<std::string_view, 23> numberedDiscs{
    "C2-C3", "C3-C4", "C4-C5",  "C5-C6",   "C6-C7",   "C7-T1",  "T1-T2", "T2-T3", "T3-T4", "T4-T5", "T5-T6", "T6-T7",
    "T7-T8", "T8-T9", "T9-T10", "T10-T11", "T11-T12", "T12-L1", "L1-L2", "L2-L3", "L3-L4", "L4-L5", "L5-S1"};
constexpr std::uint8_t firstNumber = 3;

constexpr std::string_view skullJoint = "C0-C1";

Failure refused(const std::string& reason) {
  return {ExitNotAllowed, "The labelling cannot be told by Spinal Cord Toolbox labels: " + reason + "."};
}

Expected<LabelledVoxel> labelOf(const LabelledPlane& plane, const VoxelGrid& grid) {
  const auto number = sctNumber(plane.name);
  if (!number) return refused("they have no number for " + plane.name + " (they go from C2-C3 to L5-S1)");
  const auto voxel = nearestVoxel(grid, plane.point);
  if (!voxel) return refused(plane.name + " lies outside the images that were drawn on");
  return LabelledVoxel{*voxel, *number};
}

}  // namespace

std::optional<std::uint8_t> sctNumber(std::string_view disc) {
  const auto found = std::find(numberedDiscs.begin(), numberedDiscs.end(), disc);
  if (found == numberedDiscs.end()) return std::nullopt;
  return static_cast<std::uint8_t>(firstNumber + (found - numberedDiscs.begin()));
}

Expected<std::vector<LabelledVoxel>> sctLabels(const std::vector<LabelledPlane>& planes, const VoxelGrid& grid) {
  std::vector<LabelledVoxel> labels;
  for (const auto& plane : planes) {
    if (plane.name == skullJoint) continue;
    const auto label = labelOf(plane, grid);
    if (!label) return label.failure;
    const auto same = [&](const LabelledVoxel& other) { return other.voxel == label->voxel; };
    if (std::any_of(labels.begin(), labels.end(), same)) {
      return refused(plane.name + " lies in the same voxel as the disc before it");
    }
    labels.push_back(*label);
  }
  if (labels.empty()) return refused("it has no disc that they have a number for");
  return labels;
}

bool hasSkullJoint(const Labelling& labelling) {
  const auto isSkullJoint = [](const LabelledPlane& plane) { return plane.name == skullJoint; };
  return std::any_of(labelling.planes.begin(), labelling.planes.end(), isSkullJoint);
}

Expected<std::string> sctDiscLabels(const Labelling& labelling, const workstation::Series* series) {
  if (series == nullptr) return refused("the study does not hold the series that was drawn on");
  const auto title = seriesTitle(series->number);
  if (series->stacks.size() > 1) return refused(title + " is no single volume: it falls into several stacks");
  const auto grid = gridOf(series->stacks.front());
  if (!grid) return refused(title + " " + grid.problem);
  const auto labels = sctLabels(labelling.planes, *grid);
  if (!labels) return labels.failure;
  return niftiFile(*grid, *labels, "Disc labels, " + regionName(labelling.region) + " spine");
}

}  // namespace cli
