#include "cli/Workers.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <deque>
#include <exception>
#include <iostream>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include "cli/Console.h"
#include "cli/ExitStatus.h"
#include "cli/WorkerChannel.h"
#include "workstation/database/AtomicFile.h"

namespace cli {

namespace {

/// Tasks may be this far ahead of the first that is not done, times the number of jobs.
constexpr std::size_t tasksAheadPerJob = 16;
/// Workers ahead have to wait while this much of what they printed is held back, bytes.
constexpr std::size_t mostHeldBack = std::size_t{16} << 20;
/// The interrupt key is looked at this often when nothing else happens, ms.
constexpr int patienceMs = 200;

struct Worker {
  pid_t process = -1;
  std::optional<workstation::Descriptor> socket;  ///< this process's end
  FrameReader frames;
  std::optional<std::size_t> task;
};

/// What is known of a task that was handed out.
struct TaskState {
  std::deque<Frame> held;  ///< what it printed while an earlier task was not done
  bool done = false;
};

int doTask(const std::function<int(std::size_t)>& worker, std::size_t task) {
  try {
    return worker(task);
  } catch (const std::exception& error) {
    printMessage(std::string("Something went wrong that should not: ") + error.what());
    return ExitNotAllowed;
  }
}

/// A worker process from its beginning to its end. What is thrown ends it as a crash does.
[[noreturn]] void work(const Tasks& tasks, int socket) noexcept {
  std::signal(SIGINT, SIG_IGN);  // the process that started this one ends it
  FrameBuffer output(socket, FrameKind::output);
  FrameBuffer messages(socket, FrameKind::messages);
  std::cout.rdbuf(&output);
  if (!tasks.liveMessages) {
    std::cerr.rdbuf(&messages);
    std::cerr << std::nounitbuf;
  }
  {
    const auto worker = tasks.makeWorker();
    while (const auto task = receiveTask(socket)) {
      const int status = doTask(worker, static_cast<std::size_t>(*task));
      std::cout.flush();
      std::cerr.flush();
      if (!sendFrame(socket, FrameKind::done, std::to_string(status))) break;
    }
  }
  ::_exit(0);  // what the copied process has in its buffers, and does at its end, is not this one's
}

/// How a process ended, as a phrase.
std::string howEnded(pid_t process) {
  int state = 0;
  while (::waitpid(process, &state, 0) < 0) {
    if (errno != EINTR) return "nobody knows how";
  }
  if (WIFSIGNALED(state)) {
    return "signal " + std::to_string(WTERMSIG(state)) + ", " + ::strsignal(WTERMSIG(state));
  }
  return "exit status " + std::to_string(WEXITSTATUS(state));
}

class Pool {
 public:
  explicit Pool(const Tasks& tasks)
      : tasks_(tasks),
        workers_(std::clamp<std::size_t>(tasks.count, 1, static_cast<std::size_t>(std::max(tasks.jobs, 1)))) {}
  Pool(const Pool&) = delete;
  Pool& operator=(const Pool&) = delete;
  /// Workers that have a task are ended, which harms nothing: they only read. The others are let go one after the
  /// other, since of connections to one index that are closed at the same time none puts its files in order.
  ~Pool() {
    for (auto& worker : workers_) {
      if (worker.process < 0) continue;
      if (worker.task) ::kill(worker.process, SIGKILL);
      worker.socket.reset();
      howEnded(worker.process);
    }
  }

  TasksResult run() {
    while (result_.done < tasks_.count && !stopped()) {
      handOut();
      listen();
      takeInOrder();
    }
    result_.interrupted = result_.done < tasks_.count;
    return result_;
  }

 private:
  bool stopped() const { return ended_ || interrupted(); }

  TaskState& stateOf(std::size_t task) { return ahead_[task - result_.done]; }

  void handOut() {
    for (auto& worker : workers_) {
      if (worker.task || next_ == tasks_.count || ahead_.size() >= workers_.size() * tasksAheadPerJob) continue;
      const auto task = next_++;
      ahead_.emplace_back();
      const int error = worker.process < 0 ? start(worker) : 0;
      if (error != 0) {
        finish(task, tasks_.name(task) + " cannot be looked at: no process can be started for it (" +
                         std::strerror(error) + "). Let other programs end, then try again.");
        continue;
      }
      worker.task = task;
      if (!sendTask(worker.socket->number(), task)) lose(worker);
    }
  }

  /// 0, or the number of the system's error.
  int start(Worker& worker) {
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) return errno;
    workstation::Descriptor mine(ends[0]);
    const workstation::Descriptor its(ends[1]);
    const pid_t process = ::fork();
    if (process < 0) return errno;
    if (process == 0) {
      { const workstation::Descriptor closed(std::move(mine)); }
      for (auto& other : workers_) other.socket.reset();
      work(tasks_, its.number());
    }
    worker.process = process;
    worker.socket.emplace(std::move(mine));
    worker.frames = {};
    return 0;
  }

  /// Waits until a worker says something. Those ahead are not listened to while much is held back.
  void listen() {
    std::vector<pollfd> places;
    std::vector<Worker*> speakers;
    for (auto& worker : workers_) {
      if (!worker.task || (*worker.task != result_.done && heldBytes_ > mostHeldBack)) continue;
      places.push_back({worker.socket->number(), POLLIN, 0});
      speakers.push_back(&worker);
    }
    if (places.empty() || ::poll(places.data(), places.size(), patienceMs) <= 0) return;
    for (std::size_t i = 0; i < places.size(); ++i) {
      if (places[i].revents != 0) hear(*speakers[i]);
    }
  }

  void hear(Worker& worker) {
    const bool isThere = worker.frames.receive(worker.socket->number());
    while (worker.task) {
      auto frame = worker.frames.next();
      if (!frame) break;
      auto& state = stateOf(*worker.task);
      if (frame->kind == FrameKind::done) {
        result_.status = std::max(result_.status, std::stoi(frame->text));
        state.done = true;
        worker.task.reset();
      } else {
        heldBytes_ += frame->text.size();
        state.held.push_back(std::move(*frame));
      }
    }
    if (!isThere) lose(worker);
  }

  void lose(Worker& worker) {
    worker.socket.reset();
    const auto how = howEnded(std::exchange(worker.process, -1));
    if (!worker.task) return;
    const auto task = *std::exchange(worker.task, std::nullopt);
    finish(task, tasks_.name(task) + " could not be looked at: the process that did so ended before its time (" + how +
                     "). The others are not touched by it.");
  }

  /// A task that is not done, and why.
  void finish(std::size_t task, const std::string& why) {
    auto& state = stateOf(task);
    state.held.push_back({FrameKind::messages, messageLine(why)});
    heldBytes_ += state.held.back().text.size();
    state.done = true;
    result_.status = std::max<int>(result_.status, ExitUnreadable);
  }

  /// Prints what the first tasks have said, up to the first that is not done.
  void takeInOrder() {
    while (!ahead_.empty()) {
      auto& state = ahead_.front();
      for (; !state.held.empty(); state.held.pop_front()) {
        if (stopped()) return;
        const auto& frame = state.held.front();
        heldBytes_ -= frame.text.size();
        if (frame.kind == FrameKind::messages) {
          tasks_.messages(frame.text);
        } else if (!tasks_.output(frame.text)) {
          ended_ = true;
        }
      }
      if (!state.done) return;
      ahead_.pop_front();
      ++result_.done;
      if (tasks_.progress) tasks_.progress(result_.done);
    }
  }

  const Tasks& tasks_;
  std::vector<Worker> workers_;
  std::size_t next_ = 0;         ///< the first task that was not handed out
  std::deque<TaskState> ahead_;  ///< of the tasks from result_.done to next_
  std::size_t heldBytes_ = 0;
  bool ended_ = false;
  TasksResult result_;
};

}  // namespace

TasksResult runTasks(const Tasks& tasks) { return Pool(tasks).run(); }

int processors() { return static_cast<int>(std::max(1U, std::thread::hardware_concurrency())); }

}  // namespace cli
