#pragma once
// Which way the patient lies on the display. Pure arithmetic.

#include <string>

#include "workstation/model/ImageRecord.h"
#include "workstation/model/Vector3.h"
#include "workstation/model/ViewTransform.h"

namespace workstation {

/// The letters of a direction in the patient (PS3.3 C.7.6.1.1.1: A, P, R, L, H, F), the largest component first: an
/// axis is named where the direction lies within 75 degrees of it, so that a slice tilted by some degrees keeps one
/// letter. Equal components: x before y before z. Empty for a zero or non-finite direction. LPS, any length.
std::string orientationLetters(const Vector3& direction);

/// The letters at the edges of a view: where each edge lies in the patient.
struct EdgeLetters {
  std::string left;
  std::string right;
  std::string top;
  std::string bottom;
};

EdgeLetters edgeLetters(const ImageGeometry& geometry, const ViewTransform& transform);

}  // namespace workstation
