#pragma once

#include <time.h>

#include <chrono>
#include <vector>

namespace guibench {

/// What something took.
struct Duration {
  double busyMs = 0;    ///< the processor was busy with it, in all threads
  double passedMs = 0;  ///< passed, also while other programs had the processor
};

class Stopwatch {
 public:
  Duration sinceStart() const {
    const std::chrono::duration<double, std::milli> passed = std::chrono::steady_clock::now() - start_;
    return {busyMs() - busyAtStart_, passed.count()};
  }

 private:
  static double busyMs() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
  }

  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  double busyAtStart_ = busyMs();
};

}  // namespace guibench
