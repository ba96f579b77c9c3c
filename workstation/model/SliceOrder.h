#pragma once

#include "workstation/model/ImageRecord.h"

namespace workstation {

/// The order in which images were stored: by Instance Number (those without one last), then frame, then SOP Instance
/// UID. A strict total order on the images of a series.
bool storedBefore(const ImageRecord& a, const ImageRecord& b);

}  // namespace workstation
