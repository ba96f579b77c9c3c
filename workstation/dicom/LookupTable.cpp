#include "workstation/dicom/LookupTable.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>

#include <algorithm>
#include <cmath>

#include "workstation/dicom/Attributes.h"

namespace workstation {
namespace {

/// The table's bytes in this machine's order: words for OW and US, as they stand for OB and UN.
std::vector<std::uint16_t> tableWords(DcmElement& element, std::size_t entries) {
  std::vector<std::uint16_t> words;
  const Uint16* pointer = nullptr;
  Uint16* wordPointer = nullptr;
  if (element.getUint16Array(wordPointer).good()) pointer = wordPointer;
  const std::size_t count = element.getLength() / 2;
  if (pointer == nullptr) return words;
  if (count >= entries) return {pointer, pointer + entries};
  if (element.getLength() >= entries)  // two 8-bit entries a word
    for (std::size_t i = 0; i < entries; ++i)
      words.push_back(static_cast<std::uint16_t>((pointer[i / 2] >> (i % 2 == 0 ? 0 : 8)) & 0xff));
  return words;
}

}  // namespace

std::int32_t LookupTable::at(std::int32_t value) const {
  const std::int64_t last = static_cast<std::int64_t>(entries.size()) - 1;
  const std::int64_t index = std::clamp<std::int64_t>(std::int64_t{value} - firstMapped, 0, last);
  return entries[static_cast<std::size_t>(index)];
}

TableState readLookupTable(DcmItem& item, const DcmTagKey& descriptorTag, const DcmTagKey& dataTag,
                           LookupTable& table) {
  const std::vector<double> descriptor = Attributes(item).numbers(descriptorTag).value_or(std::vector<double>());
  DcmElement* data = nullptr;
  if (descriptor.size() != 3 || item.findAndGetElement(dataTag, data).bad() || data == nullptr)
    return TableState::missing;
  for (const double value : descriptor)
    if (!(std::abs(value) <= 65536)) return TableState::missing;
  // Both the count and the first value are 16 bits wide; 65536 entries are written as 0.
  const auto count = static_cast<std::size_t>(static_cast<std::uint16_t>(static_cast<std::int32_t>(descriptor[0])));
  const std::size_t entries = count == 0 ? 65536 : count;
  table.firstMapped = static_cast<std::int32_t>(descriptor[1]);
  table.bits = static_cast<int>(descriptor[2]);
  table.entries = tableWords(*data, entries);
  return table.entries.size() == entries ? TableState::complete : TableState::tooShort;
}

TableState readSequenceTable(DcmItem& item, bool negativeInput, LookupTable& table) {
  const TableState state = readLookupTable(item, DCM_LUTDescriptor, DCM_LUTData, table);
  if (negativeInput && table.firstMapped > 32767) table.firstMapped -= 65536;
  return state;
}

}  // namespace workstation
