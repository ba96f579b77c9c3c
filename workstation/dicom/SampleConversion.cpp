#include "workstation/dicom/SampleConversion.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <string>

#include "workstation/dicom/Attributes.h"
#include "workstation/dicom/LookupTable.h"

namespace workstation {
namespace {

/// Whether the table can be used; if not, `problem` is one of the two phrases.
bool isComplete(TableState state, const char* missing, const char* tooShort, std::string& problem) {
  if (state != TableState::complete) problem = state == TableState::missing ? missing : tooShort;
  return state == TableState::complete;
}

/// Reads one colour of a palette, 0 .. 255 (PS3.3 C.7.6.3.1.5, C.7.6.3.1.6).
bool readChannel(DcmItem& dataset, const DcmTagKey& descriptorTag, const DcmTagKey& dataTag, LookupTable& channel,
                 std::string& problem) {
  const TableState state = readLookupTable(dataset, descriptorTag, dataTag, channel);
  if (!isComplete(state, "its palette is missing or segmented", "its palette is shorter than it says", problem))
    return false;
  // Some writers declare 16 bits and fill in 8; then nothing would be visible.
  const bool isWide = channel.bits > 8 &&
                      std::any_of(channel.entries.begin(), channel.entries.end(), [](auto word) { return word > 255; });
  for (std::uint16_t& word : channel.entries) word = static_cast<std::uint16_t>(isWide ? word >> 8 : word & 0xff);
  return true;
}

/// Cuts the stored bits out of a sample and extends the sign.
class StoredBits {
 public:
  explicit StoredBits(const ImageLayout& layout)
      : shift_(layout.highBit + 1 - layout.bitsStored),
        mask_((1U << layout.bitsStored) - 1),
        signBit_(layout.isSigned ? 1U << (layout.bitsStored - 1) : 0) {}

  std::int32_t operator()(std::uint32_t sample) const {
    const std::uint32_t stored = (sample >> shift_) & mask_;
    return static_cast<std::int32_t>(stored ^ signBit_) - static_cast<std::int32_t>(signBit_);
  }

 private:
  int shift_;
  std::uint32_t mask_;
  std::uint32_t signBit_;
};

/// Where a sample of a pixel lies in the frame, counted in samples.
std::size_t positionOf(std::size_t pixel, std::size_t sample, std::size_t pixels, const FrameBytes& frame,
                       std::size_t samplesPerPixel) {
  if (frame.isSubsampled) return pixel / 2 * 4 + (sample == 0 ? pixel % 2 : 1 + sample);
  return frame.byPlane ? sample * pixels + pixel : pixel * samplesPerPixel + sample;
}

/// Samples of a type of whole bytes.
template <class Sample>
std::vector<std::int32_t> unpack(const FrameBytes& frame, std::size_t pixels, std::size_t perPixel, StoredBits bits) {
  const auto sampleAt = [&](std::size_t position) {
    Sample sample = 0;
    std::memcpy(&sample, frame.bytes.data() + position * sizeof sample, sizeof sample);
    return bits(sample);
  };
  std::vector<std::int32_t> samples(pixels * perPixel);
  // As most images are stored: the samples in the order in which they are wanted.
  if (!frame.isSubsampled && (!frame.byPlane || perPixel == 1)) {
    for (std::size_t position = 0; position < samples.size(); ++position) samples[position] = sampleAt(position);
    return samples;
  }
  for (std::size_t pixel = 0; pixel < pixels; ++pixel)
    for (std::size_t sample = 0; sample < perPixel; ++sample)
      samples[pixel * perPixel + sample] = sampleAt(positionOf(pixel, sample, pixels, frame, perPixel));
  return samples;
}

}  // namespace

std::vector<std::int32_t> unpackSamples(const FrameBytes& frame, const ImageLayout& layout) {
  const std::size_t pixels = static_cast<std::size_t>(layout.rows) * static_cast<std::size_t>(layout.columns);
  const auto perPixel = static_cast<std::size_t>(layout.samplesPerPixel);
  const StoredBits bits(layout);
  return layout.bytesPerSample() == 1 ? unpack<std::uint8_t>(frame, pixels, perPixel, bits)
                                      : unpack<std::uint16_t>(frame, pixels, perPixel, bits);
}

void convertYbrToRgb(std::vector<std::int32_t>& samples) {
  const auto clamped = [](double value) { return std::clamp(static_cast<std::int32_t>(std::lround(value)), 0, 255); };
  for (std::size_t i = 0; i + 2 < samples.size(); i += 3) {
    const double luminance = samples[i];
    const double blueDifference = samples[i + 1] - 128;
    const double redDifference = samples[i + 2] - 128;
    samples[i] = clamped(luminance + 1.402 * redDifference);
    samples[i + 1] = clamped(luminance - 0.344136 * blueDifference - 0.714136 * redDifference);
    samples[i + 2] = clamped(luminance + 1.772 * blueDifference);
  }
}

bool applyPalette(DcmItem& dataset, std::vector<std::int32_t>& samples, std::string& problem) {
  std::array<LookupTable, 3> channels;
  const bool isRead = readChannel(dataset, DCM_RedPaletteColorLookupTableDescriptor, DCM_RedPaletteColorLookupTableData,
                                  channels[0], problem) &&
                      readChannel(dataset, DCM_GreenPaletteColorLookupTableDescriptor,
                                  DCM_GreenPaletteColorLookupTableData, channels[1], problem) &&
                      readChannel(dataset, DCM_BluePaletteColorLookupTableDescriptor,
                                  DCM_BluePaletteColorLookupTableData, channels[2], problem);
  if (!isRead) return false;
  std::vector<std::int32_t> coloured;
  coloured.reserve(samples.size() * 3);
  for (const std::int32_t value : samples)
    for (const LookupTable& channel : channels) coloured.push_back(channel.at(value));
  samples = std::move(coloured);
  return true;
}

bool hasModalityTable(DcmItem& item) {
  const Attributes attributes(item);
  if (attributes.number(DCM_RescaleSlope) || attributes.number(DCM_RescaleIntercept)) return false;
  const std::string sopClass = attributes.code(DCM_SOPClassUID);
  const bool isProjection =
      sopClass == UID_XRayAngiographicImageStorage || sopClass == UID_XRayRadiofluoroscopicImageStorage;
  const std::string relationship = attributes.code(DCM_PixelIntensityRelationship);
  if (isProjection && (relationship == "LOG" || relationship == "DISP")) return false;
  DcmItem* table = nullptr;
  return item.findAndGetSequenceItem(DCM_ModalityLUTSequence, table, 0).good();
}

bool applyModalityTable(DcmItem& item, bool isSigned, std::vector<std::int32_t>& samples, std::string& problem) {
  LookupTable table;
  DcmItem* tableItem = nullptr;
  item.findAndGetSequenceItem(DCM_ModalityLUTSequence, tableItem, 0);
  const TableState state = tableItem != nullptr ? readSequenceTable(*tableItem, isSigned, table) : TableState::missing;
  if (!isComplete(state, "its Modality LUT has no table that can be read", "its Modality LUT is shorter than it says",
                  problem))
    return false;
  for (std::int32_t& sample : samples) sample = table.at(sample);
  return true;
}

}  // namespace workstation
