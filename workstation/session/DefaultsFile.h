#pragma once

#include <filesystem>
#include <optional>

#include "host/Value.h"

namespace workstation {

/// vertana/defaults.json below XDG_CONFIG_HOME (or ~/.config); empty where the environment names neither.
std::filesystem::path personDefaultsFile();

/// A file of user defaults: one JSON object.
class DefaultsFile {
 public:
  /// An empty path: there are no defaults, and none can be written.
  explicit DefaultsFile(std::filesystem::path file) : file_(std::move(file)) {}

  const std::filesystem::path& path() const { return file_; }
  /// Everything in it; empty where there is no file, nothing where it cannot be read or is no JSON object.
  std::optional<pelmar::Value::Dictionary> read() const;
  /// Sets these keys, a nil value takes its key away; every other key stays as it is in the file at this moment. The
  /// file is exchanged whole: a full disk loses nothing. False when it could not be read or written.
  bool set(const pelmar::Value::Dictionary& changes) const;

 private:
  std::filesystem::path file_;
};

}  // namespace workstation
