#pragma once

#include <optional>
#include <string>
#include <vector>

#include "workstation/dicom/Attributes.h"
#include "workstation/model/ImageRecord.h"

class DcmDataset;

namespace workstation {

/// The attributes of each frame, wherever the file keeps them: in the functional groups of an enhanced multi-frame
/// image (PS3.3 C.7.6.16), a frame's own before the shared ones, or in the data set of a single-frame image. Internal
/// to this folder; valid as long as the data set.
class FrameGroups {
 public:
  explicit FrameGroups(DcmDataset& dataset);

  /// The item that holds a macro's attributes for a frame (from 1): an item of the macro's sequence in the frame's own
  /// group, else in the shared one, else the data set itself. (Single-frame images of some scanners have functional
  /// groups that hold other things, and keep these attributes where every single-frame image has them.)
  DcmItem& macro(int frame, const DcmTagKey& sequence) const;

  /// Where a frame (from 1, of `frames`) lies, or nothing with a phrase in `problem`.
  std::optional<ImageGeometry> geometry(int frame, int frames, std::string& problem) const;

  /// Height of a pixel of a frame (from 1) as a multiple of its width: by its Pixel Spacing, which may be there without
  /// a position, else by Pixel Aspect Ratio (PS3.3 C.7.6.3.1.7), else 1. Imager Pixel Spacing does not count.
  double pixelAspect(int frame) const;

 private:
  DcmDataset& dataset_;
  DcmItem* shared_ = nullptr;
  std::vector<DcmItem*> perFrame_;
};

}  // namespace workstation
