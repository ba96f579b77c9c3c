#pragma once
// What a file whose structure has been read says as an object of some kind. Internal to this folder.

#include <cstdint>

#include "workstation/dicom/LabellingReport.h"
#include "workstation/dicom/ObjectHeader.h"
#include "workstation/dicom/ParsedFile.h"
#include "workstation/model/Outcome.h"

namespace workstation {

ObjectHeader objectHeaderIn(ParsedFile& file);
/// Refused, with a phrase that says why, when it is no structured report, or too long, in bytes, for one.
Result<StoredReport> reportIn(ParsedFile& file, std::uintmax_t length);

}  // namespace workstation
