#pragma once

#include <string>

namespace workstation {

/// A number for a person, with a point in every locale: at most `decimals` places, without zeros at the end and without
/// "-0". "?" where it is not finite.
std::string numberText(double value, int decimals = 1);

/// A number with exactly `decimals` places.
std::string fixedText(double value, int decimals);

}  // namespace workstation
