#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "host/Ref.h"
#include "host/Value.h"

namespace pelmar {

// What the host tells its plug-ins, on the main thread.
//
// | notification                                    | object                    | userInfo                          |
// |-------------------------------------------------|---------------------------|-----------------------------------|
// | PelmarROIChangeNotification                     | the ROI, or a DCMView     | "ROI" with a view; "action":      |
// |                                                 |                           | "mouseUp" when the mouse was let go |
// | PelmarRemoveROINotification                     | the ROI, or a DCMView     | "ROI" with a view                 |
// | PelmarAddROINotification                        | the ROI, or a DCMView     | "ROI" with a view                 |
// | PelmarCloseViewerNotification                   | the closing viewer        |                                   |
// | PelmarViewerControllerDidLoadImagesNotification | the viewer                |                                   |
// | PelmarDCMViewIndexChangedNotification           | the view                  |                                   |
// | PelmarViewerWillChangeNotification              | (not to be read)          |                                   |
// | PelmarViewOriginChanged                         | the view                  |                                   |
// | PelmarViewScaleChanged                          | the view                  |                                   |
inline constexpr std::string_view PelmarROIChangeNotification = "PelmarROIChangeNotification";
inline constexpr std::string_view PelmarRemoveROINotification = "PelmarRemoveROINotification";
inline constexpr std::string_view PelmarAddROINotification = "PelmarAddROINotification";
inline constexpr std::string_view PelmarCloseViewerNotification = "PelmarCloseViewerNotification";
inline constexpr std::string_view PelmarViewerControllerDidLoadImagesNotification =
    "PelmarViewerControllerDidLoadImagesNotification";
inline constexpr std::string_view PelmarDCMViewIndexChangedNotification = "PelmarDCMViewIndexChangedNotification";
inline constexpr std::string_view PelmarViewerWillChangeNotification = "PelmarViewerWillChangeNotification";
inline constexpr std::string_view PelmarViewOriginChanged = "PelmarViewOriginChanged";
inline constexpr std::string_view PelmarViewScaleChanged = "PelmarViewScaleChanged";

/// One posting. `userInfo` is absent when the sender gave none.
struct Notification {
  std::string name;
  Ref<HostObject> object;
  std::optional<Value::Dictionary> userInfo;

  /// The entry of userInfo under a key; nil when there is none.
  Value userInfoValue(std::string_view key) const {
    if (!userInfo) return {};
    const auto entry = userInfo->find(key);
    return entry == userInfo->end() ? Value() : entry->second;
  }
};

/// The default notification centre. Observers are called in the order in which they were added, before the posting
/// returns. Removing an observer while a posting is under way is allowed: it is not called any more.
class NotificationCenter {
 public:
  using Handler = std::function<void(const Notification&)>;

  virtual ~NotificationCenter() = default;
  /// Calls `handler` for each posting of `name` by `object` (nil: by anyone). `observer` is only an identity.
  virtual void addObserver(const void* observer, std::string_view name, const Ref<HostObject>& object,
                           Handler handler) = 0;
  /// Forgets everything that was added under this identity.
  virtual void removeObserver(const void* observer) = 0;
  /// Calls the observers, in turn; returns when all have returned.
  virtual void postNotification(const Notification& notification) = 0;
};

}  // namespace pelmar
