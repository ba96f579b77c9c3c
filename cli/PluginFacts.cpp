#include "cli/PluginFacts.h"

#include "host/Point3D.h"

namespace cli {

using pelmar::Value;

namespace {

std::array<double, 3> coordinates(const Value& value) {
  const auto point = pelmar::ref_cast<pelmar::Point3D>(value.object());
  return {point->x(), point->y(), point->z()};
}

}  // namespace

Value entry(const Value& value, std::string_view key) {
  const auto* dictionary = value.dictionary();
  if (!dictionary) return {};
  const auto found = dictionary->find(key);
  return found == dictionary->end() ? Value() : found->second;
}

std::vector<LabelledPlane> planesFrom(const Value& state) {
  std::vector<LabelledPlane> planes;
  const auto records = entry(state, "intervertebralPlanes");
  if (!records.array()) return planes;
  for (const auto& record : *records.array()) {
    const auto name = entry(record, "name");
    planes.push_back({name.string() ? *name.string() : "", coordinates(entry(record, "point")),
                      coordinates(entry(record, "vector"))});
  }
  return planes;
}

}  // namespace cli
