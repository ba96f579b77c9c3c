// What the host tells: drawing and editing, viewers that load, scroll, zoom, change and close.
#include "geometry/DCMPixVertana.h"
#include "plugin/VertanaFilter.h"
#include "plugin/VertanaWindowController.h"

namespace vertana {

using pelmar::DCMView;
using pelmar::Notification;
using pelmar::Ref;
using pelmar::ref_cast;
using pelmar::ROI;
using pelmar::ViewerController;

namespace {

bool isMouseUp(const Notification& notification) {
  const auto action = notification.userInfoValue("action");
  return action.string() && *action.string() == "mouseUp";
}

}  // namespace

Ref<ROI> VertanaFilter::ROIFromNotification(const Notification& notification) const {
  if (auto roi = ref_cast<ROI>(notification.object)) return roi;
  if (ref_cast<DCMView>(notification.object)) return ref_cast<ROI>(notification.userInfoValue("ROI").object());
  return nullptr;
}

Ref<ROI> VertanaFilter::editableROIFromNotification(const Notification& notification) const {
  const auto roi = ROIFromNotification(notification);
  const auto viewer = roi->curView()->viewer();
  if (!roi || !viewer || !isActive() || !isEditingActive()) return nullptr;
  return roi;
}

void VertanaFilter::PelmarROIChanged(const Notification& notification) {
  const auto roi = editableROIFromNotification(notification);
  if (!roi) return;
  if (roi == openPolygonROI()) {
    computeIntervertebralPlanes();
    createLabels();
    createPlanesROIs();
    updateAxialLabels();
  } else if (roi == inputLengthROI()) {
    inputLengthROIDrawingEvent();
    if (isMouseUp(notification)) inputLengthROICreatedEvent();
  } else if (roi == inputOpenPolygonROI()) {
    inputOpenPolygonROIDrawingEvent();
    if (isMouseUp(notification)) inputOpenPolygonROICreatedEvent();
  }
}

void VertanaFilter::PelmarROIRemoved(const Notification& notification) {
  const auto roi = editableROIFromNotification(notification);
  if (!roi) return;
  if (roi == inputLengthROI()) setInputLengthROI(nullptr);
  if (roi == inputOpenPolygonROI()) {
    setInputOpenPolygonROI(nullptr);
    return;
  }
  if (roi == openPolygonROI()) {
    setOpenPolygonROI(nullptr);
    setIntervertebralPlanes(std::nullopt);
    removeConstructionROIs();
    removeLabels();
  }
}

void VertanaFilter::PelmarROIAdded(const Notification& notification) {
  const auto roi = editableROIFromNotification(notification);
  if (!roi) return;
  const auto viewer = roi->curView()->viewer();
  if (!showsCurrentStudy(viewer->currentStudy())) return;
  const long orientation = viewer->orientationVector();
  if (orientation < 0 || orientation > 3) return;

  // Either kind is adopted whatever the draw mode; the input's events decide whether it is acted upon.
  if (roi->type() == pelmar::ROITypeLength) {
    if (inputLengthROI()) return;
    setInputLengthROI(roi);
  } else if (roi->type() == pelmar::ROITypeOpenPolygon) {
    if (inputOpenPolygonROI()) return;
    if (roi->stringTags()->containsObject("kConstructionOpenPolygonStringTag")) return;
    setInputOpenPolygonROI(roi);
  } else {
    return;
  }
  roi->setDontDisplayInKeyImagesWindow(true);
  roi->setDontSavePreferredWLWW(true);
  roi->setDisplayTextualData(false);
}

void VertanaFilter::closePaletteAndRestoreTools(const Ref<ViewerController>& viewer) {
  if (!windowController()) return;
  closePalette();
  if (previousROITool() != 0) viewer->setROIToolTag(previousROITool());
  viewer->setToolTag(previousTool());
}

void VertanaFilter::PelmarCloseViewer(const Notification& notification) {
  if (!isActive()) return;
  const auto viewer = ref_cast<ViewerController>(notification.object);
  if (!showsCurrentStudy(viewer->currentStudy()) || !viewer->imageView()->curDCM()) return;
  createLabelsOnViewer(viewer->imageView());
  displayLabelsOnAxialViewer(viewer);
  removeTemporaryROIsForViewer(viewer);

  const auto remaining = openedViewersWithCurrentStudy();
  if (remaining && remaining->empty()) {
    stopWorkflow();
    setIntervertebralPlanes(std::nullopt);
    setStudy(nullptr);
    closePaletteAndRestoreTools(viewer);
  }
  if (!firstViewerWithVerticalSeries()) closePaletteAndRestoreTools(viewer);
}

void VertanaFilter::activateForLabelledStudy(const Ref<pelmar::DicomStudy>& study) {
  adoptStudy(study);
  if (savedStateExists()) {
    setIsActive(true);
    loadState();
  } else {
    setStudy(nullptr);
  }
}

void VertanaFilter::PelmarViewerControllerDidLoadImages(const Notification& notification) {
  const auto viewer = ref_cast<ViewerController>(notification.object);
  if (!viewer) return;  // nothing may be forgotten for what is no viewer
  if (isActive()) {
    if (!study()) adoptStudy(viewer->currentStudy());
    if (!savedDictionary()) loadState();
  } else {
    activateForLabelledStudy(viewer->currentStudy());
  }
  createLabelsOnViewer(viewer->imageView());
  displayLabelsOnAxialViewer(viewer);
}

void VertanaFilter::PelmarDCMViewIndexChanged(const Notification& notification) {
  const auto view = ref_cast<DCMView>(notification.object);
  if (!view) return;
  if (!isActive()) activateForLabelledStudy(view->studyObj());
  if (!isActive() || !intervertebralPlanes()) return;
  if (!showsCurrentStudy(view->studyObj())) return;
  if (isAxial(view->viewer()->imageView()->curDCM())) {
    displayLabelsForSliceAtIndex(view->curImage(), view);
  } else {
    createLabelsOnViewer(view);
  }
}

void VertanaFilter::PelmarViewerWillChange(const Notification&) {
  if (viewerControllersList().size() != 1) return;
  if (inputLengthROI() || inputOpenPolygonROI()) {
    reset();
  } else if (workflow() == 1) {
    stopWorkflow();
  } else {
    return;
  }
  closePalette();
}

void VertanaFilter::PelmarScaleOrOriginViewChanged(const Notification& notification) {
  const auto view = ref_cast<DCMView>(notification.object);
  if (!view->viewer()->isEverythingLoaded()) return;
  if (!view->studyObj()->objectID()->isEqual(study()->objectID())) return;
  if (!isAxial(view->curDCM())) return;
  displayLabelsOnAxialView(view);
}

}  // namespace vertana
