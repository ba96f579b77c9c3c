#pragma once
// The entries of a state dictionary, and the one of them whose range archives keep.

#include <optional>
#include <string_view>

#include "host/Value.h"

namespace workstation {

constexpr std::string_view regionKey = "VertanaAnatomicalRegion";
constexpr std::string_view additionalVertebraKey = "kAdditionalVertebra";
constexpr std::string_view levelsKey = "intervertebralPlanes";
constexpr std::string_view levelNameKey = "name";
constexpr std::string_view levelPointKey = "point";
constexpr std::string_view levelVectorKey = "vector";

/// The region that a number (not a boolean) stands for: -1 none, 0 cervical, 1 thoracic, 2 lumbar. Nothing for any
/// other value.
std::optional<int> regionOfValue(const pelmar::Value& value);

/// False when the root of an archive is a dictionary with a region, and that is none.
bool regionIsValid(const pelmar::Value& root);

}  // namespace workstation
