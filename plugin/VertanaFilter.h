#pragma once
// The plug-in's one controller. Its operations live in the folder of their subject:
//   plugin/    entry and workflow, requirement check, viewer discovery, notifications
//   spine/     names of vertebrae and discs, region guessing
//   geometry/  input capture, spine curve, planes, plane annotations
//   display/   temporary annotations, vertebra labels, axial slice names
//   state/     the saved state
// Everything runs on the host's main thread, driven by the menu command, the host's notifications and the palette.

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "geometry/IntervertebralPlane.h"
#include "host/PluginFilter.h"

namespace vertana {

class VertanaWindowController;

/// The spine region that is labelled.
enum AnatomicalRegion : long {
  AnatomicalRegionNone = -1,
  AnatomicalRegionCervical = 0,
  AnatomicalRegionThoracic = 1,
  AnatomicalRegionLumbar = 2,
};

/// How the person draws the spine.
enum DrawMode : unsigned long {
  DrawModeLength = 0,       ///< a length line
  DrawModeOpenPolygon = 1,  ///< an open polygon
};

/// Labels in order from head to foot, by region number.
using LabelLists = std::map<long, std::vector<std::string>>;

/// What is stored of a labelling in its study: region, flag and planes, or nothing at all after a reset.
using SavedState = pelmar::Value::Dictionary;

/// Why the host cannot run the plug-in.
struct RequirementsError {
  std::string domain;
  long code = 0;
  std::optional<std::string> localizedDescription;
  std::optional<std::string> localizedFailureReason;
  std::optional<std::string> localizedRecoverySuggestion;
};

/// What the host calls (the virtual operations and the notification handlers it was given) lets no exception out: it
/// ends where it failed, and what that leaves half-done the next command or notification rebuilds.
class VertanaFilter : public pelmar::PluginFilter {
 public:
  explicit VertanaFilter(pelmar::PelmarAPI& api);
  ~VertanaFilter() override;

  // --- Lifetime and workflow (plugin/Workflow.cpp) ---

  /// Checks the requirements and, where they hold, observes the host's nine notifications until dealloc.
  void initPlugin() override;
  /// A menu entry was chosen; "Labels" starts the labelling workflow on the study of the command's viewer. Always 0.
  long filterImage(const std::string& menuName) override;
  void dealloc() override;
  pelmar::Value stateSnapshot() const override;
  /// "guessedAnatomicalRegion": the guess for the study at hand, -1 when there is none. "intervertebralPlanesLabels":
  /// the disc names of the current region, head to foot.
  pelmar::Value valueForKey(std::string_view key) const override;
  /// "sliceName" of a DCMPix: the level that the slice cuts, by the planes in memory; nil when there are none, and for
  /// a slice beyond the ends.
  pelmar::Value valueForObject(const pelmar::Ref<pelmar::HostObject>& object, std::string_view key) const override;

  /// Loads what the study holds and redraws it; does nothing unless a workflow runs on a study.
  void startWorkflow();
  /// Ends the workflow: tools restored, a half-drawn input taken, the state saved, the construction removed.
  void stopWorkflow();
  /// Empties the labelling of the study; the workflow goes on.
  void reset();
  /// A workflow runs and its palette is visible: the person's drawing is acted upon.
  bool isEditingActive() const;

  bool isActive() const { return isActive_; }
  /// Stores the value and, whatever it is, deletes a half-drawn input.
  void setIsActive(bool isActive);
  std::int32_t previousTool() const { return previousTool_; }
  void setPreviousTool(std::int32_t tag) { previousTool_ = tag; }
  std::int32_t previousROITool() const { return previousROITool_; }
  void setPreviousROITool(std::int32_t tag) { previousROITool_ = tag; }
  std::int32_t workflow() const { return workflow_; }
  void setWorkflow(std::int32_t workflow) { workflow_ = workflow; }
  pelmar::Ref<pelmar::DicomStudy> study() const { return study_; }
  void setStudy(const pelmar::Ref<pelmar::DicomStudy>& study) { study_ = study; }
  pelmar::Ref<pelmar::ROI> inputLengthROI() const { return inputLengthROI_.lock(); }
  void setInputLengthROI(const pelmar::Ref<pelmar::ROI>& roi) { inputLengthROI_ = roi; }
  pelmar::Ref<pelmar::ROI> inputOpenPolygonROI() const { return inputOpenPolygonROI_.lock(); }
  void setInputOpenPolygonROI(const pelmar::Ref<pelmar::ROI>& roi) { inputOpenPolygonROI_ = roi; }
  pelmar::Ref<pelmar::ROI> openPolygonROI() const { return openPolygonROI_; }
  void setOpenPolygonROI(const pelmar::Ref<pelmar::ROI>& roi) { openPolygonROI_ = roi; }
  /// The palette; null when closed.
  std::shared_ptr<VertanaWindowController> windowController() const { return windowController_; }
  void setWindowController(std::shared_ptr<VertanaWindowController> palette);

  // --- Requirement check (plugin/RequirementCheck.cpp) ---

  /// The first requirement that the host fails, if any.
  std::optional<RequirementsError> requirementsError() const;
  /// Shows the error, then opens the host maker's site; nothing without an error.
  void alertRequirementsWithError(const std::optional<RequirementsError>& error);

  // --- Viewer discovery (plugin/ViewerDiscovery.cpp) ---

  /// The open viewers that show the study, in the host's order; absent without a study.
  std::optional<std::vector<pelmar::Ref<pelmar::ViewerController>>> openedViewersWithStudy(
      const pelmar::Ref<pelmar::DicomStudy>& study) const;
  std::optional<std::vector<pelmar::Ref<pelmar::ViewerController>>> openedViewersWithCurrentStudy() const;
  /// The vertical viewer of the current study: sagittal before coronal, the one in front first among sagittal ones.
  pelmar::Ref<pelmar::ViewerController> firstViewerWithVerticalSeries() const;
  bool openedViewersContainVerticalSeries() const;
  /// The viewer that holds the input or the curve; only when there is neither, the vertical viewer.
  pelmar::Ref<pelmar::ViewerController> verticalViewerController() const;
  /// The vertical viewer, or else the viewer of the menu command.
  pelmar::Ref<pelmar::ViewerController> viewerController() const;

  // --- Host notifications (plugin/NotificationHandling.cpp) ---

  pelmar::Ref<pelmar::ROI> ROIFromNotification(const pelmar::Notification& notification) const;
  void PelmarROIChanged(const pelmar::Notification& notification);
  void PelmarROIRemoved(const pelmar::Notification& notification);
  void PelmarROIAdded(const pelmar::Notification& notification);
  void PelmarCloseViewer(const pelmar::Notification& notification);
  void PelmarViewerControllerDidLoadImages(const pelmar::Notification& notification);
  void PelmarDCMViewIndexChanged(const pelmar::Notification& notification);
  void PelmarViewerWillChange(const pelmar::Notification& notification);
  void PelmarScaleOrOriginViewChanged(const pelmar::Notification& notification);

  // --- Region and names (spine/SpineModel.cpp) ---

  long anatomicalRegion() const { return anatomicalRegion_; }
  /// Another region resets the labelling.
  void setAnatomicalRegion(long region);
  bool additionalVertebra() const { return additionalVertebra_; }
  /// Another value resets the labelling.
  void setAdditionalVertebra(bool additionalVertebra);
  LabelLists vertebraeLabels() const;
  LabelLists intervertebralPlanesLabels() const;
  /// The vertebra above each region's first disc.
  std::map<long, std::string> upperVertebraeLabels() const;
  /// The vertebra below each region's last disc.
  std::map<long, std::string> lowerVertebraeLabels() const;

  // --- Region guessing and learnt terms (spine/RegionGuessing.cpp) ---

  /// From the body part, words of the study description, learnt terms; -1 when nothing matches.
  long guessedAnatomicalRegion() const;
  /// The learnt terms as stored; three empty records when nothing was.
  pelmar::Value customTerms() const;
  /// Files the term under the region and under no other.
  void setCustomTerm(const std::optional<std::string>& term, long forAnatomicalRegion);
  void setStudyDescriptionAsCustomTermForCurrentRegion();

  // --- Input (geometry/InputCapture.cpp) ---

  void inputLengthROIDrawingEvent();
  void inputLengthROICreatedEvent();
  void inputOpenPolygonROIDrawingEvent();
  void inputOpenPolygonROICreatedEvent();
  /// Turns the input into the spine curve.
  void finalizeInputROI();
  void removeInputLengthROI();
  void removeInputOpenPolygonROI();

  // --- Spine curve and planes (geometry/SpineCurve.cpp, geometry/PlaneComputation.cpp) ---

  /// Builds or rebuilds the curve from the line, else the polygon, else the planes.
  void createOpenPolygon();
  /// The planes, computed from the curve where there are none; absent without planes and curve.
  const IntervertebralPlanes& intervertebralPlanes();
  void setIntervertebralPlanes(IntervertebralPlanes planes) { intervertebralPlanes_ = std::move(planes); }
  void computeIntervertebralPlanes();
  /// Typical vertebra height by region, in centimetres.
  std::map<long, double> averageVertebraeHeight() const;

  // --- Plane annotations (geometry/PlaneAnnotations.cpp) ---

  void createPlanesROIs();
  /// Each plane annotation once for every slice list that holds it.
  std::vector<pelmar::Ref<pelmar::ROI>> planesROIs() const;
  void removePlanesROIs();
  /// Deletes inputs, curve, plane lines and temporary annotations; planes and labels stay.
  void removeConstructionROIs();

  // --- Temporary annotations (display/TemporaryAnnotations.cpp) ---

  std::vector<pelmar::Ref<pelmar::ROI>> temporaryROIs() const;
  std::vector<pelmar::Ref<pelmar::ROI>> temporaryROIsForViewer(
      const pelmar::Ref<pelmar::ViewerController>& viewer) const;
  pelmar::Ref<pelmar::ROI> temporaryROIWithUID(std::string_view uid) const;
  void addTemporaryROI(const pelmar::Ref<pelmar::ROI>& roi, const pelmar::Ref<pelmar::DCMView>& onView,
                       std::string_view withUID, const pelmar::Colour& color);
  void removeTemporaryROIs();
  void removeTemporaryROIsForViewer(const pelmar::Ref<pelmar::ViewerController>& viewer);
  void displayTemporaryPoint(pelmar::PixelPoint point, const pelmar::Ref<pelmar::DCMView>& onView,
                             std::string_view withUID);
  void displayTemporaryPoint(pelmar::PixelPoint point, const pelmar::Ref<pelmar::DCMView>& onView,
                             std::string_view withUID, const pelmar::Colour& color);
  void displayTemporaryVectorFromPoint(pelmar::PixelPoint fromPoint, pelmar::PixelPoint toPoint,
                                       const pelmar::Ref<pelmar::DCMView>& onView, std::string_view withUID);
  void displayTemporaryVectorFromPoint(pelmar::PixelPoint fromPoint, pelmar::PixelPoint toPoint, bool withArrow,
                                       const pelmar::Ref<pelmar::DCMView>& onView, std::string_view withUID,
                                       const pelmar::Colour& color);

  // --- Vertebra labels (display/VertebraLabels.cpp) ---

  bool displayLabels() const { return displayLabels_; }
  void setDisplayLabels(bool displayLabels);
  unsigned long drawMode() const { return drawMode_; }
  /// Another mode throws the construction away, selects the tool and is remembered for the region.
  void setDrawMode(unsigned long drawMode);
  std::string drawModeUserDefaultsKey() const;
  /// 1 where the screen's horizontal axis runs front to back (sagittal), else 0.
  int labelsSide() const;
  /// Distance of a label from the spine, in pixels of the view's image.
  pelmar::PixelSize labelsDistanceOnView(const pelmar::Ref<pelmar::DCMView>& view) const;
  std::vector<pelmar::Ref<pelmar::ROI>> labels() const;
  std::vector<pelmar::Ref<pelmar::ROI>> labelsOnView(const pelmar::Ref<pelmar::DCMView>& view) const;
  void createLabels();
  /// The argument is the image view, despite the name; rebuilds its labels if it qualifies.
  void createLabelsOnViewer(const pelmar::Ref<pelmar::DCMView>& view);
  void createLabelsOnView(const pelmar::Ref<pelmar::DCMView>& view);
  void removeLabels();
  void removeLabelsLines();

  // --- Axial slice names (display/AxialNames.cpp) ---

  /// The level that a slice cuts.
  std::optional<std::string> nameForSlice(const pelmar::Ref<pelmar::DCMPix>& slice,
                                          const std::vector<IntervertebralPlane>& planes) const;
  std::optional<std::string> nameForSliceAtIndex(long index, const pelmar::Ref<pelmar::DCMView>& onAxialView);
  void setName(std::optional<std::string> name, long forSliceAtIndex, const pelmar::Ref<pelmar::DCMView>& onAxialView);
  void displayLabelsForSliceAtIndex(long index, const pelmar::Ref<pelmar::DCMView>& onAxialView);
  void displayLabelsOnAxialView(const pelmar::Ref<pelmar::DCMView>& view);
  void displayLabelsOnAxialViewer(const pelmar::Ref<pelmar::ViewerController>& viewer);
  void updateAxialLabels();

  // --- Saved state (state/SavedState.cpp) ---

  void saveCurrentState();
  void saveEmptyState();
  void saveState(const SavedState& state);
  std::optional<SavedState> savedState() const;
  bool savedStateExists() const;
  bool isSavedStateEmpty() const;
  void loadState();
  const std::optional<SavedState>& savedDictionary() const { return savedDictionary_; }
  void setSavedDictionary(std::optional<SavedState> state) { savedDictionary_ = std::move(state); }

 private:
  friend class VertanaWindowController;

  /// Makes the study current and forgets planes and curve of the one before: what is shown of a study is what that
  /// study holds, and no patient is ever shown another patient's levels.
  void adoptStudy(const pelmar::Ref<pelmar::DicomStudy>& study);
  void saveVerticalViewerTools(const pelmar::Ref<pelmar::ViewerController>& viewer);
  void placePalette();
  void closePalette();
  void closePaletteAndRestoreTools(const pelmar::Ref<pelmar::ViewerController>& viewer);
  bool showsCurrentStudy(const pelmar::Ref<pelmar::DicomStudy>& study) const;
  void observe(std::string_view notification, void (VertanaFilter::*handler)(const pelmar::Notification&));
  /// The annotation of an ROI notification when it is on screen and editing is active, else nil.
  pelmar::Ref<pelmar::ROI> editableROIFromNotification(const pelmar::Notification& notification) const;
  /// Switches on for a study that holds a labelling; leaves no study set for one that does not.
  void activateForLabelledStudy(const pelmar::Ref<pelmar::DicomStudy>& study);
  void rebuildFromInput();
  std::vector<pelmar::MyPoint> verticesFromLine(const pelmar::Ref<pelmar::ROI>& line, long vertebraCount,
                                                long fullCount) const;
  std::vector<pelmar::MyPoint> verticesFromPolygon(const pelmar::Ref<pelmar::ROI>& polygon, long vertexCount) const;
  /// The label list of the current region; empty for a region that has none.
  std::vector<std::string> currentVertebraeLabels() const;
  std::vector<std::string> currentIntervertebralPlanesLabels() const;
  std::vector<pelmar::PixelPoint> labelAnchorsOnView(const pelmar::Ref<pelmar::DCMView>& view);
  /// A bound control shows the setting's new value.
  void settingDidChange(std::string_view key);

  bool isActive_ = false;
  bool displayLabels_ = false;
  bool additionalVertebra_ = false;
  std::int32_t previousTool_ = 0;
  std::int32_t previousROITool_ = 0;
  std::int32_t workflow_ = 0;
  unsigned long drawMode_ = 0;
  long anatomicalRegion_ = 0;
  pelmar::Ref<pelmar::DicomStudy> study_;
  pelmar::WeakRef<pelmar::ROI> inputLengthROI_;
  pelmar::WeakRef<pelmar::ROI> inputOpenPolygonROI_;
  pelmar::Ref<pelmar::ROI> openPolygonROI_;
  IntervertebralPlanes intervertebralPlanes_;
  std::shared_ptr<VertanaWindowController> windowController_;
  std::optional<SavedState> savedDictionary_;
};

/// Whether both are there and have equal Study Instance UIDs.
bool isSameStudy(const pelmar::Ref<pelmar::DicomStudy>& a, const pelmar::Ref<pelmar::DicomStudy>& b);

}  // namespace vertana
