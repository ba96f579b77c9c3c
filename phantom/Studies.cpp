#include "phantom/Studies.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace phantom {
namespace {

constexpr int verticalSlices = 15;
constexpr int ctAxialSlices = 512;
constexpr double beyondDiscsMm = 30;

/// What a protocol for a region looks like. Lengths in mm.
struct Protocol {
  double verticalSpacing;
  double axialFieldOfView;
  double axialSpacing;
  int blockSlices;
  double blockSpacing;
};
constexpr std::array<Protocol, 3> protocols{{
    {3.3, 180, 3.3, 3, 3.3},
    {3.9, 260, 4.4, 5, 3.3},
    {4.4, 210, 4.4, 5, 4.4},
}};

SlicePlane planeAround(Vec3 centre, Vec3 row, Vec3 column, double fieldOfViewMm, int size) {
  SlicePlane plane;
  plane.row = row;
  plane.column = column;
  plane.size = size;
  plane.spacingMm = fieldOfViewMm / size;
  plane.position = centre - (0.5 * fieldOfViewMm) * (row + column);
  return plane;
}

/// `count` slices around `middle`, `stepMm` apart along `direction`, in this order.
std::vector<SlicePlane> stack(const SlicePlane& middle, Vec3 direction, int count, double stepMm, double thicknessMm) {
  std::vector<SlicePlane> slices;
  for (int i = 0; i < count; ++i) {
    SlicePlane slice = middle;
    slice.position = middle.position + (stepMm * (i - 0.5 * (count - 1))) * direction;
    slice.thicknessMm = thicknessMm;
    slices.push_back(slice);
  }
  return slices;
}

/// Slices of an MR leave a tenth of their thickness between them; a CT's touch.
double thicknessFor(double stepMm, bool ct) { return ct ? stepMm : stepMm / 1.1; }

class Planner {
 public:
  Planner(const SpineShape& shape, const StudyPlan& plan)
      : shape_(shape), plan_(plan), protocol_(protocols[static_cast<std::size_t>(plan.region)]) {
    discs_ = shape.regionDiscs();
    for (const SpineLevel& disc : discs_) {
      const Vec3 centre = shape.point(disc.centre());
      middle_ = middle_ + (1.0 / static_cast<double>(discs_.size())) * centre;
    }
    top_ = shape.point(discs_.front().centre()).z;
    bottom_ = shape.point(discs_.back().centre()).z;
    middle_.z = 0.5 * (top_ + bottom_);
  }

  SeriesPlan sagittal() const {
    SeriesPlan series = vertical(1, "sagittal");
    // A little to the front: more lies before the spine than behind it.
    const Vec3 centre = middle_ + Vec3{0, -0.08 * fieldOfView(), 0};
    const SlicePlane middle = planeAround(centre, {0, 1, 0}, {0, 0, -1}, fieldOfView(), size(320));
    series.slices = stack(middle, {1, 0, 0}, verticalSlices, series.spacingBetweenSlicesMm,
                          thicknessFor(series.spacingBetweenSlicesMm, plan_.ct));
    return series;
  }

  SeriesPlan coronal() const {
    SeriesPlan series = vertical(2, "coronal");
    const SlicePlane middle = planeAround(middle_ + Vec3{0, 8, 0}, {1, 0, 0}, {0, 0, -1}, fieldOfView(), size(320));
    series.slices = stack(middle, {0, 1, 0}, verticalSlices, series.spacingBetweenSlicesMm,
                          thicknessFor(series.spacingBetweenSlicesMm, plan_.ct));
    return series;
  }

  SeriesPlan straightAxials() const {
    SeriesPlan series = axials(3, plan_.ct ? "axial 512 thin slices" : "T2 axial");
    const double reach = top_ - bottom_ + 2 * beyondDiscsMm;
    const int count = plan_.ct ? ctAxialSlices : static_cast<int>(std::ceil(reach / protocol_.axialSpacing)) + 1;
    const double step = plan_.ct ? reach / (ctAxialSlices - 1) : protocol_.axialSpacing;
    series.spacingBetweenSlicesMm = step;
    const SlicePlane middle = planeAround(axialCentre(), {1, 0, 0}, {0, 1, 0}, protocol_.axialFieldOfView, size(256));
    series.slices = stack(middle, {0, 0, -1}, count, step, thicknessFor(step, plan_.ct));
    return series;
  }

  SeriesPlan tiltedAxials() const {
    SeriesPlan series = axials(4, plan_.ct ? "axial reformats to the discs" : "T2 axial to the discs");
    series.reformat = plan_.ct;
    series.spacingBetweenSlicesMm = protocol_.blockSpacing;
    const std::size_t first = plan_.region == 2 ? 1 : 0;
    for (std::size_t i = first; i < discs_.size(); ++i) {
      const Vec3 tangent = shape_.tangent(discs_[i].centre());
      const Vec3 row = unitAcross({1, 0, 0}, tangent);
      const SlicePlane middle = planeAround(shape_.point(discs_[i].centre()), row, cross(row, tangent),
                                            protocol_.axialFieldOfView, size(256));
      const auto block = stack(middle, tangent, protocol_.blockSlices, protocol_.blockSpacing,
                               thicknessFor(protocol_.blockSpacing, plan_.ct));
      series.slices.insert(series.slices.end(), block.begin(), block.end());
    }
    return series;
  }

 private:
  int size(int usual) const { return plan_.imageSize > 0 ? plan_.imageSize : usual; }
  double fieldOfView() const { return std::max(230.0, 1.4 * (top_ - bottom_)); }

  SeriesPlan vertical(int number, const std::string& direction) const {
    SeriesPlan series;
    series.number = number;
    series.description = plan_.ct ? direction + " reformats" : "T2 " + direction;
    series.reformat = plan_.ct;
    series.spacingBetweenSlicesMm = protocol_.verticalSpacing;
    return series;
  }

  static SeriesPlan axials(int number, std::string description) {
    SeriesPlan series;
    series.number = number;
    series.description = std::move(description);
    series.axial = true;
    return series;
  }

  // The stack is centred on the two ends of the region, and more on the end whose disc is the more tilted: there a
  // technician who is off the spine is soon off the disc.
  Vec3 axialCentre() const {
    const auto weightOf = [&](const SpineLevel& disc) { return 0.1 + std::abs(shape_.tangent(disc.centre()).y); };
    const double first = weightOf(discs_.front());
    const double last = weightOf(discs_.back());
    const Vec3 mean = (1.0 / (first + last)) *
                      (first * shape_.point(discs_.front().centre()) + last * shape_.point(discs_.back().centre()));
    return {mean.x, mean.y, middle_.z};
  }

  const SpineShape& shape_;
  const StudyPlan& plan_;
  const Protocol& protocol_;
  std::vector<SpineLevel> discs_;
  Vec3 middle_;
  double top_ = 0;
  double bottom_ = 0;
};

}  // namespace

std::vector<SeriesPlan> planStudy(const SpineShape& shape, const StudyPlan& plan) {
  const Planner planner(shape, plan);
  std::vector<SeriesPlan> series{planner.sagittal(), planner.coronal(), planner.straightAxials()};
  if (plan.angledAxials) series.push_back(planner.tiltedAxials());
  return series;
}

}  // namespace phantom
