#include "workstation/dicom/DecimalString.h"

#include <array>
#include <charconv>

namespace workstation {

std::string decimalString(double value) {
  std::array<char, 40> text{};
  std::to_chars_result end = std::to_chars(text.begin(), text.end(), value == 0 ? 0.0 : value);
  for (int precision = 16; end.ptr - text.begin() > 16; --precision)
    end = std::to_chars(text.begin(), text.end(), value, std::chars_format::general, precision);
  return std::string(text.begin(), end.ptr);
}

}  // namespace workstation
