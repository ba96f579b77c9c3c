// Any character set and any text: the result is UTF-8, whatever was put in.

#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "workstation/dicom/CharacterSets.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
  const std::string_view input(reinterpret_cast<const char*>(bytes), length);
  const std::size_t end = input.find('\n');
  const std::string_view characterSet = input.substr(0, end);
  const std::string_view text = end == std::string_view::npos ? input : input.substr(end + 1);
  const std::string read = workstation::toUtf8(text, characterSet);
  if (workstation::toUtf8(read, "ISO_IR 192") != read) std::abort();
  return 0;
}
