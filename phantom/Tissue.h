#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "phantom/Anatomy.h"
#include "phantom/SpineFrame.h"

namespace phantom {

/// What the scanner sees.
enum class Contrast { T2, Ct };

/// The patient around the spine: the signal at every place, without noise. T2: 0 (air) to about 1000 (fluid);
/// CT: Hounsfield units.
class Tissue {
 public:
  Tissue(const SpineShape& shape, Contrast contrast, std::uint64_t seed);

  float signal(Vec3 patient) const;

 private:
  /// One place, seen from everything that needs to know where it is.
  struct Place {
    Vec3 patient;
    SpinePoint at;
    const Section& section;
    std::size_t level = 0;
  };
  using Signal = std::optional<float>;  ///< nothing: the structure is not at this place

  Signal canal(const Place& place) const;
  Signal neural(const Place& place, double radius) const;
  float neuralOrFluid(const Place& place) const;
  Signal skull(const Place& place) const;
  Signal atlasAndAxis(const Place& place) const;
  Signal column(const Place& place) const;
  Signal vertebralBody(const Place& place, const SpineLevel& level, double radius, bool fused) const;
  float discSignal(const Place& place, std::size_t index, double radius) const;
  Signal posteriorElements(const Place& place, std::size_t vertebra) const;
  Signal sacralWing(const Place& place) const;
  Signal foramen(const Place& place) const;
  Signal muscle(const Place& place) const;
  Signal front(const Place& place) const;
  Signal neckFront(const Place& place) const;
  Signal chest(const Place& place) const;
  Signal abdomen(const Place& place) const;
  float remainder(const Place& place, double depthMm) const;

  /// Depth below the skin, mm: negative in the air around the patient.
  double depthBelowSkin(const Place& place) const;
  float bone(const Place& place, double depthMm) const;
  /// Smooth irregularity in -1 .. 1 with details of the given size.
  float texture(Vec3 patient, double sizeMm) const;

  const SpineShape* shape_;
  Anatomy anatomy_;
  SpineFrame frame_;
  bool ct_;
  std::uint64_t seed_;
  std::vector<double> skinBaseY_;  ///< the centre line's y, smoothed, every mm down from skinTopZ_
  double skinTopZ_ = 0;
};

}  // namespace phantom
