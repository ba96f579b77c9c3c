#include "state/PlaneRecords.h"

namespace vertana {

using pelmar::Value;

namespace {

Value computedRecord(const IntervertebralPlane& plane) {
  Value::Dictionary record{{"name", plane.name}};
  if (plane.point) record.emplace("point", plane.point);
  if (plane.vector) record.emplace("vector", plane.vector);
  return record;
}

}  // namespace

Value valueFromPlanes(const std::vector<IntervertebralPlane>& planes) {
  Value::Array records;
  records.reserve(planes.size());
  for (const auto& plane : planes) {
    records.push_back(plane.record.isNil() ? computedRecord(plane) : plane.record);
  }
  return records;
}

std::vector<IntervertebralPlane> planesFromValue(const Value::Array& records) {
  const auto entry = [](const Value& record, std::string_view key) -> Value {
    const auto* dictionary = record.dictionary();
    if (!dictionary) return {};
    const auto found = dictionary->find(key);
    return found == dictionary->end() ? Value() : found->second;
  };
  std::vector<IntervertebralPlane> planes;
  planes.reserve(records.size());
  for (const auto& record : records) {
    IntervertebralPlane plane;
    const auto name = entry(record, "name");
    if (name.string()) plane.name = *name.string();
    plane.point = pelmar::ref_cast<pelmar::Point3D>(entry(record, "point").object());
    plane.vector = pelmar::ref_cast<pelmar::Point3D>(entry(record, "vector").object());
    plane.record = record;
    planes.push_back(std::move(plane));
  }
  return planes;
}

}  // namespace vertana
