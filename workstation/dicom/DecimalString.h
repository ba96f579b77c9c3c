#pragma once

#include <string>

namespace workstation {

/// A decimal string of at most 16 characters (PS3.5 6.2, DS) that is as near to the value as that length allows,
/// whatever the locale. The value must be finite.
std::string decimalString(double value);

}  // namespace workstation
