#include "cli/export/SlicerMarkups.h"

#include <array>
#include <cmath>
#include <nlohmann/json.hpp>

#include "workstation/model/Vector3.h"

namespace cli {

using nlohmann::ordered_json;
using workstation::cross;
using workstation::dot;
using workstation::lengthOf;
using workstation::normalized;
using workstation::Vector3;
// NOLINTBEGIN(misc-unused-using-decls): operators that are used, which the check does not see
using workstation::operator-;
using workstation::operator*;
// NOLINTEND(misc-unused-using-decls)

namespace {

/// By this name the reader knows what the file is; it is not fetched.
constexpr const char* markupsSchema =
    "https://raw.githubusercontent.com/slicer/slicer/master/Modules/Loadable/Markups/Resources/Schema/"
    "markups-schema-v1.0.3.json#";

/// Sides of the square that is shown of a plane, mm: about the width of a lumbar disc.
constexpr double planeSizeMm = 40;

/// The axes of a plane: two along it, of which x goes to the patient's left as far as it can (to the back for a plane
/// that faces the side), and its normal; right-handed.
struct PlaneAxes {
  Vector3 x{}, y{}, z{};
};

PlaneAxes axesOf(const Vector3& direction) {
  const auto z = normalized(direction);
  const Vector3 left{1, 0, 0};
  const Vector3 back{0, 1, 0};
  const auto& towards = std::fabs(z[0]) < 0.9 ? left : back;
  const auto x = normalized(towards - dot(towards, z) * z);
  return {x, cross(z, x), z};
}

/// Row by row; the columns are the axes.
ordered_json orientationOf(const PlaneAxes& axes) {
  auto numbers = ordered_json::array();
  for (std::size_t row = 0; row < 3; ++row) {
    for (const auto* axis : {&axes.x, &axes.y, &axes.z}) numbers.push_back((*axis)[row]);
  }
  return numbers;
}

/// Row by row: from the plane's own coordinates to the patient's.
ordered_json placementOf(const PlaneAxes& axes, const Vector3& point) {
  auto numbers = ordered_json::array();
  for (std::size_t row = 0; row < 3; ++row) {
    for (const auto* column : {&axes.x, &axes.y, &axes.z, &point}) numbers.push_back((*column)[row]);
  }
  for (const double number : {0.0, 0.0, 0.0, 1.0}) numbers.push_back(number);
  return numbers;
}

ordered_json controlPoint(std::size_t id, const LabelledPlane& plane, const PlaneAxes& axes) {
  return {{"id", std::to_string(id)},   {"label", plane.name},     {"description", ""},
          {"associatedNodeID", ""},     {"position", plane.point}, {"orientation", orientationOf(axes)},
          {"selected", true},           {"locked", false},         {"visibility", true},
          {"positionStatus", "defined"}};
}

/// What the markups of every type begin with.
ordered_json markup(const char* type, const std::string& name, std::size_t points) {
  return {{"type", type},
          {"name", name},
          {"coordinateSystem", "LPS"},
          {"coordinateUnits", "mm"},
          {"locked", false},
          {"fixedNumberOfControlPoints", false},
          {"labelFormat", "%N-%d"},
          {"lastUsedControlPointNumber", points}};
}

ordered_json pointsMarkup(const std::vector<LabelledPlane>& planes) {
  auto points = markup("Fiducial", "Discs", planes.size());
  points["controlPoints"] = ordered_json::array();
  std::size_t id = 0;
  for (const auto& plane : planes) points["controlPoints"].push_back(controlPoint(++id, plane, axesOf(plane.vector)));
  return points;
}

ordered_json planeMarkup(const LabelledPlane& plane) {
  const auto axes = axesOf(plane.vector);
  const double half = planeSizeMm / 2;
  auto markups = markup("Plane", plane.name, 1);
  markups["planeType"] = "pointNormal";
  markups["sizeMode"] = "absolute";
  markups["autoScalingSizeFactor"] = 1.0;
  markups["center"] = plane.point;
  markups["normal"] = axes.z;
  markups["objectToBase"] = placementOf({{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}, {0, 0, 0});
  markups["baseToNode"] = placementOf(axes, plane.point);
  markups["orientation"] = orientationOf(axes);
  markups["size"] = ordered_json::array({planeSizeMm, planeSizeMm});
  markups["planeBounds"] = ordered_json::array({-half, half, -half, half});
  markups["controlPoints"] = ordered_json::array({controlPoint(1, plane, axes)});
  return markups;
}

}  // namespace

Expected<std::string> slicerMarkups(const Labelling& labelling) {
  ordered_json file;
  file["@schema"] = markupsSchema;
  file["markups"] = ordered_json::array({pointsMarkup(labelling.planes)});
  for (const auto& plane : labelling.planes) {
    if (lengthOf(plane.vector) == 0) {
      return Failure{ExitNotAllowed, "The labelling cannot be told by 3D Slicer markups: the plane of " + plane.name +
                                         " has no direction; draw it again, with its points further apart."};
    }
    file["markups"].push_back(planeMarkup(plane));
  }
  return file.dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

}  // namespace cli
