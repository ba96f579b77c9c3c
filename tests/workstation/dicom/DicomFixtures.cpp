#include "DicomFixtures.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "workstation/dicom/Uid.h"

namespace workstation::test {

namespace fs = std::filesystem;

namespace {

ImageToWrite anyImage(int instanceNumber) {
  ImageToWrite image;
  image.patientName = "Müller^Änne";
  image.patientId = "P-1";
  image.patientBirthDate = "19700101";
  image.patientSex = "F";
  image.studyInstanceUid = makeUid("study");
  image.studyDate = "20240229";
  image.studyTime = "101500";
  image.studyId = "1";
  image.studyDescription = "Lumbar spine";
  image.instanceNumber = instanceNumber;
  image.frameOfReferenceUid = makeUid("frame of reference");
  image.sliceThicknessMm = 4;
  image.rows = 6;
  image.columns = 8;
  image.windowCentre = 250;
  image.windowWidth = 600;
  for (int row = 0; row < image.rows; ++row)
    for (int column = 0; column < image.columns; ++column)
      image.samples.push_back(static_cast<std::int16_t>(100 * row + column));
  return image;
}

}  // namespace

ImageToWrite sagittalImage(int instanceNumber) {
  ImageToWrite image = anyImage(instanceNumber);
  image.seriesInstanceUid = makeUid("sagittal");
  image.seriesNumber = 3;
  image.seriesDescription = "T2 sag";
  image.bodyPartExamined = "LSPINE";
  image.sopInstanceUid = makeUid("sagittal " + std::to_string(instanceNumber));
  image.geometry = {{4.5 * instanceNumber, -90, 120}, {0, 1, 0}, {0, 0, -1}, 0.5, 0.75};
  image.spacingBetweenSlicesMm = 4.5;
  return image;
}

ImageToWrite axialImage(int instanceNumber) {
  ImageToWrite image = anyImage(instanceNumber);
  image.kind = ImageKind::CT;
  image.seriesInstanceUid = makeUid("axial");
  image.seriesNumber = 4;
  image.seriesDescription = "axial";
  image.sopInstanceUid = makeUid("axial " + std::to_string(instanceNumber));
  image.geometry = {{-60, -80, -3.0 * instanceNumber}, {1, 0, 0}, {0, 1, 0}, 0.5, 0.75};
  for (std::int16_t& sample : image.samples) sample = static_cast<std::int16_t>(sample - 200);
  return image;
}

void write(const ImageToWrite& image, const fs::path& file) {
  std::string problem;
  ASSERT_TRUE(writeImage(image, file, problem)) << problem;
}

void edit(const fs::path& file, const std::function<void(DcmDataset&)>& change, const std::string& syntax) {
  DcmFileFormat format;
  ASSERT_TRUE(format.loadFile(OFFilename(file.c_str())).good());
  ASSERT_TRUE(format.loadAllDataIntoMemory().good());
  change(*format.getDataset());
  const E_TransferSyntax target =
      syntax.empty() ? format.getDataset()->getCurrentXfer() : DcmXfer(syntax.c_str()).getXfer();
  const OFCondition outcome = format.saveFile(OFFilename(file.c_str()), target);
  ASSERT_TRUE(outcome.good()) << outcome.text();
}

std::vector<std::uint8_t> bytesOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

void writeBytes(const fs::path& file, const std::vector<std::uint8_t>& bytes) {
  std::ofstream stream(file, std::ios::binary);
  stream.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  ASSERT_TRUE(stream.good());
}

void writeText(const fs::path& file, const std::string& text) { writeBytes(file, {text.begin(), text.end()}); }

void truncate(const fs::path& file, std::uintmax_t length) { fs::resize_file(file, length); }

std::string reasonFor(const fs::path& file, const ReadResult& result) {
  for (const UnreadableFile& unreadable : result.unreadable)
    if (unreadable.file == file) return unreadable.reason;
  return {};
}

ImageRecord onlyImage(const fs::path& file) {
  const ReadResult result = readImages(file);
  EXPECT_EQ(result.images.size(), 1U) << reasonFor(file, result);
  return result.images.size() == 1 ? result.images[0] : ImageRecord();
}

}  // namespace workstation::test
