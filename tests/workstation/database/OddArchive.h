#pragma once

#include "workstation/archive/KeyedArchive.h"
#include "workstation/archive/SavedLabelling.h"
#include "workstation/model/Points.h"

namespace workstation::test {

/// The archive of a labelling with an odd number of bytes, as other programs write it: with a byte more between the
/// objects and the offset table, whose place stands in the last eight bytes.
inline pelmar::Bytes oddArchiveOf(const SavedLabelling& labelling) {
  PatientPointClass points;
  pelmar::Bytes bytes = *writeArchive(valueFromLabelling(labelling, points));
  std::size_t table = 0;
  for (std::size_t i = bytes.size() - 8; i < bytes.size(); ++i) table = table << 8 | bytes[i];
  bytes.insert(bytes.begin() + static_cast<std::ptrdiff_t>(table), 0);
  ++table;
  for (std::size_t i = 0; i < 8; ++i) bytes[bytes.size() - 1 - i] = static_cast<std::uint8_t>(table >> (8 * i));
  return bytes;
}

}  // namespace workstation::test
