#pragma once
// Codes of the spine: SNOMED CT as PS3.16 lists them (CID 7603 vertebrae, 7604 discs, 1003 levels, 4031 regions), and a
// private scheme for what has none there.

#include <optional>
#include <string_view>
#include <vector>

namespace workstation {

/// A coded concept (PS3.3 8.8). Views of constants. Two codes are the same whatever their meanings say.
struct Code {
  std::string_view value;
  std::string_view scheme;
  std::string_view meaning;
  friend bool operator==(const Code& a, const Code& b) { return a.value == b.value && a.scheme == b.scheme; }
};

inline constexpr std::string_view privateScheme = "99VERTANA";

/// The level of a disc, by its name ("L4-L5"); nothing for a name that is none of a level.
std::optional<Code> levelCode(std::string_view disc);
/// The disc itself.
std::optional<Code> discCode(std::string_view disc);
/// A vertebra ("L4"; "C1-C2" is atlas and axis together; "C0" is the base of the skull, "S1" the sacrum's first).
std::optional<Code> vertebraCode(std::string_view vertebra);
/// A region: -1 none, 0 cervical, 1 thoracic, 2 lumbar; nothing for any other number.
std::optional<Code> regionCode(int region);

/// Whether these are all levels of a region (0 cervical, 1 thoracic, 2 lumbar), from head to foot, none left out.
bool areLevelsOfRegion(const std::vector<std::string_view>& names, int region, bool additionalVertebra);

/// What the codes above stand for; nothing for any other code.
std::optional<std::string_view> discOfLevelCode(const Code& code);
std::optional<std::string_view> vertebraOfCode(const Code& code);
std::optional<int> regionOfCode(const Code& code);

}  // namespace workstation
