#include "tests/double/CallLog.h"

#include <algorithm>
#include <sstream>

namespace testhost {

std::size_t CallLog::count(std::string_view line) const {
  return static_cast<std::size_t>(std::count(lines_.begin(), lines_.end(), line));
}

std::size_t CallLog::countContaining(std::string_view text) const {
  return static_cast<std::size_t>(std::count_if(
      lines_.begin(), lines_.end(), [&](const std::string& line) { return line.find(text) != std::string::npos; }));
}

std::vector<std::string> CallLog::containing(const std::vector<std::string>& texts) const {
  std::vector<std::string> found;
  for (const std::string& line : lines_) {
    const auto within = [&](const std::string& text) { return line.find(text) != std::string::npos; };
    if (std::any_of(texts.begin(), texts.end(), within)) found.push_back(line);
  }
  return found;
}

std::size_t CallLog::indexOf(std::string_view text) const {
  for (std::size_t index = 0; index < lines_.size(); ++index) {
    if (lines_[index].find(text) != std::string::npos) return index;
  }
  return npos;
}

void record(CallLog* log, std::string line) {
  if (log) log->add(std::move(line));
}

std::string text(double number) {
  std::ostringstream out;
  out << number;
  return out.str();
}

std::string text(bool flag) { return flag ? "true" : "false"; }

}  // namespace testhost
