#pragma once

#include <vector>

#include "workstation/model/Workstation.h"

namespace workstation {

/// The stacks of a study that are shown when it opens, at most four: the first sagittal one, in which a spine is drawn,
/// then axial ones, whose slices get their names; where that leaves room, further images in order of Series Number. In
/// a study of scouts and colour images alone, those.
std::vector<StackId> stacksToOpen(const Workstation& workstation, const std::string& studyUid);

}  // namespace workstation
