#pragma once

#include "workstation/dicom/StudyReader.h"

namespace workstation {

/// Takes out of `result.images` what a study holds twice, that is under one SOP Instance UID in two files, so that no
/// slice is shown twice; the first file by path stays. A file with the same slices in the same places is listed in
/// `copies`, any other in `unreadable`: which of the two images the identifier means cannot be told.
void setCopiesAside(ReadResult& result);

}  // namespace workstation
