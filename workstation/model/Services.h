#pragma once
// The platform's services, without a desktop: what would be shown is recorded, and passed on to a window if there is
// one.

#include <string>
#include <thread>
#include <vector>

#include "host/Services.h"
#include "workstation/model/Seams.h"

namespace workstation {

/// User defaults in memory, stored where there is a store.
class Defaults final : public pelmar::UserDefaults {
 public:
  Defaults(DefaultsStore* store, const pelmar::Value::Dictionary& first);

  const pelmar::Value::Dictionary& all() const { return values_; }

  pelmar::Value objectForKey(std::string_view key) const override;
  /// Nil takes the key away.
  void setObject(const pelmar::Value& value, std::string_view forKey) override;

 private:
  DefaultsStore* store_;
  pelmar::Value::Dictionary values_;
};

class Alerts final : public pelmar::AlertPanels {
 public:
  explicit Alerts(const Listeners& listeners) : listeners_(listeners) {}

  std::vector<Alert> take() { return std::exchange(alerts_, {}); }

  void runModalAlert(std::string_view message, std::string_view defaultButton, std::string_view alternateButton,
                     std::string_view otherButton, std::string_view informativeText) override;
  void runCriticalAlertPanel(std::string_view title, std::string_view message, std::string_view defaultButton,
                             std::string_view alternateButton, std::string_view otherButton) override;

 private:
  void show(const Alert& alert);

  const Listeners& listeners_;
  std::vector<Alert> alerts_;
};

class Desktop final : public pelmar::Application {
 public:
  /// `reports` may be null.
  Desktop(std::optional<std::string> version, const Listeners& listeners, const StudyReports* reports)
      : version_(std::move(version)), listeners_(listeners), reports_(reports) {}

  std::vector<std::string> takeOpenedAddresses() { return std::exchange(opened_, {}); }

  void activateIgnoringOtherApps(bool ignoring) override;
  void openURL(std::string_view address) override;
  std::optional<std::string> shortVersionString() const override { return version_; }
  std::string localizedString(std::string_view text) const override { return std::string(text); }
  /// Whether the caller is on the thread that made the workstation.
  bool isMainThread() const override { return std::this_thread::get_id() == mainThread_; }
  /// Also for a report that is held in memory under that path.
  bool fileExistsAtPath(const std::string& path) const override;

 private:
  std::optional<std::string> version_;
  const Listeners& listeners_;
  const StudyReports* reports_;
  std::thread::id mainThread_ = std::this_thread::get_id();
  std::vector<std::string> opened_;
};

/// Stands in where nothing can archive or make reports.
class NoArchiving final : public pelmar::KeyedArchiving {
 public:
  std::optional<pelmar::Bytes> archivedDataWithRootObject(const pelmar::Value&) const override { return std::nullopt; }
  pelmar::Value unarchiveObjectWithData(const pelmar::Bytes&) const override { return {}; }
};

class NoReports final : public pelmar::SRAnnotationClass {
 public:
  pelmar::Ref<pelmar::SRAnnotation> initWithData(const std::optional<pelmar::Bytes>&, const std::optional<std::string>&,
                                                 const pelmar::Ref<pelmar::DicomImage>&, long,
                                                 std::string_view) override {
    return {};
  }
  pelmar::Ref<pelmar::SRAnnotation> initWithContentsOfFile(const std::string&) override { return {}; }
};

}  // namespace workstation
