#include "workstation/database/ReportShelves.h"

#include <algorithm>

namespace workstation {

namespace fs = std::filesystem;

ReportShelf* ReportShelves::holding(const std::string& studyUid) {
  const auto shelf =
      std::find_if(shelves_.begin(), shelves_.end(), [&](ReportShelf* each) { return each->holdsStudy(studyUid); });
  return shelf == shelves_.end() ? nullptr : *shelf;
}

bool ReportShelves::holdsStudy(const std::string& studyUid) { return holding(studyUid) != nullptr; }

std::vector<ReportSeries> ReportShelves::reportSeries(const std::string& studyUid) {
  ReportShelf* shelf = holding(studyUid);
  return shelf ? shelf->reportSeries(studyUid) : std::vector<ReportSeries>();
}

std::vector<ShelvedReport> ReportShelves::labellings(const std::string& studyUid) {
  ReportShelf* shelf = holding(studyUid);
  return shelf ? shelf->labellings(studyUid) : std::vector<ShelvedReport>();
}

std::optional<StoredReport> ReportShelves::reportReadLast(const fs::path& file) {
  for (ReportShelf* shelf : shelves_) {
    if (auto report = shelf->reportReadLast(file)) return report;
  }
  return std::nullopt;
}

fs::path ReportShelves::freshPath(const std::string& studyUid, std::string_view extension) {
  ReportShelf* shelf = holding(studyUid);
  return shelf ? shelf->freshPath(studyUid, extension) : fs::path();
}

Outcome ReportShelves::store(const std::string& studyUid, const fs::path& file, const pelmar::Bytes& bytes) {
  ReportShelf* shelf = holding(studyUid);
  if (shelf) return shelf->store(studyUid, file, bytes);
  return Outcome::refused("The report cannot be stored: no folder that is open holds the study " + studyUid + ".");
}

fs::path ReportShelves::anyImage(const std::string& studyUid) {
  ReportShelf* shelf = holding(studyUid);
  return shelf ? shelf->anyImage(studyUid) : fs::path();
}

}  // namespace workstation
