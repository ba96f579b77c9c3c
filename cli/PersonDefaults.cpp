#include "cli/PersonDefaults.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

#include "cli/Console.h"
#include "cli/JsonValues.h"

namespace cli {

namespace fs = std::filesystem;
using nlohmann::ordered_json;
using pelmar::Value;

namespace {

constexpr const char* learntTermsKey = "kVertanaCustomStudyDescriptionSearchTerms";

fs::path defaultsFile() {
  if (const char* config = std::getenv("XDG_CONFIG_HOME"); config && *config) {
    return fs::path(config) / "vertana" / "defaults.json";
  }
  if (const char* home = std::getenv("HOME"); home && *home) {
    return fs::path(home) / ".config" / "vertana" / "defaults.json";
  }
  return {};
}

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

/// Writes the text whole beside the file, then puts it in the file's place: a full disk loses nothing. A link stays a
/// link.
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

PersonDefaults::PersonDefaults() : file_(defaultsFile()) {}

Value::Dictionary PersonDefaults::load() {
  const auto json = readObject(file_);
  readable_ = json.has_value();
  if (!readable_) {
    printMessage(file_.string() + " is not a JSON object, so your defaults are not used: mend or remove the file.");
    return {};
  }
  const auto value = valueFromJson(*json);
  if (!value.dictionary()) return {};
  const auto learnt = value.dictionary()->find(learntTermsKey);
  if (learnt != value.dictionary()->end()) learnt_ = learnt->second;
  return *value.dictionary();
}

void PersonDefaults::save(const Value::Dictionary& defaults) {
  const auto learnt = defaults.find(learntTermsKey);
  if (!file_.empty() && readable_ && learnt != defaults.end()) saveLearntTerms(learnt->second);
}

bool PersonDefaults::saveLearntTerms(const std::optional<Value>& terms) {
  if (terms == learnt_) return true;
  auto json = readObject(file_);
  if (json && terms) (*json)[learntTermsKey] = jsonFromValue(*terms);
  if (json && !terms) json->erase(learntTermsKey);
  if (json && replaceFile(file_, json->dump(2, ' ', false, ordered_json::error_handler_t::replace) + '\n')) {
    learnt_ = terms;
    return true;
  }
  printMessage("The terms learnt from study descriptions could not be written to " + file_.string() +
               ": check that it is a JSON object and that its folder can be written to.");
  return false;
}

}  // namespace cli
