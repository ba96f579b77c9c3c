#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>

#include "workstation/dicom/LabellingReport.h"
#include "workstation/model/Outcome.h"

namespace workstation {

/// Keeps the report that was read last while its file stays as it is: one report is wanted several times in a row, by
/// the index, by what shows the labelling and by the plug-in, and to read one takes as long as the headers of twenty
/// images. Not for several threads at once.
class LastReport {
 public:
  using Clock = std::chrono::system_clock;

  using Reading = Result<StoredReport> (*)(const std::filesystem::path& file);

  explicit LastReport(Reading reading = &readReport) : reading_(reading) {}

  /// As `reading`; what is kept is not read again.
  Result<StoredReport> read(const std::filesystem::path& file);
  /// Keeps the report that was read from the file, if nothing has happened to the file since `began`, when the reading
  /// had not begun yet.
  void keep(const std::filesystem::path& file, const StoredReport& report, Clock::time_point began);
  /// Nothing when another report was read last, or the file has changed.
  std::optional<StoredReport> find(const std::filesystem::path& file) const;

 private:
  /// Which file it is, and when its contents and its place last changed.
  struct FileState {
    dev_t device = 0;
    ino_t number = 0;
    off_t size = 0;
    std::int64_t changedSeconds = 0;
    std::int64_t changedNanoseconds = 0;
    friend bool operator==(const FileState&, const FileState&) = default;
  };

  static std::optional<FileState> stateOf(const std::filesystem::path& file);

  Reading reading_;
  std::filesystem::path file_;
  std::optional<FileState> state_;  ///< there where a report is
  std::optional<StoredReport> report_;
};

}  // namespace workstation
