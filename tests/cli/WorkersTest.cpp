#include "cli/Workers.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <thread>

#include "cli/ExitStatus.h"
#include "tests/support/TemporaryFolder.h"

namespace cli::test {
namespace {

namespace fs = std::filesystem;

/// What tasks printed, as the process that started them sees it.
struct Heard {
  TasksResult result;
  std::string output;
  std::string messages;
  std::vector<std::size_t> progress;
};

Heard hear(std::size_t count, int jobs, std::function<int(std::size_t)> task) {
  Heard heard;
  Tasks tasks;
  tasks.count = count;
  tasks.jobs = jobs;
  tasks.makeWorker = [task] { return task; };
  tasks.name = [](std::size_t number) { return "Task " + std::to_string(number); };
  tasks.output = [&](const std::string& text) {
    heard.output += text;
    return true;
  };
  tasks.messages = [&](const std::string& lines) { heard.messages += lines; };
  tasks.progress = [&](std::size_t done) { heard.progress.push_back(done); };
  heard.result = runTasks(tasks);
  return heard;
}

/// A folder in which processes leave each other signs.
class Signs {
 public:
  void give(const std::string& name) const { std::ofstream(folder_ / name) << "x"; }
  /// False when it does not come within a minute.
  bool await(const std::string& name) const {
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!fs::exists(folder_ / name)) {
      if (std::chrono::steady_clock::now() > end) return false;
      std::this_thread::yield();
    }
    return true;
  }

 private:
  testsupport::TemporaryFolder folder_;
};

int printNumber(std::size_t task) {
  std::cout << "output " << task << '\n' << std::flush;
  std::cerr << "message " << task << '\n';
  return ExitDone;
}

TEST(Workers, PrintInTheOrderOfTheTasksWhateverTheNumberOfProcesses) {
  std::string output;
  std::string messages;
  for (std::size_t i = 0; i < 100; ++i) {
    output += "output " + std::to_string(i) + "\n";
    messages += "message " + std::to_string(i) + "\n";
  }
  for (const int jobs : {1, 2, 5, 256}) {
    const auto heard = hear(100, jobs, printNumber);
    EXPECT_EQ(heard.output, output) << jobs;
    EXPECT_EQ(heard.messages, messages) << jobs;
    EXPECT_EQ(heard.result.status, ExitDone) << jobs;
    EXPECT_EQ(heard.result.done, 100U) << jobs;
    EXPECT_FALSE(heard.result.interrupted) << jobs;
    EXPECT_EQ(heard.progress.size(), 100U) << jobs;
    EXPECT_EQ(heard.progress.back(), 100U) << jobs;
  }
}

TEST(Workers, WaitForASlowFirstTaskWithWhatTheOthersPrint) {
  const Signs signs;
  const auto heard = hear(8, 2, [&](std::size_t task) {
    if (task == 0 && !signs.await("7")) return 1;
    signs.give(std::to_string(task));
    std::cout << task;
    return 0;
  });
  EXPECT_EQ(heard.output, "01234567");
  EXPECT_EQ(heard.result.status, 0) << "the last task was done while the first one waited for it";
}

TEST(Workers, WithNoTaskDoNothing) {
  const auto heard = hear(0, 4, [](std::size_t) { return 1; });
  EXPECT_EQ(heard.result.status, ExitDone);
  EXPECT_EQ(heard.output, "");
}

TEST(Workers, AnswerTheHighestStatus) {
  EXPECT_EQ(hear(4, 2, [](std::size_t task) { return task == 1 ? 3 : task == 2 ? 1 : 0; }).result.status, 3);
  EXPECT_EQ(hear(4, 1, [](std::size_t task) { return task == 3 ? 1 : 0; }).result.status, 1);
}

TEST(Workers, KeepWhatIsPrintedByOneFlushTogetherHoweverLong) {
  const std::size_t length = std::size_t{9} << 20;  // more than is held back at once, by three tasks
  std::size_t parts = 0;
  Tasks tasks;
  tasks.count = 6;
  tasks.jobs = 3;
  tasks.makeWorker = [&] {
    return [&](std::size_t task) {
      std::cout << std::string(length, static_cast<char>('a' + task)) << std::flush;
      return 0;
    };
  };
  tasks.name = [](std::size_t) { return ""; };
  tasks.messages = [](const std::string& lines) { ADD_FAILURE() << lines; };
  tasks.output = [&](const std::string& text) {
    EXPECT_TRUE(text == std::string(length, static_cast<char>('a' + parts))) << parts;
    ++parts;
    return true;
  };
  EXPECT_EQ(runTasks(tasks).done, 6U);
  EXPECT_EQ(parts, 6U);
}

TEST(Workers, ThatCrashCostOnlyTheirTaskAndAreNamed) {
  for (const int jobs : {1, 3}) {
    const auto heard = hear(6, jobs, [](std::size_t task) {
      std::cout << task << std::flush;
      if (task == 1) ::kill(::getpid(), SIGKILL);
      if (task == 4) ::_exit(7);
      return 0;
    });
    EXPECT_EQ(heard.output, "012345") << jobs;
    EXPECT_EQ(heard.messages,
              "vertana: Task 1 could not be looked at: the process that did so ended before its time (signal 9, "
              "Killed). The others are not touched by it.\n"
              "vertana: Task 4 could not be looked at: the process that did so ended before its time (exit status 7). "
              "The others are not touched by it.\n")
        << jobs;
    EXPECT_EQ(heard.result.status, ExitUnreadable) << jobs;
    EXPECT_EQ(heard.result.done, 6U) << jobs;
  }
}

TEST(Workers, SayWhatWasThrown) {
  const auto heard = hear(2, 1, [](std::size_t task) -> int {
    if (task == 0) throw std::runtime_error("no memory");
    return 0;
  });
  EXPECT_EQ(heard.messages, "vertana: Something went wrong that should not: no memory\n");
  EXPECT_EQ(heard.result.status, ExitNotAllowed);
}

TEST(Workers, ThatCannotBeStartedAreToldForEachTask) {
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
  const int next = ::open("/dev/null", O_RDONLY);
  rlimit tight = before;
  tight.rlim_cur = static_cast<rlim_t>(next) + 1;  // room for one end of a pair
  ::close(next);
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &tight), 0);
  const auto heard = hear(2, 2, printNumber);
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
  EXPECT_EQ(heard.messages,
            "vertana: Task 0 cannot be looked at: no process can be started for it (Too many open files). Let other "
            "programs end, then try again.\n"
            "vertana: Task 1 cannot be looked at: no process can be started for it (Too many open files). Let other "
            "programs end, then try again.\n");
  EXPECT_EQ(heard.result.status, ExitUnreadable);
}

TEST(Workers, EndWhenTheOutputIsNotWantedAnyMore) {
  int taken = 0;
  Tasks tasks;
  tasks.count = 1000;
  tasks.jobs = 2;
  tasks.makeWorker = [] { return printNumber; };
  tasks.name = [](std::size_t) { return ""; };
  tasks.messages = [](const std::string&) {};
  tasks.output = [&](const std::string&) { return ++taken < 3; };
  const auto result = runTasks(tasks);
  EXPECT_EQ(taken, 3);
  EXPECT_TRUE(result.interrupted);
  EXPECT_EQ(result.done, 2U);
}

TEST(Workers, LetGoOfWhatTheyHoldWhenAllIsDoneAndAreGoneThen) {
  struct Holder {
    const Signs* signs;
    ~Holder() { signs->give("let go"); }
  };
  const Signs signs;
  Tasks tasks;
  tasks.count = 3;
  tasks.jobs = 1;
  tasks.makeWorker = [&] {
    return [holder = std::make_shared<Holder>(Holder{&signs})](std::size_t) { return holder ? 0 : 1; };
  };
  tasks.name = [](std::size_t) { return ""; };
  tasks.messages = [](const std::string&) {};
  tasks.output = [](const std::string&) { return true; };
  EXPECT_EQ(runTasks(tasks).status, 0);
  EXPECT_TRUE(signs.await("let go"));
  EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
  EXPECT_EQ(errno, ECHILD) << "no process is left";
}

}  // namespace
}  // namespace cli::test
