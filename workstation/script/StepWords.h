#pragma once

#include <utility>
#include <vector>

#include "workstation/script/Script.h"

namespace workstation::script {

// The words of a script for choices.
template <class Choice>
using Words = std::vector<std::pair<const char*, Choice>>;

inline const Words<DrawnType>& words(DrawnType) {
  static const Words<DrawnType> all{{"line", DrawnType::line}, {"polygon", DrawnType::polygon}};
  return all;
}
inline const Words<NamedRoi>& words(NamedRoi) {
  static const Words<NamedRoi> all{{"curve", NamedRoi::curve}, {"input", NamedRoi::input}};
  return all;
}
inline const Words<FlipAxis>& words(FlipAxis) {
  static const Words<FlipAxis> all{{"horizontal", FlipAxis::horizontal}, {"vertical", FlipAxis::vertical}};
  return all;
}
inline const Words<PaletteButton>& words(PaletteButton) {
  static const Words<PaletteButton> all{{"stopWorkFlow", PaletteButton::stopWorkFlow},
                                        {"reset", PaletteButton::reset},
                                        {"openHelp", PaletteButton::openHelp},
                                        {"close", PaletteButton::close}};
  return all;
}

}  // namespace workstation::script
