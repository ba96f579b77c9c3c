#include "workstation/dicom/StudyReader.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dcpixel.h>
#include <dcmtk/dcmdata/dcpixseq.h>
#include <dcmtk/dcmdata/dcpxitem.h>
#include <dcmtk/dcmdata/dctk.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "DicomFixtures.h"

namespace workstation::test {
namespace {

namespace fs = std::filesystem;

/// The bytes that this process has been given by the system so far, from files of any kind.
std::uint64_t bytesReadSoFar() {
  std::ifstream counts("/proc/self/io");
  std::string name;
  std::uint64_t count = 0;
  while (counts >> name >> count) {
    if (name == "rchar:") return count;
  }
  return 0;
}

class StudyReader : public testing::Test {
 protected:
  fs::path image(const std::string& name, int instanceNumber = 1) {
    write(sagittalImage(instanceNumber), folder_.file(name));
    return folder_.file(name);
  }
  ReadResult read() const { return readImages(folder_.path()); }

  TemporaryFolder folder_;
};

TEST_F(StudyReader, FindsImagesAtAnyDepthWithAndWithoutExtension) {
  image("a/b/c/IM0001", 1);
  image("a/b/image.dcm", 2);
  image("3", 3);
  image("named.txt", 4);
  const ReadResult result = read();
  EXPECT_EQ(result.images.size(), 4U);
  EXPECT_TRUE(result.unreadable.empty());
  EXPECT_TRUE(result.notDicom.empty());
  EXPECT_TRUE(result.warning.empty()) << result.warning;
}

TEST_F(StudyReader, LeavesPixelDataWhereTheyAre) {
  ASSERT_GT(bytesReadSoFar(), 0U);
  const fs::path file = image("large.dcm");
  edit(file, [](DcmDataset& dataset) {
    const std::vector<Uint16> pixels(4096UL * 4096UL, 7);
    dataset.putAndInsertUint16(DCM_Rows, 4096);
    dataset.putAndInsertUint16(DCM_Columns, 4096);
    dataset.putAndInsertUint16Array(DCM_PixelData, pixels.data(), pixels.size());
  });
  ASSERT_GT(fs::file_size(file), 32U << 20);
  const std::uint64_t written = bytesReadSoFar();
  ASSERT_EQ(onlyImage(file).rows, 4096);
  EXPECT_LT(bytesReadSoFar() - written, 1U << 20);
}

TEST_F(StudyReader, ListsWhatIsGoodAndGivesAReasonForEachBadFile) {
  image("good 1.dcm", 1);
  image("good 2", 2);
  truncate(image("cut in the pixels.dcm", 3), fs::file_size(folder_.file("good 2")) - 10);
  truncate(image("cut in the middle", 4), 400);
  truncate(image("cut in the preamble", 5), 60);
  writeText(folder_.file("text.dcm"), "This is a letter, not an image.\n");
  writeText(folder_.file("README.txt"), "Read me.\n");
  writeText(folder_.file("LICENSE"), "Do as you like.\n");
  writeText(folder_.file("nothing.dcm"), "");
  edit(image("no pixels.dcm", 6), [](DcmDataset& data) { data.findAndDeleteElement(DCM_PixelData); });
  edit(image("no orientation.dcm", 7),
       [](DcmDataset& data) { data.findAndDeleteElement(DCM_ImageOrientationPatient); });
  edit(image("spacing 0.dcm", 8), [](DcmDataset& data) { data.putAndInsertString(DCM_PixelSpacing, "0\\0"); });

  const ReadResult result = read();
  const auto reason = [&](const char* name) { return reasonFor(folder_.path() / name, result); };
  EXPECT_NE(reason("cut in the pixels.dcm").find("truncated"), std::string::npos) << reason("cut in the pixels.dcm");
  EXPECT_NE(reason("cut in the middle").find("truncated"), std::string::npos) << reason("cut in the middle");
  EXPECT_NE(reason("cut in the preamble").find("truncated"), std::string::npos) << reason("cut in the preamble");
  EXPECT_NE(reason("text.dcm").find("not a DICOM file"), std::string::npos) << reason("text.dcm");
  EXPECT_NE(reason("nothing.dcm").find("empty"), std::string::npos) << reason("nothing.dcm");
  EXPECT_NE(reason("no pixels.dcm").find("no pixel data"), std::string::npos) << reason("no pixels.dcm");
  EXPECT_EQ(result.unreadable.size(), 6U);
  EXPECT_EQ(result.notDicom, (std::vector<fs::path>{folder_.path() / "LICENSE", folder_.path() / "README.txt"}));
  ASSERT_EQ(result.images.size(), 4U);  // by path: good 1, good 2, no orientation, spacing 0
  EXPECT_TRUE(result.images[0].geometry && result.images[1].geometry);
  EXPECT_FALSE(result.images[2].geometry);
  EXPECT_EQ(result.images[2].geometryProblem, "Image Orientation (Patient) is missing");
  EXPECT_FALSE(result.images[3].geometry);
  EXPECT_EQ(result.images[3].geometryProblem, "Pixel Spacing is 0");
}

struct Spoilt {
  const char* name;
  void (*spoil)(DcmDataset&);
  const char* problem;
};
class Geometry : public testing::TestWithParam<Spoilt> {};

TEST_P(Geometry, IsAbsentWithTheReason) {
  const TemporaryFolder folder;
  write(sagittalImage(), folder.file("image"));
  edit(folder.file("image"), GetParam().spoil);
  const ImageRecord record = onlyImage(folder.file("image"));
  EXPECT_FALSE(record.geometry);
  EXPECT_EQ(record.geometryProblem, GetParam().problem);
}

INSTANTIATE_TEST_SUITE_P(
    Spoilt, Geometry,
    testing::Values(
        Spoilt{"NoPosition", [](DcmDataset& data) { data.findAndDeleteElement(DCM_ImagePositionPatient); },
               "Image Position (Patient) is missing"},
        Spoilt{"EmptyPosition", [](DcmDataset& data) { data.putAndInsertString(DCM_ImagePositionPatient, ""); },
               "Image Position (Patient) is missing"},
        Spoilt{"PositionOfTwoNumbers",
               [](DcmDataset& data) { data.putAndInsertString(DCM_ImagePositionPatient, "1\\2"); },
               "Image Position (Patient) has 2 values instead of 3"},
        Spoilt{"PositionOfWords",
               [](DcmDataset& data) { data.putAndInsertString(DCM_ImagePositionPatient, "left\\2\\3"); },
               "Image Position (Patient) is not made of numbers"},
        Spoilt{"PositionNotFinite",
               [](DcmDataset& data) { data.putAndInsertString(DCM_ImagePositionPatient, "nan\\2\\3"); },
               "Image Position (Patient) is not finite"},
        Spoilt{"OrientationOfZeros",
               [](DcmDataset& data) { data.putAndInsertString(DCM_ImageOrientationPatient, "0\\0\\0\\0\\0\\0"); },
               "the directions in Image Orientation (Patient) are not unit vectors"},
        Spoilt{"OrientationTooLong",
               [](DcmDataset& data) { data.putAndInsertString(DCM_ImageOrientationPatient, "0\\1.1\\0\\0\\0\\-1"); },
               "the directions in Image Orientation (Patient) are not unit vectors"},
        Spoilt{"OrientationNotPerpendicular",
               [](DcmDataset& data) { data.putAndInsertString(DCM_ImageOrientationPatient, "0\\1\\0\\0\\0.6\\-0.8"); },
               "the directions in Image Orientation (Patient) are not perpendicular"},
        Spoilt{"NoSpacing", [](DcmDataset& data) { data.findAndDeleteElement(DCM_PixelSpacing); },
               "Pixel Spacing is missing"},
        Spoilt{"OnlyImagerSpacing",
               [](DcmDataset& data) {
                 data.findAndDeleteElement(DCM_PixelSpacing);
                 data.putAndInsertString(DCM_ImagerPixelSpacing, "0.5\\0.5");
               },
               "Pixel Spacing is missing"},
        Spoilt{"OneSpacingZero", [](DcmDataset& data) { data.putAndInsertString(DCM_PixelSpacing, "0.5\\0"); },
               "Pixel Spacing is 0"},
        Spoilt{"NegativeSpacing", [](DcmDataset& data) { data.putAndInsertString(DCM_PixelSpacing, "-1\\1"); },
               "Pixel Spacing is negative"},
        Spoilt{"InfiniteSpacing", [](DcmDataset& data) { data.putAndInsertString(DCM_PixelSpacing, "inf\\1"); },
               "Pixel Spacing is not finite"}),
    [](const auto& row) { return row.param.name; });

// Both attributes tell the vertical size first (PS3.3 10.7.1.3 and C.7.6.3.1.7).
TEST_F(StudyReader, ShapeOfPixelsIsKnownWithoutMillimetres) {
  struct Shape {
    const char* spacing;  ///< of the pixels; "" where the attribute is absent
    const char* ratio;
    double aspect;
  };
  constexpr Shape shapes[] = {{"", "2\\1", 2},
                              {"", "3\\4", 0.75},
                              {"", " 1\\100 ", 0.01},
                              {"", "", 1},
                              {"", "2", 1},
                              {"", "2\\1\\1", 1},
                              {"", "0\\1", 1},
                              {"", "2\\0", 1},
                              {"", "-2\\-1", 1},
                              {"", "1\\101", 1},
                              {"", "101\\1", 1},
                              {"", "two\\1", 1},
                              {"", "inf\\1", 1},
                              {"0\\0", "2\\1", 2},
                              {"-1\\1", "2\\1", 2},
                              {"0.75\\0.5", "", 1.5},
                              {"0.75\\0.5", "2\\1", 1.5}};
  for (const Shape& shape : shapes) {
    edit(image("image"), [&](DcmDataset& data) {
      data.findAndDeleteElement(DCM_ImagePositionPatient);
      data.findAndDeleteElement(DCM_PixelSpacing);
      data.putAndInsertString(DCM_ImagerPixelSpacing, "0.9\\0.3");
      if (*shape.spacing) data.putAndInsertString(DCM_PixelSpacing, shape.spacing);
      if (*shape.ratio) data.putAndInsertString(DCM_PixelAspectRatio, shape.ratio);
    });
    const ImageRecord record = onlyImage(folder_.file("image"));
    EXPECT_FALSE(record.geometry) << shape.spacing << ' ' << shape.ratio;
    EXPECT_EQ(paintedPixelAspect(record), shape.aspect) << shape.spacing << ' ' << shape.ratio;
  }
}

TEST_F(StudyReader, PixelAspectRatioIsNeverTakenForMillimetres) {
  edit(image("without"), [](DcmDataset& data) {
    data.findAndDeleteElement(DCM_PixelSpacing);
    data.putAndInsertString(DCM_PixelAspectRatio, "2\\1");
  });
  const ImageRecord without = onlyImage(folder_.file("without"));
  EXPECT_FALSE(without.geometry);
  EXPECT_EQ(without.geometryProblem, "Pixel Spacing is missing");
  edit(image("with"), [](DcmDataset& data) { data.putAndInsertString(DCM_PixelAspectRatio, "2\\1"); });
  const ImageRecord with = onlyImage(folder_.file("with"));
  ASSERT_TRUE(with.geometry);
  EXPECT_EQ(with.geometry->spacingX, 0.5);
  EXPECT_EQ(with.geometry->spacingY, 0.75);
  EXPECT_EQ(paintedPixelAspect(with), 1.5) << "the spacing counts";
}

TEST_F(StudyReader, AcceptsDirectionsOfThreeDecimalsAndMakesThemUnitVectors) {
  edit(image("image"), [](DcmDataset& data) {
    data.putAndInsertString(DCM_ImageOrientationPatient, " 0.027\\+0.999\\0.001\\-0.019\\0.002\\-1.000 ");
  });
  const ImageRecord record = onlyImage(folder_.file("image"));
  ASSERT_TRUE(record.geometry) << record.geometryProblem;
  const auto& row = record.geometry->row;
  EXPECT_NEAR(row[0] * row[0] + row[1] * row[1] + row[2] * row[2], 1, 1e-14);
  EXPECT_NEAR(row[0], 0.027, 1e-4);
}

TEST_F(StudyReader, TakesTheSecondValueOfPixelSpacingForColumns) {
  edit(image("image"), [](DcmDataset& data) { data.putAndInsertString(DCM_PixelSpacing, "0.3\\0.7"); });
  const ImageRecord record = onlyImage(folder_.file("image"));
  ASSERT_TRUE(record.geometry);
  EXPECT_EQ(record.geometry->spacingX, 0.7);
  EXPECT_EQ(record.geometry->spacingY, 0.3);
}

TEST_F(StudyReader, RefusesAnImageWithoutTheIdentifiersThatKeepStudiesApart) {
  edit(image("study"), [](DcmDataset& data) { data.findAndDeleteElement(DCM_StudyInstanceUID); });
  edit(image("series"), [](DcmDataset& data) { data.putAndInsertString(DCM_SeriesInstanceUID, ""); });
  edit(image("object"), [](DcmDataset& data) { data.findAndDeleteElement(DCM_SOPInstanceUID); });
  const ReadResult result = read();
  EXPECT_TRUE(result.images.empty());
  EXPECT_EQ(reasonFor(folder_.file("study"), result), "it has no Study Instance UID");
  EXPECT_EQ(reasonFor(folder_.file("series"), result), "it has no Series Instance UID");
  EXPECT_EQ(reasonFor(folder_.file("object"), result), "it has no SOP Instance UID");
}

TEST_F(StudyReader, IgnoresADicomdirByNameAndByContent) {
  image("image");
  writeText(folder_.file("DICOMDIR"), "whatever");
  DcmFileFormat directory;
  directory.getDataset()->putAndInsertString(DCM_FileSetID, "SET");
  directory.getDataset()->putAndInsertString(DCM_SOPClassUID, UID_MediaStorageDirectoryStorage);
  directory.getDataset()->putAndInsertString(DCM_SOPInstanceUID, "1.2.3");
  ASSERT_TRUE(directory.saveFile(OFFilename(folder_.file("INDEX").c_str()), EXS_LittleEndianExplicit).good());
  const ReadResult result = read();
  EXPECT_EQ(result.images.size(), 1U);
  EXPECT_EQ(result.directories.size(), 2U);
  EXPECT_TRUE(result.unreadable.empty());
}

TEST_F(StudyReader, CountsAReportApartFromWhatIsUnreadable) {
  image("image");
  DcmFileFormat report;
  report.getDataset()->putAndInsertString(DCM_SOPClassUID, UID_ComprehensiveSRStorage);
  report.getDataset()->putAndInsertString(DCM_SOPInstanceUID, "1.2.3");
  ASSERT_TRUE(report.saveFile(OFFilename(folder_.file("report").c_str()), EXS_LittleEndianExplicit).good());
  const ReadResult result = read();
  EXPECT_EQ(result.otherObjects, std::vector<fs::path>{folder_.path() / "report"});
  EXPECT_TRUE(result.unreadable.empty());
  EXPECT_EQ(result.images.size(), 1U);
}

TEST_F(StudyReader, ReadsADataSetWithoutFileHeader) {
  for (const E_TransferSyntax syntax : {EXS_LittleEndianExplicit, EXS_LittleEndianImplicit, EXS_BigEndianExplicit}) {
    const fs::path file = image("with header");
    DcmFileFormat format;
    ASSERT_TRUE(format.loadFile(OFFilename(file.c_str())).good());
    ASSERT_TRUE(format.getDataset()->saveFile(OFFilename(folder_.file("bare").c_str()), syntax).good());
    const ImageRecord record = onlyImage(folder_.file("bare"));
    EXPECT_EQ(record.patientName, "Müller^Änne") << DcmXfer(syntax).getXferName();
    EXPECT_TRUE(record.geometry);
  }
}

TEST_F(StudyReader, ReadsFunctionalGroupsOfASingleFrameThatHoldOtherThings) {
  edit(image("image"), [](DcmDataset& data) {
    DcmItem* group = nullptr;
    ASSERT_TRUE(data.findOrCreateSequenceItem(DCM_SharedFunctionalGroupsSequence, group).good());
    DcmItem* coil = nullptr;
    ASSERT_TRUE(group->findOrCreateSequenceItem(DCM_MRReceiveCoilSequence, coil).good());
  });
  EXPECT_TRUE(onlyImage(folder_.file("image")).geometry);
}

TEST_F(StudyReader, SaysWhichTransferSyntaxIsNotSupported) {
  const fs::path file = folder_.file("video");
  write(sagittalImage(), file);
  DcmFileFormat format;
  ASSERT_TRUE(format.loadFile(OFFilename(file.c_str())).good());
  auto* fragments = new DcmPixelSequence(DcmTag(DCM_PixelData, EVR_OB));
  fragments->insert(new DcmPixelItem(DcmTag(DCM_Item, EVR_OB)));
  auto* fragment = new DcmPixelItem(DcmTag(DCM_Item, EVR_OB));
  ASSERT_TRUE(fragment->putUint8Array(std::vector<Uint8>(64, 0).data(), 64).good());
  fragments->insert(fragment);
  auto* pixels = new DcmPixelData(DCM_PixelData);
  pixels->putOriginalRepresentation(EXS_MPEG4HighProfileLevel4_1, nullptr, fragments);
  ASSERT_TRUE(format.getDataset()->insert(pixels, true).good());
  ASSERT_TRUE(format.saveFile(OFFilename(file.c_str()), EXS_MPEG4HighProfileLevel4_1).good());
  const std::string reason = reasonFor(file, read());
  EXPECT_NE(reason.find("1.2.840.10008.1.2.4.102"), std::string::npos) << reason;
  EXPECT_NE(reason.find("not supported"), std::string::npos) << reason;
}

TEST_F(StudyReader, TellsProgressAndStopsWhenAsked) {
  for (int i = 1; i <= 5; ++i) image("image " + std::to_string(i), i);
  std::vector<std::size_t> steps;
  ReadOptions options;
  options.progress = [&](std::size_t done, std::size_t total) {
    EXPECT_EQ(total, 5U);
    steps.push_back(done);
    return true;
  };
  EXPECT_FALSE(readImages(folder_.path(), options).cancelled);
  EXPECT_EQ(steps, (std::vector<std::size_t>{0, 1, 2, 3, 4, 5}));
  options.progress = [](std::size_t done, std::size_t) { return done < 2; };
  const ReadResult cancelled = readImages(folder_.path(), options);
  EXPECT_TRUE(cancelled.cancelled);
  EXPECT_EQ(cancelled.images.size(), 2U);
}

}  // namespace
}  // namespace workstation::test
