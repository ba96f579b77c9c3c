#include "workstation/model/RoiLists.h"

#include <algorithm>
#include <typeinfo>

namespace workstation {

using pelmar::Ref;
using pelmar::ROI;

Roi* ownRoi(const Ref<ROI>& roi) {
  ROI* object = roi.get();
  // Roi is final: comparing types is a test for the class, and much quicker than a cast that searches.
  return object && typeid(*object) == typeid(Roi) ? static_cast<Roi*>(object) : nullptr;
}

Ref<ROI> SliceRoiList::objectAtIndex(std::size_t index) const {
  return index < entries_.size() ? entries_[index] : Ref<ROI>();
}

void SliceRoiList::insertObject(const Ref<ROI>& roi, std::size_t atIndex) {
  Roi* own = ownRoi(roi);
  if (!own || atIndex > entries_.size()) return;
  entries_.insert(entries_.begin() + static_cast<std::ptrdiff_t>(atIndex), roi);
  if (!series_) return;
  own->joined(*series_, slice_);
  if (!own->curView()) own->setCurView(series_->view());
}

void SliceRoiList::removeObject(const Ref<ROI>& roi) {
  Roi* own = ownRoi(roi);
  if (!own) return;
  const Ref<ROI> kept = roi;  // the argument may be the very entry that goes
  const std::size_t removed = std::erase(entries_, kept);
  if (!series_) return;
  for (std::size_t entry = 0; entry < removed; ++entry) own->left(*series_);
}

void SliceRoiList::removeAllObjects() {
  std::vector<Ref<ROI>> gone;
  gone.swap(entries_);
  if (!series_) return;
  for (const Ref<ROI>& roi : gone) ownRoi(roi)->left(*series_);
}

void SliceRoiList::removeDeleted() {
  std::erase_if(entries_, [&](const Ref<ROI>& roi) {
    Roi* own = ownRoi(roi);
    if (!own->deleted()) return false;
    if (series_) own->left(*series_);
    return true;
  });
}

void SliceRoiList::forgetSeries() {
  removeAllObjects();
  series_ = nullptr;
}

bool SliceRoiList::containsObject(const Ref<ROI>& roi) const {
  return std::find(entries_.begin(), entries_.end(), roi) != entries_.end();
}

SeriesRoiLists::SeriesRoiLists(std::size_t slices, const Ref<pelmar::DCMView>& view) : view_(view) {
  lists_.reserve(slices);
  for (std::size_t slice = 0; slice < slices; ++slice) {
    lists_.push_back(std::make_shared<SliceRoiList>(this, slice));
  }
}

SeriesRoiLists::~SeriesRoiLists() {
  for (const auto& list : lists_) list->forgetSeries();
}

Ref<pelmar::ROIList> SeriesRoiLists::objectAtIndex(std::size_t slice) const {
  return slice < lists_.size() ? Ref<pelmar::ROIList>(lists_[slice]) : Ref<pelmar::ROIList>();
}

void SeriesRoiLists::letGoOfView() {
  const Ref<pelmar::DCMView> left = view_.lock();
  view_ = nullptr;
  for (const auto& list : lists_) {
    for (const Ref<ROI>& roi : list->entries()) {
      if (roi->curView() == left) ownRoi(roi)->setCurView(nullptr);
    }
  }
}

}  // namespace workstation
