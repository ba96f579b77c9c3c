#include "workstation/dicom/FileWalk.h"

#include <algorithm>
#include <set>
#include <system_error>

namespace workstation {
namespace {

namespace fs = std::filesystem;

class Walk {
 public:
  explicit Walk(std::vector<UnreadableFile>& unreadable) : unreadable_(unreadable) {}

  std::vector<fs::path> from(const fs::path& start) {
    visit(fs::directory_entry(start));
    while (!folders_.empty()) {
      const fs::path folder = folders_.back();
      folders_.pop_back();
      list(folder);
    }
    std::sort(files_.begin(), files_.end());
    return std::move(files_);
  }

 private:
  void list(const fs::path& folder) {
    std::error_code error;
    std::vector<fs::directory_entry> entries;
    fs::directory_iterator entry(folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) entries.push_back(*entry);
    if (error) unreadable_.push_back({folder, "its files cannot be listed (" + error.message() + ")"});
    std::sort(entries.begin(), entries.end());  // of several ways to one file the first by name counts, everywhere
    for (const fs::directory_entry& found : entries) visit(found);
  }

  void visit(const fs::directory_entry& entry) {
    std::error_code error;
    const fs::file_status status = fs::status(entry.path(), error);
    if (error || !fs::exists(status)) {
      const std::string detail = error ? " (" + error.message() + ")" : "";
      unreadable_.push_back({entry.path(), "it does not exist or cannot be reached" + detail});
    } else if (fs::is_directory(status)) {
      if (seen_.insert(fs::canonical(entry.path(), error)).second) folders_.push_back(entry.path());
    } else if (fs::is_regular_file(status)) {
      if (seen_.insert(fs::canonical(entry.path(), error)).second) files_.push_back(entry.path());
    }  // pipes, sockets and devices hold no images, and reading them may never end
  }

  std::vector<UnreadableFile>& unreadable_;
  std::set<fs::path> seen_;
  std::vector<fs::path> folders_;
  std::vector<fs::path> files_;
};

}  // namespace

std::vector<fs::path> filesIn(const fs::path& folderOrFile, std::vector<UnreadableFile>& unreadable) {
  return Walk(unreadable).from(folderOrFile);
}

}  // namespace workstation
