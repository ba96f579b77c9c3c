#pragma once
// Limits for benchmarks of what a person waits for.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <functional>
#include <iostream>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace bench {

inline double fastestOf(const std::vector<double>& repetitions) {
  return repetitions.empty() ? 0 : *std::min_element(repetitions.begin(), repetitions.end());
}

/// Prints benchmarks, and remembers whether something took longer than it may. The fastest repetition counts: another
/// program can make one slower, and none makes it faster.
class LimitJudge final : public benchmark::ConsoleReporter {
 public:
  /// Milliseconds of the processor for a benchmark by its name; nothing where there is no limit.
  using Limit = std::function<std::optional<double>(const std::string& name)>;

  /// What fastestOf gives is called so among the statistics of a benchmark that shows no repetitions.
  static constexpr const char* fastest = "fastest";

  explicit LimitJudge(Limit limit) : limit_(std::move(limit)) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    std::optional<double> fastestMs;
    for (const Run& run : runs) {
      if (run.run_type != Run::RT_Iteration && run.aggregate_name != fastest) continue;
      const double ms = 1000 * run.GetAdjustedCPUTime() / benchmark::GetTimeUnitMultiplier(run.time_unit);
      fastestMs = std::min(ms, fastestMs.value_or(ms));
    }
    if (!fastestMs) return;
    const std::string name = runs.front().run_name.function_name;
    const std::optional<double> mostMs = limit_(name);
    if (!mostMs || *fastestMs < *mostMs) return;
    std::cerr << "FAILED: " << name << " takes " << *fastestMs << " ms, more than " << *mostMs << " ms\n";
    failed_ = true;
  }
  bool failed() const { return failed_; }

 private:
  Limit limit_;
  bool failed_ = false;
};

}  // namespace bench
