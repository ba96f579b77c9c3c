#pragma once

#include <string>

class DcmPixelData;
class DcmPixelSequence;

namespace workstation {

/// The items of compressed pixel data (PS3.5 A.4) that hold one frame: from `first` up to but not including `end`. Item
/// 0 is the offset table. Internal to this folder.
struct FragmentRange {
  DcmPixelSequence* sequence = nullptr;
  unsigned long first = 1;
  unsigned long end = 1;
};

/// How many fragments the pixel data have, the offset table not counted; 0 where they are not compressed.
unsigned long fragmentCount(DcmPixelData& pixels);

/// Finds the fragments of a frame (from 1, of `frames`): one each, or by the offset table, or by the marks that a JPEG,
/// JPEG-LS or JPEG 2000 codestream starts with. False, with a phrase in `problem`, when none of these tells.
bool fragmentsOfFrame(DcmPixelData& pixels, int frame, int frames, FragmentRange& range, std::string& problem);

}  // namespace workstation
