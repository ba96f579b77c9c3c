#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace testhost {

/// Everything that the code under test asked the host to do, oldest first, one readable line a call:
/// "viewer1.setROIToolTag(5)", "deleteROIs(3,false)". Queries without effect are not logged, except the ones whose use
/// itself is a rule (spline, resampling, orientation of a pix array).
class CallLog {
 public:
  void add(std::string line) { lines_.push_back(std::move(line)); }
  void clear() { lines_.clear(); }

  const std::vector<std::string>& lines() const { return lines_; }
  /// How often exactly this line was logged.
  std::size_t count(std::string_view line) const;
  /// How many lines contain the text.
  std::size_t countContaining(std::string_view text) const;
  /// The lines that contain any of the texts, in order.
  std::vector<std::string> containing(const std::vector<std::string>& texts) const;
  /// Index of the first line that contains the text, or npos.
  std::size_t indexOf(std::string_view text) const;
  static constexpr std::size_t npos = static_cast<std::size_t>(-1);

 private:
  std::vector<std::string> lines_;
};

/// Appends to the log unless there is none (objects that a test made without a host).
void record(CallLog* log, std::string line);

/// A number as the log writes it: "5", "2.5", "-1".
std::string text(double number);
/// "true" or "false".
std::string text(bool flag);

}  // namespace testhost
