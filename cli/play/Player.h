#pragma once

#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/play/OpenedStudies.h"
#include "cli/play/ScriptReader.h"
#include "workstation/session/Session.h"

namespace cli {

/// User defaults that outlast a restart and a crash, but not the script.
class PlayedDefaults final : public workstation::DefaultsStore {
 public:
  explicit PlayedDefaults(pelmar::Value::Dictionary first) : values_(std::move(first)) {}
  pelmar::Value::Dictionary load() override { return values_; }
  void save(const pelmar::Value::Dictionary& defaults) override { values_ = defaults; }

 private:
  pelmar::Value::Dictionary values_;
};

/// Runs the steps of a script on a workstation that has the plug-in loaded.
class Player {
 public:
  /// `database` is the folder that counts, empty for none. Dumps go to `out`. A plug-in that cannot be loaded or a
  /// database that cannot be opened is a Failure.
  static Expected<std::unique_ptr<Player>> start(const Script& script, const std::string& database, std::ostream& out);
  ~Player();

  /// Nothing when it was done; what was refused has not changed anything, as far as the workstation says so.
  std::optional<Failure> run(const Step& step);
  /// Ends as a person does. Nothing can be run afterwards. A labelling that could not be stored even then is a Failure.
  std::optional<Failure> quit();

 private:
  /// What a crash ends.
  struct Process {
    Process(std::unique_ptr<OpenedStudies> opened, const workstation::Options& options);

    std::unique_ptr<OpenedStudies> studies;
    workstation::Session session;
  };

  Player(const Script& script, std::string database, std::ostream& out);
  std::optional<Failure> startProcess();
  void collect();

  Expected<std::vector<std::string>> studiesOf(const std::optional<std::string>& path,
                                               const std::optional<std::string>& study);
  Expected<int> annotationNamed(NamedRoi roi) const;
  void noteOpened(const std::string& studyUid);

  std::optional<Failure> runStep(const OpenStudyStep& step);
  std::optional<Failure> runStep(const OpenViewerStep& step);
  std::optional<Failure> runStep(const CloseViewerStep& step);
  std::optional<Failure> runStep(const SwitchSeriesStep& step);
  std::optional<Failure> runStep(const FrontStep& step);
  std::optional<Failure> runStep(const MenuStep& step);
  std::optional<Failure> runStep(const DrawStep& step);
  std::optional<Failure> runStep(const ReleaseStep& step);
  std::optional<Failure> runStep(const DragVertexStep& step);
  std::optional<Failure> runStep(const DeleteRoiStep& step);
  std::optional<Failure> runStep(const ToolStep& step);
  std::optional<Failure> runStep(const RotateStep& step);
  std::optional<Failure> runStep(const FlipStep& step);
  std::optional<Failure> runStep(const UndoStep& step);
  std::optional<Failure> runStep(const RedoStep& step);
  std::optional<Failure> runStep(const FailSavesStep& step);
  std::optional<Failure> runStep(const ScrollStep& step);
  std::optional<Failure> runStep(const ZoomStep& step);
  std::optional<Failure> runStep(const PanStep& step);
  std::optional<Failure> runStep(const PaletteStep& step);
  std::optional<Failure> runStep(const AddReportStep& step);
  std::optional<Failure> runStep(const DumpStep& step);
  std::optional<Failure> runStep(const RestartStep& step);
  std::optional<Failure> runStep(const CrashStep& step);

  workstation::Workstation& workstation() const { return process_->session.workstation(); }

  workstation::Options options_;
  std::string database_;
  std::ostream& out_;
  PlayedDefaults defaults_;
  bool savesFail_ = false;
  std::vector<std::string> pathsInPlace_;
  std::vector<std::string> studies_;  ///< every study opened so far
  std::vector<workstation::Alert> alerts_;
  std::vector<std::string> addresses_;
  std::unique_ptr<Process> process_;
};

}  // namespace cli
