#pragma once

#include <QTimer>
#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <thread>

#include "workstation/database/Import.h"

namespace workstation {

/// One long piece of work on a thread of its own, while the window goes on. It must share nothing with the main thread
/// but what it hands over at its end.
class BackgroundTask {
 public:
  /// Done on the other thread; asks `progress` before each step and stops when that answers false.
  using Work = std::function<void(const Progress& progress)>;
  /// Called on the main thread, the former from time to time, the latter once the work has ended.
  using Shown = std::function<void(std::size_t done, std::size_t total)>;
  using Finished = std::function<void()>;

  BackgroundTask(Work work, Shown shown, Finished finished);
  /// Cancels, and waits for the work to stop; `finished` is not called then.
  ~BackgroundTask();
  BackgroundTask(const BackgroundTask&) = delete;
  BackgroundTask& operator=(const BackgroundTask&) = delete;

  /// Asks the work to stop at its next step; `finished` is called when it has.
  void cancel() { cancelled_ = true; }
  bool isCancelled() const { return cancelled_; }

 private:
  void look();

  Shown shown_;
  Finished finished_;
  std::atomic<bool> cancelled_{false};
  std::atomic<bool> ended_{false};
  std::atomic<std::size_t> done_{0};
  std::atomic<std::size_t> total_{0};
  QTimer timer_;
  std::thread thread_;
};

}  // namespace workstation
