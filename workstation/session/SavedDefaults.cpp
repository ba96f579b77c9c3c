#include "workstation/session/SavedDefaults.h"

#include <utility>

namespace workstation {

using pelmar::Value;

Value::Dictionary SavedDefaults::load() {
  const auto defaults = file_.read();
  readable_ = defaults.has_value();
  if (!readable_) {
    tell_(file_.path().string() + " is not a JSON object, so your defaults are not used: mend or remove the file.");
    return {};
  }
  written_ = *defaults;
  return written_;
}

void SavedDefaults::save(const Value::Dictionary& defaults) {
  if (file_.path().empty() || !readable_) return;
  Value::Dictionary changes;
  for (const auto& [key, value] : defaults) {
    const auto known = written_.find(key);
    if (known == written_.end() || !(known->second == value)) changes[key] = value;
  }
  for (const auto& [key, value] : written_) {
    if (!defaults.contains(key)) changes[key] = Value();
  }
  if (changes.empty()) return;
  if (file_.set(changes)) {
    written_ = defaults;
    told_ = false;
  } else if (!std::exchange(told_, true)) {
    tell_("Your defaults could not be written to " + file_.path().string() +
          ": check that it is a JSON object and that its folder can be written to.");
  }
}

}  // namespace workstation
