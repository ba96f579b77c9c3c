#include "workstation/database/FolderScan.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <memory>
#include <set>
#include <system_error>
#include <utility>

#include "workstation/database/AtomicFile.h"

namespace workstation {
namespace {

namespace fs = std::filesystem;

/// A folder that was changed less than this before it was listed may change again without its time telling so: file
/// systems count time in steps of up to two seconds.
constexpr std::int64_t timeStepNs = 2'000'000'000;

std::int64_t mtimeOf(const struct stat& state) {
  return std::int64_t{state.st_mtim.tv_sec} * 1'000'000'000 + state.st_mtim.tv_nsec;
}

std::int64_t nowNs() {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::system_clock::now().time_since_epoch())
      .count();
}

std::string below(const std::string& folder, std::string_view name) {
  return folder.empty() ? std::string(name) : folder + "/" + std::string(name);
}

}  // namespace

/// One pass over some folders.
class FolderScan::Walk {
 public:
  Walk(FolderScan& scan, FolderListing& listing) : scan_(scan), listing_(listing) {}

  /// The folder and what is below it, but for folders that are known already.
  void from(const std::string& folder) {
    waiting_.push_back(folder);
    while (!waiting_.empty()) {
      const std::string next = std::move(waiting_.back());
      waiting_.pop_back();
      list(next);
    }
  }

  bool hasLinks() const { return !links_.empty(); }

  /// Links come last: what they lead to counts under its own name where it has one here.
  void followLinks() {
    if (links_.empty()) return;
    std::set<Identity> seen(files_.begin(), files_.end());
    for (const auto& [name, folder] : scan_.folders_) seen.insert(folder.identity);
    while (!links_.empty()) {
      std::sort(links_.begin(), links_.end(), [](const Link& a, const Link& b) {
        return isPathBefore(below(a.folder, a.name), below(b.folder, b.name));
      });
      for (const Link& link : std::exchange(links_, {})) follow(link, seen);
    }
  }

 private:
  void list(const std::string& name) {
    if (scan_.folders_.contains(name)) return;
    listing_.folders.push_back(name);
    Folder& folder = scan_.folders_[name];
    const fs::path path = scan_.pathOf(name);
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(::opendir(path.c_str()), &::closedir);
    struct stat state {};
    if (!stream || ::fstat(::dirfd(stream.get()), &state) != 0) {
      folder.unlisted.push_back({path, "its files cannot be listed (" + std::generic_category().message(errno) + ")"});
      return;
    }
    folder.identity = {state.st_dev, state.st_ino};
    const std::int64_t changed = mtimeOf(state);
    folder.mtimeNs = nowNs() - changed < timeStepNs ? 0 : changed;
    while (const dirent* entry = ::readdir(stream.get())) visit(name, folder, ::dirfd(stream.get()), *entry);
  }

  void visit(const std::string& folderName, Folder& folder, int descriptor, const dirent& entry) {
    const std::string_view name = entry.d_name;
    if (!scan_.isWanted(name)) return;
    struct stat state {};
    if (::fstatat(descriptor, entry.d_name, &state, AT_SYMLINK_NOFOLLOW) != 0) return;  // it is gone already
    if (S_ISLNK(state.st_mode)) {
      links_.push_back({folderName, std::string(name)});
      if (::fstatat(descriptor, entry.d_name, &state, 0) == 0) return;
      links_.pop_back();
      folder.unlisted.push_back(
          {scan_.pathOf(below(folderName, name)),
           "it does not exist or cannot be reached (" + std::generic_category().message(errno) + ")"});
    } else if (S_ISDIR(state.st_mode)) {
      if (scan_.onlyFile_.empty()) waiting_.push_back(below(folderName, name));
    } else if (S_ISREG(state.st_mode)) {  // pipes, sockets and devices hold no images, and reading them may never end
      listing_.files.push_back({folderName, std::string(name), state.st_size, mtimeOf(state)});
      files_.push_back({state.st_dev, state.st_ino});
    }
  }

  void follow(const Link& link, std::set<Identity>& seen) {
    const fs::path path = scan_.pathOf(below(link.folder, link.name));
    struct stat state {};
    if (::stat(path.c_str(), &state) != 0 || !seen.insert({state.st_dev, state.st_ino}).second) return;
    if (S_ISREG(state.st_mode)) {
      listing_.files.push_back({link.folder, link.name, state.st_size, mtimeOf(state)});
    } else if (S_ISDIR(state.st_mode) && scan_.onlyFile_.empty()) {
      listUnseen(below(link.folder, link.name), seen);
    }
  }

  /// What a link leads to may hold, or lie in, a folder that is listed already.
  void listUnseen(const std::string& start, std::set<Identity>& seen) {
    std::vector<std::string> folders{start};
    while (!folders.empty()) {
      const std::string next = std::move(folders.back());
      folders.pop_back();
      const std::size_t firstFile = files_.size();
      const std::size_t firstStamp = listing_.files.size();
      list(next);
      std::size_t keptStamps = firstStamp;
      for (std::size_t i = 0; i < files_.size() - firstFile; ++i) {
        if (seen.insert(files_[firstFile + i]).second)
          std::swap(listing_.files[keptStamps++], listing_.files[firstStamp + i]);
      }
      listing_.files.resize(keptStamps);
      for (std::string& found : std::exchange(waiting_, {})) {
        struct stat state {};
        if (::stat(scan_.pathOf(found).c_str(), &state) == 0 && seen.insert({state.st_dev, state.st_ino}).second)
          folders.push_back(std::move(found));
      }
    }
  }

  FolderScan& scan_;
  FolderListing& listing_;
  std::vector<std::string> waiting_;
  std::vector<Identity> files_;  ///< of listing_.files found under their own names
  std::vector<Link> links_;
};

FolderScan::FolderScan(fs::path root, std::string onlyFile) : root_(std::move(root)), onlyFile_(std::move(onlyFile)) {}

fs::path FolderScan::pathOf(const std::string& folder) const {
  if (folder.empty()) return root_.empty() ? "." : root_;
  return root_ / folder;
}

fs::path FolderScan::pathOf(const FileStamp& file) const {
  return file.folder.empty() ? root_ / file.name : root_ / file.folder / file.name;
}

bool FolderScan::isWanted(std::string_view name) const {
  if (name == "." || name == ".." || name == hiddenFolderName || isTemporaryName(name)) return false;
  if (onlyFile_.empty() || name == onlyFile_) return true;
  return name.starts_with(reportFilePrefix) && name.ends_with(".dcm");
}

FolderListing FolderScan::all() {
  FolderListing listing;
  listing.complete = true;
  folders_.clear();
  Walk walk(*this, listing);
  walk.from("");
  hasLinks_ = walk.hasLinks();
  walk.followLinks();
  return listing;
}

FolderListing FolderScan::changed() {
  std::vector<std::string> outdated;
  for (const auto& [name, folder] : folders_) {
    struct stat state {};
    const bool isThere = ::stat(pathOf(name).c_str(), &state) == 0 && S_ISDIR(state.st_mode);
    if (!isThere || folder.mtimeNs == 0 || folder.mtimeNs != mtimeOf(state)) outdated.push_back(name);
  }
  FolderListing listing;
  if (outdated.empty()) return listing;
  if (hasLinks_) return all();
  for (const std::string& name : outdated) folders_.erase(name);
  Walk walk(*this, listing);
  for (const std::string& name : outdated) {
    std::error_code error;
    if (fs::is_directory(pathOf(name), error))
      walk.from(name);
    else
      listing.folders.push_back(name);
  }
  return walk.hasLinks() ? all() : listing;
}

std::vector<UnreadableFile> FolderScan::unlisted() const {
  std::vector<UnreadableFile> unlisted;
  for (const auto& [name, folder] : folders_)
    unlisted.insert(unlisted.end(), folder.unlisted.begin(), folder.unlisted.end());
  return unlisted;
}

std::optional<FileStamp> stampOf(const fs::path& root, const std::string& folder, const std::string& name) {
  struct stat state {};
  const fs::path file = folder.empty() ? root / name : root / folder / name;
  if (::stat(file.c_str(), &state) != 0 || !S_ISREG(state.st_mode)) return std::nullopt;
  return FileStamp{folder, name, state.st_size, mtimeOf(state)};
}

bool isPathBefore(std::string_view a, std::string_view b) {
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](char left, char right) {
    const auto rank = [](char character) {
      return character == '/' ? 0 : static_cast<int>(static_cast<unsigned char>(character));
    };
    return rank(left) < rank(right);
  });
}

}  // namespace workstation
