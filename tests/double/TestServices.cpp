#include "tests/double/TestServices.h"

#include <algorithm>

namespace testhost {

using pelmar::Value;

std::vector<std::string> TestNotificationCenter::observedNames() const {
  std::vector<std::string> names;
  for (const auto& entry : entries_) names.push_back(entry->name);
  return names;
}

std::size_t TestNotificationCenter::observerCount(std::string_view name) const {
  return static_cast<std::size_t>(
      std::count_if(entries_.begin(), entries_.end(), [&](const auto& entry) { return entry->name == name; }));
}

void TestNotificationCenter::addObserver(const void* observer, std::string_view name,
                                         const pelmar::Ref<pelmar::HostObject>& object, Handler handler) {
  entries_.push_back(std::make_shared<Entry>(Entry{observer, std::string(name), object, std::move(handler)}));
}

void TestNotificationCenter::removeObserver(const void* observer) {
  for (const auto& entry : entries_) {
    if (entry->observer == observer) entry->removed = true;
  }
  std::erase_if(entries_, [](const auto& entry) { return entry->removed; });
}

void TestNotificationCenter::postNotification(const pelmar::Notification& notification) {
  posted.push_back(notification.name);
  const auto entries = entries_;
  for (const auto& entry : entries) {
    if (entry->removed || entry->name != notification.name) continue;
    if (entry->object && !(entry->object == notification.object)) continue;
    entry->handler(notification);
  }
}

Value TestUserDefaults::objectForKey(std::string_view key) const {
  const auto entry = values.find(key);
  return entry == values.end() ? Value() : entry->second;
}

void TestUserDefaults::setObject(const Value& value, std::string_view forKey) {
  log_.add("userDefaults.setObject(" + std::string(forKey) + ")");
  values.insert_or_assign(std::string(forKey), value);
}

void TestAlertPanels::show(Alert alert) {
  shown.push_back(std::move(alert));
  if (whileShown) whileShown();
}

void TestAlertPanels::runModalAlert(std::string_view message, std::string_view defaultButton,
                                    std::string_view alternateButton, std::string_view otherButton,
                                    std::string_view informativeText) {
  log_.add("runModalAlert(" + std::string(message) + ")");
  show({false, std::string(message), std::string(informativeText), std::string(defaultButton),
        std::string(alternateButton), std::string(otherButton)});
}

void TestAlertPanels::runCriticalAlertPanel(std::string_view title, std::string_view message,
                                            std::string_view defaultButton, std::string_view alternateButton,
                                            std::string_view otherButton) {
  log_.add("runCriticalAlertPanel(" + std::string(title) + ")");
  show({true, std::string(title), std::string(message), std::string(defaultButton), std::string(alternateButton),
        std::string(otherButton)});
}

void TestApplication::activateIgnoringOtherApps(bool ignoring) {
  log_.add("activateIgnoringOtherApps(" + text(ignoring) + ")");
}

void TestApplication::openURL(std::string_view address) {
  log_.add("openURL(" + std::string(address) + ")");
  opened.emplace_back(address);
}

std::string TestApplication::localizedString(std::string_view text) const {
  const auto translation = translations.find(text);
  return translation == translations.end() ? std::string(text) : translation->second;
}

}  // namespace testhost
