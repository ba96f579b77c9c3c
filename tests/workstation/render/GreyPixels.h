#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "workstation/model/ImageRecord.h"

namespace workstation::test {

/// One row of grey pixels with these stored values.
inline PixelData greyPixels(std::vector<std::int32_t> samples) {
  PixelData pixels;
  pixels.rows = 1;
  pixels.columns = static_cast<int>(samples.size());
  pixels.samples = std::move(samples);
  return pixels;
}

}  // namespace workstation::test
