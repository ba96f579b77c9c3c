#include "workstation/render/NumberText.h"

#include <charconv>
#include <cmath>

namespace workstation {

std::string fixedText(double value, int decimals) {
  if (!std::isfinite(value)) return "?";
  char text[400];  // the greatest double has 309 digits before the point
  const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, decimals);
  return std::string(text, end.ptr);
}

std::string numberText(double value, int decimals) {
  std::string text = fixedText(value, decimals);
  if (text.find('.') != std::string::npos) {
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
  }
  return text == "-0" ? "0" : text;
}

}  // namespace workstation
