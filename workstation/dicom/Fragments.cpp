#include "workstation/dicom/Fragments.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dcpixel.h>
#include <dcmtk/dcmdata/dcpixseq.h>
#include <dcmtk/dcmdata/dcpxitem.h>
#include <dcmtk/dcmdata/dctk.h>

#include <array>
#include <cstdint>
#include <vector>

namespace workstation {
namespace {

DcmPixelSequence* sequenceOf(DcmPixelData& pixels) {
  E_TransferSyntax syntax = EXS_Unknown;
  const DcmRepresentationParameter* parameter = nullptr;
  DcmPixelSequence* sequence = nullptr;
  pixels.getOriginalRepresentationKey(syntax, parameter);
  return pixels.getEncapsulatedRepresentation(syntax, parameter, sequence).good() ? sequence : nullptr;
}

std::vector<DcmPixelItem*> itemsOf(DcmPixelSequence& sequence) {
  std::vector<DcmPixelItem*> items;
  for (DcmObject* item = sequence.nextInContainer(nullptr); item != nullptr; item = sequence.nextInContainer(item))
    items.push_back(static_cast<DcmPixelItem*>(item));
  return items;
}

/// The items where frames start, by the offset table; empty when it is, or when an entry points beside an item.
std::vector<unsigned long> startsByTable(const std::vector<DcmPixelItem*>& items, std::size_t frames) {
  Uint8* bytes = nullptr;
  if (items[0]->getLength() != frames * 4 || items[0]->getUint8Array(bytes).bad() || bytes == nullptr) return {};
  std::vector<unsigned long> starts;
  std::uint64_t offset = 0;
  for (unsigned long i = 1; i < items.size() && starts.size() < frames; ++i) {
    const Uint8* entry = bytes + 4 * starts.size();
    const std::uint32_t wanted = static_cast<std::uint32_t>(entry[0]) | static_cast<std::uint32_t>(entry[1]) << 8 |
                                 static_cast<std::uint32_t>(entry[2]) << 16 |
                                 static_cast<std::uint32_t>(entry[3]) << 24;
    if (offset == wanted) starts.push_back(i);
    offset += 8 + (std::uint64_t{items[i]->getLength()} + 1) / 2 * 2;
  }
  return starts.size() == frames ? starts : std::vector<unsigned long>();
}

/// The items that begin with the first mark of a codestream; empty when there are not as many as frames.
std::vector<unsigned long> startsByMark(const std::vector<DcmPixelItem*>& items, std::size_t frames) {
  std::vector<unsigned long> starts;
  for (unsigned long i = 1; i < items.size(); ++i) {
    std::array<Uint8, 2> mark{};
    if (items[i]->getLength() < mark.size() || items[i]->getPartialValue(mark.data(), 0, mark.size()).bad()) continue;
    if (mark[0] == 0xff && (mark[1] == 0xd8 || mark[1] == 0x4f)) starts.push_back(i);
  }
  return starts.size() == frames ? starts : std::vector<unsigned long>();
}

}  // namespace

unsigned long fragmentCount(DcmPixelData& pixels) {
  DcmPixelSequence* sequence = sequenceOf(pixels);
  return sequence != nullptr && sequence->card() > 0 ? sequence->card() - 1 : 0;
}

bool fragmentsOfFrame(DcmPixelData& pixels, int frame, int frames, FragmentRange& range, std::string& problem) {
  range.sequence = sequenceOf(pixels);
  const unsigned long items = range.sequence != nullptr ? range.sequence->card() : 0;
  const auto index = static_cast<std::size_t>(frame - 1);
  const auto count = static_cast<std::size_t>(frames);
  range.first = 1;
  range.end = items;
  if (frames == 1 && items > 1) return true;
  if (items == count + 1) {
    range.first = index + 1;
    range.end = index + 2;
    return true;
  }
  std::vector<unsigned long> starts;
  if (items > 1) {
    const std::vector<DcmPixelItem*> all = itemsOf(*range.sequence);
    starts = startsByTable(all, count);
    if (starts.empty()) starts = startsByMark(all, count);
  }
  if (starts.empty()) {
    problem = "its " + std::to_string(items > 0 ? items - 1 : 0) +
              " fragments of compressed pixels cannot be assigned to " + std::to_string(frames) + " frames";
    return false;
  }
  range.first = starts[index];
  if (index + 1 < count) range.end = starts[index + 1];
  return true;
}

}  // namespace workstation
