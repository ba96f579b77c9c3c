#pragma once

#include <cstdint>
#include <vector>

#include "workstation/dicom/ImageLayout.h"

class DcmItem;

namespace workstation {

/// The bytes of one frame as decoded: samples of 1 or 2 bytes in this machine's byte order, and how they lie.
struct FrameBytes {
  std::vector<std::uint8_t> bytes;
  bool byPlane = false;
  ColourModel colour = ColourModel::monochrome2;
  bool isSubsampled = false;  ///< YBR_FULL_422 as stored: two luminances share a pair of colour differences
};

/// Cuts the stored bits out of each sample and extends the sign, pixel by pixel. The frame must hold frameBytes().
std::vector<std::int32_t> unpackSamples(const FrameBytes& frame, const ImageLayout& layout);

/// Turns luminance and colour differences (PS3.3 C.7.6.3.1.2, YBR_FULL) of 8 bits into red, green and blue, in place.
void convertYbrToRgb(std::vector<std::int32_t>& samples);

/// Looks grey values up in the data set's palette; three values of 0 .. 255 for each. False, with a phrase in
/// `problem`, when the palette is missing, segmented or damaged.
bool applyPalette(DcmItem& dataset, std::vector<std::int32_t>& samples, std::string& problem);

/// Whether a Modality LUT Sequence (PS3.3 C.11.1) leads to the values that are shown: it stands instead of Rescale
/// Slope and Intercept. In X-ray projections of relationship LOG or DISP it leads back to the intensity of the beam
/// (PS3.3 C.8.7.1.1.2), and does not count.
bool hasModalityTable(DcmItem& item);

/// Looks stored values up in the item's Modality LUT; `isSigned` says whether they can be below 0. What comes out never
/// is. False, with a phrase in `problem`, when the table is missing or damaged.
bool applyModalityTable(DcmItem& item, bool isSigned, std::vector<std::int32_t>& samples, std::string& problem);

}  // namespace workstation
