#pragma once

#include "workstation/model/Roi.h"

namespace workstation {

/// The annotations of one slice. Only annotations of this workstation can stand in it; others are not taken.
class SliceRoiList final : public pelmar::ROIList {
 public:
  SliceRoiList(SeriesRoiLists* series, std::size_t slice) : series_(series), slice_(slice) {}
  ~SliceRoiList() override { removeAllObjects(); }

  const std::vector<pelmar::Ref<pelmar::ROI>>& entries() const { return entries_; }
  /// Takes out every annotation that is marked as deleted.
  void removeDeleted();
  /// The series' lists go: this one, which somebody still holds, is emptied and stands alone from now on.
  void forgetSeries();

  std::size_t count() const override { return entries_.size(); }
  pelmar::Ref<pelmar::ROI> objectAtIndex(std::size_t index) const override;
  void addObject(const pelmar::Ref<pelmar::ROI>& roi) override { insertObject(roi, entries_.size()); }
  void insertObject(const pelmar::Ref<pelmar::ROI>& roi, std::size_t atIndex) override;
  void removeObject(const pelmar::Ref<pelmar::ROI>& roi) override;
  void removeAllObjects() override;
  bool containsObject(const pelmar::Ref<pelmar::ROI>& roi) const override;

 private:
  SeriesRoiLists* series_;
  std::size_t slice_;
  std::vector<pelmar::Ref<pelmar::ROI>> entries_;
};

/// The lists of one viewer's series, one a slice.
class SeriesRoiLists final : public pelmar::ROILists {
 public:
  SeriesRoiLists(std::size_t slices, const pelmar::Ref<pelmar::DCMView>& view);
  ~SeriesRoiLists() override;

  std::size_t count() const override { return lists_.size(); }
  pelmar::Ref<pelmar::ROIList> objectAtIndex(std::size_t slice) const override;

  SliceRoiList& list(std::size_t slice) { return *lists_[slice]; }
  const SliceRoiList& list(std::size_t slice) const { return *lists_[slice]; }
  pelmar::Ref<pelmar::DCMView> view() const { return view_.lock(); }
  /// The view shows something else: the annotations are no longer on it, and new ones do not come onto it.
  void letGoOfView();

 private:
  pelmar::WeakRef<pelmar::DCMView> view_;
  std::vector<std::shared_ptr<SliceRoiList>> lists_;
};

/// An annotation as this workstation's own; null for nil and for foreign ones.
Roi* ownRoi(const pelmar::Ref<pelmar::ROI>& roi);

}  // namespace workstation
