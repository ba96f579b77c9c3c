#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "host/Notification.h"
#include "host/Services.h"
#include "tests/double/CallLog.h"
#include "tests/double/TestDatabase.h"

namespace testhost {

/// Calls observers in the order in which they were added and remembers what was posted.
class TestNotificationCenter : public pelmar::NotificationCenter {
 public:
  std::vector<std::string> posted;  ///< names, oldest first

  /// Names that are observed, in the order of addObserver, one entry an observer.
  std::vector<std::string> observedNames() const;
  std::size_t observerCount(std::string_view name) const;

  void addObserver(const void* observer, std::string_view name, const pelmar::Ref<pelmar::HostObject>& object,
                   Handler handler) override;
  void removeObserver(const void* observer) override;
  void postNotification(const pelmar::Notification& notification) override;

 private:
  struct Entry {
    const void* observer;
    std::string name;
    pelmar::Ref<pelmar::HostObject> object;
    Handler handler;
    bool removed = false;
  };
  std::vector<std::shared_ptr<Entry>> entries_;
};

class TestUserDefaults : public pelmar::UserDefaults {
 public:
  explicit TestUserDefaults(CallLog& log) : log_(log) {}
  std::map<std::string, pelmar::Value, std::less<>> values;

  pelmar::Value objectForKey(std::string_view key) const override;
  void setObject(const pelmar::Value& value, std::string_view forKey) override;

 private:
  CallLog& log_;
};

/// One panel that was shown.
struct Alert {
  bool critical = false;
  std::string title;    ///< of a modal alert: its message
  std::string message;  ///< of a modal alert: its informative text
  std::string defaultButton;
  std::string alternateButton;
  std::string otherButton;
};

class TestAlertPanels : public pelmar::AlertPanels {
 public:
  explicit TestAlertPanels(CallLog& log) : log_(log) {}
  std::vector<Alert> shown;
  std::function<void()> whileShown;  ///< runs while a panel is up, when set

  void runModalAlert(std::string_view message, std::string_view defaultButton, std::string_view alternateButton,
                     std::string_view otherButton, std::string_view informativeText) override;
  void runCriticalAlertPanel(std::string_view title, std::string_view message, std::string_view defaultButton,
                             std::string_view alternateButton, std::string_view otherButton) override;

 private:
  void show(Alert alert);
  CallLog& log_;
};

class TestApplication : public pelmar::Application {
 public:
  TestApplication(CallLog& log, const Files& files) : log_(log), files_(files) {}
  std::optional<std::string> version = "9.0";
  std::map<std::string, std::string, std::less<>> translations;
  bool mainThread = true;           ///< false: every caller is told that it is on another thread
  std::vector<std::string> opened;  ///< web addresses, oldest first

  void activateIgnoringOtherApps(bool ignoring) override;
  void openURL(std::string_view address) override;
  std::optional<std::string> shortVersionString() const override { return version; }
  std::string localizedString(std::string_view text) const override;
  /// The main thread is the one that made the host.
  bool isMainThread() const override { return mainThread && std::this_thread::get_id() == madeOn_; }
  bool fileExistsAtPath(const std::string& path) const override { return files_.contains(path); }

 private:
  CallLog& log_;
  const Files& files_;
  const std::thread::id madeOn_ = std::this_thread::get_id();
};

/// Case for ASCII and Latin-1. Searching folds these, drops the accents of Latin-1 letters that decompose (not of
/// AE, eth, O with stroke, thorn, sharp s), drops combining marks U+0300..U+036F and reads full-width ASCII
/// (U+FF01..U+FF5E, U+3000) as ASCII. Other letters are compared as they are.
class TestTextServices : public pelmar::TextServices {
 public:
  std::string lowercaseString(std::string_view text) const override;
  std::string uppercaseString(std::string_view text) const override;
  bool containsIgnoringCaseDiacriticsAndWidth(std::string_view text, std::string_view needle) const override;
};

/// Archives are short tokens ("archive-7") for values that the object keeps. Reading gives the value with new Point3D
/// objects; bytes that are not exactly a token are not an archive.
class TestKeyedArchiving : public pelmar::KeyedArchiving {
 public:
  bool fails = false;      ///< true: nothing can be archived
  bool oddLength = false;  ///< true: tokens of odd length, false: of even length

  std::optional<pelmar::Bytes> archivedDataWithRootObject(const pelmar::Value& root) const override;
  pelmar::Value unarchiveObjectWithData(const pelmar::Bytes& data) const override;
  /// How many archives were made.
  std::size_t count() const { return kept_.size(); }

 private:
  mutable std::vector<std::pair<pelmar::Bytes, pelmar::Value>> kept_;
};

/// The value with every Point3D in it replaced by a new one of equal coordinates; absent when it holds an object that
/// is no Point3D.
std::optional<pelmar::Value> copiedWithNewPoints(const pelmar::Value& value);

}  // namespace testhost
