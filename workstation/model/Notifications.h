#pragma once

#include <memory>
#include <vector>

#include "host/Notification.h"

namespace workstation {

/// The default notification centre. An observer that is added while a posting is under way hears the next one.
class Notifications final : public pelmar::NotificationCenter {
 public:
  void addObserver(const void* observer, std::string_view name, const pelmar::Ref<pelmar::HostObject>& object,
                   Handler handler) override;
  void removeObserver(const void* observer) override;
  void postNotification(const pelmar::Notification& notification) override;
  /// Forgets every observer; not while a posting is under way.
  void removeAll() { observers_.clear(); }

 private:
  struct Observer {
    const void* identity = nullptr;
    std::string name;
    const void* object = nullptr;  ///< null: any
    Handler handler;
    bool removed = false;
  };

  std::vector<std::unique_ptr<Observer>> observers_;
  int postings_ = 0;  ///< under way, one within the other
};

}  // namespace workstation
