#pragma once
// The order of the reports of labellings in a study, and which of them counts. Pure functions.

#include <chrono>
#include <string>
#include <vector>

#include "workstation/database/ReportShelf.h"

namespace workstation {

/// Where a report stands in the order of a study's reports.
struct ReportPlace {
  ContentTime contentTime;
  int instanceNumber = 1;
  friend bool operator==(const ReportPlace&, const ReportPlace&) = default;
};

/// Local time, as DICOM writes it, with microseconds.
ContentTime contentTimeAt(std::chrono::system_clock::time_point moment);

/// Whether `a` comes before `b`: by content date and time (microseconds; a time may be cut short, as PS3.5 6.2 allows;
/// what is not a moment comes first), then by instance number, then by SOP Instance UID. UIDs are compared as strings,
/// character by character ("1.10" before "1.9"): any fixed order serves, and this one needs no parsing.
bool isEarlier(const ShelvedReport& a, const ShelvedReport& b);

/// The newest of the readable reports: the one that counts. Null when there is none.
const ShelvedReport* countingReport(const std::vector<ShelvedReport>& reports);

/// The place of a new report of the series: later than every report that is there, readable or not, also when the clock
/// went back. Its instance number is the number of reports in the series + 1.
ReportPlace placeAfter(const std::vector<ShelvedReport>& there, const std::string& seriesUid,
                       std::chrono::system_clock::time_point now);

}  // namespace workstation
