#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/Point3D.h"
#include "host/Value.h"

namespace vertana {

/// One disc level of the labelled spine. Never changed once made.
struct IntervertebralPlane {
  std::string name;                     ///< the disc's label, for example "L4-L5"
  pelmar::Ref<pelmar::Point3D> point;   ///< on the spine curve, patient coordinates, mm
  pelmar::Ref<pelmar::Point3D> vector;  ///< unit vector along the curve, towards the next level: the plane's normal
  pelmar::Value record{};               ///< what it was loaded from, as it was stored; nil of a computed plane
};

/// In curve order, first label first; absent while they are not computed.
using IntervertebralPlanes = std::optional<std::vector<IntervertebralPlane>>;

}  // namespace vertana
