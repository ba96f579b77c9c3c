#pragma once

#include <string>
#include <string_view>

namespace workstation {

/// A text value as UTF-8. `characterSet` is the value of Specific Character Set (0008,0005), with backslashes between
/// its terms; code extensions (PS3.5 6.1.2.5) of the Western, Cyrillic, Arabic, Greek, Hebrew, Thai, Japanese, Korean
/// and Chinese sets are followed. Never fails: a byte that cannot be converted becomes U+FFFD. Without a character set,
/// or with an unknown one, bytes above 127 are read as UTF-8 when they are that, else as Latin-1. The result is valid
/// UTF-8 in any case.
std::string toUtf8(std::string_view bytes, std::string_view characterSet);

}  // namespace workstation
