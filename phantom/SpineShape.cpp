#include "phantom/SpineShape.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>
#include <numbers>
#include <string_view>

#include "phantom/Random.h"

namespace phantom {
namespace {

constexpr double pointStepMm = 0.5;
constexpr double radiansPerDegree = std::numbers::pi / 180.0;

/// A vertebra with the disc below it. Typical adult heights, mm; a disc of 0 means that the bodies are fused.
struct Vertebra {
  std::string_view name;
  std::string_view nameFromAbove;  ///< how the disc above ends: "C0-C1" above "C1-C2"
  std::string_view nameFromBelow;  ///< how the disc below begins: "C2-C3" below "C1-C2"
  double bodyMm;
  double discBelowMm;
};

constexpr Vertebra plain(std::string_view name, double bodyMm, double discBelowMm) {
  return {name, name, name, bodyMm, discBelowMm};
}

constexpr std::array vertebrae{
    plain("C0", 45, 4),     Vertebra{"C1-C2", "C1", "C2", 37, 5},
    plain("C3", 13.5, 5),   plain("C4", 13.5, 5),
    plain("C5", 13.5, 5.2), plain("C6", 13.5, 5.4),
    plain("C7", 14.5, 5),   plain("T1", 16.5, 4),
    plain("T2", 17.5, 3.6), plain("T3", 18, 3.5),
    plain("T4", 18.5, 3.6), plain("T5", 19, 3.8),
    plain("T6", 19.5, 4),   plain("T7", 20, 4.3),
    plain("T8", 20.5, 4.6), plain("T9", 21, 5),
    plain("T10", 22, 5.4),  plain("T11", 23, 6),
    plain("T12", 24, 6.8),  plain("L1", 26, 8),
    plain("L2", 26.5, 9),   plain("L3", 27, 10),
    plain("L4", 27, 11),    plain("L5", 27.5, 10.5),
    plain("S1", 29, 0),     plain("S2", 24, 0),
    plain("S3", 20, 0),     plain("S4", 17, 0),
    plain("S5", 15, 0),     plain("Coccyx", 30, 0),
};

struct RegionEnds {
  std::string_view first;
  std::string_view last;
  std::string_view extra;
};
constexpr std::array<RegionEnds, 3> regionEnds{{{"C1-C2", "C7", "C8"}, {"T1", "T12", "T13"}, {"L1", "L5", "L6"}}};

/// The line's direction at the middle of a level: degrees from straight down, > 0 towards the back.
struct Posture {
  std::string_view level;
  double degrees;
  int curve;  ///< which of the three curves of the spine it belongs to, and varies with
};
constexpr std::array postures{
    Posture{"C0", -9, 0},  Posture{"C1-C2", -9, 0},   Posture{"C5", 4, 0},   Posture{"T1", 20, 0}, Posture{"T4", 15, 1},
    Posture{"T8", 0, 1},   Posture{"T11", -12, 1},    Posture{"L1", -15, 2}, Posture{"L3", -2, 2}, Posture{"L4", 8, 2},
    Posture{"L5", 24, 2},  Posture{"S1", 40, 2},      Posture{"S2", 42, 2},  Posture{"S3", 28, 2}, Posture{"S4", 4, 2},
    Posture{"S5", -16, 2}, Posture{"Coccyx", -35, 2},
};

}  // namespace

SpineShape::SpineShape(int region, bool extraVertebra, std::uint64_t seed) : region_(region) {
  assert(region >= 0 && region <= 2);
  layLevels(extraVertebra, seed);
  bend(seed);
  sample();
  moveToOrigin(seed);
}

void SpineShape::layLevels(bool extraVertebra, std::uint64_t seed) {
  const RegionEnds& ends = regionEnds[static_cast<std::size_t>(region_)];
  std::vector<Vertebra> order;
  for (const Vertebra& vertebra : vertebrae) {
    order.push_back(vertebra);
    if (extraVertebra && vertebra.name == ends.last) {
      order.push_back(plain(ends.extra, vertebra.bodyMm, vertebra.discBelowMm));
    }
  }

  Random random(seed * 4 + 1);
  const double stature = random.uniform(0.94, 1.06);
  const auto height = [&](double typicalMm) { return typicalMm * stature * random.uniform(0.97, 1.03); };
  for (std::size_t i = 0; i < order.size(); ++i) {
    const Vertebra& vertebra = order[i];
    if (vertebra.name == ends.first) firstVertebra_ = levels_.size();
    if (vertebra.name == (extraVertebra ? ends.extra : ends.last)) lastVertebra_ = levels_.size();
    const double bodyEnd = length_ + height(vertebra.bodyMm);
    levels_.push_back({std::string(vertebra.name), false, length_, bodyEnd});
    length_ = bodyEnd;
    if (vertebra.discBelowMm <= 0) continue;
    const double discEnd = length_ + height(vertebra.discBelowMm);
    const std::string name = std::string(vertebra.nameFromBelow) + "-" + std::string(order[i + 1].nameFromAbove);
    levels_.push_back({name, true, length_, discEnd});
    length_ = discEnd;
  }
}

void SpineShape::bend(std::uint64_t seed) {
  Random random(seed * 4 + 2);
  const std::array<double, 3> strength{random.uniform(0.7, 1.3), random.uniform(0.8, 1.25), random.uniform(0.8, 1.15)};
  for (const Posture& posture : postures) {
    const auto level = std::ranges::find(levels_, posture.level, &SpineLevel::name);
    const double degrees = posture.degrees * strength[static_cast<std::size_t>(posture.curve)];
    knots_.push_back({level->centre(), degrees * radiansPerDegree});
  }
  scoliosisAngle_ = random.uniform(-5.5, 5.5) * radiansPerDegree;
  scoliosisWaveMm_ = random.uniform(240, 340);
  scoliosisPhase_ = random.uniform(0, 2 * std::numbers::pi);
}

// A cubic through the knots whose slope at a knot is that between its neighbours: the line's curvature has no jumps.
double SpineShape::sagittalAngle(double along) const {
  if (along <= knots_.front().along) return knots_.front().angle;
  if (along >= knots_.back().along) return knots_.back().angle;
  const auto after = std::ranges::upper_bound(knots_, along, {}, &Knot::along);
  const auto i = static_cast<std::size_t>(after - knots_.begin()) - 1;
  const auto slope = [&](std::size_t k) {
    if (k == 0 || k + 1 == knots_.size()) return 0.0;
    return (knots_[k + 1].angle - knots_[k - 1].angle) / (knots_[k + 1].along - knots_[k - 1].along);
  };
  const double span = knots_[i + 1].along - knots_[i].along;
  const double t = (along - knots_[i].along) / span;
  const double t2 = t * t;
  const double t3 = t2 * t;
  return (2 * t3 - 3 * t2 + 1) * knots_[i].angle + (t3 - 2 * t2 + t) * span * slope(i) +
         (3 * t2 - 2 * t3) * knots_[i + 1].angle + (t3 - t2) * span * slope(i + 1);
}

Vec3 SpineShape::tangent(double along) const {
  const double at = std::clamp(along, 0.0, length_);
  const double sagittal = sagittalAngle(at);
  const double coronal = scoliosisAngle_ * std::sin(2 * std::numbers::pi * at / scoliosisWaveMm_ + scoliosisPhase_);
  return {std::sin(coronal), std::cos(coronal) * std::sin(sagittal), -std::cos(coronal) * std::cos(sagittal)};
}

void SpineShape::sample() {
  const auto steps = static_cast<std::size_t>(std::ceil(length_ / pointStepMm));
  points_.assign(1, Vec3{});
  for (std::size_t i = 0; i < steps; ++i) {
    points_.push_back(points_.back() + pointStepMm * tangent((static_cast<double>(i) + 0.5) * pointStepMm));
  }
}

void SpineShape::moveToOrigin(std::uint64_t seed) {
  const std::vector<SpineLevel> discs = regionDiscs();
  Vec3 centre;
  for (const SpineLevel& disc : discs) centre = centre + point(disc.centre());
  centre = (1.0 / static_cast<double>(discs.size())) * centre;
  Random random(seed * 4 + 3);
  const Vec3 isocentre{random.uniform(-4, 4), random.uniform(-12, 12), random.uniform(-15, 15)};
  for (Vec3& each : points_) each = each - centre + isocentre;
}

Vec3 SpineShape::point(double along) const {
  const double position = std::clamp(along, 0.0, length_) / pointStepMm;
  const auto i = std::min(static_cast<std::size_t>(position), points_.size() - 2);
  return points_[i] + (position - static_cast<double>(i)) * (points_[i + 1] - points_[i]);
}

std::size_t SpineShape::levelIndexAt(double along) const {
  const auto after = std::ranges::upper_bound(levels_, along, {}, &SpineLevel::start);
  return after == levels_.begin() ? 0 : static_cast<std::size_t>(after - levels_.begin()) - 1;
}

std::optional<double> SpineShape::crossing(Vec3 onPlane, Vec3 normal) const {
  std::optional<double> best;
  double bestDistance = 0;
  double before = dot(points_.front() - onPlane, normal);
  for (std::size_t i = 0; i + 1 < points_.size(); ++i) {
    const double after = dot(points_[i + 1] - onPlane, normal);
    const bool crosses = (before <= 0) != (after <= 0);
    if (crosses) {
      const double along = std::min((static_cast<double>(i) + before / (before - after)) * pointStepMm, length_);
      const double distance = phantom::length(point(along) - onPlane);
      if (!best || distance < bestDistance) {
        best = along;
        bestDistance = distance;
      }
    }
    before = after;
  }
  return best;
}

std::vector<SpineLevel> SpineShape::regionVertebrae() const {
  std::vector<SpineLevel> result;
  for (std::size_t i = firstVertebra_; i <= lastVertebra_; i += 2) result.push_back(levels_[i]);
  return result;
}

std::vector<SpineLevel> SpineShape::regionDiscs() const {
  std::vector<SpineLevel> result;
  for (std::size_t i = firstVertebra_ - 1; i <= lastVertebra_ + 1; i += 2) result.push_back(levels_[i]);
  return result;
}

}  // namespace phantom
