// The labelling that a study holds: the plug-in reads it, as it does when a person opens the study.
#include <cmath>
#include <limits>

#include "cli/Labelling.h"
#include "cli/PluginFacts.h"
#include "workstation/session/StoredDrawing.h"

namespace cli {

using workstation::Stack;
using workstation::StackId;
using workstation::Workstation;

namespace {

/// Distance of a patient position from the plane of a slice, mm.
double distanceFrom(const workstation::ImageGeometry& slice, const std::array<double, 3>& position) {
  const auto& r = slice.row;
  const auto& c = slice.column;
  const std::array<double, 3> normal{r[1] * c[2] - r[2] * c[1], r[2] * c[0] - r[0] * c[2], r[0] * c[1] - r[1] * c[0]};
  double distance = 0;
  for (std::size_t axis = 0; axis < 3; ++axis) distance += (position[axis] - slice.position[axis]) * normal[axis];
  return std::fabs(distance);
}

/// The slice that was drawn on goes through the planes' points.
int drawnSlice(const Stack& stack, const std::vector<LabelledPlane>& planes) {
  int nearest = 0;
  double least = std::numeric_limits<double>::infinity();
  for (std::size_t i = 0; i < stack.slices.size(); ++i) {
    if (!stack.slices[i].geometry) continue;
    double sum = 0;
    for (const auto& plane : planes) sum += distanceFrom(*stack.slices[i].geometry, plane.point);
    if (sum < least) {
      least = sum;
      nearest = static_cast<int>(i);
    }
  }
  return nearest;
}

std::vector<LabelledSlice> slicesByLevel(const Workstation& workstation, const std::string& studyUid,
                                         const std::string& frameOfReference) {
  std::vector<LabelledSlice> slices;
  for (const auto& id : workstation.stacks(studyUid)) {
    const auto& stack = *workstation.stack(id);
    if (stack.plane != workstation::Plane::axial) continue;
    for (std::size_t i = 0; i < stack.slices.size(); ++i) {
      const auto& record = stack.slices[i];
      slices.push_back({workstation.series(id)->number, id.stack, static_cast<int>(i), record.sopInstanceUid,
                        record.frame, workstation.levelOfSlice(id, i), record.frameOfReferenceUid == frameOfReference});
    }
  }
  return slices;
}

}  // namespace

Expected<Labelling> storedLabelling(StudySession& session, const std::string& studyUid) {
  const auto counting = session.store().counting(studyUid);
  const auto none = [&](const std::string& why) {
    return Failure{ExitNotAllowed,
                   session.source().title(studyUid) + " holds no labelling" + why + ": draw one with vertana label."};
  };
  const auto context = session.store().countingContext(studyUid);
  auto& workstation = session.workstation();
  const auto vertical = workstation::storedDrawnStack(workstation, studyUid, context);
  if (!vertical) return none("");
  // The plug-in takes the study's labelling in as soon as one of its series is shown. It looks also where none counts,
  // so that reports that cannot be read are named.
  if (const auto opened = workstation.openViewer(*vertical); !opened) return Failure{ExitNotAllowed, opened.problem};
  if (!counting) return none("");
  if (counting->labelling->isEmpty()) return none(" any more (it was reset)");
  const auto state = workstation.pluginState();
  const auto& stack = *workstation.stack(*vertical);

  Labelling labelling;
  labelling.studyUid = studyUid;
  labelling.region = entry(state, "anatomicalRegion").intValue();
  labelling.additionalVertebra = entry(state, "additionalVertebra").boolValue();
  labelling.planes = planesFrom(state);
  if (labelling.planes.empty()) return none("");
  labelling.verticalSeries = workstation.series(*vertical)->number;
  labelling.verticalStack = vertical->stack;
  labelling.verticalSlice = drawnSlice(stack, labelling.planes);
  labelling.verticalSlices = static_cast<int>(stack.slices.size());
  if (isDrawnOn(workstation, *vertical, context)) labelling.drawnOn = *vertical;
  labelling.slices =
      slicesByLevel(workstation, studyUid,
                    context.frameOfReferenceUid.empty() ? stack.frameOfReferenceUid : context.frameOfReferenceUid);
  return labelling;
}

}  // namespace cli
