// What lies around the spine: muscles, the large vessels, neck, chest and abdomen.
#include <algorithm>
#include <cmath>

#include "phantom/Palette.h"
#include "phantom/Tissue.h"

namespace phantom {
namespace {

constexpr double firstChestOrder = 7.6;
constexpr double lastChestOrder = 18.6;
constexpr double aorticForkOrder = 23.3;  // at the fourth lumbar vertebra

double ellipse(double a, double radiusA, double b, double radiusB) {
  return std::sqrt((a / radiusA) * (a / radiusA) + (b / radiusB) * (b / radiusB));
}

}  // namespace

Tissue::Signal Tissue::muscle(const Place& place) const {
  const Section& section = place.section;
  const double left = std::abs(place.at.left);
  const double back = place.at.back;
  if (section.order < 2) return std::nullopt;
  const auto fibres = [&](double fatShare) {
    const float streak = texture({place.patient.x, place.patient.y, 0.25 * place.patient.z}, 3.5);
    const double share = std::clamp(fatShare + 0.22 * static_cast<double>(streak), 0.0, 1.0);
    return mix(material::muscle.signal(ct_), material::fat.signal(ct_), share);
  };

  const bool neck = section.order < firstChestOrder;
  const double erector =
      ellipse(left - (neck ? 20 : 29), neck ? 22 : 29, back - section.canalBack() - 14, neck ? 25 : 21);
  if (erector < 1 && left > 1.2) return erector > 0.95 ? material::fat.signal(ct_) : fibres(0.1);
  if (!neck && left > 40 && back > 20) return fibres(0.12);
  if (neck && left > 1.2 && back > 6) return fibres(0.14);

  // Longus colli in the neck, psoas in the loin.
  if (neck && ellipse(left - 7, 6, back + section.bodyDepth + 3.2, 3) < 1) return fibres(0.05);
  if (section.order > 19.6 && section.order < 26) {
    const double size = std::clamp((section.order - 19.4) / 2.5, 0.3, 1.0);
    const double psoas = ellipse(left - section.bodyWidth - 15 * size, 15 * size, back - 3, 21 * size);
    if (psoas < 1) return fibres(0.02);
    if (ellipse(left - 72, 26, back - 22, 16) < 1) return fibres(0.06);
  }
  return std::nullopt;
}

Tissue::Signal Tissue::front(const Place& place) const {
  const double order = place.section.order;
  if (order < firstChestOrder) return neckFront(place);
  if (order < lastChestOrder) return chest(place);
  return abdomen(place);
}

Tissue::Signal Tissue::neckFront(const Place& place) const {
  const double ahead = -place.at.back - place.section.bodyDepth;
  if (ahead < 4) return std::nullopt;
  const double left = std::abs(place.at.left);
  const bool throat = place.section.order < 4.8;
  // Pharynx, then gullet behind the windpipe.
  if (throat && ellipse(left, 11, ahead - 10, 4) < 1) return material::air.signal(ct_);
  if (!throat && ellipse(left, 8, ahead - 20, 7.5) < 1) return material::air.signal(ct_);
  if (!throat && ellipse(left, 10, ahead - 20, 10) < 1) return material::annulus.signal(ct_);
  if (!throat && ellipse(left, 8, ahead - 8, 3.2) < 1) return material::softTissue.signal(ct_);
  if (ellipse(left - 26, 6, ahead - 12, 6) < 1) return material::vessel.signal(ct_);
  if (throat && ahead > 14 && left < 24) {
    return mix(material::muscle.signal(ct_), material::fat.signal(ct_), 0.2 + 0.2 * texture(place.patient, 6));
  }
  return std::nullopt;
}

Tissue::Signal Tissue::chest(const Place& place) const {
  const Section& section = place.section;
  const double ahead = -place.at.back - section.bodyDepth;
  const double left = place.at.left;
  const double width = std::abs(left);
  const bool upper = section.order < 11.5;
  if (upper && ellipse(left, 9, ahead - 18, 8) < 1) return material::air.signal(ct_);
  if (upper && ellipse(left, 11, ahead - 18, 10) < 1) return material::ligament.signal(ct_);
  if (!upper && ellipse(left - section.bodyWidth - 4, 12, ahead - 2, 12) < 1) return material::vessel.signal(ct_);
  if (ellipse(left, 8, ahead - 6, 4) < 1) return material::softTissue.signal(ct_);
  if (!upper && ellipse(left - 18, 52, ahead - 68, 46) < 1) {
    const double chamber = ellipse(left - 14, 38, ahead - 68, 33);
    return chamber < 1 ? material::vessel.signal(ct_) * 2.0F : material::muscle.signal(ct_);
  }
  const double outline = ellipse(place.patient.x, section.bodyOutlineWidth - 22, ahead - 40, upper ? 62 : 92);
  const bool lung = outline < 1 && (width > section.bodyWidth + 9 || ahead > 30) && section.order > 8.6;
  if (lung && !(ahead > 24 && width < 24)) {
    const bool branch = texture(place.patient, 9) > 0.62F;
    return branch ? material::softTissue.signal(ct_) * 0.6F : material::lung.signal(ct_);
  }
  return std::nullopt;
}

Tissue::Signal Tissue::abdomen(const Place& place) const {
  const Section& section = place.section;
  const double ahead = -place.at.back - section.bodyDepth;
  if (ahead < 0) return std::nullopt;
  const double left = place.at.left;
  const bool forked = section.order > aorticForkOrder;
  const double apart = forked ? 9 + 14 * (section.order - aorticForkOrder) : 9;
  const double calibre = forked ? 6.0 : 9.0;
  if (section.order < 25.5) {
    const double aorta = ellipse(left - apart, calibre, ahead - 12, calibre);
    const double cava = ellipse(left + apart + 4, calibre + 2, ahead - 11, calibre - 1);
    if (aorta < 0.86 || cava < 0.9) return material::vessel.signal(ct_);
    if (aorta < 1) return material::annulus.signal(ct_);
  }
  if (ahead > 26 && std::abs(left) < section.bodyOutlineWidth - 25 && ahead < section.bodyOutlineFront - 42) {
    const float loop = texture(place.patient, 17);
    if (loop > 0.16F)
      return mix(material::bowel.signal(ct_), material::fluid.signal(ct_), 0.3 * static_cast<double>(loop));
    if (loop > 0.06F) return material::muscle.signal(ct_);
  }
  return std::nullopt;
}

}  // namespace phantom
