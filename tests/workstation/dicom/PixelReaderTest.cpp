#include "workstation/dicom/PixelReader.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dcrleerg.h>
#include <dcmtk/dcmdata/dctk.h>
#include <dcmtk/dcmjpeg/djencode.h>
#include <dcmtk/dcmjpeg/djrplol.h>
#include <dcmtk/dcmjpls/djencode.h>
#include <dcmtk/dcmjpls/djrparam.h>
#include <gtest/gtest.h>

#include "DicomFixtures.h"

namespace workstation::test {
namespace {

namespace fs = std::filesystem;
using Samples = std::vector<std::int32_t>;

class PixelReaderTest : public testing::Test {
 protected:
  PixelData pixels() {
    std::string problem;
    PixelReader reader;
    const std::optional<PixelData> data = reader.pixels(onlyImage(file_), problem);
    EXPECT_TRUE(data) << problem;
    return data.value_or(PixelData());
  }

  void change(const std::function<void(DcmDataset&)>& what, const std::string& syntax = "") {
    edit(file_, what, syntax);
  }

  TemporaryFolder folder_;
  fs::path file_ = folder_.file("image");
};

Samples samplesOf(const ImageToWrite& image) { return {image.samples.begin(), image.samples.end()}; }

TEST_F(PixelReaderTest, GivesStoredValuesRowByRow) {
  write(sagittalImage(), file_);
  const PixelData data = pixels();
  EXPECT_EQ(data.rows, 6);
  EXPECT_EQ(data.columns, 8);
  EXPECT_EQ(data.samplesPerPixel, 1);
  EXPECT_EQ(data.samples, samplesOf(sagittalImage()));
  EXPECT_EQ(data.windowCentre, 250);
  EXPECT_EQ(data.windowWidth, 600);
  EXPECT_FALSE(data.monochrome1);
}

TEST_F(PixelReaderTest, GivesNegativeValues) {
  write(axialImage(), file_);
  EXPECT_EQ(pixels().samples, samplesOf(axialImage()));
  EXPECT_EQ(pixels().samples[0], -200);
}

TEST_F(PixelReaderTest, ReadsEveryUncompressedTransferSyntaxAlike) {
  for (const char* syntax : {UID_LittleEndianImplicitTransferSyntax, UID_LittleEndianExplicitTransferSyntax,
                             UID_BigEndianExplicitTransferSyntax, UID_DeflatedExplicitVRLittleEndianTransferSyntax}) {
    write(axialImage(), file_);
    change([](DcmDataset&) {}, syntax);
    EXPECT_EQ(pixels().samples, samplesOf(axialImage())) << syntax;
  }
}

TEST_F(PixelReaderTest, ReadsLosslessCompressionExactly) {
  DcmRLEEncoderRegistration::registerCodecs();
  DJEncoderRegistration::registerCodecs();
  DJLSEncoderRegistration::registerCodecs();
  const DJ_RPLossless jpeg;
  const DJLSRepresentationParameter jpegLs(0, OFTrue);
  const std::pair<E_TransferSyntax, const DcmRepresentationParameter*> encodings[] = {{EXS_RLELossless, nullptr},
                                                                                      {EXS_JPEGProcess14, &jpeg},
                                                                                      {EXS_JPEGProcess14SV1, &jpeg},
                                                                                      {EXS_JPEGLSLossless, &jpegLs}};
  for (const ImageToWrite& image : {sagittalImage(), axialImage()}) {
    for (const auto& [syntax, parameter] : encodings) {
      write(image, file_);
      const std::string uid = DcmXfer(syntax).getXferID();
      change([&, wanted = syntax,
              how = parameter](DcmDataset& data) { ASSERT_TRUE(data.chooseRepresentation(wanted, how).good()); },
             uid);
      EXPECT_EQ(pixels().samples, samplesOf(image)) << uid;
    }
  }
}

TEST_F(PixelReaderTest, CutsOutTheStoredBitsAndExtendsTheSign) {
  write(axialImage(), file_);
  change([](DcmDataset& data) {
    data.putAndInsertUint16(DCM_BitsStored, 12);
    data.putAndInsertUint16(DCM_HighBit, 13);
    std::vector<Uint16> words(48, 0);
    words[0] = 0xC003 | (0x7ff << 2);  // greatest positive value; bits beside it set
    words[1] = 0x800 << 2;             // greatest negative value
    words[2] = 0xfff << 2;             // -1
    data.putAndInsertUint16Array(DCM_PixelData, words.data(), words.size());
  });
  const PixelData data = pixels();
  EXPECT_EQ(data.samples[0], 2047);
  EXPECT_EQ(data.samples[1], -2048);
  EXPECT_EQ(data.samples[2], -1);
  EXPECT_EQ(data.samples[3], 0);
}

TEST_F(PixelReaderTest, ReadsUnsignedValuesAbove32767) {
  write(sagittalImage(), file_);
  change(
      [](DcmDataset& data) { data.putAndInsertUint16Array(DCM_PixelData, std::vector<Uint16>(48, 65535).data(), 48); });
  EXPECT_EQ(pixels().samples, Samples(48, 65535));
}

TEST_F(PixelReaderTest, GivesRescaleAndTheFirstOfSeveralWindows) {
  write(axialImage(), file_);
  change([](DcmDataset& data) {
    data.putAndInsertString(DCM_RescaleSlope, "0.5");
    data.putAndInsertString(DCM_RescaleIntercept, "-1024");
    data.putAndInsertString(DCM_WindowCenter, "40\\400");
    data.putAndInsertString(DCM_WindowWidth, "350\\1500");
    data.putAndInsertString(DCM_PhotometricInterpretation, "MONOCHROME1");
  });
  const PixelData data = pixels();
  EXPECT_EQ(data.rescaleSlope, 0.5);
  EXPECT_EQ(data.rescaleIntercept, -1024);
  EXPECT_EQ(data.windowCentre, 40);
  EXPECT_EQ(data.windowWidth, 350);
  EXPECT_TRUE(data.monochrome1);
}

TEST_F(PixelReaderTest, HasNoWindowWhereTheFileHasNone) {
  write(sagittalImage(), file_);
  change([](DcmDataset& data) { data.findAndDeleteElement(DCM_WindowWidth); });
  EXPECT_EQ(pixels().windowCentre, std::nullopt);
  EXPECT_EQ(pixels().windowWidth, std::nullopt);
}

/// Makes a colour image of 2 rows and 2 columns with 8 bits a sample.
void makeColour(DcmDataset& data, const char* model, int planarConfiguration, const std::vector<Uint8>& bytes) {
  data.putAndInsertUint16(DCM_Rows, 2);
  data.putAndInsertUint16(DCM_Columns, 2);
  data.putAndInsertUint16(DCM_SamplesPerPixel, 3);
  data.putAndInsertString(DCM_PhotometricInterpretation, model);
  data.putAndInsertUint16(DCM_PlanarConfiguration, static_cast<Uint16>(planarConfiguration));
  data.putAndInsertUint16(DCM_BitsAllocated, 8);
  data.putAndInsertUint16(DCM_BitsStored, 8);
  data.putAndInsertUint16(DCM_HighBit, 7);
  data.putAndInsertUint16(DCM_PixelRepresentation, 0);
  ASSERT_TRUE(data.putAndInsertUint8Array(DCM_PixelData, bytes.data(), bytes.size()).good());
}

const Samples fourColours = {255, 0, 0, 0, 255, 0, 0, 0, 255, 10, 20, 30};

TEST_F(PixelReaderTest, InterleavesColoursHoweverTheyAreStored) {
  const std::vector<Uint8> byPixel = {255, 0, 0, 0, 255, 0, 0, 0, 255, 10, 20, 30};
  const std::vector<Uint8> byPlane = {255, 0, 0, 10, 0, 255, 0, 20, 0, 0, 255, 30};
  DcmRLEEncoderRegistration::registerCodecs();
  for (const int planarConfiguration : {0, 1}) {
    for (const bool isCompressed : {false, true}) {
      write(sagittalImage(), file_);
      change(
          [&](DcmDataset& data) {
            makeColour(data, "RGB", planarConfiguration, planarConfiguration == 0 ? byPixel : byPlane);
            if (isCompressed) {
              ASSERT_TRUE(data.chooseRepresentation(EXS_RLELossless, nullptr).good());
            }
          },
          isCompressed ? UID_RLELosslessTransferSyntax : "");
      EXPECT_TRUE(onlyImage(file_).colour);
      EXPECT_EQ(pixels().samplesPerPixel, 3);
      EXPECT_EQ(pixels().samples, fourColours) << planarConfiguration << isCompressed;
    }
  }
}

TEST_F(PixelReaderTest, TurnsLuminanceAndColourDifferencesIntoRgb) {
  // ITU-R BT.601, full range: red is (76, 85, 255), green (150, 44, 21), blue (29, 255, 107), to the nearest whole.
  write(sagittalImage(), file_);
  change([](DcmDataset& data) {
    makeColour(data, "YBR_FULL", 0, {76, 85, 255, 150, 44, 21, 29, 255, 107, 128, 128, 128});
  });
  const Samples expected = {255, 0, 0, 0, 255, 0, 0, 0, 255, 128, 128, 128};
  const PixelData data = pixels();
  ASSERT_EQ(data.samples.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_NEAR(data.samples[i], expected[i], 2) << i;
}

TEST_F(PixelReaderTest, SharesColourDifferencesBetweenTwoPixelsOf422) {
  write(sagittalImage(), file_);
  change([](DcmDataset& data) { makeColour(data, "YBR_FULL_422", 0, {100, 200, 128, 128, 76, 76, 85, 255}); });
  const Samples expected = {100, 100, 100, 200, 200, 200, 254, 0, 0, 254, 0, 0};
  const PixelData data = pixels();
  ASSERT_EQ(data.samples.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_NEAR(data.samples[i], expected[i], 2) << i;
}

TEST_F(PixelReaderTest, GivesEveryWindowWithItsExplanation) {
  write(axialImage(), file_);
  change([](DcmDataset& data) {
    data.putAndInsertString(DCM_SpecificCharacterSet, "ISO_IR 192");
    data.putAndInsertString(DCM_WindowCenter, "40\\400\\7\\-600");
    data.putAndInsertString(DCM_WindowWidth, "350\\1500\\0\\1600");
    data.putAndInsertString(DCM_WindowCenterWidthExplanation, "SOFT\\ Kn\u00f6chern \\NONE");
    data.putAndInsertString(DCM_VOILUTFunction, "SIGMOID");
  });
  const PixelData data = pixels();
  ASSERT_EQ(data.windows.size(), 3U);  // a width of 0 is none
  EXPECT_EQ(data.windows[0].centre, 40);
  EXPECT_EQ(data.windows[0].explanation, "SOFT");
  EXPECT_EQ(data.windows[1].width, 1500);
  EXPECT_EQ(data.windows[1].explanation, "Kn\u00f6chern");
  EXPECT_EQ(data.windows[2].centre, -600);
  EXPECT_EQ(data.windows[2].explanation, "");
  EXPECT_EQ(data.windowFunction, WindowFunction::sigmoid);
  EXPECT_TRUE(data.voiLuts.empty());
}

/// Adds an item to the VOI LUT Sequence; the descriptor as unsigned words.
void addVoiLut(DcmDataset& data, std::vector<Uint16> descriptor, std::vector<Uint16> entries, const char* explanation) {
  DcmItem* item = nullptr;
  data.findOrCreateSequenceItem(DCM_VOILUTSequence, item, -2);
  item->putAndInsertUint16Array(DCM_LUTDescriptor, descriptor.data(), 3);
  item->putAndInsertUint16Array(DCM_LUTData, entries.data(), entries.size());
  if (explanation != nullptr) item->putAndInsertString(DCM_LUTExplanation, explanation);
}

TEST_F(PixelReaderTest, GivesTheTablesOfTheVoiLutSequence) {
  write(sagittalImage(), file_);
  change([](DcmDataset& data) {
    data.findAndDeleteElement(DCM_WindowCenter);
    addVoiLut(data, {3, 500, 12}, {10, 2000, 4095}, "SPINE");
    addVoiLut(data, {2, 0, 8}, {1, 255}, nullptr);
  });
  const PixelData data = pixels();
  EXPECT_TRUE(data.windows.empty());
  EXPECT_FALSE(data.windowCentre);
  ASSERT_EQ(data.voiLuts.size(), 2U);
  EXPECT_EQ(data.voiLuts[0].firstMapped, 500);
  EXPECT_EQ(data.voiLuts[0].bits, 12);
  EXPECT_EQ(data.voiLuts[0].entries, (std::vector<std::uint16_t>{10, 2000, 4095}));
  EXPECT_EQ(data.voiLuts[0].explanation, "SPINE");
  EXPECT_EQ(data.voiLuts[1].explanation, "");
}

TEST_F(PixelReaderTest, FirstMappedValueIsNegativeWhereValuesCanBe) {
  write(sagittalImage(), file_);
  change([](DcmDataset& data) {
    data.putAndInsertString(DCM_RescaleIntercept, "-1024");
    addVoiLut(data, {1, 65536 - 1000, 8}, {7}, nullptr);
  });
  ASSERT_EQ(pixels().voiLuts.size(), 1U);
  EXPECT_EQ(pixels().voiLuts[0].firstMapped, -1000);
}

TEST_F(PixelReaderTest, LeavesOutVoiTablesThatAreNotWhole) {
  write(sagittalImage(), file_);
  change([](DcmDataset& data) {
    addVoiLut(data, {9, 0, 8}, {1, 2}, "shorter than it says");
    addVoiLut(data, {2, 0, 77}, {1, 2}, "of 77 bits");
    addVoiLut(data, {0, 0, 16}, {1, 2}, "65536 entries are said");
    addVoiLut(data, {2, 0, 16}, {1, 2}, "whole");
  });
  const PixelData data = pixels();
  ASSERT_EQ(data.voiLuts.size(), 1U);
  EXPECT_EQ(data.voiLuts[0].explanation, "whole");
}

TEST_F(PixelReaderTest, LooksColoursUpInAPalette) {
  write(sagittalImage(), file_);
  change([](DcmDataset& data) {
    makeColour(data, "PALETTE COLOR", 0, {10, 11, 12, 200});
    data.putAndInsertUint16(DCM_SamplesPerPixel, 1);
    const std::vector<Uint16> descriptor = {3, 10, 16};
    const std::vector<Uint16> red = {0xff00, 0, 0x8000};
    const std::vector<Uint16> green = {0, 0xff00, 0x4000};
    const std::vector<Uint16> blue = {0, 0, 0x2000};
    data.putAndInsertUint16Array(DCM_RedPaletteColorLookupTableDescriptor, descriptor.data(), 3);
    data.putAndInsertUint16Array(DCM_GreenPaletteColorLookupTableDescriptor, descriptor.data(), 3);
    data.putAndInsertUint16Array(DCM_BluePaletteColorLookupTableDescriptor, descriptor.data(), 3);
    data.putAndInsertUint16Array(DCM_RedPaletteColorLookupTableData, red.data(), 3);
    data.putAndInsertUint16Array(DCM_GreenPaletteColorLookupTableData, green.data(), 3);
    data.putAndInsertUint16Array(DCM_BluePaletteColorLookupTableData, blue.data(), 3);
  });
  EXPECT_TRUE(onlyImage(file_).colour);
  // Values outside the table take its first or last entry.
  EXPECT_EQ(pixels().samples, (Samples{255, 0, 0, 0, 255, 0, 128, 64, 32, 128, 64, 32}));
}

TEST_F(PixelReaderTest, RefusesAPaletteThatIsMissing) {
  write(sagittalImage(), file_);
  change([](DcmDataset& data) {
    makeColour(data, "PALETTE COLOR", 0, {1, 2, 3, 4});
    data.putAndInsertUint16(DCM_SamplesPerPixel, 1);
  });
  std::string problem;
  PixelReader reader;
  EXPECT_FALSE(reader.pixels(onlyImage(file_), problem));
  EXPECT_NE(problem.find("palette"), std::string::npos) << problem;
}

TEST_F(PixelReaderTest, RefusesAFrameThatTheFileDoesNotHave) {
  write(sagittalImage(), file_);
  ImageRecord record = onlyImage(file_);
  PixelReader reader;
  for (const int frame : {0, -1, 2}) {
    std::string problem;
    record.frame = frame;
    EXPECT_FALSE(reader.pixels(record, problem));
    EXPECT_NE(problem.find("no frame"), std::string::npos) << problem;
    EXPECT_NE(problem.find(file_.string()), std::string::npos) << problem;
  }
}

TEST_F(PixelReaderTest, SaysSoWhenTheFileHasGone) {
  write(sagittalImage(), file_);
  const ImageRecord record = onlyImage(file_);
  fs::remove(file_);
  std::string problem;
  PixelReader reader;
  EXPECT_FALSE(reader.pixels(record, problem));
  EXPECT_NE(problem.find(file_.string()), std::string::npos) << problem;
}

TEST_F(PixelReaderTest, RefusesCompressedPixelsThatAreDamaged) {
  DJLSEncoderRegistration::registerCodecs();
  write(sagittalImage(), file_);
  const DJLSRepresentationParameter jpegLs(0, OFTrue);
  change([&](DcmDataset& data) { ASSERT_TRUE(data.chooseRepresentation(EXS_JPEGLSLossless, &jpegLs).good()); },
         UID_JPEGLSLosslessTransferSyntax);
  std::vector<std::uint8_t> bytes = bytesOf(file_);
  const std::vector<std::uint8_t> mark = {0xff, 0xd8, 0xff};
  const auto start = std::search(bytes.begin(), bytes.end(), mark.begin(), mark.end());
  ASSERT_NE(start, bytes.end());
  std::fill(start, start + 16, std::uint8_t{0});
  writeBytes(file_, bytes);
  std::string problem;
  PixelReader reader;
  EXPECT_FALSE(reader.pixels(onlyImage(file_), problem));
  EXPECT_NE(problem.find("cannot be decoded"), std::string::npos) << problem;
}

}  // namespace
}  // namespace workstation::test
