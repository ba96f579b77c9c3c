// The script as text.
#include "workstation/script/Script.h"
#include "workstation/script/StepFields.h"
#include "workstation/script/StepWords.h"
#include "workstation/session/JsonValues.h"

namespace workstation::script {

using nlohmann::ordered_json;

namespace {

ordered_json written(const std::string& value) { return value; }
ordered_json written(bool value) { return value; }
ordered_json written(int value) { return value; }
ordered_json written(double value) { return value; }
ordered_json written(pelmar::PixelPoint value) { return {value.x, value.y}; }
ordered_json written(pelmar::ViewPoint value) { return {value.x, value.y}; }

ordered_json written(const std::vector<pelmar::PixelPoint>& value) {
  auto json = ordered_json::array();
  for (const auto& point : value) json.push_back(written(point));
  return json;
}

template <class Choice>
requires std::is_enum_v<Choice> ordered_json written(Choice value) {
  for (const auto& [word, choice] : words(value)) {
    if (choice == value) return word;
  }
  return nullptr;
}

ordered_json written(const PaletteSettings& value);

class KeyWriter {
 public:
  explicit KeyWriter(ordered_json& object) : object_(object) {}

  template <class Value>
  void required(const char* key, const Value& value) {
    object_[key] = written(value);
  }
  template <class Value>
  void optional(const char* key, const std::optional<Value>& value) {
    if (value) object_[key] = written(*value);
  }
  template <class Value>
  void defaulted(const char* key, const Value& value) {
    object_[key] = written(value);
  }

 private:
  ordered_json& object_;
};

ordered_json written(const PaletteSettings& value) {
  auto json = ordered_json::object();
  KeyWriter writer(json);
  fields(writer, value);
  return json;
}

std::string textOf(const ordered_json& json) {
  return json.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

std::string textOf(const Step& step) {
  auto json = ordered_json::object();
  json["do"] = stepName(step);
  KeyWriter writer(json);
  std::visit([&](const auto& kind) { fields(writer, kind); }, step);
  return textOf(json);
}

}  // namespace

std::string stepName(const Step& step) {
  return std::visit([](const auto& kind) { return std::string(kind.word); }, step);
}

std::string stepPlace(const Script& script, std::size_t index) {
  return "Step " + std::to_string(index + 1) + " of " + std::to_string(script.steps.size());
}

std::string stepTitle(const Script& script, std::size_t index) {
  return stepPlace(script, index) + ", \"" + stepName(script.steps[index]) + '"';
}

std::string writeScript(const Script& script) {
  std::string text = "{";
  if (script.database) text += "\"database\": " + textOf(*script.database) + ",\n ";
  if (!script.defaults.empty()) text += "\"defaults\": " + textOf(jsonFromValue(script.defaults)) + ",\n ";
  const ordered_json host{{"version", script.hostVersion}, {"lacks", script.hostLacks}};
  text += "\"host\": " + textOf(host) + ",\n \"steps\": [";
  for (std::size_t index = 0; index < script.steps.size(); ++index) {
    text += (index == 0 ? "\n  " : ",\n  ") + textOf(script.steps[index]);
  }
  return text + "\n]}\n";
}

}  // namespace workstation::script
