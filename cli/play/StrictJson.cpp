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
  bool operator()(int depth, ordered_json::parse_event_t event, const ordered_json& parsed) {
    if (depth > deepest) tooDeep = true;
    if (event == ordered_json::parse_event_t::object_start) keys_.emplace_back();
    if (event == ordered_json::parse_event_t::object_end) keys_.pop_back();
    if (event == ordered_json::parse_event_t::key && !keys_.back().insert(parsed.get<std::string>()).second &&
        !repeated) {
      repeated = parsed.get<std::string>();
    }
    return true;
  }

  std::optional<std::string> repeated;
  bool tooDeep = false;

 private:
  std::vector<std::set<std::string>> keys_;
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

Expected<ordered_json> parseStrictly(const std::string& text, const std::string& what) {
  Watch watch;
  try {
    auto json = ordered_json::parse(text, std::ref(watch));
    if (watch.tooDeep) {
      return Failure{ExitUsage, what + " holds lists within lists deeper than " + std::to_string(deepest) + "."};
    }
    if (watch.repeated) return Failure{ExitUsage, what + " names the key \"" + *watch.repeated + "\" twice."};
    return json;
  } catch (const ordered_json::parse_error& error) {
    return Failure{ExitUnreadable, what + " is not JSON: " + placeOf(text, error.byte) + " does not fit."};
  } catch (const ordered_json::exception&) {
    return Failure{ExitUnreadable, what + " is not JSON: a number in it is beyond what can be read."};
  }
}

}  // namespace cli
