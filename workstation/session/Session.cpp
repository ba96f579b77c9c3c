#include "workstation/session/Session.h"

#include <cstdlib>

#include "workstation/bundles/BundleLoader.h"

namespace workstation {

namespace fs = std::filesystem;

fs::path pluginBundlePath() {
  if (const char* named = std::getenv("VERTANA_PLUGIN")) return named;
  std::error_code error;
  const auto program = fs::read_symlink("/proc/self/exe", error);
  return program.parent_path().parent_path() / "lib" / "Vertana.plugin";
}

Session::Session(ReportShelf& shelf, Options options)
    : archive_(points_), store_(shelf, points_), workstation_([&] {
        options.reports = &store_;
        options.keyedArchiving = &archive_;
        return std::move(options);
      }()) {
  store_.setContextSource([this](const std::string& study) { return workstation_.reportContext(study); });
}

Outcome Session::loadPlugin(const fs::path& bundle) {
  auto plugin = loadBundle(bundle, workstation_.api());
  if (!plugin) return Outcome::refused(plugin.problem);
  workstation_.setPlugin(std::move(*plugin));
  return Outcome::done();
}

}  // namespace workstation
