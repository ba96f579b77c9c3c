#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "host/DCMPix.h"
#include "host/DCMView.h"
#include "host/ROI.h"
#include "tests/double/CallLog.h"

namespace testhost {

/// String tags in the order in which they were added.
class TestTags : public pelmar::StringTags {
 public:
  std::vector<std::string> tags;

  bool containsObject(std::string_view tag) const override;
  void addObject(std::string_view tag) override;
  std::vector<std::string> allObjects() const override { return tags; }
};

/// One annotation. Every field may be read and set by a test; setting one posts nothing.
class TestROI : public pelmar::ROI {
 public:
  using Points = std::vector<pelmar::MyPoint>;

  TestROI() = default;
  TestROI(CallLog* callLog, long type, const pelmar::Ref<pelmar::DCMView>& inView);

  CallLog* log = nullptr;
  long kind = 0;
  long mode = pelmar::ROIModeFinished;
  pelmar::Ref<pelmar::VectorList<pelmar::MyPoint>> pointList = pelmar::makeRef<pelmar::VectorList<pelmar::MyPoint>>();
  std::optional<Points> splineOverride;              ///< what both spline operations answer instead of their own
  std::optional<std::vector<long>> segmentOverride;  ///< goes with splineOverride
  std::optional<float> lengthOverride;               ///< centimetres
  pelmar::PixelRect rectangle;
  pelmar::WeakRef<pelmar::DCMView> view;  ///< what curView answers
  pelmar::Ref<pelmar::DCMPix> image;      ///< what pix answers
  pelmar::Ref<TestTags> tags = pelmar::makeRef<TestTags>();
  std::string caption;
  pelmar::Colour colour;
  std::optional<bool> colourGlobally;     ///< the flag of the last setNSColor
  std::optional<bool> thicknessGlobally;  ///< the flag of the last setThickness that has one
  float width = 2;
  bool isSelectable = true;
  bool showsText = true;
  bool aliased = false;
  long aliasIndex = 0;
  bool hiddenInKeyImages = false;
  bool keepsWindowSettings = false;
  bool deleted = false;  ///< set once it was deleted, until it is put into a list again
  std::set<pelmar::Capability> capabilities{pelmar::Capability::ROIDontDisplayInKeyImagesWindow,
                                            pelmar::Capability::ROIStringTags};

  /// Its points, a copy.
  std::vector<pelmar::PixelPoint> positions() const;

  bool supports(pelmar::Capability capability) const override { return capabilities.contains(capability); }
  long type() const override { return kind; }
  long ROImode() const override { return mode; }
  void setROIMode(long newMode) override;
  pelmar::Ref<pelmar::MutableList<pelmar::MyPoint>> points() const override { return pointList; }
  void setPoints(const Points& newPoints) override { pointList->elements() = newPoints; }
  pelmar::PixelPoint pointAtIndex(long index) const override;
  /// Straight from point to point: about `scale` samples a pixel of length, at least two a segment.
  std::optional<Points> splinePoints() const override;
  std::optional<Points> splinePoints(float scale, std::vector<long>* correspondingSegmentArray) const override;
  /// Along the straight lines from point to point with the slice's spacing, unless overridden.
  float length() const override;
  pelmar::PixelRect rect() const override { return rectangle; }
  void setROIRect(const pelmar::PixelRect& newRect) override { rectangle = newRect; }
  pelmar::Ref<pelmar::DCMView> curView() const override { return view.lock(); }
  pelmar::Ref<pelmar::DCMPix> pix() const override { return image; }
  void setPix(const pelmar::Ref<pelmar::DCMPix>& newPix) override { image = newPix; }
  pelmar::Ref<pelmar::StringTags> stringTags() const override { return tags; }
  std::string name() const override { return caption; }
  void setName(const std::string& newName) override { caption = newName; }
  pelmar::Colour NSColor() const override { return colour; }
  void setNSColor(const pelmar::Colour& newColour, bool globally) override;
  float thickness() const override { return width; }
  void setThickness(float newThickness) override { width = newThickness; }
  void setThickness(float newThickness, bool globally) override;
  bool selectable() const override { return isSelectable; }
  void setSelectable(bool flag) override { isSelectable = flag; }
  bool displayTextualData() const override { return showsText; }
  void setDisplayTextualData(bool flag) override { showsText = flag; }
  bool isAliased() const override { return aliased; }
  void setIsAliased(bool flag) override { aliased = flag; }
  long originalIndexForAlias() const override { return aliasIndex; }
  void setOriginalIndexForAlias(long index) override;
  bool dontDisplayInKeyImagesWindow() const override { return hiddenInKeyImages; }
  void setDontDisplayInKeyImagesWindow(bool flag) override { hiddenInKeyImages = flag; }
  bool dontSavePreferredWLWW() const override { return keepsWindowSettings; }
  void setDontSavePreferredWLWW(bool flag) override { keepsWindowSettings = flag; }

 private:
  Points sampled(double scale, std::vector<long>* segments) const;
};

/// The list of one slice; logs what is added and lets an annotation that had no view lie on the list's view. Nil is not
/// taken.
class TestROIList : public pelmar::VectorList<pelmar::Ref<pelmar::ROI>> {
 public:
  TestROIList() = default;
  TestROIList(CallLog* log, std::string name) : log_(log), name_(std::move(name)) {}
  /// Nil: the list is not shown any more.
  void shownOn(const pelmar::Ref<pelmar::DCMView>& view) { view_ = view; }

  void addObject(const pelmar::Ref<pelmar::ROI>& roi) override;
  void insertObject(const pelmar::Ref<pelmar::ROI>& roi, std::size_t atIndex) override;
  void removeObject(const pelmar::Ref<pelmar::ROI>& roi) override;
  void removeAllObjects() override;

 private:
  void show(const pelmar::Ref<pelmar::ROI>& roi);
  CallLog* log_ = nullptr;
  std::string name_;
  pelmar::WeakRef<pelmar::DCMView> view_;
};

class TestHost;

/// The class operations of ROI, on the lists of the host's viewers.
class TestROIClass : public pelmar::ROIClass {
 public:
  explicit TestROIClass(TestHost& host) : host_(host) {}

  bool makesROIs = true;        ///< false: roiWithType answers nil
  pelmar::PixelSize freshSize;  ///< of the rectangle of one that roiWithType makes
  /// Annotations made by roiWithType, oldest first, kept alive for the test to look at; the log line is
  /// "roiWithType(5)".
  std::vector<pelmar::Ref<TestROI>> made;

  pelmar::Ref<pelmar::ROI> roiWithType(long type, const pelmar::Ref<pelmar::DCMView>& inView) override;
  void deleteROI(const pelmar::Ref<pelmar::ROI>& roi) override;
  void deleteROIs(const std::vector<pelmar::Ref<pelmar::ROI>>& rois, bool postNotification) override;
  std::optional<std::vector<pelmar::MyPoint>> resamplePoints(const std::optional<std::vector<pelmar::MyPoint>>& points,
                                                             long number, bool closeROI) override;
  pelmar::PixelPoint pointBetweenPoint(pelmar::PixelPoint a, pelmar::PixelPoint b, double ratio) override;

 private:
  /// It was deleted and stands in no list.
  bool isGone(const pelmar::Ref<pelmar::ROI>& roi) const;
  void remove(const std::vector<pelmar::Ref<pelmar::ROI>>& rois, bool postNotification);
  TestHost& host_;
};

}  // namespace testhost
