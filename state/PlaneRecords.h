#pragma once

#include <vector>

#include "geometry/IntervertebralPlane.h"
#include "host/Value.h"

namespace vertana {

/// The planes as they are stored. A computed one: a dictionary with "name" and, where there are any, "point" and
/// "vector", holding the same point objects. A loaded one: what it was loaded from, whatever that lacks or has besides.
pelmar::Value valueFromPlanes(const std::vector<IntervertebralPlane>& planes);

/// The planes of a stored array; what is missing in a record is left empty.
std::vector<IntervertebralPlane> planesFromValue(const pelmar::Value::Array& records);

}  // namespace vertana
