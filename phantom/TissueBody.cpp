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
  if (erector < 1 && left > 1.2) return erector > 0.97 ? material::fat.signal(ct_) : fibres(0.1);
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
  const double order = place.section.order;
  // Pharynx, which narrows to the gullet behind the windpipe.
  const double lower = std::clamp((order - 4.4) / 0.9, 0.0, 1.0);
  const double airway = ellipse(left, 11 - 3 * lower, ahead - 9 - 11 * lower, 3.5 + 4 * lower);
  if (airway < 1) return material::air.signal(ct_);
  if (lower > 0.5 && airway < 1.3) return material::annulus.signal(ct_);
  if (lower > 0.5 && ellipse(left, 8, ahead - 8, 3.2) < 1) return material::softTissue.signal(ct_);
  if (ellipse(left - 26, 6, ahead - 12, 6) < 1) return material::vessel.signal(ct_);
  // Tongue and the muscles below it.
  const double mouth = std::max(ellipse(order - 2.4, 1.9, ahead - 48, 32), left / 26);
  if (mouth < 1 && ahead > 14) {
    return mix(material::muscle.signal(ct_), material::fat.signal(ct_), 0.2 + 0.2 * texture(place.patient, 6));
  }
  return std::nullopt;
}

Tissue::Signal Tissue::chest(const Place& place) const {
  const Section& section = place.section;
  const double ahead = -place.at.back - section.bodyDepth;
  const double left = place.at.left;
  const double order = section.order;
  const bool upper = order < 11.5;
  if (upper) {
    const double windpipe = ellipse(left, 9, ahead - 18, 8);
    if (windpipe < 1) return material::air.signal(ct_);
    if (windpipe < 1.22) return material::annulus.signal(ct_);
  } else if (ellipse(left - section.bodyWidth - 4, 12, ahead - 2, 12) < 1) {
    return material::vessel.signal(ct_);
  }
  if (ellipse(left, 8, ahead - 6, 4) < 1) return material::softTissue.signal(ct_);
  const double heart = std::hypot(ellipse(left - 18, 52, ahead - 66, 42), (order - 15.3) / 2.9);
  if (heart < 1) return heart < 0.78 ? material::vessel.signal(ct_) * 2.0F : material::muscle.signal(ct_);

  // The lungs taper to their tops; the diaphragm is a dome below them, and liver and spleen fill it.
  const double apex = std::sqrt(std::clamp((order - 8.1) / 2.4, 0.0, 1.0));
  const double outline = ellipse(place.patient.x, (section.bodyOutlineWidth - 22) * apex, ahead - 40, 30 + 62 * apex);
  if (outline >= 1 || (std::abs(left) < section.bodyWidth + 9 && ahead < 30)) return std::nullopt;
  const double diaphragm = 18.7 - 1.9 * std::sqrt(1.0 - outline * outline);
  if (order > diaphragm + 0.12) return material::liver.signal(ct_) * (1.0F + 0.05F * texture(place.patient, 8));
  if (order > diaphragm) return material::muscle.signal(ct_);
  if (ahead > 18 && std::abs(left) < 24) return std::nullopt;
  const bool branch = texture(place.patient, 9) > 0.62F;
  return branch ? material::softTissue.signal(ct_) * 0.6F : material::lung.signal(ct_);
}

Tissue::Signal Tissue::abdomen(const Place& place) const {
  const Section& section = place.section;
  const double ahead = -place.at.back - section.bodyDepth;
  const double left = place.at.left;
  const double order = section.order;
  const double kidney = std::hypot(ellipse(std::abs(left) - 62, 25, ahead + 10, 22), (order - 20.9) / 1.25);
  if (kidney < 1) return kidney < 0.45 ? material::fat.signal(ct_) : material::kidney.signal(ct_);
  if (ahead < 0) return std::nullopt;
  const bool forked = order > aorticForkOrder;
  const double apart = forked ? 9 + 14 * (order - aorticForkOrder) : 9;
  const double calibre = forked ? 6.0 : 9.0;
  if (order < 25.5) {
    const double aorta = ellipse(left - apart, calibre, ahead - 12, calibre);
    const double cava = ellipse(left + apart + 4, calibre + 2, ahead - 11, calibre - 1);
    if (aorta < 0.86 || cava < 0.9) return material::vessel.signal(ct_);
    if (aorta < 1) return material::annulus.signal(ct_);
  }
  const double peritoneum = 27 - 0.004 * left * left + 5.0 * texture(place.patient, 31);
  if (ahead < peritoneum || std::abs(left) > section.bodyOutlineWidth - 25 || ahead > section.bodyOutlineFront - 42) {
    return std::nullopt;
  }
  const double liver = std::hypot(ellipse(left + 35, 85, ahead - 70, 55), (order - 18.2) / 2.7);
  if (liver < 1) return material::liver.signal(ct_);
  const float loop = texture(place.patient, 17);
  if (loop > 0.16F) {
    return mix(material::bowel.signal(ct_), material::fluid.signal(ct_), 0.3 * static_cast<double>(loop));
  }
  return loop > 0.06F ? Signal(material::muscle.signal(ct_)) : std::nullopt;
}

}  // namespace phantom
