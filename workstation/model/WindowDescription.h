#pragma once

#include <string>
#include <vector>

namespace workstation {

/// One choice of a control: what the person reads, and the value that the property gets.
struct WindowChoice {
  std::string title;
  int value = 0;
};

/// One control of a plug-in's window.
struct WindowControl {
  enum class Kind {
    button,    ///< runs `action`
    checkbox,  ///< shows and sets the truth value of `property`
    choice,    ///< shows and sets the number of `property`, one of `choices`
    label,     ///< only shows its label
  };
  Kind kind = Kind::label;
  std::string label;
  std::string action;    ///< of a button, for example "reset:"
  std::string property;  ///< of a checkbox or choice: what it is bound to
  std::vector<WindowChoice> choices;
  bool discardsLabelling = false;  ///< using it throws a labelling away: a window asks the person first
};

/// What a plug-in's bundle says of a window: enough to lay one out with any toolkit.
struct WindowDescription {
  std::string name;  ///< under which the plug-in asks for it
  std::string title;
  double width = 240;  ///< points, of the whole frame
  double height = 320;
  std::string frameAutosaveName;  ///< under which its place is to be remembered; may be empty
  std::vector<WindowControl> controls;
};

}  // namespace workstation
