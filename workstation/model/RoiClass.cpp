#include "workstation/model/RoiClass.h"

#include <algorithm>

#include "workstation/model/Spline.h"

namespace workstation {
namespace {

using pelmar::Ref;
using pelmar::ROI;

/// The slices of one series in which something is to be taken out.
struct Span {
  SeriesRoiLists* lists = nullptr;
  std::size_t first = 0;
  std::size_t last = 0;
};

void widen(std::vector<Span>& spans, const Roi::Membership& membership) {
  const auto span = std::find_if(spans.begin(), spans.end(),
                                 [&](const Span& candidate) { return candidate.lists == membership.lists; });
  if (span == spans.end()) {
    spans.push_back({membership.lists, membership.first, membership.last});
  } else {
    span->first = std::min(span->first, membership.first);
    span->last = std::max(span->last, membership.last);
  }
}

}  // namespace

std::shared_ptr<Roi> RoiClass::make(long type, const Ref<pelmar::DCMView>& inView, bool drawnByPerson) {
  return std::make_shared<Roi>(nextId_++, type, inView, drawnByPerson, lacking_);
}

std::shared_ptr<Roi> RoiClass::drawnRoi(long type, const Ref<pelmar::DCMView>& inView) {
  return make(type, inView, true);
}

Ref<ROI> RoiClass::roiWithType(long type, const Ref<pelmar::DCMView>& inView) {
  return inView ? Ref<ROI>(make(type, inView, false)) : Ref<ROI>();
}

void RoiClass::deleteROIs(const std::vector<Ref<ROI>>& rois, bool postNotification) {
  // Our own handles: the caller's list may be one of those that change, and the last handle may stand in a list.
  std::vector<Ref<ROI>> deleted;
  std::vector<Span> spans;
  for (const Ref<ROI>& roi : rois) {
    Roi* own = ownRoi(roi);
    if (!own || own->deleted()) continue;
    own->setDeleted(true);
    deleted.push_back(roi);
    for (const Roi::Membership& membership : own->memberships()) widen(spans, membership);
  }
  for (const Span& span : spans) {
    for (std::size_t slice = span.first; slice <= span.last; ++slice) span.lists->list(slice).removeDeleted();
  }
  if (postNotification) {
    for (const Ref<ROI>& roi : deleted) {
      center_.postNotification({std::string(pelmar::PelmarRemoveROINotification), roi, std::nullopt});
    }
  }
  for (const Ref<ROI>& roi : deleted) {
    if (!ownRoi(roi)->standsInAnyList()) ownRoi(roi)->setCurView(nullptr);
  }
}

std::optional<std::vector<pelmar::MyPoint>> RoiClass::resamplePoints(
    const std::optional<std::vector<pelmar::MyPoint>>& points, long number, bool closeROI) {
  if (!points) return std::nullopt;
  return resampleEvenly(*points, number, closeROI);
}

pelmar::PixelPoint RoiClass::pointBetweenPoint(pelmar::PixelPoint a, pelmar::PixelPoint b, double ratio) {
  return {a.x + ratio * (b.x - a.x), a.y + ratio * (b.y - a.y)};
}

}  // namespace workstation
