#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>
#include <gtest/gtest.h>

#include "DicomFixtures.h"
#include "workstation/dicom/StudyReader.h"

namespace workstation::test {
namespace {

namespace fs = std::filesystem;

class Copies : public testing::Test {
 protected:
  fs::path image(const std::string& name, int instanceNumber = 1) {
    write(sagittalImage(instanceNumber), folder_.file(name));
    return folder_.file(name);
  }
  /// An image of another place under the identifier of instance 1.
  fs::path impostor(const std::string& name) {
    ImageToWrite other = sagittalImage(2);
    other.sopInstanceUid = sagittalImage(1).sopInstanceUid;
    write(other, folder_.file(name));
    return folder_.file(name);
  }
  ReadResult read() const { return readImages(folder_.path()); }

  TemporaryFolder folder_;
};

TEST_F(Copies, AFileThatIsThereTwiceIsOneSliceAndTheFirstByPathIsUsed) {
  const fs::path second = image("b/image", 1);
  const fs::path first = image("a/image", 1);
  image("a/other", 2);
  const ReadResult result = read();
  ASSERT_EQ(result.images.size(), 2U);
  EXPECT_EQ(result.images[0].file, first);
  ASSERT_EQ(result.copies.size(), 1U);
  EXPECT_EQ(result.copies[0].file, second);
  EXPECT_EQ(result.copies[0].original, first);
  EXPECT_TRUE(result.unreadable.empty());
}

TEST_F(Copies, ACopyInAnotherTransferSyntaxIsStillTheSameImage) {
  image("a", 1);
  edit(
      image("b", 1), [](DcmDataset&) {}, UID_LittleEndianImplicitTransferSyntax);
  EXPECT_EQ(read().images.size(), 1U);
  EXPECT_EQ(read().copies.size(), 1U);
}

TEST_F(Copies, PixelsOfAnotherShapeAreAnotherImage) {
  for (const char* ratio : {"1\\1", "2\\1"}) {
    edit(image(ratio[0] == '1' ? "a" : "b", 1), [&](DcmDataset& data) {
      data.findAndDeleteElement(DCM_PixelSpacing);
      data.putAndInsertString(DCM_PixelAspectRatio, ratio);
    });
  }
  EXPECT_EQ(read().images.size(), 1U);
  EXPECT_TRUE(read().copies.empty());
  EXPECT_NE(reasonFor(folder_.file("b"), read()).find("another image"), std::string::npos);
}

TEST_F(Copies, AllFramesOfACopyAreLeftOut) {
  const auto threeFrames = [](DcmDataset& data) {
    data.putAndInsertString(DCM_NumberOfFrames, "3");
    const std::vector<Uint16> samples(3 * 6 * 8, 1);
    ASSERT_TRUE(data.putAndInsertUint16Array(DCM_PixelData, samples.data(), samples.size()).good());
  };
  edit(image("a"), threeFrames);
  edit(image("b"), threeFrames);
  const ReadResult result = read();
  ASSERT_EQ(result.images.size(), 3U);
  for (const ImageRecord& frame : result.images) EXPECT_EQ(frame.file, folder_.file("a"));
  EXPECT_EQ(result.copies.size(), 1U);
}

TEST_F(Copies, AnotherImageUnderTheSameIdentifierIsNamedWithTheFileThatIsUsed) {
  image("a");
  const fs::path other = impostor("b");
  const ReadResult result = read();
  ASSERT_EQ(result.images.size(), 1U);
  EXPECT_TRUE(result.copies.empty());
  const std::string reason = reasonFor(other, result);
  EXPECT_NE(reason.find(folder_.file("a").string()), std::string::npos) << reason;
  EXPECT_NE(reason.find("another image"), std::string::npos) << reason;
}

TEST_F(Copies, AnImageThatLostItsPlaceIsNoCopyOfTheOneThatHasIt) {
  image("a");
  edit(image("b"), [](DcmDataset& data) { data.findAndDeleteElement(DCM_PixelSpacing); });
  EXPECT_EQ(read().images.size(), 1U);
  EXPECT_NE(reasonFor(folder_.file("b"), read()), "");
}

TEST_F(Copies, ImagesWithoutAPlaceAreCopiesOfEachOther) {
  for (const char* name : {"a", "b"}) {
    edit(image(name), [](DcmDataset& data) { data.findAndDeleteElement(DCM_PixelSpacing); });
  }
  EXPECT_EQ(read().images.size(), 1U);
  EXPECT_EQ(read().copies.size(), 1U);
}

TEST_F(Copies, TheSameIdentifierInAnotherStudyIsAnotherImage) {
  image("a");
  ImageToWrite other = sagittalImage();
  other.studyInstanceUid = "1.2.3.4";
  write(other, folder_.file("b"));
  const ReadResult result = read();
  EXPECT_EQ(result.images.size(), 2U);
  EXPECT_TRUE(result.copies.empty());
  EXPECT_TRUE(result.unreadable.empty());
}

}  // namespace
}  // namespace workstation::test
