#include <sys/stat.h>

#include <optional>

#include "workstation/database/LabellingStore.h"
#include "workstation/dicom/Uid.h"

namespace workstation {

namespace {

/// Keeps the report that was read last while its file stays as it is: the plug-in asks for a study's report twice in a
/// row, and to read one takes as long as the headers of twenty images.
class LastReport {
 public:
  Result<StoredReport> read(const std::filesystem::path& file) {
    const auto state = stateOf(file);
    if (report_ && state && state_ == state && file_ == file) return Result<StoredReport>::of(*report_);
    auto report = readReport(file);
    file_ = file;
    state_ = state;
    report_ = report && state && isOld(*state) ? std::optional(*report) : std::nullopt;
    return report;
  }

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

  static std::optional<FileState> stateOf(const std::filesystem::path& file) {
    struct stat state {};
    if (::stat(file.c_str(), &state) != 0) return std::nullopt;
    return FileState{state.st_dev, state.st_ino, state.st_size, state.st_ctim.tv_sec, state.st_ctim.tv_nsec};
  }

  /// File systems count time in steps of up to two seconds: within one, a file may change and look the same.
  static bool isOld(const FileState& state) {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return state.changedSeconds + 2 < std::chrono::duration_cast<std::chrono::seconds>(now).count();
  }

  std::filesystem::path file_;
  std::optional<FileState> state_;
  std::optional<StoredReport> report_;
};

}  // namespace

LabellingStoreParts dicomParts() {
  return {&encodeReport,
          [last = std::make_shared<LastReport>()](const std::filesystem::path& file) { return last->read(file); },
          [](const pelmar::Bytes& file) { return readReport(file); }, &freshUid,
          [] { return std::chrono::system_clock::now(); }};
}

}  // namespace workstation
