#pragma once
// How images become what a viewer shows: studies, their series, and in a series the stacks. A stack is a run of
// slices that can be scrolled together; each opens in a viewer of its own. Pure functions on records.

#include <optional>
#include <string>
#include <vector>

#include "workstation/model/ImageRecord.h"

namespace workstation {

/// The anatomical plane of a slice: that of the largest component of its normal (ties: sagittal, then coronal).
enum class Plane { sagittal, coronal, axial, unknown };

/// What cannot be scrolled together with ordinary images, by Image Type (PS3.3 C.7.6.1.1.2) and samples a pixel.
enum class StackKind {
  image,
  colour,
  scout,      ///< Image Type says LOCALIZER
  reference,  ///< Image Type says REFERENCE
};

/// Slices of one series with the same plane, frame of reference and kind, in the order in which a viewer shows them.
struct Stack {
  std::vector<ImageRecord> slices;  ///< at least one
  Plane plane = Plane::unknown;     ///< unknown: no usable geometry
  StackKind kind = StackKind::image;
  std::string frameOfReferenceUid;
  /// 0/1 sagittal, 2/3 coronal, 4/5 axial, odd where the stored order (by Instance Number, then frame) runs against the
  /// shown one; -1 without geometry.
  long orientationCode = -1;
};

/// Whether a spine is drawn on slices that lie so.
inline bool isVertical(const Stack& stack) { return stack.plane == Plane::sagittal || stack.plane == Plane::coronal; }

struct Series {
  std::string uid;
  std::optional<int> number;  ///< Series Number; absent when no image has one
  std::string description;
  std::string modality;
  std::vector<Stack> stacks;  ///< at least one; by kind, then plane, with the stack without geometry last
};

struct Study {
  std::string uid;
  std::optional<std::string> description;  ///< absent when the attribute is, empty when it is empty
  std::string date;
  std::string patientName;
  std::string patientId;
  std::vector<Series> series;  ///< by Series Number (those without one last), then Series Instance UID
};

/// Groups records, in any order, by study, series and stack, and sorts each stack. Studies come by date, then UID.
/// The result does not depend on the order of the records.
std::vector<Study> groupIntoStudies(std::vector<ImageRecord> images);

/// The plane of a slice; unknown without geometry.
Plane planeOf(const ImageRecord& image);

StackKind kindOf(const ImageRecord& image);

/// Sorts slices of one plane for showing: sagittal right to left, coronal front to back, axial head to feet. Slices
/// of the same orientation (within 1 degree) form a block: blocks follow each other along the axis, and within a
/// block slices follow its normal. Equal positions: by Instance Number, then SOP Instance UID, then frame. Slices of
/// an unknown plane are sorted by Instance Number (those without one last).
void sortSlices(std::vector<ImageRecord>& slices, Plane plane);

/// The orientation code (see Stack::orientationCode) of slices in viewer order. Where Instance Numbers and
/// frames do not tell a stored order, that of the list counts.
long orientationCodeOf(const std::vector<const ImageRecord*>& slices);

}  // namespace workstation
