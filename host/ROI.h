#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/Geometry.h"
#include "host/List.h"
#include "host/MyPoint.h"
#include "host/Ref.h"
#include "host/StringTags.h"

namespace pelmar {

class DCMPix;
class DCMView;

/// Kinds of annotation, by the host's own numbers (ROI::type).
enum ROIType : long {
  ROITypeLength = 5,        ///< length line: two points
  ROITypeOpenPolygon = 10,  ///< open polygon
  ROITypeText = 13,         ///< text, centred on its rectangle's origin
  ROITypeArrow = 14,        ///< arrow: two points
  ROITypePoint = 19,        ///< single point
};

/// States of an annotation (ROI::ROImode).
enum ROIMode : long {
  ROIModeFinished = 0,  ///< finished, inactive; a fresh annotation
  ROIModeDrawing = 1,   ///< still being drawn
  ROIModeSelected = 2,  ///< selected for editing
  ROIModeEditing = 3,   ///< a vertex is being dragged
};

/// One annotation. It shows on every slice whose list holds it; one object may stand in several lists (aliased).
/// Made by ROIClass. Changes made through these operations post no notification.
class ROI : public HostObject {
 public:
  /// See ROIType. Nil: 0.
  virtual long type() const { return 0; }
  /// See ROIMode. Nil: 0.
  virtual long ROImode() const { return 0; }
  /// See ROIMode. Nil: nothing.
  virtual void setROIMode(long) {}

  /// The mutable point list, in pixels of the slice it lies on. Nil: nil.
  virtual Ref<MutableList<MyPoint>> points() const { return {}; }
  /// Replaces the contents of the point list. Nil: nothing.
  virtual void setPoints(const std::vector<MyPoint>&) {}
  /// One point; an index outside 0 .. count - 1 answers (0, 0). Nil: (0, 0).
  virtual PixelPoint pointAtIndex(long) const { return {}; }
  /// Dense samples of the smoothed curve through the points, about one a pixel of length, from the first point to the
  /// last. Nil: absent.
  virtual std::optional<std::vector<MyPoint>> splinePoints() const { return std::nullopt; }
  /// The same with `scale` samples a pixel of length (at least two a segment). Where `correspondingSegmentArray` is
  /// given, it receives for each sample the index of the segment that the sample lies on; segment i starts at point
  /// i, every point is a sample, and the last point's sample belongs to the last segment. Nil: absent, array untouched.
  virtual std::optional<std::vector<MyPoint>> splinePoints(float /*scale*/,
                                                           std::vector<long>* /*correspondingSegmentArray*/) const {
    return std::nullopt;
  }
  /// Length on the patient in centimetres; of a polygon, along its smoothed curve. Nil: 0.
  virtual float length() const { return 0; }

  /// The bounding rectangle of point-like annotations, in pixels. Nil: empty.
  virtual PixelRect rect() const { return {}; }
  /// In pixels. Nil: nothing.
  virtual void setROIRect(const PixelRect&) {}

  /// The view that it lies on; nil while it is not shown. Not kept alive by the annotation. Nil: nil.
  virtual Ref<DCMView> curView() const { return {}; }
  /// The slice it belongs to. Nil: nil.
  virtual Ref<DCMPix> pix() const { return {}; }
  /// Nil: nothing.
  virtual void setPix(const Ref<DCMPix>&) {}

  /// The mutable set of string tags. Only where Capability::ROIStringTags is supported. Nil: nil.
  virtual Ref<StringTags> stringTags() const { return {}; }

  /// The text that a text annotation shows, the caption of another. Nil: empty.
  virtual std::string name() const { return {}; }
  /// Nil: nothing.
  virtual void setName(const std::string&) {}
  /// Colour of its lines and text. Nil: opaque black.
  virtual Colour NSColor() const { return {}; }
  /// `globally` would change the default of this kind of annotation too; the plug-in always passes false.
  /// Nil: nothing.
  virtual void setNSColor(const Colour&, bool /*globally*/) {}
  /// Line width in points; of a text, its font size in points. Nil: 0.
  virtual float thickness() const { return 0; }
  /// Above 0, in points, of this annotation alone. Nil: nothing.
  virtual void setThickness(float) {}
  /// The same; `globally` would change the default of this kind too, the plug-in always passes false. Nil: nothing.
  virtual void setThickness(float, bool /*globally*/) {}
  /// Whether the person can select it, and so move or delete it. Nil: false.
  virtual bool selectable() const { return false; }
  /// Nil: nothing.
  virtual void setSelectable(bool) {}
  /// Whether measurements are written beside it. Nil: false.
  virtual bool displayTextualData() const { return false; }
  /// Nil: nothing.
  virtual void setDisplayTextualData(bool) {}
  /// Whether one object stands for every slice of its series. Nil: false.
  virtual bool isAliased() const { return false; }
  /// Nil: nothing.
  virtual void setIsAliased(bool) {}
  /// The slice index that an aliased annotation was made for. Nil: 0.
  virtual long originalIndexForAlias() const { return 0; }
  /// From 0, a slice of the view that it lies on: its points are pixels of that slice from here on, and `pix` is that
  /// slice. A slice that the view does not have, or without a view: `pix` stays. Nil: nothing.
  virtual void setOriginalIndexForAlias(long) {}
  /// Keeps it out of the host's display of key images. Only where Capability::ROIDontDisplayInKeyImagesWindow is
  /// supported. Nil: false.
  virtual bool dontDisplayInKeyImagesWindow() const { return false; }
  /// Nil: nothing.
  virtual void setDontDisplayInKeyImagesWindow(bool) {}
  /// It must not change stored window settings. Nil: false.
  virtual bool dontSavePreferredWLWW() const { return false; }
  /// Nil: nothing.
  virtual void setDontSavePreferredWLWW(bool) {}
};

/// The annotations of one slice, in drawing order.
using ROIList = MutableList<Ref<ROI>>;
/// The lists of a series, one a slice, in slice order.
using ROILists = List<Ref<ROIList>>;

/// The class operations of ROI.
class ROIClass {
 public:
  virtual ~ROIClass() = default;
  /// A new annotation of the given kind for the given view, not yet in any slice's list: mode 0, thickness 2, empty
  /// rectangle, no points, `curView` the view, `pix` the slice that the view shows. Nil where the host cannot make one.
  virtual Ref<ROI> roiWithType(long type, const Ref<DCMView>& inView) = 0;
  /// Takes one annotation out of every list that holds it and posts its removal while `curView` still answers.
  /// Nil argument: nothing.
  virtual void deleteROI(const Ref<ROI>& roi) = 0;
  /// Takes several out of every list that holds them; one that is named more than once goes once, nil entries are
  /// passed over. Posts a removal for each only when asked to.
  virtual void deleteROIs(const std::vector<Ref<ROI>>& rois, bool postNotification) = 0;
  /// Spreads `number` points evenly along a point list from its first to its last point; `closeROI` would close the
  /// curve first. Only where Capability::ROIResamplePoints is supported. Absent input: absent.
  virtual std::optional<std::vector<MyPoint>> resamplePoints(const std::optional<std::vector<MyPoint>>& points,
                                                             long number, bool closeROI) = 0;
  /// The point a + ratio * (b - a).
  virtual PixelPoint pointBetweenPoint(PixelPoint a, PixelPoint b, double ratio) = 0;
};

}  // namespace pelmar
