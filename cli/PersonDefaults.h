#pragma once

#include <filesystem>
#include <optional>

#include "workstation/model/Seams.h"
#include "workstation/session/DefaultsFile.h"

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

  /// False once load() has reported a file that cannot be read.
  bool readable() const { return readable_; }
  /// The list that the plug-in keeps of them, as last read or written; nil where there is none.
  pelmar::Value learntTerms() const { return learnt_.value_or(pelmar::Value()); }
  /// Writes the list, or removes it, where that changes anything. False where it could not be done, which is reported.
  bool saveLearntTerms(const std::optional<pelmar::Value>& terms);

 private:
  workstation::DefaultsFile file_;
  std::optional<pelmar::Value> learnt_;  ///< as last read or written
  bool readable_ = true;
};

}  // namespace cli
