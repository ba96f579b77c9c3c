#pragma once

#include <memory>

#include "host/DCMView.h"
#include "workstation/model/Drawing.h"
#include "workstation/model/Pix.h"
#include "workstation/model/RoiLists.h"
#include "workstation/model/ViewTransform.h"

namespace workstation {

class Host;
class Viewer;

/// The image view of a viewer: which slice it shows and how it lies in the view.
class View final : public pelmar::DCMView, public std::enable_shared_from_this<View> {
 public:
  View(Host& host, const std::shared_ptr<Viewer>& viewer);

  /// Shows these slices and lists, the first slice first, fitted into the view.
  void load(std::shared_ptr<pelmar::VectorList<pelmar::Ref<pelmar::DCMPix>>> slices,
            std::shared_ptr<SeriesRoiLists> lists);
  SeriesRoiLists& lists() { return *lists_; }
  const SeriesRoiLists& lists() const { return *lists_; }
  Drawing& drawing() { return drawing_; }
  Host& host() { return host_; }

  /// Shows another slice; the index must be one.
  void setCurImage(std::size_t index);
  void setSize(double width, double height);
  ViewTransform& transform() { return transform_; }
  const ViewTransform& transform() const { return transform_; }

  void post(std::string_view notification);
  /// Of its viewer; -1 once that has gone.
  int number() const;
  bool drawsWithLeftButton() const;
  long annotationTool() const;

  pelmar::Ref<pelmar::ViewerController> viewer() const override;
  pelmar::Ref<pelmar::DCMPix> curDCM() const override { return slices_->objectAtIndex(current_); }
  long curImage() const override { return static_cast<long>(current_); }
  pelmar::Ref<pelmar::List<pelmar::Ref<pelmar::DCMPix>>> dcmPixList() const override;
  pelmar::Ref<pelmar::ROILists> dcmRoiList() const override { return pelmar::Ref<pelmar::ROILists>(lists_); }
  pelmar::Ref<pelmar::DicomStudy> studyObj() const override;
  long currentTool() const override;
  pelmar::ViewPoint ConvertFromGL2NSView(pelmar::PixelPoint pixel) const override { return transform_.toView(pixel); }
  pelmar::PixelPoint ConvertFromNSView2GL(pelmar::ViewPoint point) const override { return transform_.toPixel(point); }
  void orientationCorrectedToView(std::array<float, 9>& vector) const override;
  void stopROIEditingForce(bool) override { drawing_.stop(); }
  pelmar::FrameRect frame() const override;
  pelmar::Ref<pelmar::Window> window() const override;
  pelmar::WindowPoint convertPoint(pelmar::ViewPoint point, const pelmar::Ref<pelmar::DCMView>&) const override {
    return {point.x, point.y};
  }

 private:
  void takeImageSize();

  Host& host_;
  std::weak_ptr<Viewer> viewer_;
  std::shared_ptr<pelmar::VectorList<pelmar::Ref<pelmar::DCMPix>>> slices_;
  std::shared_ptr<SeriesRoiLists> lists_;
  std::size_t current_ = 0;
  ViewTransform transform_;
  Drawing drawing_;
};

}  // namespace workstation
