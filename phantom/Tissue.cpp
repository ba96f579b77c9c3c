#include "phantom/Tissue.h"

#include <algorithm>
#include <cmath>

#include "phantom/Palette.h"
#include "phantom/Random.h"

namespace phantom {
namespace {

constexpr double skinMm = 2.0;
constexpr double skinSmoothingMm = 45.0;

std::vector<double> smoothed(const std::vector<double>& values, std::ptrdiff_t reach) {
  std::vector<double> result;
  const auto count = static_cast<std::ptrdiff_t>(values.size());
  for (std::ptrdiff_t i = 0; i < count; ++i) {
    double sum = 0;
    for (std::ptrdiff_t k = i - reach; k <= i + reach; ++k) {
      sum += values[static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(k, 0, count - 1))];
    }
    result.push_back(sum / static_cast<double>(2 * reach + 1));
  }
  return result;
}

float latticeValue(std::uint64_t seed, int x, int y, int z) {
  const auto part = [](int value) { return static_cast<std::uint64_t>(static_cast<std::uint32_t>(value)); };
  const std::uint64_t key =
      seed ^ (part(x) * 0x8da6b343ULL) ^ (part(y) * 0xd8163841ULL << 7) ^ (part(z) * 0xcb1ab31fULL << 17);
  return static_cast<float>(scatter(key) >> 40) / 8388608.0F - 1.0F;
}

}  // namespace

Tissue::Tissue(const SpineShape& shape, Contrast contrast, std::uint64_t seed)
    : shape_(&shape), anatomy_(shape, seed), frame_(shape), ct_(contrast == Contrast::Ct), seed_(scatter(seed + 77)) {
  skinTopZ_ = shape.point(0).z;
  const double bottomZ = shape.point(shape.length()).z;
  std::vector<double> baseY;
  double along = 0;
  double z = skinTopZ_;
  while (z > bottomZ) {
    while (along < shape.length() && shape.point(along).z > z) along += 0.5;
    baseY.push_back(shape.point(along).y);
    z -= 1.0;
  }
  skinBaseY_ = smoothed(baseY, static_cast<std::ptrdiff_t>(skinSmoothingMm));
}

float Tissue::texture(Vec3 patient, double sizeMm) const {
  const double scale = 1.0 / sizeMm;
  const double px = patient.x * scale;
  const double py = patient.y * scale;
  const double pz = patient.z * scale;
  const int x = static_cast<int>(std::floor(px));
  const int y = static_cast<int>(std::floor(py));
  const int z = static_cast<int>(std::floor(pz));
  const auto fx = static_cast<float>(px - x);
  const auto fy = static_cast<float>(py - y);
  const auto fz = static_cast<float>(pz - z);
  const auto edge = [&](int dy, int dz) {
    return std::lerp(latticeValue(seed_, x, y + dy, z + dz), latticeValue(seed_, x + 1, y + dy, z + dz), fx);
  };
  return std::lerp(std::lerp(edge(0, 0), edge(1, 0), fy), std::lerp(edge(0, 1), edge(1, 1), fy), fz);
}

double Tissue::depthBelowSkin(const Place& place) const {
  const double row = std::clamp(skinTopZ_ - place.patient.z, 0.0, static_cast<double>(skinBaseY_.size() - 1));
  const double baseY = skinBaseY_[static_cast<std::size_t>(row)];
  const Section& section = place.section;
  const double dy = place.patient.y - baseY;
  const double reach = dy > 0 ? section.bodyOutlineBack : section.bodyOutlineFront;
  const double x2 = place.patient.x * place.patient.x / (section.bodyOutlineWidth * section.bodyOutlineWidth);
  const double y2 = dy * dy / (reach * reach);
  // Flatter than an ellipse: a back that lies on a table.
  const double radius = std::sqrt(std::sqrt(x2 * x2 + y2 * y2));
  return (1.0 - radius) * std::min(section.bodyOutlineWidth, reach);
}

float Tissue::bone(const Place& place, double depthMm) const {
  const double rimMm = ct_ ? 1.6 : 1.1;
  if (depthMm < rimMm) return material::cortical.signal(ct_);
  const float grain = texture(place.patient, 2.5) + 0.8F * texture(place.patient, 9);
  return material::marrow.signal(ct_) + (ct_ ? 35.0F : 26.0F) * grain;
}

float Tissue::signal(Vec3 patient) const {
  const SpinePoint at = frame_.locate(patient);
  const Place place{patient, at, anatomy_.sectionAt(at.along), anatomy_.levelIndexAt(at.along)};
  const double depthMm = depthBelowSkin(place);
  if (depthMm < 0) return material::air.signal(ct_);
  if (depthMm < skinMm) return material::skin.signal(ct_);

  const double left = std::abs(at.left);
  if (left < 75 && at.back > -45 && at.back < 95) {
    if (const Signal found = canal(place)) return *found;
    if (const Signal found = skull(place)) return *found;
    if (const Signal found = atlasAndAxis(place)) return *found;
    if (const Signal found = column(place)) return *found;
    // A process may reach down behind the next two vertebrae.
    const std::size_t vertebra = place.level - (shape_->levels()[place.level].disc ? 1 : 0);
    for (std::size_t above = 0; above <= 4 && above <= vertebra; ++above) {
      const std::size_t index = vertebra - above;
      if (shape_->levels()[index].disc) continue;
      if (const Signal found = posteriorElements(place, index)) return *found;
    }
    if (const Signal found = sacralWing(place)) return *found;
    if (const Signal found = foramen(place)) return *found;
  }
  if (depthMm > 7) {
    if (const Signal found = muscle(place)) return *found;
    if (const Signal found = front(place)) return *found;
  }
  return remainder(place, depthMm);
}

float Tissue::remainder(const Place& place, double depthMm) const {
  const float fat = material::fat.signal(ct_);
  if (depthMm > 14 && place.section.order < 8) {
    return mix(material::softTissue.signal(ct_), fat, 0.25 + 0.25 * texture(place.patient, 7));
  }
  return fat + (ct_ ? 10.0F : 45.0F) * texture(place.patient, 6);
}

}  // namespace phantom
