#pragma once
// A study without a state, and reports as earlier runs would have left them in it.

#include "tests/geometry/SpineStudy.h"

namespace vertana {

inline const std::string seriesDescription = "Pelmar Vertana Plugin Intervertebral Planes SR";
inline constexpr long seriesNumber = 20170720;

/// Starts without a state in memory and with no report in the study.
struct StateSaving : SpineStudy {
  StateSaving() {
    filter.setSavedDictionary(std::nullopt);
    study->reports.clear();
    study->reportSeries.emplace();
    host.files.clear();
    host.reports.made.clear();
    host.calls.clear();
  }

  std::size_t writes() const { return host.calls.countContaining("writeToFileAtPath"); }

  /// A report in the study, as an earlier run would have left it.
  void store(const pelmar::Value& content) {
    host.storeReport(study, seriesNumber, seriesDescription, *host.archiving.archivedDataWithRootObject(content));
  }
  static pelmar::Value lumbarState(long region = 2, bool additionalVertebra = false) {
    using pelmar::Value;
    return Value::Dictionary{
        {"VertanaAnatomicalRegion", static_cast<std::int64_t>(region)},
        {"kAdditionalVertebra", additionalVertebra},
        {"intervertebralPlanes",
         Value::Array{Value::Dictionary{
             {"name", "L4-L5"}, {"point", testhost::makePoint(1, 2, 3)}, {"vector", testhost::makePoint(0, 0, -1)}}}}};
  }
};

}  // namespace vertana
