// What a report tells of a labelling: on which series it was drawn, and the level of every axial slice.
#include <map>

#include "workstation/model/Interior.h"

namespace workstation {
namespace {

/// Frames in an object; those that hold more than one are referenced frame by frame.
std::map<std::string, int> framesByObject(const Study& study) {
  std::map<std::string, int> frames;
  for (const Series& series : study.series) {
    for (const Stack& stack : series.stacks) {
      for (const ImageRecord& slice : stack.slices) {
        int& count = frames[slice.sopInstanceUid];
        count = std::max(count + 1, slice.frame);
      }
    }
  }
  return frames;
}

}  // namespace

pelmar::Ref<pelmar::ROI> Workstation::Interior::curve() const {
  if (!plugin) return {};
  const pelmar::Value state = plugin->filter().stateSnapshot();
  const auto* entries = state.dictionary();
  const auto found = entries ? entries->find("openPolygonROI") : pelmar::Value::Dictionary::const_iterator();
  return entries && found != entries->end() ? ref_cast<pelmar::ROI>(found->second.object())
                                            : pelmar::Ref<pelmar::ROI>();
}

void Workstation::Interior::rememberDrawnStack() {
  const auto roi = curve();
  if (const auto viewer = ref_cast<Viewer>(roi->curView()->viewer())) drawn = {roi, viewer.get()->stackId()};
}

void Workstation::Interior::followDrawnStack(const Study& fresh) {
  const Study& old = host.study(fresh.uid)->data();
  const auto& slices = old.series[drawn->stack.series].stacks[drawn->stack.stack].slices;
  if (const auto place = placeOf(slices.front(), fresh)) {
    drawn->stack.series = place->series;
    drawn->stack.stack = place->stack;
  } else {
    drawn.reset();
  }
}

std::optional<StackId> Workstation::Interior::drawnStack(const std::string& studyUid) const {
  const auto roi = curve();
  std::optional<StackId> stack;
  if (const auto viewer = ref_cast<Viewer>(roi->curView()->viewer())) {
    stack = viewer.get()->stackId();
  } else if (roi && drawn && drawn->curve == roi) {
    stack = drawn->stack;
  }
  return stack && stack->studyUid == studyUid ? stack : std::nullopt;
}

std::optional<StackId> Workstation::drawnStack(const std::string& studyUid) const {
  return interior_->drawnStack(studyUid);
}

std::optional<std::string> Workstation::levelOfSlice(const StackId& id, std::size_t slice) const {
  const Stack* found = stack(id);
  if (!interior_->plugin || !found || slice >= found->slices.size() || found->slices[slice].colour) return std::nullopt;
  const auto slices = interior_->host.study(id.studyUid)->slices(id.series, id.stack);
  const auto level = interior_->plugin->filter().valueForObject(slices->objectAtIndex(slice), "sliceName");
  return level.string() ? std::optional(*level.string()) : std::nullopt;
}

std::optional<ReportContext> Workstation::reportContext(const std::string& studyUid) const {
  const Study* found = study(studyUid);
  if (!found) return std::nullopt;
  std::optional<StackId> vertical = drawnStack(studyUid);
  const auto all = stacks(studyUid);
  for (auto id = all.begin(); id != all.end() && !vertical; ++id) {
    if (isVertical(*stack(*id))) vertical = *id;
  }
  if (!vertical) return std::nullopt;

  const auto frames = framesByObject(*found);
  const auto referenceTo = [&](const ImageRecord& slice) {
    return ImageReference{slice.sopClassUid, slice.sopInstanceUid, slice.frame, frames.at(slice.sopInstanceUid) > 1,
                          slice.seriesInstanceUid};
  };
  ReportContext context;
  context.frameOfReferenceUid = stack(*vertical)->frameOfReferenceUid;
  context.verticalSeriesUid = series(*vertical)->uid;
  context.verticalModality = series(*vertical)->modality;
  for (const ImageRecord& slice : stack(*vertical)->slices) context.verticalImages.push_back(referenceTo(slice));
  for (const StackId& id : all) {
    const Stack& axial = *stack(id);
    if (axial.plane != Plane::axial) continue;
    for (std::size_t slice = 0; slice < axial.slices.size(); ++slice) {
      if (auto level = levelOfSlice(id, slice)) {
        context.sliceLevels.push_back({referenceTo(axial.slices[slice]), std::move(*level)});
      }
    }
  }
  return context;
}

}  // namespace workstation
