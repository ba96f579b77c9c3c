#pragma once
// The main job: a person's labelling of a study, done by the workstation's events, and what came of it; and the
// labelling that a study holds already.

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "cli/Arguments.h"
#include "cli/ExitStatus.h"
#include "cli/StudySession.h"
#include "workstation/model/Workstation.h"

namespace cli {

struct LabelledPlane {
  std::string name;
  std::array<double, 3> point{};   ///< mm, LPS
  std::array<double, 3> vector{};  ///< unit vector
};

/// One slice of an axial stack.
struct LabelledSlice {
  std::optional<int> series;  ///< Series Number
  std::size_t stack = 0;      ///< index in its series
  int slice = 0;              ///< in viewer order, from 0
  std::string sopInstanceUid;
  int frame = 1;
  std::optional<std::string> name;   ///< the level; absent where the slice has none
  bool sameFrameOfReference = true;  ///< as the series that was drawn on
};

struct Labelling {
  std::string studyUid;
  int region = -1;
  bool additionalVertebra = false;
  std::optional<int> verticalSeries;
  std::size_t verticalStack = 0;
  int verticalSlice = 0;
  int verticalSlices = 0;
  /// Of a stored labelling: the stack that it was drawn on, where the report names it and the study holds it.
  std::optional<workstation::StackId> drawnOn;
  std::optional<std::vector<pelmar::PixelPoint>> curve;  ///< pixels of the vertical slice; absent when it is not known
  std::vector<LabelledPlane> planes;                     ///< head to foot
  std::vector<LabelledSlice> slices;                     ///< stacks in order of Series Number, slices in viewer order
};

/// Opens the study, chooses the plug-in's menu entry, draws, lets go, closes the palette and reads the levels.
/// A Failure says why the study or the drawing does not allow it; nothing has been drawn then.
Expected<Labelling> labelStudy(StudySession& session, const std::string& studyUid, const LabelArguments& arguments);

/// The same, and then ends the session as a person does; prints what the store has to tell. A labelling that could not
/// be stored, quitting included, is a Failure.
Expected<Labelling> labelAndQuit(StudySession& session, const std::string& studyUid, const LabelArguments& arguments);

/// Prints a caution where axial slices lie in another frame of reference than the labelling. `title` names the study.
void warnOfOtherFrames(const Labelling& labelling, const std::string& title);

/// The labelling that the study holds, with the level of every axial slice. Only reads: nothing is stored or learnt.
/// A Failure says that the study holds none.
Expected<Labelling> storedLabelling(StudySession& session, const std::string& studyUid);

}  // namespace cli
