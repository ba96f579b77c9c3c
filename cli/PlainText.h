#pragma once
// Text from files and folders, made fit for a terminal.

#include <cstddef>
#include <string>
#include <string_view>

namespace cli {

/// The text with a question mark for each character that a terminal would obey or that would break the line: control
/// characters, marks that turn the direction of writing, and single bytes 128 to 159 outside UTF-8. All else stays.
std::string printable(std::string_view text);

/// How many columns of a terminal UTF-8 text takes: two for a wide (East Asian) character, none for a combining one.
std::size_t terminalColumns(std::string_view text);

/// The text, then blanks up to that many columns, and at least one.
std::string padded(const std::string& text, std::size_t columns);

/// "1 file", "2 files".
std::string counted(std::size_t count, const std::string& one, const std::string& many);

}  // namespace cli
