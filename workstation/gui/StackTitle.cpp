#include "workstation/gui/StackTitle.h"

#include <algorithm>

#include "workstation/render/ViewPicture.h"

namespace workstation {
namespace {

std::string planeText(const Stack& stack) {
  if (stack.kind == StackKind::scout) return "scout";
  if (stack.kind == StackKind::reference) return "reference";
  switch (stack.plane) {
    case Plane::sagittal:
      return "sagittal";
    case Plane::coronal:
      return "coronal";
    case Plane::axial:
      return "axial";
    default:
      return "no position";
  }
}

}  // namespace

std::string countText(std::size_t count, const std::string& one, const std::string& many) {
  return std::to_string(count) + " " + (count == 1 ? one : many);
}

std::string stackTitle(const Workstation& workstation, const StackId& id) {
  const Series* series = workstation.series(id);
  const Stack* stack = workstation.stack(id);
  if (!series || !stack) return {};
  std::string title = series->number ? std::to_string(*series->number) + ": " : "";
  title += series->description.empty() ? "(no description)" : series->description;
  if (series->stacks.size() > 1) title += ", " + planeText(*stack);
  return title + " (" + countText(stack->slices.size(), "slice", "slices") + ")";
}

std::string patientText(const std::string& dicomName) {
  const std::string name = personNameText(dicomName);
  return name.empty() ? "(no name)" : name;
}

std::string dateWithDashes(const std::string& date) {
  const bool isDate =
      date.size() == 8 && std::all_of(date.begin(), date.end(), [](char c) { return c >= '0' && c <= '9'; });
  return isDate ? date.substr(0, 4) + "-" + date.substr(4, 2) + "-" + date.substr(6) : date;
}

}  // namespace workstation
