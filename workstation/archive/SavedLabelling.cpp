#include "workstation/archive/SavedLabelling.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "workstation/archive/StateKeys.h"

namespace workstation {

namespace {

using pelmar::Value;

constexpr int firstRegion = -1;
constexpr int lastRegion = 2;

std::optional<bool> flagOfValue(const Value& value) {
  if (!value.isNumber()) return std::nullopt;
  const double number = value.doubleValue();
  if (number != 0 && number != 1) return std::nullopt;
  return number == 1;
}

std::optional<std::array<double, 3>> coordinatesOfValue(const Value& value) {
  const auto point = pelmar::ref_cast<pelmar::Point3D>(value.object());
  if (!point) return std::nullopt;
  const std::array<double, 3> coordinates{point->x(), point->y(), point->z()};
  for (const double coordinate : coordinates)
    if (!std::isfinite(coordinate)) return std::nullopt;
  return coordinates;
}

std::optional<SavedLevel> levelOfValue(const Value& value) {
  const Value::Dictionary* entries = value.dictionary();
  if (!entries) return std::nullopt;
  const auto name = entries->find(levelNameKey);
  const auto point = entries->find(levelPointKey);
  const auto vector = entries->find(levelVectorKey);
  if (name == entries->end() || point == entries->end() || vector == entries->end()) return std::nullopt;
  const std::string* text = name->second.string();
  const auto pointCoordinates = coordinatesOfValue(point->second);
  const auto vectorCoordinates = coordinatesOfValue(vector->second);
  if (!text || !pointCoordinates || !vectorCoordinates) return std::nullopt;
  return SavedLevel{*text, *pointCoordinates, *vectorCoordinates};
}

std::optional<std::vector<SavedLevel>> levelsOfValue(const Value& value) {
  const Value::Array* elements = value.array();
  if (!elements) return std::nullopt;
  std::vector<SavedLevel> levels;
  for (const Value& element : *elements) {
    std::optional<SavedLevel> level = levelOfValue(element);
    if (!level) return std::nullopt;
    levels.push_back(std::move(*level));
  }
  return levels;
}

/// Reads an entry into `target` with `read`. False when it is there and cannot be read.
template <class T>
bool readEntry(const Value::Dictionary& entries, std::string_view key, std::optional<T> (*read)(const Value&),
               std::optional<T>& target) {
  const auto entry = entries.find(key);
  if (entry == entries.end()) return true;
  target = read(entry->second);
  return target.has_value();
}

Value valueFromCoordinates(const std::array<double, 3>& coordinates, pelmar::Point3DClass& points) {
  return points.pointWithX(coordinates[0], coordinates[1], coordinates[2]);
}

/// What lies beyond single precision becomes infinite.
float singlePrecision(double number) {
  constexpr double largest = std::numeric_limits<float>::max();
  if (std::abs(number) > largest)
    return static_cast<float>(std::copysign(std::numeric_limits<float>::infinity(), number));
  return static_cast<float>(number);
}

bool sameCoordinates(const std::array<double, 3>& a, const std::array<double, 3>& b) {
  return std::equal(a.begin(), a.end(), b.begin(),
                    [](double first, double second) { return singlePrecision(first) == singlePrecision(second); });
}

bool sameLevel(const SavedLevel& a, const SavedLevel& b) {
  return a.name == b.name && sameCoordinates(a.point, b.point) && sameCoordinates(a.vector, b.vector);
}

}  // namespace

std::optional<int> regionOfValue(const Value& value) {
  if (!value.isInteger() && !value.isReal()) return std::nullopt;
  for (int region = firstRegion; region <= lastRegion; ++region)
    if (value == Value(region)) return region;
  return std::nullopt;
}

bool regionIsValid(const Value& root) {
  const Value::Dictionary* entries = root.dictionary();
  if (!entries) return true;
  const auto region = entries->find(regionKey);
  return region == entries->end() || regionOfValue(region->second).has_value();
}

std::optional<SavedLabelling> labellingFromValue(const Value& root) {
  const Value::Dictionary* entries = root.dictionary();
  if (!entries) return std::nullopt;
  SavedLabelling labelling;
  if (!readEntry(*entries, regionKey, regionOfValue, labelling.anatomicalRegion) ||
      !readEntry(*entries, additionalVertebraKey, flagOfValue, labelling.additionalVertebra) ||
      !readEntry(*entries, levelsKey, levelsOfValue, labelling.levels))
    return std::nullopt;
  return labelling;
}

Value valueFromLabelling(const SavedLabelling& labelling, pelmar::Point3DClass& points) {
  Value::Dictionary entries;
  if (labelling.anatomicalRegion) entries.emplace(regionKey, *labelling.anatomicalRegion);
  if (labelling.additionalVertebra) entries.emplace(additionalVertebraKey, *labelling.additionalVertebra);
  if (labelling.levels) {
    Value::Array levels;
    for (const SavedLevel& level : *labelling.levels) {
      Value::Dictionary entry;
      entry.emplace(levelNameKey, level.name);
      entry.emplace(levelPointKey, valueFromCoordinates(level.point, points));
      entry.emplace(levelVectorKey, valueFromCoordinates(level.vector, points));
      levels.emplace_back(std::move(entry));
    }
    entries.emplace(levelsKey, std::move(levels));
  }
  return entries;
}

bool sameInSinglePrecision(const SavedLabelling& a, const SavedLabelling& b) {
  if (a.anatomicalRegion != b.anatomicalRegion || a.additionalVertebra != b.additionalVertebra) return false;
  if (!a.levels || !b.levels) return a.levels.has_value() == b.levels.has_value();
  return std::equal(a.levels->begin(), a.levels->end(), b.levels->begin(), b.levels->end(), sameLevel);
}

}  // namespace workstation
