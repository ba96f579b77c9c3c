#include "workstation/dicom/ImageLayout.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dcpixel.h>
#include <dcmtk/dcmdata/dctk.h>

#include <algorithm>
#include <array>

#include "workstation/dicom/Attributes.h"
#include "workstation/dicom/Fragments.h"

namespace workstation {
namespace {

/// More pixels in one frame than any modality makes; a damaged file may claim 4,000 million.
constexpr std::int64_t mostPixels = 100'000'000;

constexpr std::array<E_TransferSyntax, 15> readableSyntaxes = {
    EXS_LittleEndianImplicit, EXS_LittleEndianExplicit, EXS_BigEndianExplicit, EXS_DeflatedLittleEndianExplicit,
    EXS_RLELossless,          EXS_JPEGProcess1,         EXS_JPEGProcess2_4,    EXS_JPEGProcess6_8,
    EXS_JPEGProcess10_12,     EXS_JPEGProcess14,        EXS_JPEGProcess14SV1,  EXS_JPEGLSLossless,
    EXS_JPEGLSLossy,          EXS_JPEG2000LosslessOnly, EXS_JPEG2000,
};

struct NamedColour {
  const char* name;
  ColourModel model;
  int samples;
};
constexpr std::array<NamedColour, 8> namedColours = {{
    {"MONOCHROME1", ColourModel::monochrome1, 1},
    {"MONOCHROME2", ColourModel::monochrome2, 1},
    {"PALETTE COLOR", ColourModel::palette, 1},
    {"RGB", ColourModel::rgb, 3},
    {"YBR_FULL", ColourModel::ybrFull, 3},
    {"YBR_FULL_422", ColourModel::ybrFull422, 3},
    {"YBR_RCT", ColourModel::ybrCoded, 3},
    {"YBR_ICT", ColourModel::ybrCoded, 3},
}};

std::string readSyntax(DcmDataset& dataset, ImageLayout& layout) {
  const E_TransferSyntax syntax = dataset.getOriginalXfer();
  const DcmXfer details(syntax);
  if (std::find(readableSyntaxes.begin(), readableSyntaxes.end(), syntax) == readableSyntaxes.end())
    return std::string("its transfer syntax ") + details.getXferName() + " (" + details.getXferID() +
           ") is not supported";
  layout.isCompressed = details.isEncapsulated();
  layout.isJpeg2000 = syntax == EXS_JPEG2000 || syntax == EXS_JPEG2000LosslessOnly;
  return {};
}

std::string readSize(const Attributes& attributes, ImageLayout& layout) {
  layout.rows = attributes.integer(DCM_Rows).value_or(0);
  layout.columns = attributes.integer(DCM_Columns).value_or(0);
  if (layout.rows < 1 || layout.columns < 1 || layout.rows > 65535 || layout.columns > 65535)
    return "its Rows or Columns are missing or not 1 to 65535";
  if (std::int64_t{layout.rows} * layout.columns > mostPixels)
    return "its frames of " + std::to_string(layout.columns) + " x " + std::to_string(layout.rows) +
           " pixels are larger than the 100 million pixels that are supported";
  if (attributes.has(DCM_NumberOfFrames))
    layout.frames = std::max(1, attributes.integer(DCM_NumberOfFrames).value_or(1));
  return {};
}

std::string readSamples(const Attributes& attributes, ImageLayout& layout) {
  const std::string colour = attributes.code(DCM_PhotometricInterpretation);
  layout.samplesPerPixel = attributes.integer(DCM_SamplesPerPixel).value_or(1);
  const auto known = std::find_if(namedColours.begin(), namedColours.end(),
                                  [&](const NamedColour& candidate) { return colour == candidate.name; });
  if (known == namedColours.end())
    return colour.empty() ? "its Photometric Interpretation is missing"
                          : "its Photometric Interpretation \"" + colour.substr(0, 40) + "\" is not supported";
  layout.colour = known->model;
  if (layout.samplesPerPixel != known->samples)
    return "its Samples per Pixel of " + std::to_string(layout.samplesPerPixel) + " do not fit " + known->name;
  layout.byPlane = attributes.integer(DCM_PlanarConfiguration).value_or(0) == 1;
  return {};
}

std::string readBits(const Attributes& attributes, ImageLayout& layout) {
  layout.bitsAllocated = attributes.integer(DCM_BitsAllocated).value_or(0);
  if (layout.bitsAllocated != 8 && layout.bitsAllocated != 16)
    return "its Bits Allocated are " + std::to_string(layout.bitsAllocated) + "; 8 and 16 are supported";
  layout.bitsStored = attributes.integer(DCM_BitsStored).value_or(layout.bitsAllocated);
  if (layout.bitsStored < 1 || layout.bitsStored > layout.bitsAllocated)
    return "its Bits Stored of " + std::to_string(layout.bitsStored) + " are not 1 to " +
           std::to_string(layout.bitsAllocated);
  layout.highBit = attributes.integer(DCM_HighBit).value_or(layout.bitsStored - 1);
  if (layout.highBit < layout.bitsStored - 1 || layout.highBit >= layout.bitsAllocated)
    return "its High Bit of " + std::to_string(layout.highBit) + " does not fit " + std::to_string(layout.bitsStored) +
           " bits stored in " + std::to_string(layout.bitsAllocated);
  layout.isSigned = attributes.integer(DCM_PixelRepresentation).value_or(0) == 1;
  return {};
}

std::string checkPixelData(DcmDataset& dataset, const ImageLayout& layout) {
  DcmElement* element = nullptr;
  if (dataset.findAndGetElement(DCM_PixelData, element).bad() || element == nullptr) return "it has no pixel data";
  auto* pixels = dynamic_cast<DcmPixelData*>(element);
  if (pixels == nullptr) return "its pixel data have an unexpected value representation";
  if (layout.isCompressed) {
    const unsigned long fragments = fragmentCount(*pixels);
    if (fragments == 0) return "its pixel data are empty";
    if (fragments < static_cast<unsigned long>(layout.frames))
      return "its pixel data are truncated: " + std::to_string(fragments) + " fragments for " +
             std::to_string(layout.frames) + " frames";
    return {};
  }
  const std::uint64_t needed = layout.frameBytes() * static_cast<std::uint64_t>(layout.frames);
  const std::uint64_t there = element->getLength();
  if (there == 0) return "its pixel data are empty";
  if (there < needed)
    return "its pixel data are truncated: " + std::to_string(there) + " bytes where " + std::to_string(needed) +
           " are needed";
  return {};
}

}  // namespace

std::uint64_t ImageLayout::frameBytes() const {
  const std::uint64_t pixels = static_cast<std::uint64_t>(rows) * static_cast<std::uint64_t>(columns);
  const int samples = colour == ColourModel::ybrFull422 && !isCompressed ? 2 : samplesPerPixel;
  return pixels * static_cast<std::uint64_t>(samples * bytesPerSample());
}

bool readLayout(DcmDataset& dataset, ImageLayout& layout, std::string& problem) {
  layout = ImageLayout();
  const Attributes attributes(dataset);
  problem = attributes.has(DCM_PixelData) ? readSyntax(dataset, layout) : "it has no pixel data";
  if (problem.empty()) problem = readSize(attributes, layout);
  if (problem.empty()) problem = readSamples(attributes, layout);
  if (problem.empty()) problem = readBits(attributes, layout);
  if (problem.empty()) problem = checkPixelData(dataset, layout);
  return problem.empty();
}

}  // namespace workstation
