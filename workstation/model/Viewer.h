#pragma once

#include <memory>

#include "host/ViewerController.h"
#include "workstation/model/Studies.h"
#include "workstation/model/View.h"
#include "workstation/model/Windows.h"
#include "workstation/model/Workstation.h"

namespace workstation {

/// The window of a viewer. Closing it closes the viewer.
class ViewerWindow final : public ScreenWindow {
 public:
  explicit ViewerWindow(const std::shared_ptr<Viewer>& viewer) : viewer_(viewer) {}

  void makeKeyAndOrderFront() override;
  void close() override;
  /// Until its viewer has closed; still true while the closing is posted.
  bool isVisible() const override;

 private:
  std::weak_ptr<Viewer> viewer_;
};

/// A viewer: one stack in one view in one window, and the tools that are chosen there.
class Viewer final : public pelmar::ViewerController, public std::enable_shared_from_this<Viewer> {
 public:
  /// A viewer without a stack, at this place on the screen.
  static std::shared_ptr<Viewer> make(Host& host, int number, const pelmar::FrameRect& frame);
  Viewer(Host& host, int number) : host_(host), number_(number) {}

  /// Shows a stack with empty lists of annotations.
  void load(const StackId& id, const std::shared_ptr<StudyObject>& study);
  /// Lets go of the annotations: they are no longer on the view.
  void unload();
  /// Sets what isEverythingLoaded answers.
  void setLoaded(bool loaded) { loaded_ = loaded; }
  void setFrame(const pelmar::FrameRect& frame);

  /// The viewer has closed and everyone was told.
  void setClosed() { closed_ = true; }
  bool closed() const { return closed_; }

  int number() const { return number_; }
  Host& host() const { return host_; }
  const StackId& stackId() const { return stackId_; }
  const Stack& stack() const { return *stack_; }
  View& view() { return *view_; }
  const View& view() const { return *view_; }
  long mouseTool() const { return mouseTool_; }
  long annotationTool() const { return annotationTool_; }
  bool needsDisplay() const { return needsDisplay_; }
  void setNeedsDisplay(bool needs) { needsDisplay_ = needs; }
  void post(std::string_view notification);

  bool supports(pelmar::Capability capability) const override;
  pelmar::Ref<pelmar::DicomStudy> currentStudy() const override { return pelmar::Ref<pelmar::DicomStudy>(study_); }
  pelmar::Ref<pelmar::DCMView> imageView() const override { return pelmar::Ref<pelmar::DCMView>(view_); }
  pelmar::Ref<pelmar::Window> window() const override { return pelmar::Ref<pelmar::Window>(window_); }
  long orientationVector() const override { return stack_ ? stack_->orientationCode : -1; }
  bool isEverythingLoaded() const override { return loaded_; }
  pelmar::Ref<pelmar::ROILists> roiList() const override { return view_->dcmRoiList(); }
  void needsDisplayUpdate() override { needsDisplay_ = true; }
  long ROIToolTag() const override;
  void setROIToolTag(long tag) override;
  void setToolTag(long tag) override;

 private:
  Host& host_;
  int number_;
  StackId stackId_;
  const Stack* stack_ = nullptr;
  std::shared_ptr<StudyObject> study_;
  std::shared_ptr<View> view_;
  std::shared_ptr<ViewerWindow> window_;
  long mouseTool_ = MouseToolWindowLevel;
  long annotationTool_ = 0;
  bool loaded_ = false;
  bool closed_ = false;
  bool needsDisplay_ = true;
};

}  // namespace workstation
