#pragma once
// Whose object it is and where it belongs. For workstation/dicom alone.

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>

#include "workstation/dicom/Attributes.h"

namespace workstation {

/// Fills what an ObjectHeader and an ImageRecord both tell of patient, study, series and object (PS3.3 C.7.1.1,
/// C.7.2.1, C.7.3.1, C.12.1). What is missing stays empty or absent.
template <class Record>
void readIdentity(const Attributes& attributes, Record& record) {
  record.patientName = attributes.text(DCM_PatientName).value_or("");
  record.patientId = attributes.text(DCM_PatientID).value_or("");
  record.studyInstanceUid = attributes.code(DCM_StudyInstanceUID);
  record.studyDescription = attributes.text(DCM_StudyDescription);
  record.studyDate = attributes.code(DCM_StudyDate);
  record.seriesInstanceUid = attributes.code(DCM_SeriesInstanceUID);
  record.seriesNumber = attributes.integer(DCM_SeriesNumber);
  record.seriesDescription = attributes.text(DCM_SeriesDescription).value_or("");
  record.modality = attributes.code(DCM_Modality);
  record.sopClassUid = attributes.code(DCM_SOPClassUID);
  record.sopInstanceUid = attributes.code(DCM_SOPInstanceUID);
  record.instanceNumber = attributes.integer(DCM_InstanceNumber);
}

}  // namespace workstation
