#include "workstation/gui/BackgroundTask.h"

namespace workstation {
namespace {

/// A folder whose index is in place is read in less than a tenth of a second, and its first image waits for this.
constexpr int lookEveryMs = 4;

}  // namespace

BackgroundTask::BackgroundTask(Work work, Shown shown, Finished finished)
    : shown_(std::move(shown)), finished_(std::move(finished)) {
  QObject::connect(&timer_, &QTimer::timeout, [this] { look(); });
  timer_.start(lookEveryMs);
  thread_ = std::thread([this, work = std::move(work)] {
    work([this](std::size_t done, std::size_t total) {
      done_ = done;
      total_ = total;
      return !cancelled_;
    });
    ended_ = true;
  });
}

BackgroundTask::~BackgroundTask() {
  cancelled_ = true;
  if (thread_.joinable()) thread_.join();
}

void BackgroundTask::look() {
  if (shown_) shown_(done_, total_);
  if (!ended_) return;
  timer_.stop();
  thread_.join();
  // It may destroy this task.
  if (const auto finished = std::exchange(finished_, nullptr)) finished();
}

}  // namespace workstation
