#pragma once
// Reading JSON so that nothing in it is overlooked.

#include <nlohmann/json.hpp>
#include <string>

#include "cli/ExitStatus.h"

namespace cli {

/// Parses the text of one object. Unreadable: text that is not JSON. Wrong usage: a key that an object names twice, or
/// lists within lists beyond any use. `what` names the text in the sentence ("The script"), `item` what the lists in
/// that object hold ("Step").
Expected<nlohmann::ordered_json> parseStrictly(const std::string& text, const std::string& what,
                                               const std::string& item);

}  // namespace cli
