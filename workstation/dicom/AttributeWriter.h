#pragma once
// Puts attributes into a data set or an item and keeps the first failure. For workstation/dicom alone.

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace workstation {

class AttributeWriter {
 public:
  explicit AttributeWriter(DcmItem& item) : item_(item) {}

  /// A value of any text representation; several with backslashes between them.
  void text(const DcmTagKey& tag, std::string_view value);
  void number(const DcmTagKey& tag, double value);
  void integer(const DcmTagKey& tag, int value) { text(tag, std::to_string(value)); }
  void shortInteger(const DcmTagKey& tag, std::uint16_t value);
  void words(const DcmTagKey& tag, const std::vector<std::int16_t>& values);
  /// Takes the element.
  void element(DcmElement* element);
  /// A new last item of a sequence, which is made when it is missing; null after a failure.
  DcmItem* newItem(const DcmTagKey& sequence);
  void note(const OFCondition& outcome, const DcmTagKey& tag);
  /// What could not be encoded and why, without a full stop; empty while nothing has failed.
  const std::string& problem() const { return problem_; }

 private:
  DcmItem& item_;
  std::string problem_;
};

}  // namespace workstation
