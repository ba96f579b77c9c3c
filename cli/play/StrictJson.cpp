#include "cli/play/StrictJson.h"

#include <algorithm>
#include <functional>
#include <set>

namespace cli {

using nlohmann::ordered_json;

namespace {

/// Deeper lists than this have no use, and would exhaust what walks over them.
constexpr int deepest = 64;

/// Watches the parser: notes the first key that an object names twice, and a depth that is too much.
class Watch {
 public:
  struct Repeated {
    std::string key;
    std::size_t item = 0;   ///< of the list below the outermost object in which it stands, from 1; 0: in none
    std::size_t items = 0;  ///< how many that list has
  };

  bool operator()(int depth, ordered_json::parse_event_t event, const ordered_json& parsed) {
    using Event = ordered_json::parse_event_t;
    if (depth > deepest) tooDeep = true;
    const bool isItem = event == Event::object_start || event == Event::array_start || event == Event::value;
    if (isItem && !levels_.empty()) ++levels_.back().items;
    if (event == Event::object_start || event == Event::array_start)
      levels_.push_back({event == Event::array_start, 0, {}});
    if (event == Event::key) note(parsed.get<std::string>());
    if (event == Event::array_end && levels_.size() == 2 && repeated && repeated->item > 0 && repeated->items == 0)
      repeated->items = levels_.back().items;
    if (event == Event::object_end || event == Event::array_end) levels_.pop_back();
    return true;
  }

  std::optional<Repeated> repeated;
  bool tooDeep = false;

 private:
  struct Level {
    bool isList = false;
    std::size_t items = 0;  ///< begun so far
    std::set<std::string> keys;
  };

  void note(const std::string& key) {
    if (levels_.back().keys.insert(key).second || repeated) return;
    const bool inList = levels_.size() > 2 && !levels_[0].isList && levels_[1].isList;
    repeated = Repeated{key, inList ? levels_[1].items : 0, 0};
  }

  std::vector<Level> levels_;
};

/// "line 3, column 7" of a place in the text, where the parser counts bytes from 1.
std::string placeOf(const std::string& text, std::size_t byte) {
  const auto before = text.substr(0, byte > 0 ? byte - 1 : 0);
  const auto line = std::count(before.begin(), before.end(), '\n') + 1;
  const auto lineStart = before.rfind('\n');
  const auto column = before.size() - (lineStart == std::string::npos ? 0 : lineStart + 1) + 1;
  return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

}  // namespace

Expected<ordered_json> parseStrictly(const std::string& text, const std::string& what, const std::string& item) {
  Watch watch;
  try {
    auto json = ordered_json::parse(text, std::ref(watch));
    if (watch.tooDeep) {
      return Failure{ExitUsage, what + " holds lists within lists deeper than " + std::to_string(deepest) + "."};
    }
    if (const auto& repeated = watch.repeated) {
      const auto place = item + " " + std::to_string(repeated->item) + " of " + std::to_string(repeated->items) + ":";
      return Failure{ExitUsage,
                     (repeated->item > 0 ? place : what) + " names the key \"" + repeated->key + "\" twice."};
    }
    return json;
  } catch (const ordered_json::parse_error& error) {
    return Failure{ExitUnreadable, what + " is not JSON: " + placeOf(text, error.byte) + " does not fit."};
  } catch (const ordered_json::exception&) {
    return Failure{ExitUnreadable, what + " is not JSON: a number in it is beyond what can be read."};
  }
}

}  // namespace cli
