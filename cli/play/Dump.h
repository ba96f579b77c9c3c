#pragma once
// The state of a session as one line of JSON, keys in a fixed order.

#include <optional>
#include <string>
#include <vector>

#include "workstation/database/LabellingStore.h"
#include "workstation/model/Workstation.h"

namespace cli {

/// What a dump tells beyond what the workstation and the store know.
struct DumpHeader {
  std::optional<std::string> name;
  std::vector<workstation::Alert> alerts;    ///< since the last dump
  std::vector<std::string> openedAddresses;  ///< since the last dump
  std::vector<std::string> studies;          ///< every study opened so far, in the order of opening
};

/// The line, without its end. Changes nothing. Numbers read back to the same value; those that JSON cannot say (not
/// finite) become null.
std::string dumpLine(const workstation::Workstation& workstation, const workstation::LabellingStore& store,
                     const DumpHeader& header);

}  // namespace cli
