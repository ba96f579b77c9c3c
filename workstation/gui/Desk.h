#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "workstation/dicom/PixelReader.h"
#include "workstation/gui/Prompts.h"
#include "workstation/render/PixelCache.h"
#include "workstation/session/SavedDefaults.h"
#include "workstation/session/Session.h"
#include "workstation/session/StudyFolders.h"

namespace workstation {

struct DeskOptions {
  std::filesystem::path defaultsFile = personDefaultsFile();
  std::filesystem::path plugin = pluginBundlePath();
  std::size_t cacheBytes = PixelCache::defaultCapacityBytes;
  double screenWidth = 1920;  ///< of the primary screen, points
  double screenHeight = 1200;
};

/// How many images of a study came and went.
struct StudyChange {
  std::size_t added = 0;
  std::size_t gone = 0;
  std::size_t left = 0;  ///< that it has now
};

/// Everything of a run but the window: the studies at hand, the workstation with the plug-in, decoded pixels. What the
/// model tells is passed on to the window, if there is one. Must outlive the window. No widget is in it.
class Desk {
 public:
  /// What the window wants to hear; each may be empty. None of them may call back into the workstation at once.
  struct Hooks {
    std::function<void()> eventFinished;
    std::function<void()> paletteChanged;
    std::function<void(const std::string& key)> paletteValueChanged;
    std::function<void()> activate;
    std::function<void(const std::string& address)> openAddress;
  };

  /// Goes on without the plug-in when it cannot be loaded; messages tell. `prompts` must outlive the desk.
  Desk(const DeskOptions& options, Prompts& prompts);

  Hooks& hooks() { return hooks_; }
  Prompts& prompts() { return prompts_; }
  StudyFolders& folders() { return folders_; }
  Workstation& workstation() { return session_->workstation(); }
  LabellingStore& store() { return session_->store(); }
  PixelCache& pixels() { return cache_; }
  double screenHeight() const { return options_.screenHeight; }

  /// Adds the study's images to the workstation unless they are there. Refused when it is nowhere.
  Outcome addStudy(const std::string& studyUid);
  /// What came or went of the images of a study since it was added to the workstation, by what is known of its files;
  /// nothing for one that was not added.
  StudyChange changeOf(const std::string& studyUid);
  /// Takes such changes into the workstation and answers whether there were any; the study's stacks may have other ids
  /// then. Leaves a study as it is that a viewer shows or of which nothing is left.
  bool takeChanges(const std::string& studyUid);
  /// Begins anew as the program does when it is started again, with the studies that were added: a workstation in which
  /// nothing has happened, and a new plug-in object. Workstation::quit() must have come before; references to the
  /// workstation stay valid.
  void restart();
  /// Whether the plug-in has a labelling in memory.
  bool hasLabellingInMemory();
  /// Whether there is a labelling in memory that is neither in that study nor waiting to be written to it: the study's
  /// files have gone.
  bool hasLostLabelling(const std::string& studyUid);
  /// Something to tell the person, in a whole sentence.
  void tell(const std::string& sentence) { messages_.push_back(sentence); }
  /// What is to be told since the last call: own messages, those of the store and of the indexes.
  std::vector<std::string> takeMessages();

 private:
  void begin();
  Options workstationOptions();

  const DeskOptions options_;
  Prompts& prompts_;
  Hooks hooks_;
  std::vector<std::string> messages_;
  StudyFolders folders_;
  SavedDefaults defaults_;
  PixelReader reader_;
  PixelCache cache_;
  std::optional<Session> session_;         ///< always there, in the same place
  std::vector<std::string> addedStudies_;  ///< in order
};

}  // namespace workstation
