#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/PelmarAPI.h"

namespace workstation::test {

/// Hears every notification of the contract and writes down a short line for each, in the order posted.
class Recorder {
 public:
  explicit Recorder(pelmar::PelmarAPI& api) : center_(api.defaultCenter()) {
    for (const auto& [name, word] : {std::pair{pelmar::PelmarROIChangeNotification, "change"},
                                     {pelmar::PelmarRemoveROINotification, "remove"},
                                     {pelmar::PelmarAddROINotification, "add"},
                                     {pelmar::PelmarCloseViewerNotification, "close"},
                                     {pelmar::PelmarViewerControllerDidLoadImagesNotification, "loaded"},
                                     {pelmar::PelmarDCMViewIndexChangedNotification, "index"},
                                     {pelmar::PelmarViewerWillChangeNotification, "willChange"},
                                     {pelmar::PelmarViewOriginChanged, "origin"},
                                     {pelmar::PelmarViewScaleChanged, "scale"}}) {
      center_.addObserver(this, name, nullptr, [this, text = std::string(word)](const pelmar::Notification& posted) {
        const pelmar::Value action = posted.userInfoValue("action");
        lines.push_back(action.string() ? text + " " + *action.string() : text);
        if (react) react(text, posted);
      });
    }
  }
  ~Recorder() { center_.removeObserver(this); }

  std::vector<std::string> take() { return std::exchange(lines, {}); }

  std::vector<std::string> lines;
  std::function<void(const std::string& line, const pelmar::Notification&)> react;

 private:
  pelmar::NotificationCenter& center_;
};

using Lines = std::vector<std::string>;

}  // namespace workstation::test
