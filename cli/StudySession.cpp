#include "cli/StudySession.h"

#include <algorithm>
#include <set>
#include <utility>

#include "cli/Console.h"
#include "cli/PlainText.h"
#include "workstation/dicom/StudyReader.h"

namespace cli {

namespace fs = std::filesystem;
using workstation::StudyDatabase;

namespace {

void printBadFiles(const std::vector<BadFile>& files) {
  for (const auto& bad : files) {
    printMessage(bad.file + (bad.shown ? " is shown but cannot be labelled: " : " cannot be used: ") + bad.reason +
                 ".");
  }
}

/// One line for all: a folder that was copied into itself has as many as it has images.
void printCopies(const std::vector<workstation::CopiedFile>& copies) {
  if (copies.empty()) return;
  const auto& first = copies.front();
  printMessage(counted(copies.size(), "file holds an image", "files hold images") +
               " that another file of the study holds too and " + (copies.size() == 1 ? "is" : "are") +
               " not shown twice: " + (copies.size() == 1 ? "" : "the first is ") + first.file.string() +
               ", a copy of " + first.original.string() + ".");
}

/// Files that cannot be used, then images without usable geometry, one line a file.
std::vector<BadFile> badFilesOf(const workstation::ReadResult& read) {
  std::vector<BadFile> bad;
  for (const auto& file : read.unreadable) bad.push_back({file.file.string(), file.reason, false});
  for (const auto& image : read.images) {
    if (image.geometryProblem.empty()) continue;
    const auto file = image.file.string();
    if (!bad.empty() && bad.back().shown && bad.back().file == file) continue;
    bad.push_back({file, image.geometryProblem, true});
  }
  return bad;
}

/// What a folder without one image does hold.
std::string contentsOf(std::size_t bad, const LeftOut& left) {
  std::string list;
  const auto add = [&](std::size_t count, const std::string& one, const std::string& many) {
    if (count > 0) list += (list.empty() ? "" : ", ") + counted(count, one, many);
  };
  add(bad, "file cannot be used", "files cannot be used");
  add(left.otherObjects, "DICOM object is no image", "DICOM objects are no images");
  add(left.notDicom, "file is not DICOM", "files are not DICOM");
  return list.empty() ? "it holds no file" : list;
}

/// A folder of studies that no import has made serves as a database too, opened in place.
workstation::Result<std::unique_ptr<workstation::StudyDatabase>> readDatabase(const std::string& folder,
                                                                              const SourceOptions& options) {
  std::error_code error;
  if (fs::is_directory(folder, error) && !workstation::StudyDatabase::isDatabase(folder)) {
    auto inPlace = readStudies(folder, false, options);
    if (interrupted() || !inPlace || !(*inPlace)->studies().empty()) return inPlace;
  }
  return readStudies(folder, true, options);
}

}  // namespace

Expected<std::unique_ptr<StudySource>> StudySource::open(const std::string& study, const std::string& database,
                                                         const SourceOptions& options) {
  if (!database.empty()) {
    auto source = openDatabase(database, options);
    if (!source) return source;
    if (const auto problem = (*source)->choose(study)) return *problem;
    return source;
  }
  std::unique_ptr<StudySource> source(new StudySource());
  source->path_ = study;
  if (const auto problem = source->openPath(options)) return *problem;
  if (const auto problem = source->listFolder(options.amongMany)) return *problem;
  return source;
}

Expected<std::unique_ptr<StudySource>> StudySource::openDatabase(const std::string& database,
                                                                 const SourceOptions& options) {
  std::unique_ptr<StudySource> source(new StudySource());
  source->path_ = database;
  source->isDatabase_ = true;
  if (const auto problem = source->openPath(options)) return *problem;
  return source;
}

std::optional<Failure> StudySource::openPath(const SourceOptions& options) {
  std::error_code error;
  if (!fs::exists(path_, error)) {
    return Failure{ExitUnreadable, (path_.empty() ? "A folder without a name" : path_) + " does not exist: give a " +
                                       (isDatabase_ ? "database folder." : "folder of DICOM files.")};
  }
  auto opened = isDatabase_ ? readDatabase(path_, options) : readStudies(path_, false, options);
  if (interrupted()) return Failure{ExitNotAllowed, "Interrupted while reading " + path_ + "; nothing was changed."};
  if (!opened) return Failure{ExitUnreadable, opened.problem};
  database_ = std::move(*opened);
  if (options.indexIsCurrent) printedNotices_ = database_->notices().size();
  printNotices();
  return std::nullopt;
}

std::optional<Failure> StudySource::choose(const std::string& studyUid) {
  const auto read = database_->contents(studyUid);
  if (read.images.empty()) {
    return Failure{ExitNotAllowed, "The database " + path_ + " holds no " +
                                       (database_->holdsStudy(studyUid) ? "image of the " : "") + "study " + studyUid +
                                       ": give the Study Instance UID of one that was imported."};
  }
  bad_ = badFilesOf(read);
  printBadFiles(bad_);
  printCopies(read.copies);
  studies_ = {studyUid};
  return std::nullopt;
}

std::optional<Failure> StudySource::chooseAll() {
  std::vector<std::pair<std::string, std::string>> byDate;
  for (const auto& study : database_->studies()) byDate.emplace_back(study.date, study.studyUid);
  if (byDate.empty()) {
    return Failure{ExitNotAllowed, "The database " + path_ + " holds no study: import some with vertana import."};
  }
  listByDate(std::move(byDate));
  return std::nullopt;
}

std::optional<Failure> StudySource::listFolder(bool amongMany) {
  const auto read = database_->contents();
  if (!read.warning.empty()) printMessage(read.warning);
  bad_ = badFilesOf(read);
  leftOut_ = {read.otherObjects.size(), read.notDicom.size(), read.copies.size()};
  if (!read.images.empty() || !amongMany) {
    printBadFiles(bad_);
    printCopies(read.copies);
  }
  if (read.images.empty()) {
    return Failure{ExitUnreadable,
                   path_ + " holds no DICOM image that can be shown: " + contentsOf(bad_.size(), leftOut_) + "."};
  }
  std::vector<std::pair<std::string, std::string>> byDate;
  for (const auto& image : read.images) {
    if (byDate.empty() || byDate.back().second != image.studyInstanceUid) {
      byDate.emplace_back(image.studyDate, image.studyInstanceUid);
    }
  }
  listByDate(std::move(byDate));
  return std::nullopt;
}

void StudySource::listByDate(std::vector<std::pair<std::string, std::string>> byDate) {
  std::sort(byDate.begin(), byDate.end());
  std::set<std::string> seen;
  for (const auto& [date, uid] : byDate) {
    if (seen.insert(uid).second) studies_.push_back(uid);
  }
}

Expected<std::string> StudySource::onlyStudy() const {
  if (studies_.size() == 1) return studies_.front();
  return Failure{ExitNotAllowed, path_ + " holds " + std::to_string(studies_.size()) +
                                     " studies: give a folder that holds one (vertana info lists them)."};
}

void StudySource::printNotices() {
  const auto& notices = database_->notices();
  for (; printedNotices_ < notices.size(); ++printedNotices_) printMessage(notices[printedNotices_]);
}

void StudySource::printPluginProblem(const std::string& problem) {
  if (!std::exchange(toldOfPlugin_, true)) printMessage(problem);
}

std::string StudySource::title(const std::string& studyUid) const {
  return "The study " + (isDatabase_ || studies_.size() > 1 ? studyUid + " in " : "in ") + path_;
}

StudySession::StudySession(StudySource& source)
    : source_(source), session_(source.database(), [this] {
        workstation::Options options;
        options.defaultsStore = &defaults_;
        return options;
      }()) {}

Expected<std::unique_ptr<StudySession>> StudySession::open(StudySource& source, const std::string& studyUid,
                                                           PluginUse use) {
  std::unique_ptr<StudySession> session(new StudySession(source));
  if (const auto loaded = session->session_.loadPlugin(); !loaded) {
    if (use == PluginUse::needed) return Failure{ExitUnreadable, *loaded.problem};
    source.printPluginProblem(*loaded.problem);
  }
  session->workstation().addImages(source.database().images(studyUid));
  return session;
}

int withStudy(const std::string& study, const std::string& database,
              const std::function<int(StudySession& session, const std::string& studyUid)>& task, PluginUse use) {
  auto source = StudySource::open(study, database);
  if (!source) return fail(source.failure);
  const auto uid = (*source)->onlyStudy();
  if (!uid) return fail(uid.failure);
  auto session = StudySession::open(**source, *uid, use);
  return session ? task(**session, *uid) : fail(session.failure);
}

void StudySession::printNotices(const std::string& told) {
  source_.printNotices();
  for (const auto& notice : store().takeNotices()) {
    if (told.empty() || !notice.ends_with(told)) printMessage(notice);
  }
}

}  // namespace cli
