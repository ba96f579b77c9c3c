#pragma once
// The padding of values (PS3.5 6.2): spaces around them, NULs behind identifiers.

#include <string_view>

namespace workstation {

inline std::string_view withoutPadding(std::string_view value) {
  while (!value.empty() && (value.back() == ' ' || value.back() == '\0')) value.remove_suffix(1);
  while (!value.empty() && value.front() == ' ') value.remove_prefix(1);
  return value;
}

}  // namespace workstation
