#pragma once
// What the plug-in's state says.

#include <string_view>
#include <vector>

#include "cli/Labelling.h"

namespace cli {

/// The entry of a dictionary; nil where there is none.
pelmar::Value entry(const pelmar::Value& value, std::string_view key);

/// The planes that the plug-in has in memory, head to foot.
std::vector<LabelledPlane> planesFrom(const pelmar::Value& state);

}  // namespace cli
