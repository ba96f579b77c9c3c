#pragma once
// Tasks shared out among worker processes. What they print comes out in the order of the tasks, whatever the number of
// processes, and a task that crashes takes no other with it.

#include <cstddef>
#include <functional>
#include <string>

namespace cli {

struct Tasks {
  std::size_t count = 0;
  int jobs = 1;  ///< processes at most; at least 1
  /// Called once in each worker process; what it answers does a task there, by its number from 0, and gives its exit
  /// status. It may print to std::cout and std::cerr; what it has printed by a flush of the one stays together. It is
  /// destroyed before the process ends.
  std::function<std::function<int(std::size_t task)>()> makeWorker;
  /// Names a task at the beginning of a message: "/tmp/spine".
  std::function<std::string(std::size_t task)> name;
  /// Messages go straight to standard error as they are printed, as a line of progress must; use it with one job.
  bool liveMessages = false;

  // Called in this process, in the order of the tasks.

  /// What a task printed between two flushes. False ends the work.
  std::function<bool(const std::string& text)> output;
  /// Lines that a task printed to std::cerr, or a failure to run it, each with its line feed.
  std::function<void(const std::string& lines)> messages;
  /// The first tasks are done.
  std::function<void(std::size_t done)> progress;
};

struct TasksResult {
  int status = 0;            ///< the highest of all tasks; ExitUnreadable for one that crashed
  std::size_t done = 0;      ///< the first tasks of all
  bool interrupted = false;  ///< the person has interrupted the work, or `output` ended it
};

/// Does the tasks. The calling process starts the workers as copies of itself, so it must have no thread but one and
/// none of the state that a task needs. No worker is left when it returns or throws.
TasksResult runTasks(const Tasks& tasks);

/// The number of processors that this process may use, at least 1.
int processors();

}  // namespace cli
