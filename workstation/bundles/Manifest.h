#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "workstation/model/Outcome.h"
#include "workstation/model/WindowDescription.h"

namespace workstation {

/// What a bundle says of itself.
struct Manifest {
  std::string name;
  std::string version;
  int contractVersion = 0;
  std::string module;  ///< file name in the bundle's folder
  std::vector<std::string> menuEntries;
};

/// Reads manifest.json of a bundle's folder.
Result<Manifest> readManifest(const std::filesystem::path& bundle);

/// Reads every window description in the bundle's Resources folder; each is named after its file. No such folder: none.
Result<std::vector<WindowDescription>> readWindowDescriptions(const std::filesystem::path& bundle);

}  // namespace workstation
