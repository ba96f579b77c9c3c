#include "workstation/dicom/PixelReader.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dcpixel.h>
#include <dcmtk/dcmdata/dcpixseq.h>
#include <dcmtk/dcmdata/dcpxitem.h>
#include <dcmtk/dcmdata/dctk.h>

#include <algorithm>
#include <cmath>

#include "workstation/dicom/DisplaySettings.h"
#include "workstation/dicom/Fragments.h"
#include "workstation/dicom/FrameGroups.h"
#include "workstation/dicom/ImageLayout.h"
#include "workstation/dicom/Jpeg2000.h"
#include "workstation/dicom/ParsedFile.h"
#include "workstation/dicom/SampleConversion.h"

namespace workstation {
namespace {

/// Reads one frame of one file; each step says in problem_ why it could not be done.
class FrameReader {
 public:
  FrameReader(ParsedFile& file, int frame) : dataset_(file.dataset()), frame_(frame) {}

  std::optional<PixelData> read() {
    if (!readLayout(dataset_, layout_, problem_)) return std::nullopt;
    if (frame_ < 1 || frame_ > layout_.frames) {
      problem_ = "it has no frame " + std::to_string(frame_);
      return std::nullopt;
    }
    std::vector<std::int32_t> samples;
    if (!readSamples(samples) || !makeColours(samples)) return std::nullopt;
    PixelData data;
    data.rows = layout_.rows;
    data.columns = layout_.columns;
    data.samplesPerPixel = layout_.isColour() ? 3 : 1;
    data.samples = std::move(samples);
    data.monochrome1 = layout_.colour == ColourModel::monochrome1;
    if (data.samplesPerPixel == 1 && !readTransforms(data)) return std::nullopt;
    return data;
  }

  const std::string& problem() const { return problem_; }

 private:
  DcmPixelData& pixelData() {
    DcmElement* element = nullptr;
    dataset_.findAndGetElement(DCM_PixelData, element);
    return *dynamic_cast<DcmPixelData*>(element);  // readLayout has made sure that it is there and is one
  }

  bool readSamples(std::vector<std::int32_t>& samples) {
    if (layout_.isJpeg2000) return readJpeg2000(samples);
    FrameBytes frame;
    if (!(layout_.isCompressed ? decompress(frame) : readPlain(frame))) return false;
    colour_ = frame.colour;
    samples = unpackSamples(frame, layout_);
    return true;
  }

  bool readPlain(FrameBytes& frame) {
    frame.bytes.resize(layout_.frameBytes());
    frame.byPlane = layout_.byPlane;
    frame.colour = layout_.colour;
    frame.isSubsampled = layout_.colour == ColourModel::ybrFull422;
    const std::uint64_t offset = layout_.frameBytes() * static_cast<std::uint64_t>(frame_ - 1);
    const OFCondition outcome = pixelData().getPartialValue(frame.bytes.data(), static_cast<Uint32>(offset),
                                                            static_cast<Uint32>(frame.bytes.size()));
    return outcome.good() || fail(outcome);
  }

  bool decompress(FrameBytes& frame) {
    // Decoders write whole words; a frame of an odd number of bytes needs room for one more.
    frame.bytes.resize((layout_.frameBytes() + 1) / 2 * 2);
    FragmentRange range;
    if (!fragmentsOfFrame(pixelData(), frame_, layout_.frames, range, problem_)) return false;
    auto startFragment = static_cast<Uint32>(range.first);
    OFString colourModel;
    const OFCondition outcome =
        pixelData().getUncompressedFrame(&dataset_, static_cast<Uint32>(frame_ - 1), startFragment, frame.bytes.data(),
                                         static_cast<Uint32>(frame.bytes.size()), colourModel);
    if (outcome.bad()) return fail(outcome);
    // The decoders of JPEG and JPEG-LS are registered to give pixels one after the other; RLE keeps what is stored.
    frame.byPlane = layout_.byPlane && dataset_.getOriginalXfer() == EXS_RLELossless;
    frame.colour = layout_.colour;
    if (colourModel == "RGB") frame.colour = ColourModel::rgb;
    if (colourModel == "YBR_FULL" || colourModel == "YBR_FULL_422") frame.colour = ColourModel::ybrFull;
    return true;
  }

  bool readJpeg2000(std::vector<std::int32_t>& samples) {
    std::vector<std::uint8_t> codestream;
    Jpeg2000Image image;
    if (!joinFragments(codestream) ||
        !decodeJpeg2000(codestream, {layout_.rows, layout_.columns, layout_.samplesPerPixel}, image, problem_))
      return false;
    // The file's attributes say whether values are signed; some codestreams are marked otherwise.
    const std::uint32_t mask = (1U << image.bitsPerSample) - 1;
    const std::uint32_t signBit = layout_.isSigned ? 1U << (image.bitsPerSample - 1) : 0;
    for (std::int32_t& sample : image.samples)
      sample = static_cast<std::int32_t>((static_cast<std::uint32_t>(sample) & mask) ^ signBit) -
               static_cast<std::int32_t>(signBit);
    samples = std::move(image.samples);
    layout_.bitsStored = image.bitsPerSample;
    // The decoder has undone the transforms that the codestream itself declares (YBR_RCT, YBR_ICT).
    colour_ = layout_.colour == ColourModel::ybrCoded ? ColourModel::rgb : layout_.colour;
    return true;
  }

  /// The bytes of all fragments of the frame.
  bool joinFragments(std::vector<std::uint8_t>& codestream) {
    FragmentRange range;
    if (!fragmentsOfFrame(pixelData(), frame_, layout_.frames, range, problem_)) return false;
    for (unsigned long i = range.first; i < range.end; ++i) {
      DcmPixelItem* fragment = nullptr;
      Uint8* bytes = nullptr;
      OFCondition outcome = range.sequence->getItem(fragment, i);
      if (outcome.good() && fragment->getLength() > 0) outcome = fragment->getUint8Array(bytes);
      if (outcome.bad()) return fail(outcome);
      if (bytes != nullptr) codestream.insert(codestream.end(), bytes, bytes + fragment->getLength());
    }
    return true;
  }

  /// Colour images become red, green and blue of 8 bits.
  bool makeColours(std::vector<std::int32_t>& samples) {
    if (layout_.colour == ColourModel::palette) return applyPalette(dataset_, samples, problem_);
    if (!layout_.isColour()) return true;
    if (layout_.bitsStored > 8)
      for (std::int32_t& sample : samples) sample >>= layout_.bitsStored - 8;
    if (colour_ == ColourModel::ybrFull || colour_ == ColourModel::ybrFull422) convertYbrToRgb(samples);
    return true;
  }

  bool readTransforms(PixelData& data) {
    const FrameGroups groups(dataset_);
    DcmItem& transformation = groups.macro(frame_, DCM_PixelValueTransformationSequence);
    bool negativeValues = layout_.isSigned;
    if (hasModalityTable(transformation)) {
      if (!applyModalityTable(transformation, layout_.isSigned, data.samples, problem_)) return false;
      negativeValues = false;
    } else {
      readRescale(Attributes(transformation), data);
      negativeValues = negativeValues || data.rescaleIntercept < 0;
    }
    const DisplaySettings display =
        readDisplaySettings(groups.macro(frame_, DCM_FrameVOILUTSequence), dataset_, negativeValues);
    data.windows = display.windows;
    data.windowFunction = display.function;
    data.voiLuts = display.luts;
    if (!data.windows.empty()) {
      data.windowCentre = data.windows.front().centre;
      data.windowWidth = data.windows.front().width;
    }
    return true;
  }

  static void readRescale(const Attributes& attributes, PixelData& data) {
    const std::optional<double> slope = attributes.number(DCM_RescaleSlope);
    const std::optional<double> intercept = attributes.number(DCM_RescaleIntercept);
    if (slope && std::isfinite(*slope) && *slope != 0) data.rescaleSlope = *slope;
    if (intercept && std::isfinite(*intercept)) data.rescaleIntercept = *intercept;
  }

  bool fail(const OFCondition& outcome) {
    problem_ = std::string("its pixel data cannot be decoded (") + outcome.text() + ")";
    return false;
  }

  DcmDataset& dataset_;
  int frame_;
  ImageLayout layout_;
  ColourModel colour_ = ColourModel::monochrome2;
  std::string problem_;
};

}  // namespace

std::optional<PixelData> PixelReader::pixels(const ImageRecord& image, std::string& problem) {
  ParsedFile file;
  std::string reason;
  if (file.parse(image.file, reason)) {
    FrameReader reader(file, image.frame);
    std::optional<PixelData> data = reader.read();
    if (data) return data;
    reason = reader.problem();
  }
  problem = "The pixels of \"" + image.file.string() + "\" could not be read: " + reason + ".";
  return std::nullopt;
}

}  // namespace workstation
