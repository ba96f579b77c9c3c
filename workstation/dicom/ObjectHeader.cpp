#include "workstation/dicom/ObjectHeader.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>

#include "workstation/dicom/Attributes.h"
#include "workstation/dicom/ParsedFile.h"

namespace workstation {

bool ObjectHeader::isStructuredReport() const {
  // The classes of reports share this root; a selection of key objects is one in form, but tells no findings.
  if (sopClassUid == UID_KeyObjectSelectionDocumentStorage) return false;
  return modality == "SR" || sopClassUid.starts_with("1.2.840.10008.5.1.4.1.1.88.");
}

std::optional<ObjectHeader> readObjectHeader(const std::filesystem::path& file, std::string& problem) {
  ParsedFile parsed;
  if (!parsed.parse(file, problem)) return std::nullopt;
  const Attributes attributes(parsed.dataset());
  ObjectHeader header;
  header.patientName = attributes.text(DCM_PatientName).value_or("");
  header.patientId = attributes.text(DCM_PatientID).value_or("");
  header.studyInstanceUid = attributes.code(DCM_StudyInstanceUID);
  header.studyDescription = attributes.text(DCM_StudyDescription);
  header.studyDate = attributes.code(DCM_StudyDate);
  header.seriesInstanceUid = attributes.code(DCM_SeriesInstanceUID);
  header.seriesNumber = attributes.integer(DCM_SeriesNumber);
  header.seriesDescription = attributes.text(DCM_SeriesDescription).value_or("");
  header.modality = attributes.code(DCM_Modality);
  header.sopClassUid = attributes.code(DCM_SOPClassUID);
  header.sopInstanceUid = attributes.code(DCM_SOPInstanceUID);
  header.instanceNumber = attributes.integer(DCM_InstanceNumber);
  header.contentDate = attributes.code(DCM_ContentDate);
  header.contentTime = attributes.code(DCM_ContentTime);
  return header;
}

}  // namespace workstation
