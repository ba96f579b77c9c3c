#pragma once
// What a report of a labelling tells its readers beyond the state itself.

#include <string>
#include <vector>

namespace workstation {

/// An image, or one frame of a multi-frame image.
struct ImageReference {
  std::string sopClassUid;
  std::string sopInstanceUid;
  int frame = 1;            ///< from 1
  bool multiFrame = false;  ///< the object has frames; `frame` says which
  std::string seriesInstanceUid = {};
  friend bool operator==(const ImageReference&, const ImageReference&) = default;
};

/// An axial slice and the level that it shows.
struct SliceLevel {
  ImageReference image;
  std::string level;  ///< a disc ("L4-L5") or a vertebra ("L4")
  friend bool operator==(const SliceLevel&, const SliceLevel&) = default;
};

struct ReportContext {
  std::string frameOfReferenceUid;  ///< of the planes
  std::string verticalSeriesUid;    ///< the series on which the spine was drawn
  std::string verticalModality;
  std::vector<ImageReference> verticalImages;
  std::vector<SliceLevel> sliceLevels;  ///< slices without a name are left out
};

}  // namespace workstation
