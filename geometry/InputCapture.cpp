// The line or polygon that the person draws: followed while it is drawn, turned into the spine curve when let go.
#include "plugin/VertanaFilter.h"

namespace vertana {

namespace {

constexpr double minimumInputLengthCm = 7.0;

}  // namespace

void VertanaFilter::rebuildFromInput() {
  removeTemporaryROIs();
  createOpenPolygon();
  setIntervertebralPlanes(std::nullopt);
  createLabels();
  createPlanesROIs();
}

void VertanaFilter::inputLengthROIDrawingEvent() {
  if (static_cast<double>(inputLengthROI()->length()) < minimumInputLengthCm) return;
  if (drawMode() != DrawModeLength) return;
  rebuildFromInput();
}

void VertanaFilter::inputLengthROICreatedEvent() {
  if (static_cast<double>(inputLengthROI()->length()) < minimumInputLengthCm) {
    removeInputLengthROI();
  } else if (drawMode() == DrawModeLength) {
    finalizeInputROI();
  }
}

void VertanaFilter::inputOpenPolygonROIDrawingEvent() {
  const auto polygon = inputOpenPolygonROI();
  if (polygon->points()->count() < 3 && static_cast<double>(polygon->length()) < minimumInputLengthCm) return;
  if (drawMode() != DrawModeOpenPolygon) return;
  rebuildFromInput();
}

// Unlike the line, which ends with its first mouse-up, the polygon goes on between clicks: nothing is decided before
// the host says that it is no longer being drawn.
void VertanaFilter::inputOpenPolygonROICreatedEvent() {
  const auto polygon = inputOpenPolygonROI();
  if (polygon->ROImode() == pelmar::ROIModeDrawing) return;
  if (static_cast<double>(polygon->length()) < minimumInputLengthCm) {
    removeInputOpenPolygonROI();
  } else if (drawMode() == DrawModeOpenPolygon) {
    finalizeInputROI();
  }
}

void VertanaFilter::finalizeInputROI() {
  setIntervertebralPlanes(std::nullopt);
  inputLengthROI()->setROIMode(pelmar::ROIModeFinished);
  inputOpenPolygonROI()->setROIMode(pelmar::ROIModeFinished);
  createOpenPolygon();
  createLabels();
  createPlanesROIs();
  if (inputLengthROI()) removeInputLengthROI();
  if (inputOpenPolygonROI()) removeInputOpenPolygonROI();
  openPolygonROI()->setROIMode(pelmar::ROIModeSelected);
}

void VertanaFilter::removeInputLengthROI() {
  const auto roi = inputLengthROI();
  if (!roi) return;
  api().roiClass().deleteROI(roi);
  verticalViewerController()->needsDisplayUpdate();
  setInputLengthROI(nullptr);
}

void VertanaFilter::removeInputOpenPolygonROI() {
  const auto roi = inputOpenPolygonROI();
  if (!roi) return;
  api().roiClass().deleteROI(roi);
  verticalViewerController()->needsDisplayUpdate();
  setInputOpenPolygonROI(nullptr);
}

}  // namespace vertana
