// Files of others, from a folder beside the repository; each test says that it skips where that folder is missing.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>
#include <set>

#include "DicomFixtures.h"
#include "tests/support/Requirements.h"
#include "workstation/dicom/PixelReader.h"
#include "workstation/dicom/StudyReader.h"

namespace workstation::test {
namespace {

namespace fs = std::filesystem;

const fs::path sharedData = VERTANA_SHARED_DATA;

PixelData pixelsOf(const fs::path& file) {
  PixelReader reader;
  std::string problem;
  const std::optional<PixelData> pixels = reader.pixels(onlyImage(file), problem);
  EXPECT_TRUE(pixels) << problem;
  return pixels.value_or(PixelData());
}

struct Difference {
  double greatest = 0;
  double mean = 0;
};

/// How far the modality values of two images differ.
Difference differenceOf(const PixelData& a, const PixelData& b) {
  Difference difference;
  EXPECT_EQ(a.samples.size(), b.samples.size());
  if (a.samples.size() != b.samples.size() || a.samples.empty()) return {1e9, 1e9};
  for (std::size_t i = 0; i < a.samples.size(); ++i) {
    const double distance = std::abs(a.rescaleSlope * a.samples[i] + a.rescaleIntercept -
                                     b.rescaleSlope * b.samples[i] - b.rescaleIntercept);
    difference.greatest = std::max(difference.greatest, distance);
    difference.mean += distance / static_cast<double>(a.samples.size());
  }
  return difference;
}

/// Pearson's coefficient: 1 for the same picture, near 0 for unrelated ones.
double correlationOf(const std::vector<std::int32_t>& a, const std::vector<std::int32_t>& b) {
  const auto count = static_cast<double>(a.size());
  const double meanA = std::accumulate(a.begin(), a.end(), 0.0) / count;
  const double meanB = std::accumulate(b.begin(), b.end(), 0.0) / count;
  double together = 0;
  double ofA = 0;
  double ofB = 0;
  for (std::size_t i = 0; i < a.size() && i < b.size(); ++i) {
    together += (a[i] - meanA) * (b[i] - meanB);
    ofA += (a[i] - meanA) * (a[i] - meanA);
    ofB += (b[i] - meanB) * (b[i] - meanB);
  }
  return together / std::sqrt(ofA * ofB);
}

TEST(SharedData, EveryFileOpensOrIsRefusedWithAReason) {
  SKIP_WITHOUT_FOLDER(sharedData);
  ReadResult result = readImages(sharedData);
  for (const CopiedFile& copy : result.copies) readImageFile(copy.file, result);  // their pixels are looked at, too
  std::set<fs::path> accounted;
  PixelReader reader;
  for (const ImageRecord& image : result.images) {
    accounted.insert(image.file);
    EXPECT_NE(image.geometry.has_value(), !image.geometryProblem.empty()) << image.file;
    std::string problem;
    const std::optional<PixelData> pixels = reader.pixels(image, problem);
    if (!pixels) {
      EXPECT_NE(problem.find(image.file.string()), std::string::npos) << image.file;
      continue;
    }
    EXPECT_EQ(pixels->samples.size(), static_cast<std::size_t>(image.rows * image.columns * pixels->samplesPerPixel));
    EXPECT_EQ(pixels->samplesPerPixel, image.colour ? 3 : 1) << image.file;
  }
  for (const UnreadableFile& unreadable : result.unreadable) {
    accounted.insert(unreadable.file);
    EXPECT_FALSE(unreadable.reason.empty()) << unreadable.file;
  }
  for (const auto* list : {&result.otherObjects, &result.notDicom, &result.directories})
    accounted.insert(list->begin(), list->end());
  for (const auto& entry : fs::recursive_directory_iterator(sharedData))
    EXPECT_TRUE(!entry.is_regular_file() || accounted.contains(entry.path())) << entry.path();
}

TEST(SharedData, TheLumbarStudyHasFiveSeriesWithGeometryAndAReadableName) {
  SKIP_WITHOUT_FOLDER(sharedData / "lspine_mr_a");
  const ReadResult result = readImages(sharedData / "lspine_mr_a");
  EXPECT_TRUE(result.unreadable.empty());
  std::map<int, int> slices;
  std::set<std::string> studies;
  std::set<std::string> frames;
  for (const ImageRecord& image : result.images) {
    ++slices[image.seriesNumber.value_or(-1)];
    studies.insert(image.studyInstanceUid);
    frames.insert(image.frameOfReferenceUid);
    EXPECT_TRUE(image.geometry) << image.file << image.geometryProblem;
    EXPECT_EQ(image.patientName, "ﾃｽﾄ^ﾀﾛｳ=試験^太郎");  // half-width katakana, then kanji: "Test^Taro"
  }
  EXPECT_EQ(slices, (std::map<int, int>{{6, 11}, {7, 11}, {8, 17}, {9, 17}, {12, 11}}));
  EXPECT_EQ(studies.size(), 1U);
  EXPECT_EQ(frames.size(), 1U);
}

struct Syntax {
  const char* name;
  const char* file;
};
class CtInEveryLosslessSyntax : public testing::TestWithParam<Syntax> {};

TEST_P(CtInEveryLosslessSyntax, AgreesPixelForPixelWithTheUncompressedOne) {
  SKIP_WITHOUT_FOLDER(sharedData / "dicom_edge/ct_all_transfer_syntaxes");
  const fs::path folder = sharedData / "dicom_edge/ct_all_transfer_syntaxes";
  const PixelData reference = pixelsOf(folder / "CTImage.dcm");
  const PixelData decoded = pixelsOf(folder / (std::string("CTImage.dcm_") + GetParam().file + ".dcm"));
  EXPECT_EQ(decoded.samples, reference.samples);
  EXPECT_EQ(decoded.rescaleIntercept, -1024);
  EXPECT_EQ(decoded.windowCentre, 40);
}

INSTANTIATE_TEST_SUITE_P(
    Syntaxes, CtInEveryLosslessSyntax,
    testing::Values(Syntax{"Implicit", "LittleEndianImplicitTransferSyntax_1.2.840.10008.1.2"},
                    Syntax{"Explicit", "LittleEndianExplicitTransferSyntax_1.2.840.10008.1.2.1"},
                    Syntax{"BigEndian", "BigEndianExplicitTransferSyntax_1.2.840.10008.1.2.2"},
                    Syntax{"Deflated", "DeflatedExplicitVRLittleEndianTransferSyntax_1.2.840.10008.1.2.1.99"},
                    Syntax{"Rle", "RLELosslessTransferSyntax_1.2.840.10008.1.2.5"},
                    Syntax{"JpegLossless", "JPEGProcess14TransferSyntax_1.2.840.10008.1.2.4.57"},
                    Syntax{"JpegLosslessFirstOrder", "JPEGProcess14SV1TransferSyntax_1.2.840.10008.1.2.4.70"},
                    Syntax{"JpegLsLossless", "JPEGLSLosslessTransferSyntax_1.2.840.10008.1.2.4.80"},
                    Syntax{"Jpeg2000Lossless", "JPEG2000LosslessOnlyTransferSyntax_1.2.840.10008.1.2.4.90"}),
    [](const auto& row) { return row.param.name; });

struct LossySyntax {
  const char* name;
  const char* file;
  double greatest;  ///< Hounsfield units
  double mean;
};
class CtInEveryLossySyntax : public testing::TestWithParam<LossySyntax> {};

/// Bounds, in Hounsfield units. JPEG: the writers stretched the values over 12 bits (steps of 2.0) or 8 bits (steps of
/// 32.1) and compressed about 8:1; no pixel may be off by more than 1 % of the 8192 units that those steps span, and
/// the mean not by more than two steps, while a wrong sign, byte order or shift is off by thousands. JPEG-LS: the
/// codestream was made with an allowance of 1. JPEG 2000 at 4:1: half a percent of the image's range, a mean under 1.
TEST_P(CtInEveryLossySyntax, StaysWithinTheLossOfItsCompression) {
  SKIP_WITHOUT_FOLDER(sharedData / "dicom_edge/ct_all_transfer_syntaxes");
  const fs::path folder = sharedData / "dicom_edge/ct_all_transfer_syntaxes";
  const Difference difference = differenceOf(
      pixelsOf(folder / "CTImage.dcm"), pixelsOf(folder / (std::string("CTImage.dcm_") + GetParam().file + ".dcm")));
  EXPECT_LE(difference.greatest, GetParam().greatest);
  EXPECT_LE(difference.mean, GetParam().mean);
}

INSTANTIATE_TEST_SUITE_P(
    Syntaxes, CtInEveryLossySyntax,
    testing::Values(LossySyntax{"Baseline", "JPEGProcess1TransferSyntax_1.2.840.10008.1.2.4.50", 82, 64},
                    LossySyntax{"Extended", "JPEGProcess2_4TransferSyntax_1.2.840.10008.1.2.4.51", 82, 4},
                    LossySyntax{"Spectral", "JPEGProcess6_8TransferSyntax_1.2.840.10008.1.2.4.53", 82, 4},
                    LossySyntax{"Progressive", "JPEGProcess10_12TransferSyntax_1.2.840.10008.1.2.4.55", 82, 4},
                    LossySyntax{"JpegLsNear", "JPEGLSLossyTransferSyntax_1.2.840.10008.1.2.4.81", 1, 1},
                    LossySyntax{"Jpeg2000", "JPEG2000TransferSyntax_1.2.840.10008.1.2.4.91", 22, 1}),
    [](const auto& row) { return row.param.name; });

TEST(SharedData, FramesInSeveralFragmentsAreFoundWithoutAnOffsetTable) {
  SKIP_WITHOUT_FOLDER(sharedData / "dicom_edge/ct_all_transfer_syntaxes");
  const ReadResult result =
      readImages(sharedData / "dicom_edge/ct_all_transfer_syntaxes/CT0012.fragmented_no_bot_jpeg_baseline.51.dcm");
  ASSERT_EQ(result.images.size(), 2U);
  PixelReader reader;
  std::string problem;
  const auto first = reader.pixels(result.images[0], problem);
  const auto second = reader.pixels(result.images[1], problem);
  ASSERT_TRUE(first && second) << problem;
  // Two slices of one head: not the same, but bright and dark in the same places.
  EXPECT_NE(first->samples, second->samples);
  EXPECT_GT(correlationOf(first->samples, second->samples), 0.5);
}

class SmallMr : public testing::TestWithParam<const char*> {};

TEST_P(SmallMr, AgreesPixelForPixelWithTheUncompressedOne) {
  SKIP_WITHOUT_FOLDER(sharedData / "dicom_edge/pydicom/test_files");
  const fs::path folder = sharedData / "dicom_edge/pydicom/test_files";
  const PixelData reference = pixelsOf(folder / "MR_small.dcm");
  EXPECT_EQ(reference.samples.size(), 64U * 64U);
  EXPECT_EQ(pixelsOf(folder / (std::string("MR_small_") + GetParam() + ".dcm")).samples, reference.samples);
}

INSTANTIATE_TEST_SUITE_P(Encodings, SmallMr,
                         testing::Values("RLE", "bigendian", "expb", "implicit", "jp2klossless", "jpeg_ls_lossless",
                                         "padded"),
                         [](const auto& name) { return std::string(name.param); });

class ColourBars : public testing::TestWithParam<Syntax> {};

/// The same picture of coloured bars in many encodings; where colour is subsampled, only the edges of bars may differ,
/// which are a few percent of it: 3 of 255 in the mean. Swapped or unconverted colours differ by 80 and more.
TEST_P(ColourBars, HaveTheColoursOfTheLosslessOne) {
  SKIP_WITHOUT_FOLDER(sharedData / "dicom_edge/pydicom/test_files");
  const fs::path folder = sharedData / "dicom_edge/pydicom/test_files";
  const PixelData reference = pixelsOf(folder / "SC_rgb_rle.dcm");
  ASSERT_EQ(reference.samplesPerPixel, 3);
  const Difference difference = differenceOf(reference, pixelsOf(folder / GetParam().file));
  EXPECT_LE(difference.mean, 3);
}

INSTANTIATE_TEST_SUITE_P(Encodings, ColourBars,
                         testing::Values(Syntax{"Jpeg2000", "SC_rgb_gdcm_KY.dcm"},
                                         Syntax{"JpegRgb", "SC_rgb_dcmtk_+eb+cr.dcm"},
                                         Syntax{"JpegYbr444", "SC_rgb_dcmtk_+eb+cy+n1.dcm"},
                                         Syntax{"JpegYbr422", "SC_rgb_dcmtk_+eb+cy+s2.dcm"},
                                         Syntax{"JpegYbr411", "SC_rgb_dcmtk_+eb+cy+s4.dcm"},
                                         Syntax{"JpegYbrNoSubsampling", "SC_rgb_dcmtk_+eb+cy+np.dcm"},
                                         Syntax{"JpegLossless", "SC_rgb_jpeg_gdcm.dcm"},
                                         Syntax{"JpegLossy", "SC_rgb_jpeg_lossy_gdcm.dcm"},
                                         Syntax{"Rle16Bit", "SC_rgb_rle_16bit.dcm"},
                                         Syntax{"Uncompressed422", "SC_ybr_full_422_uncompressed.dcm"}),
                         [](const auto& row) { return row.param.name; });

TEST(SharedData, PatientNamesInManyCharacterSetsAreReadable) {
  SKIP_WITHOUT_FOLDER(sharedData / "dicom_edge/pydicom/charset_files");
  const std::map<std::string, std::string> names = {
      {"chrFren.dcm", "Buc^Jérôme"},
      {"chrGerm.dcm", "Äneas^Rüdiger"},
      {"chrGreek.dcm", "Διονυσιος"},
      {"chrH31.dcm", "Yamada^Tarou=山田^太郎=やまだ^たろう"},
      {"chrH32.dcm", "ﾔﾏﾀﾞ^ﾀﾛｳ=山田^太郎=やまだ^たろう"},
      {"chrHbrw.dcm", "שרון^דבורה"},
      {"chrI2.dcm", "Hong^Gildong=洪^吉洞=홍^길동"},
      {"chrX1.dcm", "Wang^XiaoDong=王^小東="},
      {"chrX2.dcm", "Wang^XiaoDong=王^小东="},
  };
  for (const auto& [file, name] : names)
    EXPECT_EQ(onlyImage(sharedData / "dicom_edge/pydicom/charset_files" / file).patientName, name) << file;
}

}  // namespace
}  // namespace workstation::test
