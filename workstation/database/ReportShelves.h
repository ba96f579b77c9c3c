#pragma once

#include <vector>

#include "workstation/database/ReportShelf.h"

namespace workstation {

/// Several shelves as one: each question goes to the shelf that holds the study, the one that was added first where
/// several do. A study that none holds has no reports, no image and no place, and nothing can be stored for it.
class ReportShelves final : public ReportShelf {
 public:
  /// `shelf` must outlive the shelves.
  void add(ReportShelf& shelf) { shelves_.push_back(&shelf); }

  bool holdsStudy(const std::string& studyUid) override;
  std::vector<ReportSeries> reportSeries(const std::string& studyUid) override;
  std::vector<ShelvedReport> labellings(const std::string& studyUid) override;
  std::optional<StoredReport> reportReadLast(const std::filesystem::path& file) override;
  std::filesystem::path freshPath(const std::string& studyUid, std::string_view extension) override;
  Outcome store(const std::string& studyUid, const std::filesystem::path& file, const pelmar::Bytes& bytes) override;
  std::filesystem::path anyImage(const std::string& studyUid) override;

 private:
  /// Null when no shelf holds the study.
  ReportShelf* holding(const std::string& studyUid);

  std::vector<ReportShelf*> shelves_;
};

}  // namespace workstation
