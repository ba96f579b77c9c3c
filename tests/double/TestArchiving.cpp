#include "tests/double/TestHost.h"
#include "tests/double/TestServices.h"

namespace testhost {

using pelmar::Bytes;
using pelmar::Value;

std::optional<Value> copiedWithNewPoints(const Value& value) {
  if (const auto* array = value.array()) {
    Value::Array copy;
    for (const Value& element : *array) {
      auto copied = copiedWithNewPoints(element);
      if (!copied) return std::nullopt;
      copy.push_back(std::move(*copied));
    }
    return Value(std::move(copy));
  }
  if (const auto* dictionary = value.dictionary()) {
    Value::Dictionary copy;
    for (const auto& [key, element] : *dictionary) {
      auto copied = copiedWithNewPoints(element);
      if (!copied) return std::nullopt;
      copy.emplace(key, std::move(*copied));
    }
    return Value(std::move(copy));
  }
  if (const auto object = value.object()) {
    const auto point = pelmar::ref_cast<pelmar::Point3D>(object);
    if (!point) return std::nullopt;
    return Value(makePoint(point->x(), point->y(), point->z()));
  }
  return value;
}

std::optional<Bytes> TestKeyedArchiving::archivedDataWithRootObject(const Value& root) const {
  if (fails) return std::nullopt;
  auto copy = copiedWithNewPoints(root);
  if (!copy) return std::nullopt;
  std::string token = "archive-" + std::to_string(kept_.size());
  if ((token.size() % 2 != 0) != oddLength) token += "-";
  kept_.emplace_back(Bytes(token.begin(), token.end()), std::move(*copy));
  return kept_.back().first;
}

Value TestKeyedArchiving::unarchiveObjectWithData(const Bytes& data) const {
  for (const auto& [token, value] : kept_) {
    if (token == data) return copiedWithNewPoints(value).value_or(Value());
  }
  return {};
}

}  // namespace testhost
