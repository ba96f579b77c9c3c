#pragma once
// Where the labelling that a study holds was drawn.

#include <optional>
#include <string>

#include "workstation/database/LabellingStore.h"
#include "workstation/model/Workstation.h"

namespace workstation {

/// Whether a report tells that this stack was drawn on: a vertical one of the series that it names, in its frame of
/// reference. The stack must exist.
bool isDrawnOn(const Workstation& workstation, const StackId& id, const ReportContext& context);

/// The stack that was drawn on; of a study without it the next best: a vertical one of the series that the report
/// names, the first vertical one, the first of all. Nothing for a study that was not added.
std::optional<StackId> storedDrawnStack(const Workstation& workstation, const std::string& studyUid,
                                        const ReportContext& context);

/// The frame of reference UID of the labelling that the study holds: the one that its report tells, else that of the
/// stack that was drawn on. Empty where the study holds none. May read the report's file.
std::string storedFrameOfReference(const LabellingStore& store, const Workstation& workstation,
                                   const std::string& studyUid);

/// The frame of reference UID of the labelling that is seen in the study's viewers: while its curve is in memory that
/// of the curve, else that of the labelling that the study holds. Empty where there is none.
std::string labelledFrameOfReference(const LabellingStore& store, const Workstation& workstation,
                                     const std::string& studyUid);

}  // namespace workstation
