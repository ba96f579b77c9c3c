#include "workstation/bundles/Manifest.h"

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>
#include <optional>

namespace workstation {
namespace {

using nlohmann::json;
namespace fs = std::filesystem;

/// Nothing when the file cannot be read or is not JSON; then `problem` says which.
std::optional<json> readJson(const fs::path& file, std::string& problem) {
  std::error_code error;
  if (!fs::is_regular_file(file, error)) {
    problem = "there is no file " + file.string();
    return std::nullopt;
  }
  std::ifstream stream(file, std::ios::binary);
  json content = json::parse(stream, nullptr, false);
  if (content.is_discarded()) {
    problem = file.string() + " is not valid JSON";
    return std::nullopt;
  }
  return content;
}

const json* member(const json& object, const char* key) {
  if (!object.is_object()) return nullptr;
  const auto found = object.find(key);
  return found == object.end() ? nullptr : &*found;
}

std::string textOf(const json& object, const char* key) {
  const json* value = member(object, key);
  return value && value->is_string() ? value->get<std::string>() : std::string();
}

int integerOf(const json& object, const char* key) {
  const json* value = member(object, key);
  return value && value->is_number_integer() ? value->get<int>() : 0;
}

/// Why the manifest cannot be used; empty when it can.
std::string defectOf(const Manifest& manifest, const json& content) {
  if (manifest.name.empty()) return "has no \"name\"";
  if (manifest.version.empty()) return "has no \"version\"";
  const json* contract = member(content, "contractVersion");
  if (!contract || !contract->is_number_integer()) return "has no number under \"contractVersion\"";
  if (manifest.module.empty()) return "has no \"module\"";
  if (manifest.module.find('/') != std::string::npos || manifest.module == "..") {
    return "names a \"module\" outside the bundle: " + manifest.module;
  }
  if (manifest.menuEntries.empty()) return "lists no \"menuEntries\"";
  return {};
}

std::optional<WindowControl::Kind> kindNamed(const std::string& name) {
  if (name == "button") return WindowControl::Kind::button;
  if (name == "checkbox") return WindowControl::Kind::checkbox;
  if (name == "choice") return WindowControl::Kind::choice;
  if (name == "label") return WindowControl::Kind::label;
  return std::nullopt;
}

std::optional<WindowControl> controlFrom(const json& content) {
  const auto kind = kindNamed(textOf(content, "kind"));
  if (!kind) return std::nullopt;
  WindowControl control;
  control.kind = *kind;
  control.label = textOf(content, "label");
  control.action = textOf(content, "action");
  control.property = textOf(content, "property");
  const json* discards = member(content, "discardsLabelling");
  control.discardsLabelling = discards && discards->is_boolean() && discards->get<bool>();
  if (const json* choices = member(content, "choices"); choices && choices->is_array()) {
    for (const json& choice : *choices)
      control.choices.push_back({textOf(choice, "title"), integerOf(choice, "value")});
  }
  return control;
}

std::optional<WindowDescription> descriptionFrom(const json& content, std::string& problem) {
  WindowDescription description;
  description.title = textOf(content, "title");
  description.frameAutosaveName = textOf(content, "autosaveName");
  const json* size = member(content, "size");
  const bool sized = size && size->is_array() && size->size() == 2 && (*size)[0].is_number() &&
                     (*size)[1].is_number() && (*size)[0].get<double>() > 0 && (*size)[1].get<double>() > 0;
  if (!sized) {
    problem = "needs a \"size\" of two numbers above 0";
    return std::nullopt;
  }
  description.width = (*size)[0].get<double>();
  description.height = (*size)[1].get<double>();
  const json* controls = member(content, "controls");
  if (!controls || !controls->is_array()) {
    problem = "needs a list of \"controls\"";
    return std::nullopt;
  }
  for (const json& one : *controls) {
    auto control = controlFrom(one);
    if (!control) {
      problem = "has a control of the unknown kind \"" + textOf(one, "kind") + "\"";
      return std::nullopt;
    }
    description.controls.push_back(*std::move(control));
  }
  return description;
}

std::string refusal(const fs::path& bundle, const std::string& reason) {
  return "The plug-in " + bundle.string() + " cannot be loaded: " + reason + ".";
}

}  // namespace

Result<Manifest> readManifest(const fs::path& bundle) {
  const fs::path file = bundle / "manifest.json";
  std::string problem;
  const auto content = readJson(file, problem);
  if (!content) return Result<Manifest>::refused(refusal(bundle, problem));
  Manifest manifest{textOf(*content, "name"),
                    textOf(*content, "version"),
                    integerOf(*content, "contractVersion"),
                    textOf(*content, "module"),
                    {}};
  if (const json* entries = member(*content, "menuEntries"); entries && entries->is_array()) {
    for (const json& entry : *entries) {
      if (entry.is_string()) manifest.menuEntries.push_back(entry.get<std::string>());
    }
  }
  const std::string defect = defectOf(manifest, *content);
  if (!defect.empty()) return Result<Manifest>::refused(refusal(bundle, file.string() + " " + defect));
  return Result<Manifest>::of(std::move(manifest));
}

Result<std::vector<WindowDescription>> readWindowDescriptions(const fs::path& bundle) {
  using Descriptions = Result<std::vector<WindowDescription>>;
  std::vector<fs::path> files;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(bundle / "Resources", error)) {
    if (entry.path().extension() == ".json") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  std::vector<WindowDescription> descriptions;
  for (const fs::path& file : files) {
    std::string problem;
    const auto content = readJson(file, problem);
    if (!content) return Descriptions::refused(refusal(bundle, problem));
    auto description = descriptionFrom(*content, problem);
    if (!description) return Descriptions::refused(refusal(bundle, file.string() + " " + problem));
    description->name = file.stem().string();
    descriptions.push_back(*std::move(description));
  }
  return Descriptions::of(std::move(descriptions));
}

}  // namespace workstation
