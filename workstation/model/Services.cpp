#include "workstation/model/Services.h"

#include <filesystem>

namespace workstation {
namespace {

std::vector<std::string> buttonsOf(std::initializer_list<std::string_view> titles) {
  std::vector<std::string> buttons;
  for (const std::string_view title : titles) {
    if (!title.empty()) buttons.emplace_back(title);
  }
  return buttons;
}

}  // namespace

Defaults::Defaults(DefaultsStore* store, const pelmar::Value::Dictionary& first) : store_(store) {
  if (store_) values_ = store_->load();
  for (const auto& [key, value] : first) values_[key] = value;
}

pelmar::Value Defaults::objectForKey(std::string_view key) const {
  const auto entry = values_.find(key);
  return entry == values_.end() ? pelmar::Value() : entry->second;
}

void Defaults::setObject(const pelmar::Value& value, std::string_view forKey) {
  if (value.isNil()) {
    values_.erase(std::string(forKey));
  } else {
    values_[std::string(forKey)] = value;
  }
  if (store_) store_->save(values_);
}

void Alerts::runModalAlert(std::string_view message, std::string_view defaultButton, std::string_view alternateButton,
                           std::string_view otherButton, std::string_view informativeText) {
  show({Alert::Kind::modal, "", std::string(message), std::string(informativeText),
        buttonsOf({defaultButton, alternateButton, otherButton})});
}

void Alerts::runCriticalAlertPanel(std::string_view title, std::string_view message, std::string_view defaultButton,
                                   std::string_view alternateButton, std::string_view otherButton) {
  show({Alert::Kind::critical, std::string(title), std::string(message), "",
        buttonsOf({defaultButton, alternateButton, otherButton})});
}

void Alerts::show(const Alert& alert) {
  alerts_.push_back(alert);
  if (listeners_.showAlert) listeners_.showAlert(alert);
}

void Desktop::activateIgnoringOtherApps(bool) {
  if (listeners_.activate) listeners_.activate();
}

void Desktop::openURL(std::string_view address) {
  opened_.emplace_back(address);
  if (listeners_.openAddress) listeners_.openAddress(opened_.back());
}

bool Desktop::fileExistsAtPath(const std::string& path) const {
  if (reports_ && reports_->holdsInMemory(path)) return true;
  std::error_code error;
  return std::filesystem::exists(path, error);
}

}  // namespace workstation
