#include "workstation/model/Roi.h"

#include <algorithm>
#include <cmath>

#include "workstation/model/Spline.h"

namespace workstation {

using pelmar::MyPoint;
using pelmar::PixelPoint;
using pelmar::Ref;

bool TagSet::containsObject(std::string_view tag) const {
  return std::find(tags_.begin(), tags_.end(), tag) != tags_.end();
}

void TagSet::addObject(std::string_view tag) {
  if (!containsObject(tag)) tags_.emplace_back(tag);
}

Roi::Roi(int id, long type, const Ref<pelmar::DCMView>& view, bool drawnByPerson,
         const std::set<pelmar::Capability>& lacking)
    : id_(id),
      type_(type),
      drawnByPerson_(drawnByPerson),
      tagsSupported_(!lacking.contains(pelmar::Capability::ROIStringTags)),
      keyImagesSupported_(!lacking.contains(pelmar::Capability::ROIDontDisplayInKeyImagesWindow)),
      view_(view),
      pix_(view->curDCM()),
      points_(pelmar::makeRef<pelmar::VectorList<MyPoint>>()),
      tags_(pelmar::makeRef<TagSet>()) {}

int Roi::distinctPoints() const {
  const auto& points = vertices();
  if (points.empty()) return 0;
  const bool another = std::any_of(points.begin(), points.end(), [&](MyPoint point) { return point != points[0]; });
  return another ? 2 : 1;
}

void Roi::joined(SeriesRoiLists& lists, std::size_t slice) {
  deleted_ = false;
  for (Membership& membership : memberships_) {
    if (membership.lists != &lists) continue;
    membership.first = std::min(membership.first, slice);
    membership.last = std::max(membership.last, slice);
    ++membership.entries;
    return;
  }
  memberships_.push_back({&lists, slice, slice, 1});
}

void Roi::left(SeriesRoiLists& lists) {
  const auto membership = std::find_if(memberships_.begin(), memberships_.end(),
                                       [&](const Membership& candidate) { return candidate.lists == &lists; });
  if (membership == memberships_.end()) return;
  if (--membership->entries == 0) memberships_.erase(membership);
}

bool Roi::supports(pelmar::Capability capability) const {
  if (capability == pelmar::Capability::ROIStringTags) return tagsSupported_;
  return capability == pelmar::Capability::ROIDontDisplayInKeyImagesWindow && keyImagesSupported_;
}

void Roi::setPoints(const std::vector<MyPoint>& points) { points_.shared()->elements() = points; }

PixelPoint Roi::pointAtIndex(long index) const {
  return index < 0 ? PixelPoint{} : points_->objectAtIndex(static_cast<std::size_t>(index)).point();
}

std::optional<std::vector<MyPoint>> Roi::splinePoints() const { return sampleSpline(vertices(), 1).points; }

std::optional<std::vector<MyPoint>> Roi::splinePoints(float scale, std::vector<long>* correspondingSegmentArray) const {
  SplineSamples samples = sampleSpline(vertices(), scale);
  if (correspondingSegmentArray) *correspondingSegmentArray = std::move(samples.segments);
  return std::move(samples.points);
}

void Roi::setOriginalIndexForAlias(long index) {
  originalIndex_ = index;
  if (index < 0) return;
  if (const auto slice = curView()->dcmPixList()->objectAtIndex(static_cast<std::size_t>(index))) pix_ = slice;
}

float Roi::length() const {
  const double spacingXMm = pix_->pixelSpacingX();
  const double spacingYMm = pix_->pixelSpacingY();
  const std::vector<MyPoint> curve =
      type_ == pelmar::ROITypeOpenPolygon ? sampleSpline(vertices(), 1).points : vertices();
  double lengthMm = 0;
  for (std::size_t index = 1; index < curve.size(); ++index) {
    const PixelPoint from = curve[index - 1].point();
    const PixelPoint to = curve[index].point();
    lengthMm += std::hypot((to.x - from.x) * spacingXMm, (to.y - from.y) * spacingYMm);
  }
  return static_cast<float>(lengthMm / 10);
}

}  // namespace workstation
