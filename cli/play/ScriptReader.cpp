#include "cli/play/ScriptReader.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "cli/play/StrictJson.h"
#include "workstation/script/StepFields.h"
#include "workstation/script/StepWords.h"
#include "workstation/session/JsonValues.h"

namespace cli {

using nlohmann::ordered_json;
using pelmar::PixelPoint;

namespace {

// --- values ----------------------------------------------------------------------------------------------------------
// `read` sets the value and answers nothing, or what the value must be: a phrase that follows the key's name.

using Problem = std::optional<std::string>;

Problem read(const ordered_json& json, std::string& value) {
  if (!json.is_string()) return "must be a string";
  value = json.get<std::string>();
  return std::nullopt;
}

Problem read(const ordered_json& json, bool& value) {
  if (!json.is_boolean()) return "must be true or false";
  value = json.get<bool>();
  return std::nullopt;
}

Problem read(const ordered_json& json, int& value) {
  const auto most = std::numeric_limits<int>::max();
  if (!json.is_number_integer()) return "must be a whole number";
  const bool fits = json.is_number_unsigned() ? json.get<std::uint64_t>() <= static_cast<std::uint64_t>(most)
                                              : json.get<std::int64_t>() >= std::numeric_limits<int>::min();
  if (!fits) return "must be a whole number of at most 32 bits";
  value = json.get<int>();
  return std::nullopt;
}

Problem read(const ordered_json& json, double& value) {
  if (!json.is_number()) return "must be a number";
  value = json.get<double>();
  return std::nullopt;
}

bool isPair(const ordered_json& json) {
  return json.is_array() && json.size() == 2 && json[0].is_number() && json[1].is_number();
}

Problem read(const ordered_json& json, PixelPoint& value) {
  if (!isPair(json)) return "must be a point [x, y]";
  value = {json[0].get<double>(), json[1].get<double>()};
  return std::nullopt;
}

Problem read(const ordered_json& json, pelmar::ViewPoint& value) {
  if (!isPair(json)) return "must be a distance [x, y]";
  value = {json[0].get<double>(), json[1].get<double>()};
  return std::nullopt;
}

Problem read(const ordered_json& json, std::vector<PixelPoint>& value) {
  if (!json.is_array() || !std::all_of(json.begin(), json.end(), isPair)) return "must be a list of points [x, y]";
  for (const auto& point : json) value.push_back({point[0].get<double>(), point[1].get<double>()});
  return std::nullopt;
}

template <class Choice>
requires std::is_enum_v<Choice> Problem read(const ordered_json& json, Choice& value) {
  std::string expected;
  for (const auto& [word, choice] : words(value)) {
    if (json.is_string() && json.get<std::string>() == word) {
      value = choice;
      return std::nullopt;
    }
    expected += (expected.empty() ? "\"" : ", \"") + std::string(word) + '"';
  }
  return "must be one of " + expected;
}

Problem read(const ordered_json& json, PaletteSettings& value);

// --- objects ---------------------------------------------------------------------------------------------------------

/// Reads the keys of one object; keeps the first problem, with the key's name.
class KeyReader {
 public:
  KeyReader(const ordered_json& object, std::vector<std::string> known) : object_(object), known_(std::move(known)) {}

  template <class Value>
  void required(const char* key, Value& value) {
    if (const auto* json = find(key)) {
      take(key, read(*json, value));
    } else {
      note(key, "is missing");
    }
  }
  template <class Value>
  void optional(const char* key, std::optional<Value>& value) {
    if (const auto* json = find(key)) take(key, read(*json, value.emplace()));
  }
  template <class Value>
  void defaulted(const char* key, Value& value) {
    if (const auto* json = find(key)) take(key, read(*json, value));
  }

  void note(const std::string& key, const std::string& reason) {
    if (!problem_) problem_ = '"' + key + "\" " + reason;
  }
  /// The first problem; a key that nobody asked for comes before all others, for it is often another one misspelt.
  Problem problem() const {
    for (const auto& [key, value] : object_.items()) {
      if (std::find(known_.begin(), known_.end(), key) == known_.end()) return '"' + key + "\" is no key here";
    }
    return problem_;
  }

 private:
  const ordered_json* find(const char* key) {
    known_.emplace_back(key);
    const auto found = object_.find(key);
    return found == object_.end() ? nullptr : &*found;
  }
  void take(const std::string& key, const Problem& problem) {
    if (problem) note(key, *problem);
  }

  const ordered_json& object_;
  std::vector<std::string> known_;
  Problem problem_;
};

template <class Object>
Problem readObject(const ordered_json& json, Object& object, std::vector<std::string> alsoKnown) {
  KeyReader reader(json, std::move(alsoKnown));
  fields(reader, object);
  if (auto problem = reader.problem()) return problem;
  if (const auto broken = wrong(object)) return '"' + broken->key + "\" " + broken->reason;
  return std::nullopt;
}

Problem read(const ordered_json& json, PaletteSettings& value) {
  if (!json.is_object()) return "must be an object";
  const auto problem = readObject(json, value, {});
  return problem ? std::optional("is wrong: " + *problem) : std::nullopt;
}

// --- steps -----------------------------------------------------------------------------------------------------------

/// The step with this name as it is before anything is read; nothing for an unknown name.
template <std::size_t index = 0>
std::optional<Step> stepNamed(const std::string& name) {
  if constexpr (index == std::variant_size_v<Step>) {
    return std::nullopt;
  } else {
    using Candidate = std::variant_alternative_t<index, Step>;
    if (name == Candidate::word) return Candidate{};
    return stepNamed<index + 1>(name);
  }
}

Problem readStep(const ordered_json& json, Step& step) {
  if (!json.is_object()) return "is no object: write {\"do\": NAME, ...}";
  const auto name = json.find("do");
  if (name == json.end()) return "has no key \"do\"";
  if (!name->is_string()) return "\"do\" must be a string";
  auto named = stepNamed(name->get<std::string>());
  if (!named) return "\"do\" names no step: \"" + name->get<std::string>() + '"';
  step = *std::move(named);
  const auto problem = std::visit([&](auto& kind) { return readObject(json, kind, {"do"}); }, step);
  return problem ? std::optional('"' + stepName(step) + "\": " + *problem) : std::nullopt;
}

// --- the whole -------------------------------------------------------------------------------------------------------

Problem readHost(const ordered_json& json, Script& script) {
  if (!json.is_object()) return "must be an object";
  for (const auto& [key, value] : json.items()) {
    if (key == "version") {
      if (const auto problem = read(value, script.hostVersion)) return "is wrong: \"version\" " + *problem;
    } else if (key == "lacks") {
      if (!value.is_array()) return "is wrong: \"lacks\" must be a list of names";
      for (const auto& name : value) {
        if (!name.is_string() || !workstation::capabilityNamed(name.get<std::string>()))
          return "is wrong: \"lacks\" holds " + name.dump(-1, ' ', false, ordered_json::error_handler_t::replace) +
                 ", which no host is known to lack";
        script.hostLacks.push_back(name.get<std::string>());
      }
    } else {
      return "is wrong: \"" + key + "\" is no key here";
    }
  }
  return std::nullopt;
}

Problem readTop(const std::string& key, const ordered_json& value, Script& script) {
  if (key == "database") return read(value, script.database.emplace());
  if (key == "host") return readHost(value, script);
  if (key == "defaults") {
    if (!value.is_object()) return "must be an object";
    script.defaults = *workstation::valueFromJson(value).dictionary();
    return std::nullopt;
  }
  if (key != "steps") return "is no key here";
  if (!value.is_array()) return "must be a list of steps";
  script.steps.resize(value.size());
  return std::nullopt;
}

}  // namespace

Expected<Script> readScript(const std::string& text) {
  const auto json = parseStrictly(text, "The script", "Step");
  if (!json) return json.failure;
  if (!json->is_object()) return Failure{ExitUsage, "The script is no object: write {\"steps\": [...]}."};
  Script script;
  for (const auto& [key, value] : json->items()) {
    if (const auto problem = readTop(key, value, script))
      return Failure{ExitUsage, "In the script \"" + key + "\" " + *problem + "."};
  }
  if (!json->contains("steps")) return Failure{ExitUsage, "In the script \"steps\" is missing."};
  for (std::size_t index = 0; index < script.steps.size(); ++index) {
    if (const auto problem = readStep((*json)["steps"][index], script.steps[index]))
      return Failure{ExitUsage, stepPlace(script, index) + ": " + *problem + "."};
  }
  return script;
}

}  // namespace cli
