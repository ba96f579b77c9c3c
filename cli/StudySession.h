#pragma once
// Where studies lie, and a study opened in a workstation that has the plug-in loaded.

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/ExitStatus.h"
#include "cli/PersonDefaults.h"
#include "cli/StudyReading.h"
#include "workstation/database/StudyDatabase.h"
#include "workstation/session/Session.h"

namespace cli {

/// A file that was refused, or an image that cannot be labelled, and why.
struct BadFile {
  std::string file;
  std::string reason;
  bool shown = false;  ///< listed with the series all the same
};

/// Files of a folder that are no images of their own.
struct LeftOut {
  std::size_t otherObjects = 0;  ///< DICOM objects that are no images
  std::size_t notDicom = 0;      ///< files that were skipped
  std::size_t copies = 0;        ///< files with an image that another file holds
};

/// The studies in a folder of DICOM files, opened in place, or those of a database that were chosen.
class StudySource {
 public:
  /// `study` is a folder, or, with a database folder, a Study Instance UID. A path that does not exist, a folder
  /// without one image, or a study that the database does not hold is a Failure. Prints a message for each bad file.
  static Expected<std::unique_ptr<StudySource>> open(const std::string& study, const std::string& database,
                                                     const SourceOptions& options = {});
  /// Opens a database folder; no study of it is chosen yet.
  static Expected<std::unique_ptr<StudySource>> openDatabase(const std::string& database,
                                                             const SourceOptions& options = {});

  /// Chooses one study of the database; a Failure says that there is none with an image.
  std::optional<Failure> choose(const std::string& studyUid);
  /// Chooses all studies of the database; a Failure says that there are none.
  std::optional<Failure> chooseAll();

  workstation::StudyDatabase& database() { return *database_; }
  /// Study Instance UIDs, by date, then UID.
  const std::vector<std::string>& studies() const { return studies_; }
  /// The study when there is one only; a Failure names how many there are.
  Expected<std::string> onlyStudy() const;
  const std::vector<BadFile>& bad() const { return bad_; }
  const LeftOut& leftOut() const { return leftOut_; }
  /// What the database has to tell the person of its index, each sentence once.
  void printNotices();
  /// Tells the person, once, that the session goes on without the plug-in, and why.
  void printPluginProblem(const std::string& problem);
  /// How messages name a study: "The study in /tmp/spine", "The study 1.2.3 in /tmp/database".
  std::string title(const std::string& studyUid) const;
  /// The folder, as the person gave it.
  const std::string& path() const { return path_; }

 private:
  StudySource() = default;
  std::optional<Failure> openPath(const SourceOptions& options);
  std::optional<Failure> listFolder(bool amongMany);
  void listByDate(std::vector<std::pair<std::string, std::string>> byDate);

  std::string path_;
  bool isDatabase_ = false;
  std::unique_ptr<workstation::StudyDatabase> database_;
  std::vector<std::string> studies_;
  std::vector<BadFile> bad_;
  LeftOut leftOut_;
  std::size_t printedNotices_ = 0;
  bool toldOfPlugin_ = false;
};

/// Whether a command can do its work without the plug-in.
enum class PluginUse { needed, helpful };

/// A workstation with the plug-in, the person's defaults and one study. Letting it go is as a crash: what should be
/// kept is kept by Workstation::quit().
class StudySession {
 public:
  /// Loads the plug-in and adds the study's images. The source must outlive the session. A plug-in that cannot be
  /// loaded is a failure where it is needed; elsewhere the session goes on without it, and its source tells of it once.
  static Expected<std::unique_ptr<StudySession>> open(StudySource& source, const std::string& studyUid,
                                                      PluginUse use = PluginUse::needed);

  StudySource& source() { return source_; }
  workstation::LabellingStore& store() { return session_.store(); }
  workstation::Workstation& workstation() { return session_.workstation(); }
  const workstation::Workstation& workstation() const { return session_.workstation(); }
  /// What the store and the database have to tell the person, but for what ends like a sentence that is told anyway.
  void printNotices(const std::string& told = {});

 private:
  explicit StudySession(StudySource& source);

  StudySource& source_;
  PersonDefaults defaults_;
  workstation::Session session_;
};

/// Opens the one study that the folder or database holds and does the task on it; the exit status. Failures to open are
/// printed.
int withStudy(const std::string& study, const std::string& database,
              const std::function<int(StudySession& session, const std::string& studyUid)>& task,
              PluginUse use = PluginUse::needed);

}  // namespace cli
