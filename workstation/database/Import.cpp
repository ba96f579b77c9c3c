#include "workstation/database/Import.h"

#include <SQLiteCpp/Exception.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <map>
#include <set>
#include <system_error>
#include <utility>

#include "workstation/dicom/Uid.h"

namespace workstation {
namespace {

namespace fs = std::filesystem;

/// Whether two files hold the same bytes; nothing when one of them cannot be read.
std::optional<bool> haveSameBytes(const fs::path& one, const fs::path& other) {
  std::ifstream left(one, std::ios::binary);
  std::ifstream right(other, std::ios::binary);
  std::array<char, 1 << 15> ofLeft{};
  std::array<char, 1 << 15> ofRight{};
  while (left && right) {
    left.read(ofLeft.data(), ofLeft.size());
    right.read(ofRight.data(), ofRight.size());
    const std::streamsize count = left.gcount();
    if (left.bad() || right.bad()) break;
    if (count != right.gcount() || !std::equal(ofLeft.begin(), ofLeft.begin() + count, ofRight.begin())) return false;
    if (left.eof()) return true;
  }
  return std::nullopt;
}

class Importer {
 public:
  Importer(const fs::path& root, Index& index, const DiskCalls& disk) : root_(root), index_(index), disk_(disk) {}

  ImportResult run(const std::vector<fs::path>& paths, const Progress& progress) {
    for (const fs::path& path : paths) collect(path);
    const auto goesOn = [&](std::size_t done) { return !progress || progress(done, sources_.size()); };
    for (std::size_t done = 0; done < sources_.size() && isGoingOn(); ++done) {
      result_.cancelled = !goesOn(done);
      if (!result_.cancelled) take(sources_[done]);
    }
    if (isGoingOn() && !sources_.empty()) result_.cancelled = !goesOn(sources_.size());
    if (isGoingOn()) finish();
    if (!isGoingOn()) takeBack();
    result_.studies.assign(studies_.begin(), studies_.end());
    return std::move(result_);
  }

 private:
  struct Copy {
    FileStamp source;
    FileToIndex file;
    TemporaryFile temporary;
  };
  /// The file of an object that is in the database, or will be.
  struct Kept {
    FileStamp file;
    fs::path bytes;  ///< where to read them: what is being copied has no file of its own yet
  };

  bool isGoingOn() const { return !result_.cancelled && result_.problem.empty(); }

  bool isDone(Outcome outcome) {
    if (!outcome) result_.problem = std::move(*outcome.problem);
    return result_.problem.empty();
  }

  void collect(const fs::path& path) {
    std::error_code error;
    const fs::path whole = fs::canonical(path, error);
    if (error) {
      result_.unreadable.push_back({path, "it does not exist or cannot be reached (" + error.message() + ")"});
      return;
    }
    if (!fs::is_directory(whole, error)) {
      const auto stamp = stampOf(whole.parent_path(), "", whole.filename().string());
      if (stamp) addSource(whole.parent_path(), *stamp);
      return;
    }
    FolderScan scan(whole);
    const FolderListing listing = scan.all();
    for (const FileStamp& file : listing.files) addSource(file.folder.empty() ? whole : whole / file.folder, file);
    for (UnreadableFile& unlisted : scan.unlisted()) result_.unreadable.push_back(std::move(unlisted));
  }

  void addSource(const fs::path& folder, FileStamp stamp) {
    stamp.folder = folder.string();
    if (seen_.insert(folder / stamp.name).second) sources_.push_back(std::move(stamp));
  }

  void take(const FileStamp& source) {
    if (index_.isImported(source)) {
      ++result_.known;
      return;
    }
    const fs::path path = fs::path(source.folder) / source.name;
    FileContents contents = readFileContents(path);
    switch (contents.kind) {
      case FileKind::notDicom:
        ++result_.notDicom;
        return;
      case FileKind::directory:
        ++result_.directories;
        return;
      case FileKind::unreadable:
        result_.unreadable.push_back({path, contents.reason});
        return;
      case FileKind::image:
        takeObject(source, contents.images.front().studyInstanceUid, contents.images.front().sopInstanceUid, contents);
        return;
      case FileKind::object:
        if (!contents.reason.empty()) {  // it would keep a whole file of the same object out
          result_.unreadable.push_back({path, contents.reason});
          return;
        }
        takeObject(source, contents.header->studyInstanceUid, contents.header->sopInstanceUid, contents);
        return;
    }
  }

  void takeObject(const FileStamp& source, const std::string& studyUid, const std::string& objectUid,
                  FileContents& contents) {
    const fs::path path = fs::path(source.folder) / source.name;
    if (studyUid.empty() || objectUid.empty()) {
      result_.unreadable.push_back(
          {path, studyUid.empty() ? "it has no Study Instance UID" : "it has no SOP Instance UID"});
      return;
    }
    studies_.insert(studyUid);
    const auto [place, isNew] = taken_.try_emplace({studyUid, objectUid});
    Kept& kept = place->second;
    if (isNew) {
      const std::optional<FileStamp> known = index_.fileOf(studyUid, objectUid);
      if (!known) {
        kept = {copy(source, studyUid, objectUid, contents), path};
        return;
      }
      kept = {*known, pathOf(*known)};
    }
    compare(source, path, kept);
  }

  /// A source that holds an object which another file holds already.
  void compare(const FileStamp& source, const fs::path& path, const Kept& kept) {
    const std::optional<bool> isSame =
        kept.file.size == source.size ? haveSameBytes(path, kept.bytes) : std::optional(false);
    if (isSame.value_or(false)) {
      ++result_.known;
      remembered_.push_back({source, kept.file});
      return;
    }
    const std::string why = isSame ? ", which is another file" : ", but they cannot be compared";
    result_.unreadable.push_back(
        {path, "its SOP Instance UID is that of " + pathOf(kept.file).string() + why + ": only that one is kept"});
  }

  fs::path pathOf(const FileStamp& file) const { return root_ / file.folder / file.name; }

  FileStamp copy(const FileStamp& source, const std::string& studyUid, const std::string& objectUid,
                 FileContents& contents) {
    FileStamp target{nameForUid(studyUid), nameForUid(objectUid) + ".dcm", source.size, 0};
    const fs::path folder = root_ / target.folder;
    std::error_code error;
    for (int number = 1; fs::exists(folder / target.name, error); ++number)
      target.name = nameForUid(objectUid) + "-" + std::to_string(number) + ".dcm";
    if (fs::create_directory(folder, error)) {
      madeFolders_.push_back(folder);
    } else if (error) {
      result_.problem = "The folder " + folder.string() + " cannot be made: " + error.message() +
                        "; check that there is room on the disk and that you may write there, and try again.";
      return target;
    }
    if (folders_.insert(folder).second) removeLeftovers(folder);
    Copy made{source, {target, std::move(contents)}, TemporaryFile(folder / target.name, disk_)};
    if (isDone(made.temporary.copyFrom(fs::path(source.folder) / source.name))) copies_.push_back(std::move(made));
    return target;
  }

  /// Brings everything to the disk, gives it its names, and enters it.
  void finish() {
    for (Copy& copy : copies_)
      if (!isDone(copy.temporary.sync())) return;
    for (Copy& copy : copies_) {
      if (!isDone(copy.temporary.publish())) return;
      published_.push_back(copy.temporary.target());
    }
    if (!copies_.empty()) folders_.insert(root_);
    for (const fs::path& folder : folders_)
      if (!isDone(syncFolder(folder, disk_))) return;
    std::vector<FileToIndex> files;
    for (Copy& copy : copies_) {
      const std::optional<FileStamp> stamp = stampOf(root_, copy.file.stamp.folder, copy.file.stamp.name);
      if (!stamp) continue;  // someone has removed it already
      remembered_.push_back({std::move(copy.source), *stamp});
      files.push_back({*stamp, std::move(copy.file.contents)});
    }
    try {
      if (!files.empty()) index_.change({}, files);
      if (!remembered_.empty()) index_.rememberSources(remembered_);
      result_.imported = files.size();
    } catch (const SQLite::Exception& exception) {
      result_.problem = "The files cannot be entered into the index of " + root_.string() + ": " + exception.what() +
                        "; check that there is room on the disk and try again.";
    }
  }

  void takeBack() {
    std::error_code ignored;
    copies_.clear();  // with their temporary files
    for (const fs::path& file : published_) fs::remove(file, ignored);
    for (const fs::path& folder : madeFolders_) fs::remove(folder, ignored);
    result_.imported = 0;
    studies_.clear();
  }

  const fs::path& root_;
  Index& index_;
  const DiskCalls& disk_;
  ImportResult result_;
  std::set<std::string> studies_;
  std::vector<FileStamp> sources_;
  std::set<fs::path> seen_;
  std::map<std::pair<std::string, std::string>, Kept> taken_;  // by study and object
  std::vector<Copy> copies_;
  std::vector<ImportedFile> remembered_;
  std::set<fs::path> folders_;
  std::vector<fs::path> madeFolders_;
  std::vector<fs::path> published_;
};

}  // namespace

ImportResult importInto(const fs::path& root, Index& index, const std::vector<fs::path>& paths,
                        const Progress& progress, const DiskCalls& disk) {
  return Importer(root, index, disk).run(paths, progress);
}

std::string nameForUid(const std::string& uid) {
  const bool isPlain = !uid.empty() && uid.size() <= 64 && uid.front() != '.' &&
                       uid.find_first_not_of("0123456789.") == std::string::npos;
  return isPlain ? uid : makeUid("name of " + uid);
}

}  // namespace workstation
