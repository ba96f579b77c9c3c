#pragma once

#include <string>
#include <vector>

#include "phantom/SpineShape.h"
#include "phantom/Vec3.h"

namespace phantom {

/// One slice to be rendered. The position is the centre of the first pixel, as in Image Position (Patient).
struct SlicePlane {
  Vec3 position;
  Vec3 row;     ///< unit vector in the direction of growing column index
  Vec3 column;  ///< unit vector in the direction of growing row index
  double spacingMm = 1;
  int size = 0;  ///< rows and columns
  double thicknessMm = 1;

  Vec3 normal() const { return cross(row, column); }
  /// Where pixel (size / 2, size / 2) lies.
  Vec3 centre() const { return position + (0.5 * spacingMm * size) * (row + column); }
};

/// One series. Slices are in the order of their numbers: sagittal right to left, coronal front to back, axial head to
/// feet, tilted blocks one after the other down the spine.
struct SeriesPlan {
  int number = 0;  ///< Series Number
  std::string description;
  bool axial = false;  ///< straight or tilted to the discs
  bool reformat = false;
  double spacingBetweenSlicesMm = 0;
  std::vector<SlicePlane> slices;
};

struct StudyPlan {
  int region = 2;
  bool angledAxials = false;
  bool ct = false;
  int imageSize = 0;  ///< rows and columns of every image; 0: what is usual for the series
};

/// The series of a study of `shape`: 1 sagittal (15 slices), 2 coronal (15), 3 a straight axial stack that reaches
/// 30 mm beyond the region's discs (CT: 512 slices), and with `angledAxials` 4, a block of axial slices tilted to each
/// disc (lumbar: from L1-L2 down).
std::vector<SeriesPlan> planStudy(const SpineShape& shape, const StudyPlan& plan);

}  // namespace phantom
