#include "workstation/dicom/ImageWriter.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <limits>
#include <memory>

#include "DicomFixtures.h"
#include "tests/support/Requirements.h"

namespace workstation::test {
namespace {

namespace fs = std::filesystem;

std::string outputOf(const std::string& command) {
  std::string output;
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(popen((command + " 2>&1").c_str(), "r"), &pclose);
  std::array<char, 4096> buffer;
  while (pipe != nullptr && std::fgets(buffer.data(), buffer.size(), pipe.get()) != nullptr) output += buffer.data();
  return output;
}

class WrittenImage : public testing::TestWithParam<ImageKind> {
 protected:
  static ImageToWrite image() { return GetParam() == ImageKind::MR ? sagittalImage() : axialImage(); }
  TemporaryFolder folder_;
};

TEST_P(WrittenImage, ConformsToItsStorageClass) {
  SKIP_WITHOUT_TOOL("dciodvfy", "dicom3tools");
  const fs::path file = folder_.file("image.dcm");
  write(image(), file);
  const std::string output = outputOf("dciodvfy '" + file.string() + "'");
  EXPECT_NE(output.find(GetParam() == ImageKind::MR ? "MRImage" : "CTImage"), std::string::npos) << output;
  EXPECT_EQ(output.find("Error"), std::string::npos) << output;
}

TEST_P(WrittenImage, IsTheSameByteForByteEachTime) {
  write(image(), folder_.file("a"));
  write(image(), folder_.file("b"));
  EXPECT_EQ(bytesOf(folder_.file("a")), bytesOf(folder_.file("b")));
  EXPECT_GT(bytesOf(folder_.file("a")).size(), 500U);
}

TEST_P(WrittenImage, ReadsBackAsItWas) {
  const ImageToWrite written = image();
  write(written, folder_.file("image.dcm"));
  const ImageRecord read = onlyImage(folder_.file("image.dcm"));
  EXPECT_EQ(read.patientName, "Müller^Änne");
  EXPECT_EQ(read.patientId, "P-1");
  EXPECT_EQ(read.studyInstanceUid, written.studyInstanceUid);
  EXPECT_EQ(read.studyDescription, "Lumbar spine");
  EXPECT_EQ(read.studyDate, "20240229");
  EXPECT_EQ(read.seriesInstanceUid, written.seriesInstanceUid);
  EXPECT_EQ(read.seriesNumber, written.seriesNumber);
  EXPECT_EQ(read.seriesDescription, written.seriesDescription);
  EXPECT_EQ(read.bodyPartExamined, written.bodyPartExamined);
  EXPECT_EQ(read.modality, GetParam() == ImageKind::MR ? "MR" : "CT");
  EXPECT_EQ(read.sopInstanceUid, written.sopInstanceUid);
  EXPECT_EQ(read.instanceNumber, 1);
  EXPECT_EQ(read.frameOfReferenceUid, written.frameOfReferenceUid);
  EXPECT_EQ(read.rows, 6);
  EXPECT_EQ(read.columns, 8);
  EXPECT_FALSE(read.colour);
  ASSERT_TRUE(read.geometry) << read.geometryProblem;
  EXPECT_EQ(read.geometry->position, written.geometry.position);
  EXPECT_EQ(read.geometry->row, written.geometry.row);
  EXPECT_EQ(read.geometry->column, written.geometry.column);
  EXPECT_EQ(read.geometry->spacingX, 0.5);
  EXPECT_EQ(read.geometry->spacingY, 0.75);
}

INSTANTIATE_TEST_SUITE_P(Kinds, WrittenImage, testing::Values(ImageKind::MR, ImageKind::CT),
                         [](const auto& kind) { return kind.param == ImageKind::MR ? "MR" : "CT"; });

TEST(ImageWriter, KeepsAwkwardDecimalsToTwelveDigits) {
  const TemporaryFolder folder;
  ImageToWrite image = sagittalImage();
  image.geometry.position = {-1.0 / 3, 2.5e-9, -123.456789012345678};
  write(image, folder.file("image"));
  const ImageRecord read = onlyImage(folder.file("image"));
  ASSERT_TRUE(read.geometry);
  EXPECT_NEAR(read.geometry->position[0], -1.0 / 3, 1e-12);
  EXPECT_NEAR(read.geometry->position[1], 2.5e-9, 1e-20);
  EXPECT_NEAR(read.geometry->position[2], -123.456789012345678, 1e-10);
}

TEST(ImageWriter, LeavesOutAStudyDescriptionThatIsAbsentAndKeepsAnEmptyOne) {
  const TemporaryFolder folder;
  ImageToWrite image = sagittalImage();
  image.studyDescription = std::nullopt;
  image.bodyPartExamined = std::nullopt;
  write(image, folder.file("absent"));
  image.studyDescription = "";
  write(image, folder.file("empty"));
  EXPECT_EQ(onlyImage(folder.file("absent")).studyDescription, std::nullopt);
  EXPECT_EQ(onlyImage(folder.file("absent")).bodyPartExamined, std::nullopt);
  EXPECT_EQ(onlyImage(folder.file("empty")).studyDescription, "");
}

struct RefusedValue {
  const char* name;
  void (*spoil)(ImageToWrite&);
};
class RefusedImage : public testing::TestWithParam<RefusedValue> {};

TEST_P(RefusedImage, IsNamedAndNotWritten) {
  const TemporaryFolder folder;
  ImageToWrite image = sagittalImage();
  GetParam().spoil(image);
  std::string problem;
  EXPECT_FALSE(writeImage(image, folder.file("image.dcm"), problem));
  EXPECT_NE(problem.find("image.dcm"), std::string::npos) << problem;
  EXPECT_FALSE(fs::exists(folder.file("image.dcm")));
}

INSTANTIATE_TEST_SUITE_P(
    Values, RefusedImage,
    testing::Values(RefusedValue{"NoRows", [](ImageToWrite& image) { image.rows = 0; }},
                    RefusedValue{"TooManyColumns", [](ImageToWrite& image) { image.columns = 65536; }},
                    RefusedValue{"TooFewSamples", [](ImageToWrite& image) { image.samples.pop_back(); }},
                    RefusedValue{"NegativeMrSample", [](ImageToWrite& image) { image.samples[3] = -1; }},
                    RefusedValue{"SpacingZero", [](ImageToWrite& image) { image.geometry.spacingX = 0; }},
                    RefusedValue{"PositionNotFinite",
                                 [](ImageToWrite& image) {
                                   image.geometry.position[1] = std::numeric_limits<double>::quiet_NaN();
                                 }},
                    RefusedValue{"NoSeriesUid", [](ImageToWrite& image) { image.seriesInstanceUid.clear(); }},
                    RefusedValue{"UidOfLetters", [](ImageToWrite& image) { image.sopInstanceUid = "one"; }}),
    [](const auto& value) { return value.param.name; });

TEST(ImageWriter, SaysWhichFileCannotBeWritten) {
  const TemporaryFolder folder;
  std::string problem;
  EXPECT_FALSE(writeImage(sagittalImage(), folder.path() / "no such folder" / "image.dcm", problem));
  EXPECT_NE(problem.find("no such folder"), std::string::npos) << problem;
}

}  // namespace
}  // namespace workstation::test
