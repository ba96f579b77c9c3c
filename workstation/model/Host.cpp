#include "workstation/model/Host.h"

#include <algorithm>

#include "workstation/model/Vector3.h"

namespace workstation {
namespace {

using pelmar::Ref;

/// Viewers stand side by side in a grid of so many columns and rows.
constexpr int gridColumns = 3;
constexpr int gridRows = 2;

}  // namespace

Ref<pelmar::ViewerController> ViewerClass::frontMostDisplayed2DViewer() {
  return Ref<pelmar::ViewerController>(host_.frontViewer());
}

void ViewerClass::computeOriginalOrientationForPixArray(const Ref<pelmar::List<Ref<pelmar::DCMPix>>>& pixArray,
                                                        long& orientationVector) {
  if (!pixArray) return;
  std::vector<const ImageRecord*> records;
  records.reserve(pixArray->count());
  for (std::size_t index = 0; index < pixArray->count(); ++index) {
    const Pix* const pix = ref_cast<Pix>(pixArray->objectAtIndex(index)).get();  // the list keeps it
    if (pix) records.push_back(&pix->record());
  }
  orientationVector = orientationCodeOf(records);
}

Ref<pelmar::BrowserController> BrowserClass::currentBrowser() {
  return reports_ ? reports_->currentBrowser() : Ref<pelmar::BrowserController>();
}

Host::Host(Options options)
    : options_(std::move(options)),
      roiClass_(notifications_, options_.lacking),
      viewerClass_(*this),
      browserClass_(options_.reports),
      defaults_(options_.defaultsStore, options_.defaults),
      alerts_(options_.listeners),
      desktop_(options_.hostVersion, options_.listeners, options_.reports),
      palettes_(options_.listeners, options_.reports) {
  events_.setFinished(options_.listeners.eventFinished);
}

std::vector<std::string> Host::addImages(std::vector<ImageRecord> images) {
  std::vector<std::string> uids;
  for (Study& found : groupIntoStudies(std::move(images))) {
    uids.push_back(found.uid);
    std::shared_ptr<StudyObject>& known = studies_[uids.back()];
    if (!known) known = std::make_shared<StudyObject>(std::move(found), options_.reports, options_.lacking);
  }
  return uids;
}

void Host::replaceStudy(Study fresh) {
  std::shared_ptr<StudyObject>& known = studies_.at(fresh.uid);
  stash_.follow(known->data(), fresh);
  known = std::make_shared<StudyObject>(std::move(fresh), options_.reports, options_.lacking);
}

std::shared_ptr<StudyObject> Host::study(const std::string& uid) const {
  const auto entry = studies_.find(uid);
  return entry == studies_.end() ? nullptr : entry->second;
}

pelmar::FrameRect Host::freePlace() const {
  const double width = std::floor(options_.screenWidth / gridColumns);
  const double height = std::floor(options_.screenHeight / gridRows);
  const auto cell = [&](int index) {
    const int row = index / gridColumns % gridRows;
    const double x = width * (index % gridColumns);
    return pelmar::FrameRect{x, options_.screenHeight - height * (row + 1), width, height};
  };
  for (int index = 0; index < gridColumns * gridRows; ++index) {
    const pelmar::FrameRect place = cell(index);
    const bool taken = std::any_of(viewers_.begin(), viewers_.end(), [&](const auto& viewer) {
      const pelmar::FrameRect frame = viewer->window()->frame();
      return frame.x == place.x && frame.y == place.y;
    });
    if (!taken) return place;
  }
  return cell(nextViewer_ % (gridColumns * gridRows));
}

void Host::show(Viewer& viewer, const StackId& stack) {
  viewer.load(stack, study(stack.studyUid));
  stash_.giveBack(stack, viewer.view().lists());
  viewer.setLoaded(true);
  viewer.post(pelmar::PelmarViewerControllerDidLoadImagesNotification);
}

void Host::putAway(Viewer& viewer) {
  viewer.unload();
  undo_.forget(viewer.view());
  stash_.keep(viewer.stackId(), viewer.view().lists());
}

std::shared_ptr<Viewer> Host::openViewer(const StackId& stack) {
  const auto viewer = Viewer::make(*this, nextViewer_, freePlace());
  ++nextViewer_;
  viewers_.push_back(viewer);
  stacking_.push_back(viewer);
  show(*viewer, stack);
  return viewer;
}

void Host::closeViewer(const std::shared_ptr<Viewer>& viewer) {
  if (!isOpen(*viewer)) return;
  if (leaving_) leaving_();
  // The list must not hold it any more while its closing is posted, but it must still be whole.
  const std::shared_ptr<Viewer> closing = viewer;
  std::erase(viewers_, closing);
  std::erase(stacking_, closing);
  closing->post(pelmar::PelmarCloseViewerNotification);
  closing->setClosed();
  // The plug-in would wait for the end of a drawing that nobody can go on with.
  if (const auto unfinished = closing->view().drawing().drawn()) unfinished->setDeleted(true);
  putAway(*closing);
}

void Host::switchSeries(Viewer& viewer, const StackId& stack) {
  if (leaving_) leaving_();
  viewer.post(pelmar::PelmarViewerWillChangeNotification);
  viewer.setLoaded(false);
  putAway(viewer);
  show(viewer, stack);
}

void Host::bringToFront(const std::shared_ptr<Viewer>& viewer) {
  if (!isOpen(*viewer)) return;
  const std::shared_ptr<Viewer> front = viewer;
  std::erase(stacking_, front);
  stacking_.push_back(front);
}

bool Host::isOpen(const Viewer& viewer) const {
  return std::any_of(viewers_.begin(), viewers_.end(), [&](const auto& open) { return open.get() == &viewer; });
}

std::vector<Ref<pelmar::ViewerController>> Host::viewerControllersList() const {
  std::vector<Ref<pelmar::ViewerController>> list;
  list.reserve(viewers_.size());
  for (const auto& viewer : viewers_) list.emplace_back(viewer);
  return list;
}

pelmar::SRAnnotationClass& Host::srAnnotationClass() {
  return options_.reports ? options_.reports->srAnnotationClass() : noReports_;
}

pelmar::KeyedArchiving& Host::keyedArchiving() {
  return options_.keyedArchiving ? *options_.keyedArchiving : noArchiving_;
}

pelmar::N3Vector Host::N3VectorNormalize(const pelmar::N3Vector& vector) const {
  const Vector3 unit = normalized({vector.x, vector.y, vector.z});
  return {unit[0], unit[1], unit[2]};
}

}  // namespace workstation
