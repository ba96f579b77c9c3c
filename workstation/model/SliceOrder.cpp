#include "workstation/model/SliceOrder.h"

#include <algorithm>
#include <cmath>
#include <tuple>

#include "workstation/model/Stacks.h"
#include "workstation/model/Vector3.h"

namespace workstation {
namespace {

/// Two slices are of one orientation when their normals differ by no more than 1 degree.
const double cosineOfOneDegree = std::cos(std::acos(-1.0) / 180);

/// Slices of the same orientation that are further apart than this, with another orientation between them, lie on
/// different discs: a block steps through one disc in a few millimetres, and discs are more than this apart.
constexpr double separateBlocksMm = 10;

/// The direction in which slices of a plane are shown one after the other: to the left, to the back, to the feet.
Vector3 showingDirection(Plane plane) {
  switch (plane) {
    case Plane::sagittal:
      return {1, 0, 0};
    case Plane::coronal:
      return {0, 1, 0};
    case Plane::axial:
      return {0, 0, -1};
    case Plane::unknown:
      break;
  }
  return {};
}

Vector3 centreOf(const ImageRecord& image) {
  const ImageGeometry& geometry = *image.geometry;
  const double halfWidthMm = 0.5 * (image.columns - 1) * geometry.spacingX;
  const double halfHeightMm = 0.5 * (image.rows - 1) * geometry.spacingY;
  return geometry.position + halfWidthMm * geometry.row + halfHeightMm * geometry.column;
}

struct PlacedSlice {
  ImageRecord record;
  Vector3 normal{};     ///< unit, pointing in the showing direction
  double axisMm = 0;    ///< of the slice's centre, along the showing direction
  double withinMm = 0;  ///< of the slice's centre, along the normal of its block
};

struct Block {
  std::vector<PlacedSlice> slices;
  double meanAxisMm = 0;
};

PlacedSlice place(ImageRecord image, const Vector3& direction) {
  PlacedSlice slice;
  slice.normal = normalized(cross(image.geometry->row, image.geometry->column));
  if (dot(slice.normal, direction) < 0) slice.normal = -1.0 * slice.normal;
  slice.axisMm = dot(centreOf(image), direction);
  slice.record = std::move(image);
  return slice;
}

/// Puts slices of one orientation together, each group in the order of its normal.
std::vector<Block> groupByOrientation(std::vector<PlacedSlice> slices) {
  std::vector<Block> blocks;
  for (PlacedSlice& slice : slices) {
    auto block = std::find_if(blocks.begin(), blocks.end(), [&](const Block& candidate) {
      return dot(candidate.slices.front().normal, slice.normal) >= cosineOfOneDegree;
    });
    if (block == blocks.end()) block = blocks.insert(blocks.end(), Block{});
    block->slices.push_back(std::move(slice));
  }
  for (Block& block : blocks) {
    const Vector3 normal = block.slices.front().normal;
    for (PlacedSlice& slice : block.slices) slice.withinMm = dot(centreOf(slice.record), normal);
    std::stable_sort(block.slices.begin(), block.slices.end(),
                     [](const PlacedSlice& a, const PlacedSlice& b) { return a.withinMm < b.withinMm; });
  }
  return blocks;
}

/// Splits a group where slices of another orientation lie in a gap too wide for one block. `axisMm` holds the places
/// of all slices, ascending.
void splitAtGaps(Block group, const std::vector<double>& axisMm, std::vector<Block>& blocks) {
  Block current;
  for (PlacedSlice& slice : group.slices) {
    if (!current.slices.empty()) {
      const double from = current.slices.back().axisMm;
      const double to = slice.axisMm;
      const auto next = std::upper_bound(axisMm.begin(), axisMm.end(), from);
      const bool othersBetween = next != axisMm.end() && *next < to;
      if (to - from > separateBlocksMm && othersBetween) {
        blocks.push_back(std::move(current));
        current = {};
      }
    }
    current.slices.push_back(std::move(slice));
  }
  blocks.push_back(std::move(current));
}

/// By Instance Number, then frame; what has no number comes last.
std::tuple<bool, int, int> storedPlace(const ImageRecord& image) {
  return {!image.instanceNumber.has_value(), image.instanceNumber.value_or(0), image.frame};
}

double meanAxisMm(const Block& block) {
  double sum = 0;
  for (const PlacedSlice& slice : block.slices) sum += slice.axisMm;
  return sum / static_cast<double>(block.slices.size());
}

}  // namespace

bool storedBefore(const ImageRecord& a, const ImageRecord& b) {
  const auto keyA = storedPlace(a);
  const auto keyB = storedPlace(b);
  if (keyA != keyB) return keyA < keyB;
  if (a.sopInstanceUid != b.sopInstanceUid) return a.sopInstanceUid < b.sopInstanceUid;
  return a.file < b.file;
}

void sortSlices(std::vector<ImageRecord>& slices, Plane plane) {
  std::sort(slices.begin(), slices.end(), &storedBefore);
  if (plane == Plane::unknown) return;
  const Vector3 direction = showingDirection(plane);
  std::vector<PlacedSlice> placed;
  std::vector<double> axisMm;
  for (ImageRecord& image : slices) {
    placed.push_back(place(std::move(image), direction));
    axisMm.push_back(placed.back().axisMm);
  }
  std::sort(axisMm.begin(), axisMm.end());
  std::vector<Block> blocks;
  for (Block& group : groupByOrientation(std::move(placed))) splitAtGaps(std::move(group), axisMm, blocks);
  for (Block& block : blocks) block.meanAxisMm = meanAxisMm(block);
  std::stable_sort(blocks.begin(), blocks.end(),
                   [](const Block& a, const Block& b) { return a.meanAxisMm < b.meanAxisMm; });
  slices.clear();
  for (Block& block : blocks) {
    for (PlacedSlice& slice : block.slices) slices.push_back(std::move(slice.record));
  }
}

long orientationCodeOf(const std::vector<const ImageRecord*>& slices) {
  if (slices.empty()) return -1;
  const Plane plane = planeOf(*slices.front());
  if (plane == Plane::unknown) return -1;
  const auto [first, last] =
      std::minmax_element(slices.begin(), slices.end(),
                          [](const ImageRecord* a, const ImageRecord* b) { return storedPlace(*a) < storedPlace(*b); });
  const bool numbered = (*last)->instanceNumber && storedPlace(**first) != storedPlace(**last);
  const ImageRecord& start = numbered ? **first : *slices.front();
  const ImageRecord& end = numbered ? **last : *slices.back();
  const bool against =
      start.geometry && end.geometry && dot(centreOf(end) - centreOf(start), showingDirection(plane)) < 0;
  return 2 * static_cast<long>(plane) + (against ? 1 : 0);
}

}  // namespace workstation
