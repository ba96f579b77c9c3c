#pragma once
// The private block of a labelling's report (PS3.5 7.8): its creator and its elements. Internal to this folder.

#include <cstdint>
#include <string_view>

namespace workstation {

inline constexpr std::uint16_t blockGroup = 0x7321;
inline constexpr std::string_view blockCreator = "VERTANA";
/// Elements of the block, under the number that its creator reserved.
inline constexpr std::uint16_t blockFormat = 0x01;   ///< LO: name and version of the archive's format
inline constexpr std::uint16_t blockArchive = 0x03;  ///< OB
inline constexpr std::string_view archiveFormat = "VERTANA KEYED ARCHIVE 1";

/// The longest archive that is written or read. A labelling's has a few KB.
inline constexpr std::uint32_t longestArchive = 16U << 20;

}  // namespace workstation
