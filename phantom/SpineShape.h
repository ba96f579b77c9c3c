#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "phantom/Vec3.h"

namespace phantom {

/// A stretch of the spine's centre line: a vertebral body, or the disc between two.
struct SpineLevel {
  std::string name;  ///< "L4", "L4-L5"; atlas and axis together are the vertebra "C1-C2"
  bool disc = false;
  double start = 0;  ///< mm along the centre line from its head end
  double end = 0;    ///< > start

  double centre() const { return 0.5 * (start + end); }
};

/// The centre line of a whole spine, from the skull base to the coccyx, and the levels on it.
///
/// The line runs through the middle of the vertebral bodies, head to foot, and is smooth: cervical lordosis, thoracic
/// kyphosis, lumbar lordosis, and a little scoliosis. Heights are those of adults. The same arguments give the same
/// spine. The discs of the region lie around the origin of the patient's axes, some millimetres off.
class SpineShape {
 public:
  /// `region` is 0 cervical, 1 thoracic or 2 lumbar. With `extraVertebra` the spine has one more vertebra at the lower
  /// end of that region (C8, T13 or L6).
  SpineShape(int region, bool extraVertebra, std::uint64_t seed);

  /// Every level of the spine, head to foot: the first is "C0" (skull base), the last "Coccyx". The sacrum's segments
  /// S1 to S5 have no discs between them.
  std::span<const SpineLevel> levels() const { return levels_; }
  /// The region's vertebrae and discs, head to foot. Neighbouring regions share the disc between them.
  std::vector<SpineLevel> regionVertebrae() const;
  std::vector<SpineLevel> regionDiscs() const;
  /// The level at `along`, an index into levels(); what lies beyond an end belongs to the end's level.
  std::size_t levelIndexAt(double along) const;

  /// The whole line's length, mm.
  double length() const { return length_; }
  /// The point of the line `along` mm from its head end; clamped to the line.
  Vec3 point(double along) const;
  /// The unit vector along the line, towards the feet, at `along`; clamped to the line.
  Vec3 tangent(double along) const;
  /// Where the line crosses the plane through `onPlane` with the normal `normal` (not zero): mm along the line, of
  /// several crossings the one nearest to `onPlane`; nothing where it does not.
  std::optional<double> crossing(Vec3 onPlane, Vec3 normal) const;

 private:
  struct Knot {
    double along;
    double angle;  ///< radians; > 0: towards the feet the line runs backwards
  };

  void layLevels(bool extraVertebra, std::uint64_t seed);
  void bend(std::uint64_t seed);
  void sample();
  void moveToOrigin(std::uint64_t seed);
  double sagittalAngle(double along) const;

  int region_;
  std::vector<SpineLevel> levels_;
  std::size_t firstVertebra_ = 0;  ///< of the region, in levels_
  std::size_t lastVertebra_ = 0;
  double length_ = 0;
  std::vector<Knot> knots_;
  double scoliosisAngle_ = 0;
  double scoliosisWaveMm_ = 1;
  double scoliosisPhase_ = 0;
  std::vector<Vec3> points_;  ///< every pointStepMm along the line
};

}  // namespace phantom
