#include "workstation/session/DefaultsFile.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include "workstation/session/JsonValues.h"

namespace workstation {

namespace fs = std::filesystem;
using nlohmann::ordered_json;
using pelmar::Value;

namespace {

/// The file's object; an empty one where there is no file, nothing where it cannot be read.
std::optional<ordered_json> readObject(const fs::path& file) {
  std::error_code error;
  if (file.empty() || !fs::exists(file, error)) return ordered_json::object();
  std::ifstream in(file, std::ios::binary);
  const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  auto json = ordered_json::parse(text, nullptr, false);
  if (!in || !json.is_object()) return std::nullopt;
  return json;
}

/// Writes the text whole beside the file, then puts it in the file's place. A link stays a link.
bool replaceFile(const fs::path& file, const std::string& text) {
  std::error_code error;
  fs::create_directories(file.parent_path(), error);
  const auto target = fs::weakly_canonical(file, error);
  if (error) return false;
  auto fresh = target;
  fresh += "." + std::to_string(getpid()) + ".new";
  std::ofstream out(fresh, std::ios::binary | std::ios::trunc);
  out << text;
  out.close();
  if (out) fs::rename(fresh, target, error);
  if (out && !error) return true;
  fs::remove(fresh, error);
  return false;
}

}  // namespace

fs::path personDefaultsFile() {
  if (const char* config = std::getenv("XDG_CONFIG_HOME"); config && *config) {
    return fs::path(config) / "vertana" / "defaults.json";
  }
  if (const char* home = std::getenv("HOME"); home && *home) {
    return fs::path(home) / ".config" / "vertana" / "defaults.json";
  }
  return {};
}

std::optional<Value::Dictionary> DefaultsFile::read() const {
  const auto json = readObject(file_);
  if (!json) return std::nullopt;
  const auto value = valueFromJson(*json);
  return value.dictionary() ? *value.dictionary() : Value::Dictionary();
}

bool DefaultsFile::set(const Value::Dictionary& changes) const {
  auto json = file_.empty() ? std::nullopt : readObject(file_);
  if (!json) return false;
  for (const auto& [key, value] : changes) {
    if (value.isNil()) {
      json->erase(key);
    } else {
      (*json)[key] = jsonFromValue(value);
    }
  }
  return replaceFile(file_, json->dump(2, ' ', false, ordered_json::error_handler_t::replace) + '\n');
}

}  // namespace workstation
