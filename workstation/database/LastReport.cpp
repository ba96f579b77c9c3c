#include "workstation/database/LastReport.h"

#include <sys/stat.h>

namespace workstation {

namespace fs = std::filesystem;

Result<StoredReport> LastReport::read(const fs::path& file) {
  if (auto last = find(file)) return Result<StoredReport>::of(*std::move(last));
  const auto began = Clock::now();
  auto report = reading_(file);
  if (report) keep(file, *report, began);
  return report;
}

void LastReport::keep(const fs::path& file, const StoredReport& report, Clock::time_point began) {
  state_ = stateOf(file);
  // File systems count time in steps of up to two seconds: within one, a file may change and look the same.
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(began.time_since_epoch()).count();
  if (state_ && state_->changedSeconds + 2 >= seconds) state_.reset();
  file_ = file;
  report_ = state_ ? std::optional(report) : std::nullopt;
}

std::optional<StoredReport> LastReport::find(const fs::path& file) const {
  if (!report_ || file_ != file || stateOf(file) != state_) return std::nullopt;
  return report_;
}

std::optional<LastReport::FileState> LastReport::stateOf(const fs::path& file) {
  struct stat state {};
  if (::stat(file.c_str(), &state) != 0) return std::nullopt;
  return FileState{state.st_dev, state.st_ino, state.st_size, state.st_ctim.tv_sec, state.st_ctim.tv_nsec};
}

}  // namespace workstation
