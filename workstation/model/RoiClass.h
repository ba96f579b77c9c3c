#pragma once

#include "host/Notification.h"
#include "workstation/model/RoiLists.h"

namespace workstation {

/// The class operations of annotations; gives each its id.
class RoiClass final : public pelmar::ROIClass {
 public:
  RoiClass(pelmar::NotificationCenter& center, const std::set<pelmar::Capability>& lacking)
      : center_(center), lacking_(lacking) {}

  /// An annotation that the person draws.
  std::shared_ptr<Roi> drawnRoi(long type, const pelmar::Ref<pelmar::DCMView>& inView);

  /// Nil without a view.
  pelmar::Ref<pelmar::ROI> roiWithType(long type, const pelmar::Ref<pelmar::DCMView>& inView) override;
  void deleteROI(const pelmar::Ref<pelmar::ROI>& roi) override { deleteROIs({roi}, true); }
  /// Takes time in proportion to the lists that hold them, however often each is named.
  void deleteROIs(const std::vector<pelmar::Ref<pelmar::ROI>>& rois, bool postNotification) override;
  std::optional<std::vector<pelmar::MyPoint>> resamplePoints(const std::optional<std::vector<pelmar::MyPoint>>& points,
                                                             long number, bool closeROI) override;
  pelmar::PixelPoint pointBetweenPoint(pelmar::PixelPoint a, pelmar::PixelPoint b, double ratio) override;

 private:
  std::shared_ptr<Roi> make(long type, const pelmar::Ref<pelmar::DCMView>& inView, bool drawnByPerson);

  pelmar::NotificationCenter& center_;
  const std::set<pelmar::Capability>& lacking_;
  int nextId_ = 0;
};

}  // namespace workstation
