#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace workstation {

/// Size and depth that a codestream must have, so that a damaged one is refused before anything is decoded.
struct Jpeg2000Expectation {
  int rows = 0;
  int columns = 0;
  int samplesPerPixel = 1;
};

/// A decoded codestream: samples interleaved, row by row, as the bits stand in it (two's complement when signed).
struct Jpeg2000Image {
  std::vector<std::int32_t> samples;
  int bitsPerSample = 0;
};

/// Decodes a JPEG 2000 codestream, bare or in a JP2 wrapper. False, with a phrase in `problem`, when it is damaged, cut
/// short or not what is expected.
bool decodeJpeg2000(const std::vector<std::uint8_t>& codestream, const Jpeg2000Expectation& expectation,
                    Jpeg2000Image& image, std::string& problem);

}  // namespace workstation
