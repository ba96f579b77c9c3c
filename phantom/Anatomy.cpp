#include "phantom/Anatomy.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "phantom/Random.h"

namespace phantom {
namespace {

constexpr double sectionStepMm = 0.5;
constexpr double lastCordOrder = 19.4;  // from here the cord tapers to the conus

// Typical adult sizes; between the rows they change evenly. The cord has its two enlargements, the canal is widest in
// the neck, the spinous processes are steep in the chest.
constexpr std::array rows{
    //     order bodyW bodyD canW  canD  crdW crdD reach drop   high  outline
    Section{1, 8, 5, 16, 15, 9, 7, 0, 0, 0, 78, 105, 100},
    Section{2, 9.5, 7, 13, 9.5, 6, 4.3, 22, 0.25, 5.5, 68, 95, 72},
    Section{3, 10.5, 7.5, 12, 7.2, 6.3, 4, 16, 0.3, 3.6, 62, 80, 60},
    Section{5, 11.5, 7.7, 12.5, 7, 7, 4, 20, 0.3, 3.8, 60, 68, 58},
    Section{7, 13.5, 8.2, 12, 7, 6, 3.8, 34, 0.35, 4.6, 90, 72, 64},
    Section{8, 14, 8.5, 10.5, 7.3, 5.2, 3.6, 36, 0.45, 5, 130, 85, 66},
    Section{11, 13, 10.5, 8.5, 7.6, 4.3, 3.4, 36, 0.9, 4.8, 165, 125, 62},
    Section{15, 15, 13.5, 8.7, 7.6, 4.2, 3.4, 34, 1.0, 4.8, 165, 150, 60},
    Section{19, 20, 15.5, 10.5, 8.2, 4.8, 3.8, 28, 0.4, 7.5, 160, 150, 60},
    Section{20, 21, 16, 11, 8.5, 4.5, 3.6, 29, 0.2, 9, 160, 145, 62},
    Section{22, 22.5, 17, 11.5, 8.5, 0, 0, 31, 0.12, 10, 160, 140, 66},
    Section{24, 25, 17, 13, 8.5, 0, 0, 26, 0.2, 8, 165, 135, 68},
    Section{25, 26, 16, 13, 7, 0, 0, 14, 0.2, 8, 175, 130, 66},
    Section{26, 22, 11, 10, 5, 0, 0, 10, 0.1, 7, 175, 130, 62},
    Section{27, 18, 8, 6, 3.2, 0, 0, 7, 0.1, 6, 175, 130, 64},
    Section{28, 14, 6, 4, 2.2, 0, 0, 5, 0, 5, 175, 130, 72},
    Section{29, 12, 5, 2, 1, 0, 0, 2, 0, 3, 175, 130, 80},
    Section{30, 7, 4, 0.5, 0.5, 0, 0, 0, 0, 0, 175, 130, 88},
};

double orderOf(const std::string& vertebra) {
  if (vertebra == "C0") return 1;
  if (vertebra == "C1-C2") return 2;
  if (vertebra == "Coccyx") return 30;
  const int number = std::stoi(vertebra.substr(1));
  const auto placed = [&](int before, int count) {
    return static_cast<double>(before + std::min(number, count)) + (number > count ? 0.5 : 0.0);
  };
  switch (vertebra.front()) {
    case 'C':
      return placed(0, 7);
    case 'T':
      return placed(7, 12);
    case 'L':
      return placed(19, 5);
    default:
      return placed(24, 5);
  }
}

Section between(const Section& a, const Section& b, double order) {
  const double t = (order - a.order) / (b.order - a.order);
  const auto mix = [&](double Section::*size) { return a.*size + t * (b.*size - a.*size); };
  Section result;
  for (const auto size :
       {&Section::order, &Section::bodyWidth, &Section::bodyDepth, &Section::canalWidth, &Section::canalDepth,
        &Section::cordWidth, &Section::cordDepth, &Section::spinousReach, &Section::spinousDrop,
        &Section::spinousHeight, &Section::bodyOutlineWidth, &Section::bodyOutlineFront, &Section::bodyOutlineBack}) {
    result.*size = mix(size);
  }
  return result;
}

Section sectionOf(double order, double conusOrder) {
  const auto after = std::ranges::upper_bound(rows, order, {}, &Section::order);
  const auto upper = std::clamp(after, rows.begin() + 1, rows.end() - 1);
  Section section = between(*(upper - 1), *upper, std::clamp(order, rows.front().order, rows.back().order));
  if (order > lastCordOrder) {
    const double left = std::max(0.0, (conusOrder - order) / (conusOrder - lastCordOrder));
    section.cordWidth = 4.8 * std::sqrt(left);
    section.cordDepth = 3.7 * std::sqrt(left);
  }
  return section;
}

}  // namespace

Anatomy::Anatomy(const SpineShape& shape, std::uint64_t seed) : shape_(&shape) {
  struct Place {
    double along;
    double order;
  };
  std::vector<Place> places;
  for (const SpineLevel& level : shape.levels()) {
    if (!level.disc) places.push_back({level.centre(), orderOf(level.name)});
  }

  Random random(scatter(seed) ^ 0x616e61746f6d79ULL);
  const double conusOrder = random.uniform(19.9, 20.7);
  const auto count = static_cast<std::size_t>(shape.length() / sectionStepMm) + 1;
  for (std::size_t i = 0; i < count; ++i) {
    const double along = static_cast<double>(i) * sectionStepMm;
    const auto next =
        std::clamp(std::ranges::upper_bound(places, along, {}, &Place::along), places.begin() + 1, places.end() - 1);
    const Place& a = *(next - 1);
    const double t = std::clamp((along - a.along) / (next->along - a.along), 0.0, 1.0);
    sections_.push_back(sectionOf(a.order + t * (next->order - a.order), conusOrder));
    levelIndex_.push_back(static_cast<unsigned char>(shape.levelIndexAt(along)));
  }

  // A young spine's discs are bright throughout; in a worn one the more heavily loaded lower discs go dark first.
  const double wear = random.uniform(0.0, 1.0);
  for (const SpineLevel& level : shape.levels()) {
    const double load = sectionAt(level.centre()).order > 22.5 ? 1.5 : 1.0;
    const double lost = std::clamp(wear * load * random.uniform(0.2, 1.2) - 0.15, 0.0, 0.95);
    const double bulgeMm = (0.6 + 2.4 * lost) * random.uniform(0.6, 1.2);
    discs_.push_back({1.0 - lost, level.disc ? bulgeMm : 0.0});
  }
}

std::size_t Anatomy::stationAt(double along) const {
  const double position = std::clamp(along / sectionStepMm, 0.0, static_cast<double>(sections_.size() - 1));
  return static_cast<std::size_t>(position);
}

const Section& Anatomy::sectionAt(double along) const { return sections_[stationAt(along)]; }

std::size_t Anatomy::levelIndexAt(double along) const { return levelIndex_[stationAt(along)]; }

}  // namespace phantom
