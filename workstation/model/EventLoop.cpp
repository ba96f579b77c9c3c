#include "workstation/model/EventLoop.h"

#include <utility>

namespace workstation {

void EventLoop::afterCurrent(Action action) {
  if (!busy()) {
    run(action);
    return;
  }
  later_.push_back(std::move(action));
}

void EventLoop::leave() {
  while (depth_ == 1 && !later_.empty()) {
    const Action action = std::move(later_.front());
    later_.pop_front();
    action();
  }
  if (--depth_ == 0 && finished_) finished_();
}

}  // namespace workstation
