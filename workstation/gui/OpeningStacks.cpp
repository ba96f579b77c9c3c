#include "workstation/gui/OpeningStacks.h"

#include <algorithm>

namespace workstation {
namespace {

constexpr std::size_t mostStacks = 4;

}  // namespace

std::vector<StackId> stacksToOpen(const Workstation& workstation, const std::string& studyUid) {
  const std::vector<StackId> all = workstation.stacks(studyUid);
  std::vector<StackId> chosen;
  const auto take = [&](std::size_t most, auto&& isWanted) {
    for (const StackId& id : all) {
      if (chosen.size() >= mostStacks || most == 0) return;
      if (!isWanted(*workstation.stack(id)) || std::find(chosen.begin(), chosen.end(), id) != chosen.end()) continue;
      chosen.push_back(id);
      --most;
    }
  };
  const auto isImage = [](const Stack& stack) { return stack.kind == StackKind::image; };
  take(1, [&](const Stack& stack) { return isImage(stack) && stack.plane == Plane::sagittal; });
  take(mostStacks, [&](const Stack& stack) { return isImage(stack) && stack.plane == Plane::axial; });
  take(mostStacks, isImage);
  if (chosen.empty()) take(mostStacks, [](const Stack&) { return true; });
  return chosen;
}

}  // namespace workstation
