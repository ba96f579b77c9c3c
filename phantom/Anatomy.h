#pragma once

#include <cstdint>
#include <vector>

#include "phantom/SpineShape.h"

namespace phantom {

/// The sizes of what lies around the centre line at one place along it. Half extents, mm.
struct Section {
  double order = 0;  ///< which vertebra, as a number: 1 C0, 2 C1-C2, 3 C3 .. 7 C7, 8 T1 .. 19 T12, 20 L1 .. 25 S1 .. 30
  double bodyWidth = 0;
  double bodyDepth = 0;
  double canalWidth = 0;
  double canalDepth = 0;
  double cordWidth = 0;  ///< 0 below the conus
  double cordDepth = 0;
  double spinousReach = 0;  ///< from the canal's back wall to the tip of the spinous process (not a half)
  double spinousDrop = 0;   ///< mm towards the feet for each mm towards the back
  double spinousHeight = 0;
  double bodyOutlineWidth = 0;  ///< of the whole body of the patient
  double bodyOutlineFront = 0;
  double bodyOutlineBack = 0;

  /// From the centre line back to the middle of the canal.
  double canalBack() const { return bodyDepth + canalDepth + 1.5; }
};

/// What one disc looks like.
struct DiscLook {
  double brightness = 1;  ///< of its nucleus: 0 as dark as the annulus, 1 full of water
  double bulgeMm = 0;     ///< how far it reaches into the canal
};

/// The sizes along the spine and the look of its discs; by seed the discs are healthy or worn and the cord ends higher
/// or lower.
class Anatomy {
 public:
  Anatomy(const SpineShape& shape, std::uint64_t seed);

  const SpineShape& shape() const { return *shape_; }
  /// Clamped to the line's ends.
  const Section& sectionAt(double along) const;
  /// Index into shape().levels(), clamped to the line's ends.
  std::size_t levelIndexAt(double along) const;
  const DiscLook& disc(std::size_t levelIndex) const { return discs_[levelIndex]; }

 private:
  std::size_t stationAt(double along) const;

  const SpineShape* shape_;
  std::vector<Section> sections_;          ///< every sectionStepMm along the line
  std::vector<unsigned char> levelIndex_;  ///< the same
  std::vector<DiscLook> discs_;            ///< one a level, unused for vertebrae
};

}  // namespace phantom
