#pragma once

#include <string_view>
#include <vector>

namespace workstation {

/// The statements that bring an index from one version to the next, the first from nothing to 1. The texts are the
/// numbered files in the folder schema. A version is never changed once it was released: add the next file.
const std::vector<std::string_view>& schemaUpgrades();

}  // namespace workstation
