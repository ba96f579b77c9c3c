#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/DCMView.h"
#include "host/ViewerController.h"
#include "tests/double/CallLog.h"
#include "tests/double/Series.h"
#include "tests/double/TestDatabase.h"
#include "tests/double/TestROI.h"
#include "tests/double/TestWindow.h"

namespace testhost {

class TestViewer;

/// The image view of a TestViewer. Upright at 1 point a pixel with the image in the view's top left corner, unless a
/// test sets zoom, pan or a conversion of its own.
class TestView : public pelmar::DCMView {
 public:
  CallLog* log = nullptr;
  std::string name;
  pelmar::WeakRef<pelmar::ViewerController> owner;
  pelmar::Ref<pelmar::VectorList<pelmar::Ref<pelmar::DCMPix>>> images;  ///< nil: no list
  pelmar::Ref<pelmar::ROILists> roiLists;                               ///< nil: no list
  pelmar::Ref<pelmar::DicomStudy> study;
  pelmar::Ref<pelmar::Window> shownIn;
  long current = 0;  ///< index of the slice shown
  long tool = 0;     ///< the current mouse tool
  pelmar::FrameRect frameRect{0, 0, 512, 512};
  double zoom = 1;          ///< points a pixel
  pelmar::ViewPoint pan{};  ///< points from the view's top left corner to the first pixel: right, down
  std::function<pelmar::ViewPoint(pelmar::PixelPoint)> pixelToView;  ///< replaces zoom and pan when set
  std::function<pelmar::PixelPoint(pelmar::ViewPoint)> viewToPixel;  ///< likewise
  std::optional<std::array<float, 9>> displayOrientation;            ///< default: the orientation of the slice shown
  pelmar::Ref<TestROI> drawn;    ///< what a TestPerson is drawing here, in mode 1; nil when nothing is
  pelmar::Ref<TestROI> pressed;  ///< what the mouse button is down for; its release is told even if drawing has ended

  pelmar::Ref<pelmar::ViewerController> viewer() const override { return owner.lock(); }
  pelmar::Ref<pelmar::DCMPix> curDCM() const override;
  long curImage() const override { return current; }
  pelmar::Ref<pelmar::List<pelmar::Ref<pelmar::DCMPix>>> dcmPixList() const override { return images; }
  pelmar::Ref<pelmar::ROILists> dcmRoiList() const override { return roiLists; }
  pelmar::Ref<pelmar::DicomStudy> studyObj() const override { return study; }
  long currentTool() const override { return tool; }
  pelmar::ViewPoint ConvertFromGL2NSView(pelmar::PixelPoint point) const override;
  pelmar::PixelPoint ConvertFromNSView2GL(pelmar::ViewPoint point) const override;
  void orientationCorrectedToView(std::array<float, 9>& vector) const override;
  /// Whatever is being drawn is finished, in mode 2; nothing is posted.
  void stopROIEditingForce(bool force) override;
  pelmar::FrameRect frame() const override { return frameRect; }
  pelmar::Ref<pelmar::Window> window() const override { return shownIn; }
  pelmar::WindowPoint convertPoint(pelmar::ViewPoint point, const pelmar::Ref<pelmar::DCMView>& toView) const override;
};

/// One viewer. The fields are its answers; a test may change them at any time.
class TestViewer : public pelmar::ViewerController {
 public:
  TestViewer() = default;

  CallLog* log = nullptr;
  std::string name;  ///< as in the call log: "viewer1", ...
  pelmar::Ref<pelmar::DicomStudy> study;
  pelmar::Ref<TestView> view;
  pelmar::Ref<TestWindow> shownIn;
  long orientationCode = -1;
  bool everythingLoaded = true;
  bool hasROIToolTag = true;  ///< whether the object offers ROIToolTag
  long roiToolTag = 0;
  bool drawsWithLeftButton = false;                   ///< from the choice of an ROI tool to that of a mouse tool
  std::function<void(const TestViewer&)> toolChosen;  ///< called as any tool is chosen, when set
  std::vector<pelmar::Ref<TestImage>> images;         ///< the same objects as the view's list
  std::vector<pelmar::Ref<TestROIList>> sliceLists;
  pelmar::Ref<pelmar::VectorList<pelmar::Ref<pelmar::ROIList>>> lists;  ///< the same lists, as roiList answers them

  /// The annotations of a slice, as concrete objects.
  std::vector<pelmar::Ref<TestROI>> roisOnSlice(std::size_t slice) const;
  /// The annotations of all slices, each once.
  std::vector<pelmar::Ref<TestROI>> allROIs() const;
  /// Those of them that carry the tag.
  std::vector<pelmar::Ref<TestROI>> allROIsTagged(std::string_view tag) const;

  bool supports(pelmar::Capability capability) const override;
  pelmar::Ref<pelmar::DicomStudy> currentStudy() const override { return study; }
  pelmar::Ref<pelmar::DCMView> imageView() const override { return view; }
  pelmar::Ref<pelmar::Window> window() const override { return shownIn; }
  long orientationVector() const override { return orientationCode; }
  bool isEverythingLoaded() const override { return everythingLoaded; }
  pelmar::Ref<pelmar::ROILists> roiList() const override { return lists; }
  void needsDisplayUpdate() override;
  long ROIToolTag() const override { return hasROIToolTag ? roiToolTag : 0; }
  void setROIToolTag(long tag) override;
  void setToolTag(long tag) override;
};

/// Gives a viewer the slices and empty lists of a series.
void loadSeries(TestViewer& viewer, const pelmar::Ref<TestStudy>& study, const Series& series);

/// Makes a viewer with its view, slices, lists and window.
pelmar::Ref<TestViewer> makeViewer(CallLog* log, const std::string& name, const pelmar::Ref<TestStudy>& study,
                                   const Series& series);

}  // namespace testhost
