// The bones, discs and nerves of the spine. Places are taken across the centre line: `left` and `back` of it.
#include <algorithm>
#include <cmath>

#include "phantom/Palette.h"
#include "phantom/Tissue.h"

namespace phantom {
namespace {

constexpr double headLevels = 1.6;     // Section::order above which there is no vertebral canal but the skull
constexpr double sacrumStart = 24.55;  // Section::order of the first sacral segment's upper end, roughly
constexpr double thecalSacEnd = 26.2;  // the sac ends in the second sacral segment
constexpr double endplateConcavityMm = 1.3;

double square(double value) { return value * value; }

/// 0 at the middle, 1 on the outline of an ellipse.
double ellipse(double a, double radiusA, double b, double radiusB) {
  return std::sqrt(square(a / radiusA) + square(b / radiusB));
}

}  // namespace

Tissue::Signal Tissue::neural(const Place& place, double radius) const {
  const Section& section = place.section;
  const double back = place.at.back - section.canalBack();
  if (section.cordWidth > 0.5) {
    const double cord = ellipse(place.at.left, section.cordWidth, back + 0.3, section.cordDepth);
    if (cord < 1) return mix(material::cord.signal(ct_), material::fluid.signal(ct_), cord < 0.85 ? 0.0 : 0.25);
  }
  // The roots of the cauda equina lie at the back of the sac, and run along it.
  const bool below = section.order > 19.8 && radius < 0.84 && back > -0.35 * section.canalDepth;
  if (below) {
    const float strand = texture({place.at.left, back, 0.04 * place.at.along}, 1.7);
    if (strand > 0.05F) return mix(material::nerve.signal(ct_), material::fluid.signal(ct_), 0.25);
  }
  return std::nullopt;
}

Tissue::Signal Tissue::canal(const Place& place) const {
  const Section& section = place.section;
  if (section.order < headLevels || section.canalWidth < 1) return std::nullopt;
  const double back = place.at.back - section.canalBack();
  const double radius = ellipse(place.at.left, section.canalWidth, back, section.canalDepth);
  const SpineLevel& level = shape_->levels()[place.level];
  if (level.disc && back < 0 && std::abs(place.at.left) < 9) {
    const double dome = 1.0 - square((place.at.along - level.centre()) / (0.65 * (level.end - level.start)));
    const double bulge = anatomy_.disc(place.level).bulgeMm * std::max(0.0, dome);
    if (place.at.back < section.bodyDepth + bulge + 0.6) return std::nullopt;
  }
  if (radius > 1.0) return std::nullopt;
  if (const Signal found = neural(place, radius)) return found;
  if (section.order > thecalSacEnd || (radius > 0.94 && back > 0.3 * section.canalDepth)) {
    return material::fat.signal(ct_);
  }
  if (radius > 0.9) return material::ligament.signal(ct_);
  return material::fluid.signal(ct_) * (ct_ ? 1.0F : 1.0F - 0.06F * texture(place.patient, 6));
}

Tissue::Signal Tissue::skull(const Place& place) const {
  const SpineLevel& base = shape_->levels()[1];
  const double up = base.start - place.at.along;  // above the joint of skull and atlas
  if (up < -4) return std::nullopt;
  const double left = place.at.left;
  const double back = place.at.back;
  // The clivus rises forwards from the front rim of the foramen magnum.
  const double clivusBack = -4.0 - 0.75 * up;
  if (up > 0 && std::abs(left) < 14 && back < clivusBack && back > clivusBack - 8 - 0.25 * up) {
    return bone(place, std::min({clivusBack - back, back - (clivusBack - 8 - 0.25 * up), up, 14 - std::abs(left)}));
  }
  // The posterior fossa is rounded below and open above, to the brain.
  const double fossa = std::sqrt(square(left / 62) + square((back - 30) / 52) + square(std::min(0.0, up - 34) / 35));
  if (up > 0 && fossa > 1.0 && fossa < 1.16 && back > 22) return bone(place, 35 * std::min(fossa - 1.0, 1.16 - fossa));
  if (fossa >= 1.0 || back < clivusBack) {
    const bool magnum = up < 12 && std::abs(left) < 12 && back > clivusBack && back < 36;
    return magnum && place.section.order < headLevels ? Signal(neuralOrFluid(place)) : std::nullopt;
  }
  const double stemMiddle = 14 - 0.66 * up;
  const double stemDepth = 5.5 + 7.0 * std::clamp((up - 12) / 16, 0.0, 1.0);
  if (ellipse(left, 8 + 0.2 * std::max(0.0, up), back - stemMiddle, stemDepth) < 1) return material::brain.signal(ct_);
  if (fossa < 0.94 && up > 7 && back > stemMiddle + stemDepth + 3.5) {
    const bool fissure = !ct_ && texture({0.3 * left, back, up}, 3.2) > 0.42F;
    return mix(material::brain.signal(ct_), material::fluid.signal(ct_), fissure ? 0.4 : 0.0);
  }
  return neuralOrFluid(place);
}

float Tissue::neuralOrFluid(const Place& place) const { return neural(place, 0).value_or(material::fluid.signal(ct_)); }

Tissue::Signal Tissue::atlasAndAxis(const Place& place) const {
  const SpineLevel& level = shape_->levels()[2];
  const double down = place.at.along - level.start;
  const double height = level.end - level.start;
  if (down < 0 || down > height) return std::nullopt;
  const double left = std::abs(place.at.left);
  const double back = place.at.back;
  const double bodyTop = 0.56 * height;

  const double dens = ellipse(left, 5.0, back - 0.5, 5.3);
  if (down > 1.5 && down <= bodyTop && dens < 1) {
    const double tip = std::min(down - 1.5, 3.0) / 3.0;
    if (dens < 0.55 + 0.45 * tip) return bone(place, std::min(5 * (0.55 + 0.45 * tip - dens), down - 1.5));
  }
  if (down > bodyTop) {
    const double width = 9.5 + 2 * (down - bodyTop) / height;
    const double radius = std::max(left / width, std::abs(back) / 7.2);
    const double depth = std::min({7.2 * (1 - radius), height - down, down - bodyTop + 4 * (dens < 1 ? 1 : 0)});
    if (radius < 1) return bone(place, depth);
  }
  const double arch = ellipse(down - 0.3 * height, 5.2, back + 9.2 - 0.012 * left * left, 2.9);
  if (left < 18 && arch < 1) return bone(place, 2.9 * (1 - arch));
  const double mass = std::max({std::abs(left - 16) / 7.5, std::abs(back - 2) / 9, std::abs(down - 0.3 * height) / 9});
  if (mass < 1) return bone(place, 7.5 * (1 - mass));
  const double rear =
      ellipse(down - 0.32 * height, 5.0,
              back - place.section.canalBack() - place.section.canalDepth - 3.8 + 0.02 * left * left, 3.0);
  if (left < 18 && rear < 1) return bone(place, 3.0 * (1 - rear));
  return std::nullopt;
}

// Bodies and discs. In the horizontal section a body is an ellipse whose back wall is flat.
Tissue::Signal Tissue::column(const Place& place) const {
  const auto levels = shape_->levels();
  if (place.level < 3) return std::nullopt;
  const Section& section = place.section;
  const double along = place.at.along;
  if (along > shape_->length()) return std::nullopt;

  const SpineLevel& here = levels[place.level];
  const double middle = here.disc ? 1.0 : std::abs(along - here.centre()) / (0.5 * (here.end - here.start));
  const double waist = 0.92 + 0.08 * middle * middle;
  double back = place.at.back / (section.bodyDepth * waist);
  if (here.disc && back > 0) back *= section.bodyDepth / (section.bodyDepth + anatomy_.disc(place.level).bulgeMm);
  const double side = place.at.left / (section.bodyWidth * waist);
  const double radius = std::sqrt(side * side + (back > 0 ? square(square(back)) : square(back)));
  if (radius > 1.0) {
    // The ligaments along the front and back walls.
    const bool close = radius < 1.06 && std::abs(place.at.left) < 8 && section.order < sacrumStart;
    return close ? Signal(material::ligament.signal(ct_)) : std::nullopt;
  }

  if (here.disc) return discSignal(place, place.level, radius);
  const bool fused = section.order > sacrumStart && here.name != "L5" && here.name != "L6";
  return vertebralBody(place, here, radius, fused);
}

Tissue::Signal Tissue::vertebralBody(const Place& place, const SpineLevel& level, double radius, bool fused) const {
  const double hollow = endplateConcavityMm * std::max(0.0, 1.0 - radius * radius);
  const bool discAbove = shape_->levels()[place.level - 1].disc;
  const bool discBelow = !fused;
  const double fromTop = place.at.along - level.start - (discAbove ? hollow : 0.0);
  const double fromBottom = level.end - place.at.along - (discBelow ? hollow : 0.0);
  if (fromTop < 0) return discSignal(place, place.level - 1, radius);
  if (fromBottom < 0) return discSignal(place, place.level + 1, radius);

  const bool remnant = (!discAbove && fromTop < 1.3) || (!discBelow && fromBottom < 1.3);
  if (remnant) return mix(material::annulus.signal(ct_), material::nucleus.signal(ct_), radius < 0.5 ? 0.35 : 0.0);
  const double wall = (1.0 - radius) * place.section.bodyDepth;
  const bool veinHeight = std::abs(place.at.along - level.centre()) < 2.2;
  if (!ct_ && veinHeight && place.at.back > 0.45 * place.section.bodyDepth && std::abs(place.at.left) < 4) {
    return mix(material::marrow.signal(ct_), material::fluid.signal(ct_), 0.45);
  }
  return bone(place, std::min({wall, fromTop, fromBottom}));
}

float Tissue::discSignal(const Place& place, std::size_t index, double radius) const {
  const SpineLevel& level = shape_->levels()[index];
  const Section& section = place.section;
  const float ring = material::annulus.signal(ct_);
  if (radius > 0.9) return mix(ring, material::ligament.signal(ct_), 0.6);
  const double halfHeight = 0.5 * (level.end - level.start) + endplateConcavityMm;
  const double up = (place.at.along - level.centre()) / halfHeight;
  const double core =
      std::sqrt(square(place.at.left / (0.68 * section.bodyWidth)) +
                square((place.at.back - 0.08 * section.bodyDepth) / (0.66 * section.bodyDepth)) + square(square(up)));
  const double share = std::clamp((1.05 - core) / 0.3, 0.0, 1.0) * anatomy_.disc(index).brightness;
  const bool cleft = !ct_ && std::abs(up) < 0.14 && core < 0.7 && section.order > 15;
  return mix(ring, material::nucleus.signal(ct_), cleft ? 0.72 * share : share) + 8.0F * texture(place.patient, 3);
}

Tissue::Signal Tissue::posteriorElements(const Place& place, std::size_t vertebra) const {
  const SpineLevel& level = shape_->levels()[vertebra];
  if (vertebra < 2) return std::nullopt;
  const Section& section = anatomy_.sectionAt(level.centre());
  const double height = level.end - level.start;
  const double down = (place.at.along - level.start) / height;
  const double left = std::abs(place.at.left);
  const double back = place.at.back;
  const double wall = section.canalBack() + section.canalDepth;
  const bool axis = vertebra == 2;

  const double tipOff = back - wall - 1.5;
  if (tipOff > 0 && tipOff < section.spinousReach && left < 5) {
    const double middle = level.start + (axis ? 0.86 : 0.72) * height + section.spinousDrop * tipOff;
    const double swell = 0.8 + 0.35 * tipOff / section.spinousReach;
    const double end = std::min(1.0, (section.spinousReach - tipOff) / 4);
    const double radius = ellipse(place.at.left, 3.6, place.at.along - middle, section.spinousHeight * swell * end);
    if (radius < 1) return bone(place, 3.6 * (1 - radius));
  }
  if (axis) return std::nullopt;

  const double ring =
      ellipse(place.at.left, place.section.canalWidth, back - place.section.canalBack(), place.section.canalDepth);
  const double ringMm = (ring - 1.0) * section.canalDepth;
  if (back > section.canalBack() && down > 0.35 && down < 1.0 && ringMm > 1.2 && ringMm < 6.5) {
    return bone(place, std::min({ringMm - 1.2, 6.5 - ringMm, (down - 0.35) * height, (1.0 - down) * height}));
  }
  const double inner = section.canalWidth + 0.5;
  if (left > inner - 1 && left < inner + 7.5 && back > 0.55 * section.bodyDepth && back < section.canalBack() + 3 &&
      down > 0.1 && down < 0.52) {
    return bone(place, std::min({left - inner + 1, inner + 7.5 - left, (down - 0.1) * height, (0.52 - down) * height}));
  }
  const double pillar = ellipse(left - inner - 5.5, 5.5, back - section.canalBack() - 3, 7.5);
  if (pillar < 1 && down > 0.1 && down < 1.3) {
    const double joint = std::abs(place.at.along - level.end + 0.4 * (back - section.canalBack() - 3) - 1);
    return joint < 0.7 ? Signal(material::fluid.signal(ct_)) : Signal(bone(place, std::min(5.5 * (1 - pillar), joint)));
  }
  const double reach = inner + (place.section.order < 7.5 ? 10.0 : 24.0);
  const double process = ellipse(back - section.canalBack() - 0.06 * left, 4.5, down - 0.32, 0.17);
  if (left > inner && left < reach && process < 1) return bone(place, 4 * (1 - process));
  return std::nullopt;
}

Tissue::Signal Tissue::sacralWing(const Place& place) const {
  const Section& section = place.section;
  if (section.order < sacrumStart || section.order > 28.5) return std::nullopt;
  const double left = std::abs(place.at.left);
  const double width = 52 - 10 * (section.order - sacrumStart);
  const double middle = 8.0 + 0.2 * left;
  const double wing = std::max(left / width, std::abs(place.at.back - middle) / (11 + 0.12 * left));
  if (left > section.bodyWidth * 0.8 && wing < 1) return bone(place, 12 * (1 - wing));
  const double roof = section.canalBack() + section.canalDepth;
  if (place.at.back > roof && place.at.back < roof + 5 && left < 15) {
    return bone(place, std::min(place.at.back - roof, roof + 5 - place.at.back));
  }
  return std::nullopt;
}

Tissue::Signal Tissue::foramen(const Place& place) const {
  const Section& section = place.section;
  if (section.order < 2.6 || section.order > sacrumStart) return std::nullopt;
  const double left = std::abs(place.at.left);
  const double back = place.at.back;
  const SpineLevel& level = shape_->levels()[place.level];
  const double lower = place.at.along - level.start - 0.72 * (level.end - level.start);
  if (left > section.canalWidth - 2 && left < section.canalWidth + 9 && back > 0.6 * section.bodyDepth &&
      back < section.canalBack() + 4) {
    const bool root = !level.disc && ellipse(lower, 2.8, back - section.bodyDepth - 3, 2.4) < 1;
    return root ? material::nerve.signal(ct_) : material::fat.signal(ct_);
  }
  // Yellow ligament between the arches, fat and ligament between the spinous processes.
  const double wall = section.canalBack() + section.canalDepth;
  if (left < 9 && back > section.canalBack() && back < wall + 4.5) return material::ligament.signal(ct_);
  if (left < 3.5 && back >= wall + 4.5 && back < wall + section.spinousReach) {
    return mix(material::ligament.signal(ct_), material::fat.signal(ct_), 0.7 + 0.3 * texture(place.patient, 4));
  }
  return std::nullopt;
}

}  // namespace phantom
