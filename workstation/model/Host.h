#pragma once

#include <memory>
#include <vector>

#include "host/PelmarAPI.h"
#include "workstation/model/EventLoop.h"
#include "workstation/model/Notifications.h"
#include "workstation/model/PersonLog.h"
#include "workstation/model/Points.h"
#include "workstation/model/RoiClass.h"
#include "workstation/model/Services.h"
#include "workstation/model/Studies.h"
#include "workstation/model/Text.h"
#include "workstation/model/Undo.h"
#include "workstation/model/Viewer.h"
#include "workstation/model/Windows.h"
#include "workstation/model/Workstation.h"

namespace workstation {

class Host;

class ViewerClass final : public pelmar::ViewerControllerClass {
 public:
  explicit ViewerClass(Host& host) : host_(host) {}
  pelmar::Ref<pelmar::ViewerController> frontMostDisplayed2DViewer() override;
  /// Foreign slices count as slices without geometry.
  void computeOriginalOrientationForPixArray(const pelmar::Ref<pelmar::List<pelmar::Ref<pelmar::DCMPix>>>& pixArray,
                                             long& orientationVector) override;

 private:
  Host& host_;
};

class BrowserClass final : public pelmar::BrowserControllerClass {
 public:
  explicit BrowserClass(StudyReports* reports) : reports_(reports) {}
  pelmar::Ref<pelmar::BrowserController> currentBrowser() override;

 private:
  StudyReports* reports_;
};

/// What the plug-in is given, and the studies and viewers behind it.
class Host final : public pelmar::PelmarAPI {
 public:
  explicit Host(Options options);

  // --- studies and viewers -----------------------------------------------------------------------------------------
  std::vector<std::string> addImages(std::vector<ImageRecord> images);
  /// In place of the study with the same UID, which must be there and in no viewer.
  void replaceStudy(Study fresh);
  std::shared_ptr<StudyObject> study(const std::string& uid) const;

  /// The stack must exist. The viewer is in front and its loaded-notification has been posted.
  std::shared_ptr<Viewer> openViewer(const StackId& stack);
  /// A viewer that is not open: nothing.
  /// Called before a viewer lets go of what it shows.
  void setLeaving(std::function<void()> leaving) { leaving_ = std::move(leaving); }
  void closeViewer(const std::shared_ptr<Viewer>& viewer);
  void switchSeries(Viewer& viewer, const StackId& stack);
  void bringToFront(const std::shared_ptr<Viewer>& viewer);
  bool isOpen(const Viewer& viewer) const;
  /// In the order of opening.
  const std::vector<std::shared_ptr<Viewer>>& viewers() const { return viewers_; }
  /// Null when none is open.
  std::shared_ptr<Viewer> frontViewer() const { return stacking_.empty() ? nullptr : stacking_.back(); }

  EventLoop& events() { return events_; }
  /// Null without a database.
  StudyReports* reports() const { return options_.reports; }
  RoiClass& roiClassObject() { return roiClass_; }
  PaletteWindows& palettes() { return palettes_; }
  Alerts& alerts() { return alerts_; }
  Desktop& desktop() { return desktop_; }
  const Defaults& defaults() const { return defaults_; }
  Notifications& notifications() { return notifications_; }
  Undo& undo() { return undo_; }
  /// Who hears what the person does.
  PersonLog& log() { return *log_; }
  /// Null: nobody.
  void setLog(PersonLog* log) { log_ = log ? log : &nobody_; }

  // --- the contract ------------------------------------------------------------------------------------------------
  bool supports(pelmar::Capability capability) const override { return !options_.lacking.contains(capability); }
  std::vector<pelmar::Ref<pelmar::ViewerController>> viewerControllersList() const override;
  pelmar::ViewerControllerClass& viewerControllerClass() override { return viewerClass_; }
  pelmar::DCMViewClass& dcmViewClass() override { return viewClass_; }
  pelmar::ROIClass& roiClass() override { return roiClass_; }
  pelmar::Point3DClass& point3DClass() override { return pointClass_; }
  pelmar::BrowserControllerClass& browserControllerClass() override { return browserClass_; }
  pelmar::SRAnnotationClass& srAnnotationClass() override;
  pelmar::N3Vector N3VectorNormalize(const pelmar::N3Vector& vector) const override;
  pelmar::NotificationCenter& defaultCenter() override { return notifications_; }
  pelmar::UserDefaults& standardUserDefaults() override { return defaults_; }
  pelmar::AlertPanels& alertPanels() override { return alerts_; }
  pelmar::Application& application() override { return desktop_; }
  pelmar::TextServices& textServices() override { return text_; }
  pelmar::KeyedArchiving& keyedArchiving() override;
  pelmar::WindowServices& windowServices() override { return palettes_; }

 private:
  pelmar::FrameRect freePlace() const;
  void show(Viewer& viewer, const StackId& stack);
  void putAway(Viewer& viewer);

  const Options options_;
  EventLoop events_;
  Notifications notifications_;
  RoiClass roiClass_;
  PatientPointClass pointClass_;
  ViewClass viewClass_;
  ViewerClass viewerClass_;
  BrowserClass browserClass_;
  NoReports noReports_;
  NoArchiving noArchiving_;
  Defaults defaults_;
  Alerts alerts_;
  Desktop desktop_;
  Text text_;
  PaletteWindows palettes_;
  std::function<void()> leaving_;
  AnnotationStash stash_;
  Undo undo_;
  std::map<std::string, std::shared_ptr<StudyObject>> studies_;
  std::vector<std::shared_ptr<Viewer>> viewers_;
  std::vector<std::shared_ptr<Viewer>> stacking_;  ///< the same viewers, the front one last
  int nextViewer_ = 0;
  PersonLog nobody_;
  PersonLog* log_ = &nobody_;
};

}  // namespace workstation
