#include "workstation/gui/Desk.h"

#include <set>
#include <utility>

namespace workstation {
namespace {

/// A slice, whatever file it lies in.
std::pair<std::string, int> nameOf(const ImageRecord& slice) { return {slice.sopInstanceUid, slice.frame}; }

}  // namespace

Desk::Desk(const DeskOptions& options, Prompts& prompts)
    : options_(options),
      prompts_(prompts),
      defaults_(options.defaultsFile, [this](const std::string& sentence) { tell(sentence); }),
      cache_(reader_, options.cacheBytes) {
  begin();
}

void Desk::begin() {
  session_.emplace(folders_.shelf(), workstationOptions());
  if (const auto loaded = session_->loadPlugin(options_.plugin); !loaded) tell(*loaded.problem);
}

void Desk::restart() {
  // Two plug-in objects at a time are not meant to be.
  session_.reset();
  begin();
  for (const std::string& study : std::exchange(addedStudies_, {})) {
    if (const Outcome added = addStudy(study); !added) tell(*added.problem);
  }
}

Options Desk::workstationOptions() {
  Options made;
  made.defaultsStore = &defaults_;
  made.screenWidth = options_.screenWidth;
  made.screenHeight = options_.screenHeight;
  made.listeners.showAlert = [this](const Alert& alert) { prompts_.showAlert(alert); };
  made.listeners.openAddress = [this](const std::string& address) {
    if (hooks_.openAddress) hooks_.openAddress(address);
  };
  made.listeners.activate = [this] {
    if (hooks_.activate) hooks_.activate();
  };
  made.listeners.paletteChanged = [this] {
    if (hooks_.paletteChanged) hooks_.paletteChanged();
  };
  made.listeners.paletteValueChanged = [this](const std::string& key) {
    if (hooks_.paletteValueChanged) hooks_.paletteValueChanged(key);
  };
  made.listeners.eventFinished = [this] {
    if (hooks_.eventFinished) hooks_.eventFinished();
  };
  return made;
}

Outcome Desk::addStudy(const std::string& studyUid) {
  if (workstation().study(studyUid)) return Outcome::done();
  auto images = folders_.images(studyUid);
  if (images.empty()) {
    return Outcome::refused("The study " + studyUid +
                            " holds no image that can be shown: its files may have been moved or deleted.");
  }
  workstation().addImages(std::move(images));
  addedStudies_.push_back(studyUid);
  return Outcome::done();
}

StudyChange Desk::changeOf(const std::string& studyUid) {
  const Study* known = workstation().study(studyUid);
  if (!known) return {};
  std::set<std::pair<std::string, int>> before;
  for (const Series& series : known->series) {
    for (const Stack& stack : series.stacks) {
      for (const ImageRecord& slice : stack.slices) before.insert(nameOf(slice));
    }
  }
  StudyChange change;
  for (const ImageRecord& image : folders_.images(studyUid)) {
    ++change.left;
    if (before.erase(nameOf(image)) == 0) ++change.added;
  }
  change.gone = before.size();
  return change;
}

bool Desk::takeChanges(const std::string& studyUid) {
  const StudyChange change = changeOf(studyUid);
  if (change.left == 0 || change.added + change.gone == 0) return false;
  return static_cast<bool>(workstation().replaceStudy(folders_.images(studyUid)));
}

bool Desk::hasLabellingInMemory() {
  const pelmar::Value state = workstation().pluginState();
  if (!state.dictionary()) return false;
  const auto planes = state.dictionary()->find("intervertebralPlanes");
  return planes != state.dictionary()->end() && planes->second.array() && !planes->second.array()->empty();
}

bool Desk::hasLostLabelling(const std::string& studyUid) {
  if (studyUid.empty() || !hasLabellingInMemory()) return false;
  const StoredStatus status = store().status(studyUid);
  return status.objects == 0 && !status.held && !status.unsaved;
}

std::vector<std::string> Desk::takeMessages() {
  auto taken = std::exchange(messages_, {});
  for (auto& notice : folders_.takeNotices()) taken.push_back(std::move(notice));
  for (auto& notice : store().takeNotices()) taken.push_back(std::move(notice));
  return taken;
}

}  // namespace workstation
