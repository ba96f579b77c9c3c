#include "ContractHost.h"

namespace contract {

using pelmar::Notification;
using pelmar::Ref;

std::vector<HostKind> hostKinds() {
  std::vector<HostKind> kinds{{"Double", &makeDouble}};
#ifdef CONTRACT_WITH_WORKSTATION
  kinds.push_back({"Workstation", &makeModel});
#endif
  return kinds;
}

SlicePlacement placementOf(const SeriesGeometry& series, Plane plane, std::size_t slice) {
  SlicePlacement placement;
  placement.firstPixelMm = series.firstPixelMm;
  const double alongMm = series.gapMm * static_cast<double>(slice);
  if (plane == Plane::sagittal) {
    placement.row = {0, 1, 0};
    placement.column = {0, 0, -1};
    placement.firstPixelMm[0] += alongMm;
  } else {
    placement.row = {1, 0, 0};
    placement.column = {0, 1, 0};
    placement.firstPixelMm[2] -= alongMm;
  }
  return placement;
}

Ref<pelmar::ROI> annotationOf(const Notification& posted) {
  const auto roi = pelmar::ref_cast<pelmar::ROI>(posted.object);
  return roi ? roi : pelmar::ref_cast<pelmar::ROI>(posted.userInfoValue("ROI").object());
}

Recorder::Recorder(pelmar::PelmarAPI& api) : center_(api.defaultCenter()) {
  for (const std::string_view name :
       {pelmar::PelmarROIChangeNotification, pelmar::PelmarRemoveROINotification, pelmar::PelmarAddROINotification,
        pelmar::PelmarCloseViewerNotification, pelmar::PelmarViewerControllerDidLoadImagesNotification,
        pelmar::PelmarDCMViewIndexChangedNotification, pelmar::PelmarViewerWillChangeNotification,
        pelmar::PelmarViewOriginChanged, pelmar::PelmarViewScaleChanged}) {
    center_.addObserver(this, name, nullptr, [this](const Notification& posted) { hear(posted); });
  }
}

void Recorder::hear(const Notification& posted) {
  std::string line = posted.name.substr(std::string_view("Pelmar").size());
  const std::size_t end = line.rfind("Notification");
  if (end != std::string::npos) line.erase(end);
  const pelmar::Value action = posted.userInfoValue("action");
  if (action.string()) line += " " + *action.string();
  const Ref<pelmar::ROI> roi = annotationOf(posted);
  if (roi) line += " (" + std::to_string(roi->ROImode()) + ")";
  lines_.push_back(line);
  if (react) react(line, posted);
}

Ref<pelmar::ROI> OnEveryHost::annotation(long type, const std::vector<std::size_t>& slices,
                                         const std::vector<pelmar::PixelPoint>& points) {
  const Ref<pelmar::ROI> roi = api().roiClass().roiWithType(type, view());
  std::vector<pelmar::MyPoint> vertices;
  for (const pelmar::PixelPoint& point : points) vertices.push_back(pelmar::MyPoint::point(point));
  roi->setPoints(vertices);
  for (const std::size_t slice : slices) list(slice)->addObject(roi);
  return roi;
}

}  // namespace contract
