#pragma once
// What the plug-in needs of the desktop platform, through the same contract.

#include <optional>
#include <string>
#include <string_view>

#include "host/Database.h"
#include "host/Value.h"

namespace pelmar {

/// The standard user defaults: small settings that outlast the process.
class UserDefaults {
 public:
  virtual ~UserDefaults() = default;
  /// Nil when there is no value under the key.
  virtual Value objectForKey(std::string_view key) const = 0;
  /// Keeps the value under the key, in place of what was there.
  virtual void setObject(const Value& value, std::string_view forKey) = 0;
};

/// Panels that wait for the person. Titles and messages are plain text, never formats.
class AlertPanels {
 public:
  virtual ~AlertPanels() = default;
  /// A modal alert; an empty button title means no such button.
  virtual void runModalAlert(std::string_view message, std::string_view defaultButton, std::string_view alternateButton,
                             std::string_view otherButton, std::string_view informativeText) = 0;
  /// A critical alert panel with up to three buttons.
  virtual void runCriticalAlertPanel(std::string_view title, std::string_view message, std::string_view defaultButton,
                                     std::string_view alternateButton, std::string_view otherButton) = 0;
};

/// The host application and the person's desktop.
class Application {
 public:
  virtual ~Application() = default;
  /// Brings the host application to the front.
  virtual void activateIgnoringOtherApps(bool ignoring) = 0;
  /// Opens a web address in the person's browser.
  virtual void openURL(std::string_view address) = 0;
  /// The host's own short version string ("9.0"), absent when it has none.
  virtual std::optional<std::string> shortVersionString() const = 0;
  /// The host's translation of a text from its default table; the text itself where it has none.
  virtual std::string localizedString(std::string_view text) const = 0;
  /// Whether the caller is on the main thread. May be called on any.
  virtual bool isMainThread() const = 0;
  /// Whether there is a file that can be reached.
  virtual bool fileExistsAtPath(const std::string& path) const = 0;
};

/// Unicode text operations on UTF-8 strings.
class TextServices {
 public:
  virtual ~TextServices() = default;
  /// Letter by letter, independent of the person's language; what has no case stays.
  virtual std::string lowercaseString(std::string_view text) const = 0;
  /// Likewise.
  virtual std::string uppercaseString(std::string_view text) const = 0;
  /// Whether `needle` stands anywhere in `text` when case, diacritics and character width are all ignored.
  /// An empty needle is never found.
  virtual bool containsIgnoringCaseDiacriticsAndWidth(std::string_view text, std::string_view needle) const = 0;
};

/// Keyed archives of values; Point3D objects inside are archived by the host's own coding of them.
class KeyedArchiving {
 public:
  virtual ~KeyedArchiving() = default;
  /// Absent when something in the value cannot be archived. May be called on any thread.
  virtual std::optional<Bytes> archivedDataWithRootObject(const Value& root) const = 0;
  /// Nil when the bytes are not an archive. May be called on any thread.
  virtual Value unarchiveObjectWithData(const Bytes& data) const = 0;
};

}  // namespace pelmar
