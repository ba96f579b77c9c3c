#include "cli/ManyStudies.h"

#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <memory>
#include <optional>
#include <set>
#include <sstream>
#include <utility>

#include "cli/Console.h"
#include "cli/PlainText.h"
#include "cli/Workers.h"

namespace cli {

namespace {

/// Prints what the tasks say, with their progress where it disturbs nothing.
class Printer {
 public:
  Printer(const std::string& between, std::size_t total) : between_(between), total_(total) {
    // What is printed to the same terminal is progress enough.
    if (isatty(STDOUT_FILENO) == 0) progress_.emplace("Reading studies");
  }

  bool output(const std::string& text) {
    if (!std::exchange(first_, false)) std::cout << between_;
    std::cout << text << std::flush;
    return std::cout.good();
  }

  /// What each worker has to say of the person's settings, say, is said once.
  void messages(const std::string& lines) {
    if (progress_) progress_->hide();
    std::istringstream stream(lines);
    for (std::string line; std::getline(stream, line);) {
      if (said_.insert(line).second) std::cerr << line << '\n';
    }
  }

  void progress(std::size_t done) {
    if (progress_) progress_->show(done, total_);
  }

 private:
  std::string between_;
  std::size_t total_;
  bool first_ = true;
  std::optional<ProgressLine> progress_;
  std::set<std::string> said_;
};

/// Brings the index of the database up to date, and lists its studies, in a process that then ends: a process from
/// which others are copied must not have opened a database. The exit status; what is wrong was printed.
int listStudies(const std::string& database, std::vector<std::string>& studies) {
  std::string listed;
  Tasks tasks;
  tasks.count = 1;
  tasks.liveMessages = true;
  tasks.makeWorker = [&] {
    return [&](std::size_t) -> int {
      const auto source = StudySource::openDatabase(database);
      if (!source) return fail(source.failure);
      if (const auto problem = (*source)->chooseAll()) return fail(*problem);
      for (const auto& study : (*source)->studies()) std::cout << study << '\0';
      return ExitDone;
    };
  };
  tasks.name = [&](std::size_t) { return "The database " + database; };
  tasks.output = [&](const std::string& text) {
    listed += text;
    return true;
  };
  tasks.messages = [](const std::string& lines) { std::cerr << lines; };
  const auto result = runTasks(tasks);
  if (result.interrupted) {
    return fail({ExitNotAllowed, "Interrupted while reading " + database + "; nothing was changed."});
  }
  std::istringstream stream(listed);
  for (std::string study; std::getline(stream, study, '\0');) studies.push_back(study);
  return result.status;
}

/// Does the task on studies of a database, which stays open, or on folders.
class StudyWorker {
 public:
  StudyWorker(const ManyStudies& many, const std::vector<std::string>& studies) : many_(many), studies_(studies) {}

  int operator()(std::size_t number) {
    const auto& study = studies_[number];
    SourceOptions options;
    options.amongMany = true;
    if (many_.database.empty()) {
      const auto source = StudySource::open(study, "", options);
      return source ? many_.task(**source) : fail(source.failure);
    }
    if (!database_) {
      options.indexIsCurrent = true;
      auto source = StudySource::openDatabase(many_.database, options);
      if (!source) return fail(source.failure);
      database_ = std::move(*source);
    }
    if (const auto problem = database_->choose(study)) return fail(*problem);
    return many_.task(*database_);
  }

 private:
  const ManyStudies& many_;
  const std::vector<std::string>& studies_;
  std::unique_ptr<StudySource> database_;
};

}  // namespace

int forManyStudies(const ManyStudies& many) {
  auto studies = many.studies;
  if (!many.database.empty()) {
    std::vector<std::string> held;
    if (const int status = listStudies(many.database, held); status != ExitDone) return status;
    if (studies.empty()) studies = std::move(held);
  }
  Printer printer(many.between, studies.size());
  Tasks tasks;
  tasks.count = studies.size();
  tasks.jobs = many.jobs;
  tasks.makeWorker = [&] {
    return [worker = std::make_shared<StudyWorker>(many, studies)](std::size_t number) { return (*worker)(number); };
  };
  tasks.name = [&](std::size_t number) {
    return studies[number] + (many.database.empty() ? "" : " in " + many.database);
  };
  tasks.output = [&](const std::string& text) { return printer.output(text); };
  tasks.messages = [&](const std::string& lines) { printer.messages(lines); };
  tasks.progress = [&](std::size_t done) { printer.progress(done); };
  std::cout << many.heading << std::flush;
  const auto result = runTasks(tasks);
  if (!interrupted()) return result.status;
  printer.messages(messageLine("Interrupted: " + std::to_string(result.done) + " of " + std::to_string(studies.size()) +
                               " studies are done."));
  return std::max<int>(result.status, ExitNotAllowed);
}

}  // namespace cli
