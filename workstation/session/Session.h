#pragma once

#include <filesystem>
#include <memory>

#include "workstation/archive/KeyedArchive.h"
#include "workstation/database/LabellingStore.h"
#include "workstation/model/Outcome.h"
#include "workstation/model/Points.h"
#include "workstation/model/Workstation.h"

namespace workstation {

/// The plug-in's bundle: the one named by the environment's VERTANA_PLUGIN, else ../lib/Vertana.plugin beside the
/// program.
std::filesystem::path pluginBundlePath();

/// A workstation that stores labellings on a shelf and can archive, with the plug-in once it is loaded. Letting it go
/// is as a crash: what should be kept is kept by Workstation::quit().
class Session {
 public:
  /// `shelf`, and what the options point at, must outlive the session. The options' reports and archiving are set here.
  Session(ReportShelf& shelf, Options options);

  /// Refused, with a sentence that names the file, when the bundle cannot be used; the workstation works without it.
  Outcome loadPlugin(const std::filesystem::path& bundle = pluginBundlePath());

  LabellingStore& store() { return store_; }
  Workstation& workstation() { return workstation_; }
  const Workstation& workstation() const { return workstation_; }

 private:
  PatientPointClass points_;
  KeyedArchive archive_;
  LabellingStore store_;
  Workstation workstation_;
};

}  // namespace workstation
