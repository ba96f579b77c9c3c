#pragma once

#include <functional>
#include <string>

#include "workstation/model/Seams.h"
#include "workstation/session/DefaultsFile.h"

namespace workstation {

/// The person's defaults, read from a file and kept there: each key that changes is written at once. A file that cannot
/// be read is told, taken as empty and never written.
class SavedDefaults final : public DefaultsStore {
 public:
  using Tell = std::function<void(const std::string& sentence)>;

  SavedDefaults(std::filesystem::path file, Tell tell) : file_(std::move(file)), tell_(std::move(tell)) {}

  pelmar::Value::Dictionary load() override;
  void save(const pelmar::Value::Dictionary& defaults) override;

 private:
  DefaultsFile file_;
  Tell tell_;
  pelmar::Value::Dictionary written_;
  bool readable_ = true;
  bool told_ = false;  ///< that the file cannot be written: once is enough
};

}  // namespace workstation
