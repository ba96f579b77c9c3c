// The level name on every axial slice.
#include <algorithm>

#include "display/SliceName.h"
#include "geometry/DCMPixVertana.h"
#include "geometry/SegmentPlane.h"
#include "geometry/Vectors.h"
#include "plugin/VertanaFilter.h"

namespace vertana {

using pelmar::DCMPix;
using pelmar::DCMView;
using pelmar::Point3D;
using pelmar::Ref;
using pelmar::ROI;
using pelmar::Vector3f;
using pelmar::ViewerController;

namespace {

constexpr std::string_view axialLabelTag = "VertanaFilterAxialLabel";
constexpr double minimumY = 10.0;         // pixels from the image's top edge
constexpr double distanceFromTop = 40.0;  // points from the view's top edge

Vector3f vectorOf(const Ref<Point3D>& point) {
  return {static_cast<float>(point->x()), static_cast<float>(point->y()), static_cast<float>(point->z())};
}

/// The slice's plane: the patient position of its centre and its normal.
struct SlicePlane {
  Vector3f centre;
  Vector3f normal;
};

SlicePlane slicePlaneOf(const Ref<DCMPix>& pix) {
  SlicePlane plane;
  pix->convertPixX(static_cast<float>(static_cast<double>(pix->pwidth()) * 0.5),
                   static_cast<float>(static_cast<double>(pix->pheight()) * 0.5), plane.centre);
  std::array<float, 9> orientation{};
  pix->orientation(orientation);
  plane.normal = {orientation[6], orientation[7], orientation[8]};
  return plane;
}

/// The plane nearest to the slice, and the point from which the slice is measured.
struct NearestPlane {
  std::size_t index = 0;
  float distanceMm = 0;
  Vector3f foot;
  Vector3f query;
};

// The query point is the slice's centre until a piece of the spine crosses the slice; from then on it is the last
// crossing. Planes before the crossing are thus measured from the centre, on purpose.
NearestPlane nearestPlane(const std::vector<IntervertebralPlane>& planes, const SlicePlane& slice,
                          pelmar::DCMViewClass& geometry) {
  NearestPlane nearest;
  nearest.query = slice.centre;
  for (std::size_t k = 0; k < planes.size(); ++k) {
    const auto point = vectorOf(planes[k].point);
    if (k + 1 < planes.size()) {
      const auto nextPoint = vectorOf(planes[k + 1].point);
      intersect3D_SegmentPlane(&point, &nextPoint, &slice.normal, &slice.centre, &nearest.query);
    }
    Vector3f foot;
    const float distanceMm = geometry.pbase_Plane(nearest.query, point, vectorOf(planes[k].vector), foot);
    if (k == 0 || distanceMm < nearest.distanceMm) {
      nearest.index = k;
      nearest.distanceMm = distanceMm;
      nearest.foot = foot;
    }
  }
  return nearest;
}

NeighbourPlane neighbourOf(const NearestPlane& nearest, const IntervertebralPlane& plane,
                           pelmar::DCMViewClass& geometry) {
  NeighbourPlane neighbour;
  neighbour.exists = true;
  Vector3f foot;
  neighbour.distanceMm = geometry.pbase_Plane(nearest.query, vectorOf(plane.point), vectorOf(plane.vector), foot);
  neighbour.angleRad =
      geometry.angleBetweenVector(difference(nearest.foot, nearest.query), difference(foot, nearest.query));
  return neighbour;
}

std::optional<std::string> labelOfRegion(const std::map<long, std::string>& labels, long region) {
  const auto entry = labels.find(region);
  if (entry == labels.end()) return std::nullopt;
  return entry->second;
}

}  // namespace

std::optional<std::string> VertanaFilter::nameForSliceAtIndex(long index, const Ref<DCMView>& onAxialView) {
  const auto& planes = intervertebralPlanes();
  if (!planes) return std::nullopt;
  return nameForSlice(onAxialView->dcmPixList()->objectAtIndex(static_cast<std::size_t>(index)), *planes);
}

std::optional<std::string> VertanaFilter::nameForSlice(const Ref<DCMPix>& slice,
                                                       const std::vector<IntervertebralPlane>& planes) const {
  if (planes.empty()) return std::nullopt;
  auto& geometry = api().dcmViewClass();
  const auto nearest = nearestPlane(planes, slicePlaneOf(slice), geometry);
  const auto b = nearest.index;
  NeighbourPlane previous;
  NeighbourPlane next;
  if (b >= 1) previous = neighbourOf(nearest, planes[b - 1], geometry);
  if (b + 1 < planes.size()) next = neighbourOf(nearest, planes[b + 1], geometry);

  const auto choice = chooseSliceName(static_cast<long>(b), nearest.distanceMm, previous, next);
  switch (choice.kind) {
    case SliceNameKind::NearestPlane:
    case SliceNameKind::OtherPlane:
      return planes[static_cast<std::size_t>(choice.index)].name;
    case SliceNameKind::Vertebra: {
      const auto vertebrae = currentVertebraeLabels();
      const auto number = static_cast<std::size_t>(choice.index);
      if (number >= vertebrae.size()) return std::nullopt;
      return vertebrae[number];
    }
    case SliceNameKind::UpperVertebra:
      return labelOfRegion(upperVertebraeLabels(), anatomicalRegion());
    case SliceNameKind::LowerVertebra:
      return labelOfRegion(lowerVertebraeLabels(), anatomicalRegion());
    case SliceNameKind::None:
      break;
  }
  return std::nullopt;
}

void VertanaFilter::setName(std::optional<std::string> name, long forSliceAtIndex, const Ref<DCMView>& onAxialView) {
  if (!displayLabels()) name = std::nullopt;
  if (onAxialView->curDCM()->isRGB()) return;
  auto& roiClass = api().roiClass();
  const auto viewer = onAxialView->viewer();
  const auto list = viewer->roiList()->objectAtIndex(static_cast<std::size_t>(forSliceAtIndex));

  Ref<ROI> annotation;
  std::vector<Ref<ROI>> surplus;
  for (std::size_t i = 0; i < list->count(); ++i) {
    const auto roi = list->objectAtIndex(i);
    if (roi->type() != pelmar::ROITypeText || !roi->stringTags()->containsObject(axialLabelTag)) continue;
    if (annotation) {
      surplus.push_back(roi);
    } else {
      annotation = roi;
    }
  }
  if (!surplus.empty()) roiClass.deleteROIs(surplus, false);
  if (!name) {
    if (annotation) roiClass.deleteROI(annotation);
    return;
  }

  const bool isNew = !annotation;
  if (isNew) annotation = roiClass.roiWithType(pelmar::ROITypeText, onAxialView);
  annotation->setName(*name);
  annotation->setDontDisplayInKeyImagesWindow(true);
  annotation->setDontSavePreferredWLWW(true);
  annotation->stringTags()->addObject(axialLabelTag);

  const auto frame = onAxialView->frame();
  auto origin = onAxialView->ConvertFromNSView2GL({frame.width * 0.5, frame.height - distanceFromTop});
  origin.y = std::max(origin.y, std::max(minimumY, onAxialView->curDCM()->contentFrameRect().origin.y));
  annotation->setROIRect({origin, annotation->rect().size});
  annotation->setROIMode(pelmar::ROIModeFinished);
  annotation->setThickness(20.0F);
  if (isNew) list->addObject(annotation);
  viewer->needsDisplayUpdate();
}

void VertanaFilter::displayLabelsForSliceAtIndex(long index, const Ref<DCMView>& onAxialView) {
  setName(nameForSliceAtIndex(index, onAxialView), index, onAxialView);
}

void VertanaFilter::displayLabelsOnAxialView(const Ref<DCMView>& view) {
  if (view->curDCM()->isRGB()) return;
  // The count is asked for again on every pass: naming may make the host change its series.
  for (long i = 0; i < static_cast<long>(view->dcmPixList()->count()); ++i) displayLabelsForSliceAtIndex(i, view);
}

void VertanaFilter::displayLabelsOnAxialViewer(const Ref<ViewerController>& viewer) {
  if (!showsCurrentStudy(viewer->currentStudy())) return;
  if (!isAxial(viewer->imageView()->curDCM())) return;
  displayLabelsOnAxialView(viewer->imageView());
}

void VertanaFilter::updateAxialLabels() {
  // While the person is still drawing the spine the axial names stay as they are.
  if (inputLengthROI() || inputOpenPolygonROI()) return;
  const auto viewers = openedViewersWithCurrentStudy();
  if (!viewers) return;
  for (const auto& viewer : *viewers) {
    if (isAxial(viewer->imageView()->curDCM())) displayLabelsOnAxialView(viewer->imageView());
  }
}

}  // namespace vertana
