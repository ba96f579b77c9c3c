#include "tests/double/TestROI.h"

#include <algorithm>
#include <cmath>
#include <unordered_set>

#include "tests/double/TestHost.h"

namespace testhost {

using pelmar::DCMView;
using pelmar::MyPoint;
using pelmar::PixelPoint;
using pelmar::Ref;
using pelmar::ROI;

bool TestTags::containsObject(std::string_view tag) const {
  return std::find(tags.begin(), tags.end(), tag) != tags.end();
}

void TestTags::addObject(std::string_view tag) {
  if (!containsObject(tag)) tags.emplace_back(tag);
}

TestROI::TestROI(CallLog* callLog, long type, const Ref<DCMView>& inView) : log(callLog), kind(type), view(inView) {}

std::vector<PixelPoint> TestROI::positions() const {
  std::vector<PixelPoint> result;
  for (const MyPoint& point : pointList->elements()) result.push_back(point.point());
  return result;
}

void TestROI::setROIMode(long newMode) {
  record(log, "setROIMode(" + text(static_cast<double>(newMode)) + ")");
  mode = newMode;
}

void TestROI::setOriginalIndexForAlias(long index) {
  aliasIndex = index;
  if (index < 0) return;
  if (const auto slice = curView()->dcmPixList()->objectAtIndex(static_cast<std::size_t>(index))) image = slice;
}

PixelPoint TestROI::pointAtIndex(long index) const {
  return index < 0 ? PixelPoint{} : pointList->objectAtIndex(static_cast<std::size_t>(index)).point();
}

TestROI::Points TestROI::sampled(double scale, std::vector<long>* segments) const {
  const Points& vertices = pointList->elements();
  Points samples;
  if (segments) segments->clear();
  for (std::size_t i = 0; i + 1 < vertices.size(); ++i) {
    const PixelPoint a = vertices[i].point();
    const PixelPoint b = vertices[i + 1].point();
    const int count = std::max(2, static_cast<int>(std::ceil(std::hypot(b.x - a.x, b.y - a.y) * scale)));
    for (int j = 0; j < count; ++j) {
      const double t = static_cast<double>(j) / count;
      samples.push_back(MyPoint::point({a.x + t * (b.x - a.x), a.y + t * (b.y - a.y)}));
      if (segments) segments->push_back(static_cast<long>(i));
    }
  }
  if (!vertices.empty()) {
    samples.push_back(vertices.back());
    if (segments) segments->push_back(std::max(0L, static_cast<long>(vertices.size()) - 2));
  }
  return samples;
}

std::optional<TestROI::Points> TestROI::splinePoints() const {
  record(log, "splinePoints()");
  if (splineOverride) return splineOverride;
  return sampled(1, nullptr);
}

std::optional<TestROI::Points> TestROI::splinePoints(float scale, std::vector<long>* correspondingSegmentArray) const {
  record(log, "splinePoints(" + text(static_cast<double>(scale)) + ")");
  if (!splineOverride) return sampled(static_cast<double>(scale), correspondingSegmentArray);
  if (correspondingSegmentArray) *correspondingSegmentArray = segmentOverride.value_or(std::vector<long>{});
  return splineOverride;
}

float TestROI::length() const {
  if (lengthOverride) return *lengthOverride;
  const Ref<pelmar::DCMPix> slice = image ? image : curView()->curDCM();
  const auto& vertices = pointList->elements();
  double lengthMm = 0;
  for (std::size_t i = 0; i + 1 < vertices.size(); ++i) {
    const PixelPoint a = vertices[i].point();
    const PixelPoint b = vertices[i + 1].point();
    lengthMm += std::hypot((b.x - a.x) * slice->pixelSpacingX(), (b.y - a.y) * slice->pixelSpacingY());
  }
  return static_cast<float>(lengthMm / 10);
}

void TestROI::setNSColor(const pelmar::Colour& newColour, bool globally) {
  colour = newColour;
  colourGlobally = globally;
}

void TestROI::setThickness(float newThickness, bool globally) {
  width = newThickness;
  thicknessGlobally = globally;
}

void TestROIList::show(const Ref<ROI>& roi) {
  const Ref<TestROI> own = pelmar::ref_cast<TestROI>(roi);
  if (!own) return;
  own->deleted = false;
  if (!own->curView()) own->view = view_.lock();
}

void TestROIList::addObject(const Ref<ROI>& roi) {
  record(log_, name_ + ".addObject(" + text(static_cast<double>(roi->type())) + ")");
  if (!roi) return;
  VectorList::addObject(roi);
  show(roi);
}

void TestROIList::insertObject(const Ref<ROI>& roi, std::size_t atIndex) {
  record(log_, name_ + ".insertObject(" + text(static_cast<double>(roi->type())) + "," +
                   text(static_cast<double>(atIndex)) + ")");
  if (!roi || atIndex > count()) return;
  VectorList::insertObject(roi, atIndex);
  show(roi);
}

void TestROIList::removeObject(const Ref<ROI>& roi) {
  record(log_, name_ + ".removeObject(" + text(static_cast<double>(roi->type())) + ")");
  VectorList::removeObject(roi);
}

void TestROIList::removeAllObjects() {
  record(log_, name_ + ".removeAllObjects()");
  VectorList::removeAllObjects();
}

Ref<ROI> TestROIClass::roiWithType(long type, const Ref<DCMView>& inView) {
  record(&host_.calls, "roiWithType(" + text(static_cast<double>(type)) + ")");
  if (!makesROIs) return {};
  const auto roi = pelmar::makeRef<TestROI>(&host_.calls, type, inView);
  roi->image = inView->curDCM();
  roi->rectangle.size = freshSize;
  made.push_back(roi);
  return roi;
}

void TestROIClass::deleteROI(const Ref<ROI>& roi) {
  if (!roi) return;
  record(&host_.calls, "deleteROI(" + text(static_cast<double>(roi->type())) + ")");
  remove({roi}, true);
}

void TestROIClass::deleteROIs(const std::vector<Ref<ROI>>& rois, bool postNotification) {
  record(&host_.calls, "deleteROIs(" + text(static_cast<double>(rois.size())) + "," + text(postNotification) + ")");
  remove(rois, postNotification);
}

bool TestROIClass::isGone(const Ref<ROI>& roi) const {
  const auto own = pelmar::ref_cast<TestROI>(roi);
  if (!own || !own->deleted) return false;
  return std::none_of(host_.everyViewer.begin(), host_.everyViewer.end(), [&](const Ref<TestViewer>& viewer) {
    return std::any_of(viewer->sliceLists.begin(), viewer->sliceLists.end(),
                       [&](const Ref<TestROIList>& list) { return list->containsObject(roi); });
  });
}

void TestROIClass::remove(const std::vector<Ref<ROI>>& rois, bool postNotification) {
  std::unordered_set<const ROI*> doomed;
  std::vector<Ref<ROI>> inOrder;
  for (const Ref<ROI>& roi : rois) {
    if (roi && !isGone(roi) && doomed.insert(roi.get()).second) inOrder.push_back(roi);
  }
  if (inOrder.empty()) return;
  for (const Ref<TestViewer>& viewer : host_.everyViewer) {
    for (const Ref<TestROIList>& list : viewer->sliceLists) {
      std::erase_if(list->elements(), [&](const Ref<ROI>& roi) { return doomed.contains(roi.get()); });
    }
  }
  for (const Ref<ROI>& roi : inOrder) {
    if (const auto own = pelmar::ref_cast<TestROI>(roi)) own->deleted = true;
  }
  for (const Ref<ROI>& roi : inOrder) {
    if (postNotification) host_.post(pelmar::PelmarRemoveROINotification, roi);
    if (const auto own = pelmar::ref_cast<TestROI>(roi)) own->view = nullptr;
  }
}

std::optional<std::vector<MyPoint>> TestROIClass::resamplePoints(const std::optional<std::vector<MyPoint>>& points,
                                                                 long number, bool closeROI) {
  record(&host_.calls, "resamplePoints(" + text(static_cast<double>(number)) + "," + text(closeROI) + ")");
  if (!points) return std::nullopt;
  std::vector<MyPoint> line = *points;
  std::vector<MyPoint> result;
  if (line.empty() || number <= 0) return result;
  if (closeROI) line.push_back(line.front());
  std::vector<double> reached{0};
  for (std::size_t i = 1; i < line.size(); ++i) {
    reached.push_back(reached.back() +
                      std::hypot(line[i].point().x - line[i - 1].point().x, line[i].point().y - line[i - 1].point().y));
  }
  std::size_t segment = 1;
  for (long k = 0; k < number; ++k) {
    if (k == 0 || line.size() == 1) {
      result.push_back(line.front());
    } else if (k + 1 == number) {
      result.push_back(line.back());
    } else {
      const double target = reached.back() * static_cast<double>(k) / static_cast<double>(number - 1);
      while (segment + 1 < line.size() && reached[segment] < target) ++segment;
      const double segmentLength = reached[segment] - reached[segment - 1];
      const double t = segmentLength > 0 ? (target - reached[segment - 1]) / segmentLength : 0;
      const PixelPoint a = line[segment - 1].point();
      const PixelPoint b = line[segment].point();
      result.push_back(MyPoint::point({a.x + t * (b.x - a.x), a.y + t * (b.y - a.y)}));
    }
  }
  return result;
}

PixelPoint TestROIClass::pointBetweenPoint(PixelPoint a, PixelPoint b, double ratio) {
  return {a.x + ratio * (b.x - a.x), a.y + ratio * (b.y - a.y)};
}

}  // namespace testhost
