#include "workstation/dicom/ObjectHeader.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>

#include "workstation/dicom/Identity.h"
#include "workstation/dicom/ParsedObjects.h"

namespace workstation {

bool ObjectHeader::isStructuredReport() const {
  // The classes of reports share this root; a selection of key objects is one in form, but tells no findings.
  if (sopClassUid == UID_KeyObjectSelectionDocumentStorage) return false;
  return modality == "SR" || sopClassUid.starts_with("1.2.840.10008.5.1.4.1.1.88.");
}

ObjectHeader objectHeaderIn(ParsedFile& file) {
  const Attributes attributes(file.dataset());
  ObjectHeader header;
  readIdentity(attributes, header);
  header.contentDate = attributes.code(DCM_ContentDate);
  header.contentTime = attributes.code(DCM_ContentTime);
  return header;
}

}  // namespace workstation
