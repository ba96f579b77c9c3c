#pragma once

#include <deque>
#include <functional>

namespace workstation {

/// The main thread's events. Everything that a person or a script does runs as one, so that what is put off until the
/// end of the current event runs before the next begins, and a window learns once an event when to repaint.
class EventLoop {
 public:
  using Action = std::function<void()>;

  /// Runs the action as an event, then what was put off meanwhile. Within an event (a panel that waits for the
  /// person) it runs at once, as part of that event.
  template <class Operation>
  auto run(Operation&& operation) {
    const Depth depth(*this);
    return operation();
  }

  /// Runs the action as an event of its own after the current one, or at once when there is none.
  void afterCurrent(Action action);

  bool busy() const { return depth_ > 0; }
  /// Called after each outermost event.
  void setFinished(Action finished) { finished_ = std::move(finished); }

 private:
  class Depth {
   public:
    explicit Depth(EventLoop& loop) : loop_(loop) { ++loop_.depth_; }
    ~Depth() { loop_.leave(); }
    Depth(const Depth&) = delete;
    Depth& operator=(const Depth&) = delete;

   private:
    EventLoop& loop_;
  };

  void leave();

  int depth_ = 0;
  std::deque<Action> later_;
  Action finished_;
};

}  // namespace workstation
