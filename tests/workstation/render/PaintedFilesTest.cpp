// From a file to grey levels on the screen: every way in which samples are stored and are asked to be shown.
#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>
#include <gtest/gtest.h>

#include "tests/workstation/dicom/DicomFixtures.h"
#include "workstation/dicom/PixelReader.h"
#include "workstation/render/GreyImage.h"

namespace workstation::test {
namespace {

using Bytes = std::vector<Uint8>;
using Words = std::vector<Uint16>;

/// How one row of grey pixels is stored.
struct GreyFile {
  int bitsAllocated = 16;
  int bitsStored = 16;
  bool isSigned = false;
  const char* photometric = "MONOCHROME2";
  const char* window = "";   ///< centre, blank, width
  const char* rescale = "";  ///< slope, blank, intercept
  const char* function = "";
  Words words;  ///< as they stand in the file; of 8 bits, the bytes
};

class PaintedFiles : public testing::Test {
 protected:
  static std::pair<std::string, std::string> two(const std::string& text) {
    const std::size_t blank = text.find(' ');
    return {text.substr(0, blank), text.substr(blank + 1)};
  }

  static void putPixels(DcmDataset& data, int bitsAllocated, int columns, const Words& words) {
    data.putAndInsertUint16(DCM_Rows, 1);
    data.putAndInsertUint16(DCM_Columns, static_cast<Uint16>(columns));
    data.putAndInsertUint16(DCM_BitsAllocated, static_cast<Uint16>(bitsAllocated));
    Bytes bytes;
    for (const Uint16 word : words) bytes.push_back(static_cast<Uint8>(word));
    if (bytes.size() % 2 == 1) bytes.push_back(0);
    const OFCondition put = bitsAllocated == 8
                                ? data.putAndInsertUint8Array(DCM_PixelData, bytes.data(), bytes.size())
                                : data.putAndInsertUint16Array(DCM_PixelData, words.data(), words.size());
    ASSERT_TRUE(put.good()) << put.text();
  }

  void store(const GreyFile& grey) {
    write(sagittalImage(), file_);
    edit(file_, [&](DcmDataset& data) {
      putPixels(data, grey.bitsAllocated, static_cast<int>(grey.words.size()), grey.words);
      data.putAndInsertUint16(DCM_BitsStored, static_cast<Uint16>(grey.bitsStored));
      data.putAndInsertUint16(DCM_HighBit, static_cast<Uint16>(grey.bitsStored - 1));
      data.putAndInsertUint16(DCM_PixelRepresentation, grey.isSigned ? 1 : 0);
      data.putAndInsertString(DCM_PhotometricInterpretation, grey.photometric);
      for (const DcmTagKey& tag : {DCM_WindowCenter, DCM_WindowWidth, DCM_RescaleSlope, DCM_RescaleIntercept})
        data.findAndDeleteElement(tag);
      if (*grey.window) {
        data.putAndInsertString(DCM_WindowCenter, two(grey.window).first.c_str());
        data.putAndInsertString(DCM_WindowWidth, two(grey.window).second.c_str());
      }
      if (*grey.rescale) {
        data.putAndInsertString(DCM_RescaleSlope, two(grey.rescale).first.c_str());
        data.putAndInsertString(DCM_RescaleIntercept, two(grey.rescale).second.c_str());
      }
      if (*grey.function) data.putAndInsertString(DCM_VOILUTFunction, grey.function);
    });
  }

  void addTable(const Words& descriptor, const Words& entries, const DcmTagKey& sequence = DCM_VOILUTSequence) {
    edit(file_, [&](DcmDataset& data) {
      DcmItem* item = nullptr;
      ASSERT_TRUE(data.findOrCreateSequenceItem(sequence, item, -2).good());
      item->putAndInsertUint16Array(DCM_LUTDescriptor, descriptor.data(), descriptor.size());
      item->putAndInsertUint16Array(DCM_LUTData, entries.data(), entries.size());
    });
  }

  QImage painted(const std::optional<std::size_t>& table = std::nullopt) {
    std::string problem;
    PixelReader reader;
    const auto pixels = reader.pixels(onlyImage(file_), problem);
    EXPECT_TRUE(pixels) << problem;
    if (!pixels) return {};
    const StoredRange range = storedRange(*pixels);
    return imageOfPixels(*pixels, range, voiTransformOf(*pixels, range, std::nullopt, table));
  }

  std::vector<int> levels(const std::optional<std::size_t>& table = std::nullopt) {
    const QImage image = painted(table);
    std::vector<int> row;
    for (int x = 0; x < image.width(); ++x) row.push_back(qRed(image.pixel(x, 0)));
    return row;
  }

  TemporaryFolder folder_;
  std::filesystem::path file_ = folder_.file("image");
};

// Linear windows by ((x - (c - 0.5)) / (w - 1) + 0.5) * 255, where x = slope * value + intercept.
TEST_F(PaintedFiles, SamplesOfEveryWidthAndSign) {
  struct Row {
    const char* name;
    GreyFile file;
    std::vector<int> levels;
  };
  const Row rows[] = {
      {"8 bits", {8, 8, false, "MONOCHROME2", "128 256", "", "", {0, 1, 128, 255}}, {0, 1, 128, 255}},
      {"8 bits signed", {8, 8, true, "MONOCHROME2", "0 256", "", "", {0x80, 0xff, 0, 0x7f}}, {0, 127, 128, 255}},
      // 512 / 1023 * 255 = 127.62; the six bits above are no part of the value.
      {"10 of 16 bits", {16, 10, false, "MONOCHROME2", "512 1024", "", "", {0xfc00, 0xfe00, 0x3ff}}, {0, 128, 255}},
      // (x + 2048) / 4095 * 255: 127.469 and 127.531 in the middle.
      {"12 of 16 bits signed",
       {16, 12, true, "MONOCHROME2", "0 4096", "", "", {0x0800, 0x0fff, 0, 0x07ff}},
       {0, 127, 128, 255}},
      // x / 65535 * 255: 127.498 and 127.502 in the middle.
      {"16 bits", {16, 16, false, "MONOCHROME2", "32768 65536", "", "", {0, 32767, 32768, 65535}}, {0, 127, 128, 255}},
      {"16 bits signed",
       {16, 16, true, "MONOCHROME2", "0 65536", "", "", {0x8000, 0xffff, 0, 0x7fff}},
       {0, 127, 128, 255}},
      {"low values bright", {8, 8, false, "MONOCHROME1", "128 256", "", "", {0, 1, 128, 255}}, {255, 254, 127, 0}},
      // -1024, -160, 40, 240: black up to 39.5 - 199.5, white above 239; (0.5 / 399 + 0.5) * 255 = 127.82.
      {"Hounsfield units",
       {16, 12, false, "MONOCHROME2", "40 400", "1 -1024", "", {0, 864, 1064, 1264}},
       {0, 0, 128, 255}},
      // -120, -100, -50, 120: (-99.5 / 200 + 0.5) * 255 = 0.64, (-49.5 / 200 + 0.5) * 255 = 64.39.
      {"slope 2 of signed values",
       {16, 16, true, "MONOCHROME2", "0 201", "2 -100", "", {0xfff6, 0, 25, 110}},
       {0, 1, 64, 255}},
      // 1 / (1 + e^4) * 255 = 4.59, a half, and 255 less the former.
      {"sigmoid", {8, 8, false, "MONOCHROME2", "100 40", "", "SIGMOID", {60, 100, 140, 100}}, {5, 128, 250, 128}},
      // (-10 / 40 + 0.5) * 255 = 63.75.
      {"linear exact",
       {8, 8, false, "MONOCHROME2", "100 40", "", "LINEAR_EXACT", {80, 90, 100, 120}},
       {0, 64, 128, 255}},
      {"no window", {16, 16, false, "MONOCHROME2", "", "", "", {1000, 1051, 1102, 1255}}, {0, 51, 102, 255}},
  };
  for (const Row& row : rows) {
    store(row.file);
    EXPECT_EQ(levels(), row.levels) << row.name;
  }
}

TEST_F(PaintedFiles, TablesOfTheFileAndTheOneThatIsChosen) {
  store({16, 12, false, "MONOCHROME2", "", "1 -100", "", {99, 100, 101, 102, 200}});
  addTable({3, 0, 8}, {0, 128, 255});  // modality values 0 .. 2, stored ones 100 .. 102
  addTable({2, 1, 12}, {4095, 0});     // from 1 on, turned round
  EXPECT_EQ(levels(), (std::vector<int>{0, 0, 128, 255, 255}));
  EXPECT_EQ(levels(1), (std::vector<int>{255, 255, 255, 0, 0}));
  EXPECT_EQ(levels(2), levels()) << "there is no third one";
  edit(file_, [](DcmDataset& data) { data.putAndInsertString(DCM_PhotometricInterpretation, "MONOCHROME1"); });
  EXPECT_EQ(levels(), (std::vector<int>{255, 255, 127, 0, 0}));
}

TEST_F(PaintedFiles, ATableIsChosenOverTheWindowOfTheFile) {
  store({8, 8, false, "MONOCHROME2", "128 256", "", "", {0, 1, 2, 255}});
  addTable({2, 1, 8}, {10, 20});
  EXPECT_EQ(levels(), (std::vector<int>{0, 1, 2, 255})) << "the window, as long as nobody chooses";
  EXPECT_EQ(levels(0), (std::vector<int>{10, 10, 20, 20}));
}

TEST_F(PaintedFiles, AModalityTableComesBeforeWindowAndVoiTable) {
  store({8, 8, false, "MONOCHROME2", "32768 65536", "", "", {0, 1, 2, 255}});
  addTable({3, 0, 16}, {0, 32768, 65535}, DCM_ModalityLUTSequence);
  EXPECT_EQ(levels(), (std::vector<int>{0, 128, 255, 255})) << "x / 65535 * 255: 127.502 for 32768";
  addTable({2, 32768, 8}, {10, 20});
  EXPECT_EQ(levels(0), (std::vector<int>{10, 10, 20, 20}));
  store({8, 8, false, "MONOCHROME1", "", "", "", {0, 1, 2, 3}});
  addTable({3, 0, 16}, {1255, 1051, 1000}, DCM_ModalityLUTSequence);
  EXPECT_EQ(levels(), (std::vector<int>{0, 204, 255, 255})) << "255 less 255, 51 and 0 of 255";
}

TEST_F(PaintedFiles, ColoursByPixelByPlaneAndFromAPalette) {
  const auto storeColours = [&](const char* photometric, int samples, int planar, const Words& bytes) {
    write(sagittalImage(), file_);
    edit(file_, [&](DcmDataset& data) {
      putPixels(data, 8, 2, bytes);
      data.putAndInsertUint16(DCM_BitsStored, 8);
      data.putAndInsertUint16(DCM_HighBit, 7);
      data.putAndInsertUint16(DCM_PixelRepresentation, 0);
      data.putAndInsertUint16(DCM_SamplesPerPixel, static_cast<Uint16>(samples));
      data.putAndInsertUint16(DCM_PlanarConfiguration, static_cast<Uint16>(planar));
      data.putAndInsertString(DCM_PhotometricInterpretation, photometric);
    });
  };
  const auto colours = [&] {
    const QImage image = painted();
    return std::vector<QRgb>{image.pixel(0, 0), image.pixel(1, 0)};
  };
  const std::vector<QRgb> expected{qRgb(255, 0, 10), qRgb(0, 128, 20)};
  storeColours("RGB", 3, 0, {255, 0, 10, 0, 128, 20});
  EXPECT_EQ(colours(), expected);
  storeColours("RGB", 3, 1, {255, 0, 0, 128, 10, 20});
  EXPECT_EQ(colours(), expected);
  storeColours("PALETTE COLOR", 1, 0, {7, 8});
  edit(file_, [](DcmDataset& data) {
    const Words descriptor{2, 7, 16};
    const std::pair<std::pair<DcmTagKey, DcmTagKey>, Words> channels[] = {
        {{DCM_RedPaletteColorLookupTableDescriptor, DCM_RedPaletteColorLookupTableData}, {0xff00, 0}},
        {{DCM_GreenPaletteColorLookupTableDescriptor, DCM_GreenPaletteColorLookupTableData}, {0, 0x8000}},
        {{DCM_BluePaletteColorLookupTableDescriptor, DCM_BluePaletteColorLookupTableData}, {0x0a00, 0x1400}}};
    for (const auto& [tags, entries] : channels) {
      data.putAndInsertUint16Array(tags.first, descriptor.data(), 3);
      data.putAndInsertUint16Array(tags.second, entries.data(), 2);
    }
  });
  EXPECT_EQ(colours(), expected);
}

}  // namespace
}  // namespace workstation::test
