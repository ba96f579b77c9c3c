#include "workstation/session/JsonValues.h"

#include <cmath>
#include <cstdint>

namespace workstation {

using pelmar::Value;

nlohmann::ordered_json jsonFromValue(const Value& value) {
  if (value.isBool()) return value.boolValue();
  if (value.isInteger()) {
    const double number = value.doubleValue();  // beyond 64 bits after rounding: stays a real
    return std::abs(number) < 9.2e18 ? nlohmann::ordered_json(static_cast<std::int64_t>(number))
                                     : nlohmann::ordered_json(number);
  }
  if (value.isReal()) return value.doubleValue();
  if (const auto* text = value.string()) return *text;
  if (const auto* array = value.array()) {
    auto json = nlohmann::ordered_json::array();
    for (const auto& element : *array) json.push_back(jsonFromValue(element));
    return json;
  }
  if (const auto* dictionary = value.dictionary()) {
    auto json = nlohmann::ordered_json::object();
    for (const auto& [key, element] : *dictionary) json[key] = jsonFromValue(element);
    return json;
  }
  return nullptr;
}

Value valueFromJson(const nlohmann::ordered_json& json) {
  if (json.is_boolean()) return json.get<bool>();
  const bool fits = !json.is_number_unsigned() || json.get<std::uint64_t>() <= std::uint64_t{INT64_MAX};
  if (json.is_number_integer() && fits) return json.get<std::int64_t>();
  if (json.is_number()) return json.get<double>();
  if (json.is_string()) return json.get<std::string>();
  if (json.is_array()) {
    Value::Array array;
    for (const auto& element : json) array.push_back(valueFromJson(element));
    return array;
  }
  if (json.is_object()) {
    Value::Dictionary dictionary;
    for (const auto& [key, element] : json.items()) dictionary[key] = valueFromJson(element);
    return dictionary;
  }
  return {};
}

}  // namespace workstation
