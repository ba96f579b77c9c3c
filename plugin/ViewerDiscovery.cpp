// Finds the viewers of the study that is labelled.
#include "plugin/VertanaFilter.h"

namespace vertana {

using pelmar::DicomStudy;
using pelmar::Ref;
using pelmar::ViewerController;

bool isSameStudy(const Ref<DicomStudy>& a, const Ref<DicomStudy>& b) {
  const auto uid = a->studyInstanceUID();
  return uid && uid == b->studyInstanceUID();
}

std::optional<std::vector<Ref<ViewerController>>> VertanaFilter::openedViewersWithStudy(
    const Ref<DicomStudy>& study) const {
  if (!study) return std::nullopt;
  std::vector<Ref<ViewerController>> viewers;
  for (const auto& viewer : viewerControllersList()) {
    if (isSameStudy(viewer->currentStudy(), study)) viewers.push_back(viewer);
  }
  return viewers;
}

std::optional<std::vector<Ref<ViewerController>>> VertanaFilter::openedViewersWithCurrentStudy() const {
  return openedViewersWithStudy(study_);
}

bool VertanaFilter::showsCurrentStudy(const Ref<DicomStudy>& study) const { return isSameStudy(study, study_); }

Ref<ViewerController> VertanaFilter::firstViewerWithVerticalSeries() const {
  const auto viewers = openedViewersWithCurrentStudy();
  if (!viewers) return nullptr;
  const auto first = [&](long code, long otherCode, const Ref<ViewerController>* only) -> Ref<ViewerController> {
    for (const auto& viewer : *viewers) {
      if (!showsCurrentStudy(viewer->currentStudy())) continue;
      const long orientation = viewer->orientationVector();
      if (orientation != code && orientation != otherCode) continue;
      if (!only || viewer == *only) return viewer;
    }
    return nullptr;
  };
  const auto front = api().viewerControllerClass().frontMostDisplayed2DViewer();
  if (auto viewer = first(1, 0, &front)) return viewer;
  if (auto viewer = first(1, 0, nullptr)) return viewer;
  return first(3, 2, nullptr);
}

bool VertanaFilter::openedViewersContainVerticalSeries() const { return firstViewerWithVerticalSeries() != nullptr; }

Ref<ViewerController> VertanaFilter::verticalViewerController() const {
  // An annotation that is not on screen yields nil, with no fallback: it binds the labelling to its own viewer.
  if (const auto roi = inputLengthROI()) return roi->curView()->viewer();
  if (const auto roi = inputOpenPolygonROI()) return roi->curView()->viewer();
  if (openPolygonROI_) return openPolygonROI_->curView()->viewer();
  return firstViewerWithVerticalSeries();
}

Ref<ViewerController> VertanaFilter::viewerController() const {
  if (auto viewer = verticalViewerController()) return viewer;
  return PluginFilter::viewerController();
}

}  // namespace vertana
