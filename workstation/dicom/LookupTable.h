#pragma once

#include <cstdint>
#include <vector>

class DcmItem;
class DcmTagKey;

namespace workstation {

/// A table from values to values, as a descriptor and its data tell it (PS3.3 C.7.6.3.1.5, C.11.1.1). Internal to this
/// folder.
struct LookupTable {
  std::int32_t firstMapped = 0;  ///< as it is read: a value over 32767 may be meant as a negative one
  int bits = 16;                 ///< of each entry, as the descriptor says
  std::vector<std::uint16_t> entries;

  /// The entry of a value; lower ones than the first mapped get the first entry, those beyond the last the last. There
  /// must be an entry.
  std::int32_t at(std::int32_t value) const;
};

enum class TableState {
  complete,
  missing,   ///< no descriptor of three numbers, or no data
  tooShort,  ///< fewer entries than the descriptor says
};

/// Reads a table. `table` is whole when the answer is `complete`, and otherwise undefined.
TableState readLookupTable(DcmItem& item, const DcmTagKey& descriptorTag, const DcmTagKey& dataTag, LookupTable& table);

/// Reads LUT Descriptor and LUT Data of an item of a sequence (PS3.3 C.11.1, C.11.2). `negativeInput` says that values
/// below 0 are looked up; then a first mapped value over 32767 is a negative one that was read as unsigned.
TableState readSequenceTable(DcmItem& item, bool negativeInput, LookupTable& table);

}  // namespace workstation
