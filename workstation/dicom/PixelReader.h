#pragma once

#include <memory>

#include "workstation/model/ImageRecord.h"

namespace workstation {

/// Decodes pixels from image files, one frame at a time, whenever they are asked for; keeps nothing. Reads 8 and 16 bit
/// images without compression, deflated, and in RLE, JPEG, JPEG-LS and JPEG 2000. Grey images come as stored values;
/// colour images (RGB, YBR, palette) as red, green and blue of 0 .. 255. Samples that a damaged file leaves out are a
/// problem, never made up.
class PixelReader final : public PixelSource {
 public:
  std::optional<PixelData> pixels(const ImageRecord& image, std::string& problem) override;
};

}  // namespace workstation
