#include "workstation/model/Notifications.h"

namespace workstation {

void Notifications::addObserver(const void* observer, std::string_view name,
                                const pelmar::Ref<pelmar::HostObject>& object, Handler handler) {
  if (!handler) return;
  observers_.push_back(
      std::make_unique<Observer>(Observer{observer, std::string(name), object.get(), std::move(handler), false}));
}

void Notifications::removeObserver(const void* observer) {
  for (const auto& entry : observers_) {
    if (entry->identity == observer) entry->removed = true;
  }
  // A handler must not be destroyed while it runs.
  if (postings_ == 0) std::erase_if(observers_, [](const auto& entry) { return entry->removed; });
}

void Notifications::postNotification(const pelmar::Notification& notification) {
  ++postings_;
  const std::size_t count = observers_.size();
  for (std::size_t index = 0; index < count; ++index) {
    Observer& observer = *observers_[index];
    if (observer.removed || observer.name != notification.name) continue;
    if (observer.object && observer.object != notification.object.get()) continue;
    observer.handler(notification);
  }
  if (--postings_ == 0) std::erase_if(observers_, [](const auto& entry) { return entry->removed; });
}

}  // namespace workstation
