#pragma once

#include <filesystem>
#include <optional>

#include "workstation/model/Seams.h"

namespace cli {

/// The person's defaults, in vertana/defaults.json below XDG_CONFIG_HOME (or ~/.config). Everything there is read;
/// of what changes, only the terms learnt from study descriptions are written, since a batch must not change how the
/// person draws; every other key stays as it is in the file at that moment. A file that cannot be read is reported,
/// taken as empty and never written.
class PersonDefaults final : public workstation::DefaultsStore {
 public:
  PersonDefaults();
  explicit PersonDefaults(std::filesystem::path file) : file_(std::move(file)) {}

  pelmar::Value::Dictionary load() override;
  void save(const pelmar::Value::Dictionary& defaults) override;

 private:
  std::filesystem::path file_;
  std::optional<pelmar::Value> learnt_;  ///< as last read or written
  bool readable_ = true;
};

}  // namespace cli
