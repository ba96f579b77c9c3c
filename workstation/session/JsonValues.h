#pragma once

#include <nlohmann/json.hpp>

#include "host/Value.h"

namespace workstation {

/// Property values as JSON: objects of the host, which have no JSON form, become null.
nlohmann::ordered_json jsonFromValue(const pelmar::Value& value);
/// Whole numbers beyond 64 bits become reals.
pelmar::Value valueFromJson(const nlohmann::ordered_json& json);

}  // namespace workstation
