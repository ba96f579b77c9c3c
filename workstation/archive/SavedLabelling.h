#pragma once
// The labelling that a study holds, decoded.

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "host/Point3D.h"
#include "host/Value.h"

namespace workstation {

/// One level of a labelling: a disc and the plane through it.
struct SavedLevel {
  std::string name;                ///< as the plug-in calls it: "L4-L5"
  std::array<double, 3> point{};   ///< of the plane, mm, LPS; finite
  std::array<double, 3> vector{};  ///< the plane's normal; finite
  friend bool operator==(const SavedLevel&, const SavedLevel&) = default;
};

/// What a state dictionary says. Each entry may be missing on its own; the empty state has none.
struct SavedLabelling {
  std::optional<int> anatomicalRegion;  ///< -1 none, 0 cervical, 1 thoracic, 2 lumbar
  std::optional<bool> additionalVertebra;
  std::optional<std::vector<SavedLevel>> levels;  ///< head to foot

  /// The empty state: it says that the study has no labelling.
  bool isEmpty() const { return !anatomicalRegion && !additionalVertebra && !levels; }
  friend bool operator==(const SavedLabelling&, const SavedLabelling&) = default;
};

/// The state in an unarchived root; nothing when it is not a dictionary, or an entry has another type or range than the
/// one described above.
std::optional<SavedLabelling> labellingFromValue(const pelmar::Value& root);

/// The dictionary that the plug-in reads, with point objects made by `points`.
pelmar::Value valueFromLabelling(const SavedLabelling& labelling, pelmar::Point3DClass& points);

/// Whether two states say the same when every coordinate is rounded to single precision.
bool sameInSinglePrecision(const SavedLabelling& a, const SavedLabelling& b);

}  // namespace workstation
