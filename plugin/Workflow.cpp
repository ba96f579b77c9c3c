// The menu command and the three operations of the labelling workflow.
#include "plugin/VertanaFilter.h"
#include "plugin/VertanaWindowController.h"

namespace vertana {

using pelmar::Ref;
using pelmar::ViewerController;

long VertanaFilter::filterImage(const std::string& menuName) try {
  if (const auto error = requirementsError()) {
    alertRequirementsWithError(error);
    return 0;
  }
  closePalette();
  adoptStudy(PluginFilter::viewerController()->currentStudy());
  setWorkflow(-1);
  setAdditionalVertebra(false);

  if (menuName == "Labels") {
    setWorkflow(1);
    if (openedViewersContainVerticalSeries() || savedStateExists()) {
      api().application().activateIgnoringOtherApps(true);
      setWindowController(std::make_shared<VertanaWindowController>(api()));
    } else {
      // What follows runs all the same, without a palette: the study's axial names are kept up to date.
      api().alertPanels().runModalAlert("Coronal or Sagittal series needed", "OK", "", "", "");
    }
  }
  if (workflow() < 0) return 0;

  saveVerticalViewerTools(firstViewerWithVerticalSeries());
  placePalette();

  const long guess = guessedAnatomicalRegion();
  setAnatomicalRegion(guess == AnatomicalRegionNone ? static_cast<long>(AnatomicalRegionLumbar) : guess);

  const auto storedMode = api().standardUserDefaults().objectForKey(drawModeUserDefaultsKey());
  setDrawMode(storedMode.isNil() ? 0 : static_cast<unsigned long>(static_cast<long>(storedMode.intValue())));

  startWorkflow();
  return 0;
} catch (...) {
  return 0;
}

void VertanaFilter::adoptStudy(const Ref<pelmar::DicomStudy>& study) {
  setIntervertebralPlanes(std::nullopt);
  if (openPolygonROI_) {
    api().roiClass().deleteROIs({openPolygonROI_}, false);
    setOpenPolygonROI(nullptr);
  }
  setStudy(study);
}

void VertanaFilter::saveVerticalViewerTools(const Ref<ViewerController>& viewer) {
  if (!viewer) return;
  viewer->window()->makeKeyAndOrderFront();
  if (viewer->supports(pelmar::Capability::ViewerControllerROIToolTag)) {
    setPreviousROITool(static_cast<std::int32_t>(viewer->ROIToolTag()));
  }
  setPreviousTool(static_cast<std::int32_t>(viewer->imageView()->currentTool()));
  if (drawMode() == DrawModeLength) {
    viewer->setROIToolTag(pelmar::ROIToolTagLength);
  } else if (drawMode() == DrawModeOpenPolygon) {
    viewer->setROIToolTag(pelmar::ROIToolTagOpenPolygon);
  }
}

// The palette's top left corner goes to the image's first pixel, kept within the left and upper edges of the view.
void VertanaFilter::placePalette() {
  const auto view = api().viewerControllerClass().frontMostDisplayed2DViewer()->imageView();
  auto corner = view->convertPoint(view->ConvertFromGL2NSView({0, 0}), nullptr);
  const auto frame = view->frame();
  if (corner.x < 0) corner.x = 0;
  if (corner.y > frame.y + frame.height) corner.y = frame.y + frame.height;
  const auto onScreen = view->window()->convertBaseToScreen(corner);
  if (!windowController_) return;
  const auto palette = windowController_->window();
  palette->setFrameOrigin({onScreen.x, onScreen.y - palette->frame().height});
  palette->makeKeyAndOrderFront();
  windowController_->setPlugin(this);
}

void VertanaFilter::closePalette() {
  if (const auto palette = windowController()) {
    palette->close();
    setWindowController(nullptr);
  }
}

void VertanaFilter::startWorkflow() {
  if (workflow() != 1 || !study()) return;
  setIsActive(true);
  loadState();
  if (!intervertebralPlanes()) return;
  createOpenPolygon();
  createLabels();
  createPlanesROIs();
}

void VertanaFilter::stopWorkflow() {
  const auto viewer = verticalViewerController();
  if (previousROITool() != 0) viewer->setROIToolTag(previousROITool());
  viewer->setToolTag(previousTool());
  if (inputLengthROI() || inputOpenPolygonROI()) finalizeInputROI();
  setDisplayLabels(true);
  setIsActive(false);
  saveCurrentState();
  removeConstructionROIs();
  setStudy(nullptr);
  setWorkflow(-1);
}

void VertanaFilter::reset() {
  saveEmptyState();
  removeConstructionROIs();
  removeLabels();
  setIntervertebralPlanes(std::nullopt);
  updateAxialLabels();
}

}  // namespace vertana
