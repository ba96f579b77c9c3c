#pragma once

#include <cstdint>
#include <string>

class DcmDataset;

namespace workstation {

/// How samples become grey or red, green and blue.
enum class ColourModel { monochrome1, monochrome2, palette, rgb, ybrFull, ybrFull422, ybrCoded };

/// How the pixels of a file are stored (PS3.3 C.7.6.3). Internal to this folder.
struct ImageLayout {
  int rows = 0;
  int columns = 0;
  int samplesPerPixel = 1;
  int bitsAllocated = 16;
  int bitsStored = 16;
  int highBit = 15;
  bool isSigned = false;
  bool byPlane = false;  ///< Planar Configuration 1
  ColourModel colour = ColourModel::monochrome2;
  int frames = 1;
  bool isCompressed = false;  ///< encapsulated
  bool isJpeg2000 = false;

  int bytesPerSample() const { return bitsAllocated / 8; }
  /// Bytes of one frame that is not compressed.
  std::uint64_t frameBytes() const;
  bool isColour() const { return samplesPerPixel > 1 || colour == ColourModel::palette; }
};

/// Reads and checks the layout without reading a pixel: the values make sense together, the transfer syntax is one that
/// can be decoded, and there are as many bytes as the frames need. False, with a phrase in `problem`, otherwise.
bool readLayout(DcmDataset& dataset, ImageLayout& layout, std::string& problem);

}  // namespace workstation
