#include "workstation/dicom/AttributeWriter.h"

#include "workstation/dicom/DecimalString.h"

namespace workstation {

void AttributeWriter::text(const DcmTagKey& tag, std::string_view value) {
  note(item_.putAndInsertOFStringArray(tag, OFString(value.data(), value.size())), tag);
}

void AttributeWriter::number(const DcmTagKey& tag, double value) { text(tag, decimalString(value)); }

void AttributeWriter::shortInteger(const DcmTagKey& tag, std::uint16_t value) {
  note(item_.putAndInsertUint16(tag, value), tag);
}

void AttributeWriter::words(const DcmTagKey& tag, const std::vector<std::int16_t>& values) {
  const std::vector<Uint16> bits(values.begin(), values.end());
  note(item_.putAndInsertUint16Array(tag, bits.data(), bits.size()), tag);
}

void AttributeWriter::element(DcmElement* element) { note(item_.insert(element, OFTrue), element->getTag()); }

DcmItem* AttributeWriter::newItem(const DcmTagKey& sequence) {
  DcmItem* item = nullptr;
  note(item_.findOrCreateSequenceItem(sequence, item, -2), sequence);
  return item;
}

void AttributeWriter::note(const OFCondition& outcome, const DcmTagKey& tag) {
  if (outcome.bad() && problem_.empty())
    problem_ = std::string(DcmTag(tag).getTagName()) + " could not be encoded (" + outcome.text() + ")";
}

}  // namespace workstation
