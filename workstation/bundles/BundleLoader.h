#pragma once

#include <filesystem>
#include <memory>

#include "host/PelmarAPI.h"
#include "workstation/model/Outcome.h"
#include "workstation/model/PluginHandle.h"

namespace workstation {

/// Loads the plug-in of a bundle, a folder such as NAME.plugin/ with manifest.json ("name", "version",
/// "contractVersion", "module", "menuEntries"), the module, and window descriptions in Resources/NAME.json.
///
/// Everything is checked before anything of the plug-in is called. A bundle that cannot be used is refused with one
/// sentence that names the file and the reason, and nothing of it stays loaded. The handle's end is the plug-in's:
/// dealloc, destruction, unloading of the module, in this order. `api` must outlive the handle.
Result<std::unique_ptr<PluginHandle>> loadBundle(const std::filesystem::path& bundle, pelmar::PelmarAPI& api);

}  // namespace workstation
