#include "cli/PersonDefaults.h"

#include <cstdlib>
#include <fstream>
#include <iterator>

#include "cli/Console.h"
#include "cli/JsonValues.h"

namespace cli {

namespace fs = std::filesystem;
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

}  // namespace

PersonDefaults::PersonDefaults() : file_(defaultsFile()) {}

Value::Dictionary PersonDefaults::load() {
  std::error_code error;
  if (file_.empty() || !fs::exists(file_, error)) return {};
  std::ifstream in(file_, std::ios::binary);
  const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  const auto json = nlohmann::json::parse(text, nullptr, false);
  if (!in || !json.is_object()) {
    readable_ = false;
    printMessage(file_.string() + " is not a JSON object, so your defaults are not used: mend or remove the file.");
    return {};
  }
  const auto value = valueFromJson(json);
  if (value.dictionary()) stored_ = *value.dictionary();
  return stored_;
}

void PersonDefaults::save(const Value::Dictionary& defaults) {
  const auto learnt = defaults.find(learntTermsKey);
  if (file_.empty() || !readable_ || learnt == defaults.end()) return;
  const auto known = stored_.find(learntTermsKey);
  if (known != stored_.end() && known->second == learnt->second) return;
  stored_.insert_or_assign(learntTermsKey, learnt->second);

  // Written whole beside the old file, then put in its place: a full disk loses nothing.
  std::error_code error;
  fs::create_directories(file_.parent_path(), error);
  auto fresh = file_;
  fresh += ".new";
  std::ofstream out(fresh, std::ios::binary | std::ios::trunc);
  out << jsonFromValue(stored_).dump(2) << '\n';
  out.close();
  if (out) fs::rename(fresh, file_, error);
  if (!out || error) {
    fs::remove(fresh, error);
    printMessage("What was learnt from the study description could not be written to " + file_.string() +
                 ": check that the folder can be written to.");
  }
}

}  // namespace cli
