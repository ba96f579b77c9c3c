#include "workstation/session/StoredDrawing.h"

namespace workstation {
namespace {

bool isOfNamedSeries(const Workstation& workstation, const StackId& id, const ReportContext& context) {
  return isVertical(*workstation.stack(id)) && workstation.series(id)->uid == context.verticalSeriesUid;
}

}  // namespace

bool isDrawnOn(const Workstation& workstation, const StackId& id, const ReportContext& context) {
  return isOfNamedSeries(workstation, id, context) &&
         workstation.stack(id)->frameOfReferenceUid == context.frameOfReferenceUid;
}

std::optional<StackId> storedDrawnStack(const Workstation& workstation, const std::string& studyUid,
                                        const ReportContext& context) {
  std::optional<StackId> found;
  int best = -1;
  for (const StackId& id : workstation.stacks(studyUid)) {
    const int rank = isDrawnOn(workstation, id, context)         ? 3
                     : isOfNamedSeries(workstation, id, context) ? 2
                     : isVertical(*workstation.stack(id))        ? 1
                                                                 : 0;
    if (rank > best) {
      best = rank;
      found = id;
    }
  }
  return found;
}

std::string storedFrameOfReference(const LabellingStore& store, const Workstation& workstation,
                                   const std::string& studyUid) {
  const auto counting = store.counting(studyUid);
  if (!counting || counting->labelling->isEmpty()) return {};
  const ReportContext context = store.countingContext(studyUid);
  if (!context.frameOfReferenceUid.empty()) return context.frameOfReferenceUid;
  const auto drawn = storedDrawnStack(workstation, studyUid, context);
  return drawn ? workstation.stack(*drawn)->frameOfReferenceUid : std::string();
}

std::string labelledFrameOfReference(const LabellingStore& store, const Workstation& workstation,
                                     const std::string& studyUid) {
  if (const auto drawn = workstation.drawnStack(studyUid)) return workstation.stack(*drawn)->frameOfReferenceUid;
  return storedFrameOfReference(store, workstation, studyUid);
}

}  // namespace workstation
