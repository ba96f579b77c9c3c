#pragma once

#include <set>

#include "host/DCMPix.h"
#include "host/DCMView.h"
#include "host/ROI.h"

namespace workstation {

class SeriesRoiLists;

/// The string tags of one annotation: few, so kept in a row.
class TagSet final : public pelmar::StringTags {
 public:
  bool containsObject(std::string_view tag) const override;
  void addObject(std::string_view tag) override;
  std::vector<std::string> allObjects() const override { return tags_; }

 private:
  std::vector<std::string> tags_;
};

/// One annotation. Besides what the contract asks, it knows in which slices' lists it stands, so that it can be
/// deleted without searching all of them.
class Roi final : public pelmar::ROI {
 public:
  /// Where it stands in the lists of one series: in `entries` places, none outside the slices first .. last.
  struct Membership {
    SeriesRoiLists* lists = nullptr;
    std::size_t first = 0;
    std::size_t last = 0;
    std::size_t entries = 0;
  };

  Roi(int id, long type, const pelmar::Ref<pelmar::DCMView>& view, bool drawnByPerson,
      const std::set<pelmar::Capability>& lacking);

  int id() const { return id_; }
  bool drawnByPerson() const { return drawnByPerson_; }
  /// Number of points that differ from the ones before them, up to 2.
  int distinctPoints() const;

  const std::vector<Membership>& memberships() const { return memberships_; }
  bool standsInAnyList() const { return !memberships_.empty(); }
  /// Called by the lists.
  void joined(SeriesRoiLists& lists, std::size_t slice);
  void left(SeriesRoiLists& lists);

  void setCurView(const pelmar::Ref<pelmar::DCMView>& view) { view_ = view; }
  /// Set once it was deleted, until it is put into a list again: it does not come back with its series.
  bool deleted() const { return deleted_; }
  void setDeleted(bool deleted) { deleted_ = deleted; }

  bool supports(pelmar::Capability capability) const override;
  long type() const override { return type_; }
  long ROImode() const override { return mode_; }
  void setROIMode(long mode) override { mode_ = mode; }
  pelmar::Ref<pelmar::MutableList<pelmar::MyPoint>> points() const override { return points_; }
  void setPoints(const std::vector<pelmar::MyPoint>& points) override;
  pelmar::PixelPoint pointAtIndex(long index) const override;
  std::optional<std::vector<pelmar::MyPoint>> splinePoints() const override;
  std::optional<std::vector<pelmar::MyPoint>> splinePoints(float scale,
                                                           std::vector<long>* correspondingSegmentArray) const override;
  /// 0 where the slice has no geometry.
  float length() const override;
  pelmar::PixelRect rect() const override { return rect_; }
  void setROIRect(const pelmar::PixelRect& rect) override { rect_ = rect; }
  pelmar::Ref<pelmar::DCMView> curView() const override { return view_.lock(); }
  pelmar::Ref<pelmar::DCMPix> pix() const override { return pix_; }
  void setPix(const pelmar::Ref<pelmar::DCMPix>& pix) override { pix_ = pix; }
  pelmar::Ref<pelmar::StringTags> stringTags() const override { return tags_; }
  std::string name() const override { return name_; }
  void setName(const std::string& name) override { name_ = name; }
  pelmar::Colour NSColor() const override { return colour_; }
  void setNSColor(const pelmar::Colour& colour, bool) override { colour_ = colour; }
  float thickness() const override { return thickness_; }
  void setThickness(float thickness) override { thickness_ = thickness; }
  void setThickness(float thickness, bool) override { thickness_ = thickness; }
  bool selectable() const override { return selectable_; }
  void setSelectable(bool selectable) override { selectable_ = selectable; }
  bool displayTextualData() const override { return displayTextualData_; }
  void setDisplayTextualData(bool display) override { displayTextualData_ = display; }
  bool isAliased() const override { return aliased_; }
  void setIsAliased(bool aliased) override { aliased_ = aliased; }
  long originalIndexForAlias() const override { return originalIndex_; }
  /// It belongs to that slice from here on: its points are pixels of it.
  void setOriginalIndexForAlias(long index) override;
  bool dontDisplayInKeyImagesWindow() const override { return notInKeyImages_; }
  void setDontDisplayInKeyImagesWindow(bool hidden) override { notInKeyImages_ = hidden; }
  bool dontSavePreferredWLWW() const override { return dontSaveWindow_; }
  void setDontSavePreferredWLWW(bool dontSave) override { dontSaveWindow_ = dontSave; }

 private:
  const std::vector<pelmar::MyPoint>& vertices() const { return points_.shared()->elements(); }

  int id_;
  long type_;
  bool drawnByPerson_;
  bool tagsSupported_;
  bool keyImagesSupported_;
  bool deleted_ = false;
  std::vector<Membership> memberships_;
  pelmar::WeakRef<pelmar::DCMView> view_;
  pelmar::Ref<pelmar::DCMPix> pix_;
  pelmar::Ref<pelmar::VectorList<pelmar::MyPoint>> points_;
  pelmar::Ref<pelmar::StringTags> tags_;
  std::string name_;
  pelmar::Colour colour_{1, 0.8, 0.2, 1};
  pelmar::PixelRect rect_;
  float thickness_ = 2;
  long mode_ = pelmar::ROIModeFinished;
  long originalIndex_ = 0;
  bool selectable_ = true;
  bool displayTextualData_ = true;
  bool aliased_ = false;
  bool notInKeyImages_ = false;
  bool dontSaveWindow_ = false;
};

}  // namespace workstation
