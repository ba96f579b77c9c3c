#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>
#include <gtest/gtest.h>

#include "DicomFixtures.h"
#include "workstation/dicom/PixelReader.h"
#include "workstation/dicom/StudyReader.h"

namespace workstation::test {
namespace {

namespace fs = std::filesystem;

void put(DcmItem& holder, const DcmTagKey& sequence, const DcmTagKey& tag, const char* value) {
  DcmItem* item = nullptr;
  ASSERT_TRUE(holder.findOrCreateSequenceItem(sequence, item).good());
  ASSERT_TRUE(item->putAndInsertString(tag, value).good());
}

/// Turns a file into an enhanced image of three frames: orientation and spacing shared, except that the third frame has
/// its own; a position, rescale and window a frame; sample (row r, column c) of frame f is 1000 f + 10 r + c.
void makeEnhanced(DcmDataset& data, const char* sopClass) {
  data.putAndInsertString(DCM_SOPClassUID, sopClass);
  data.putAndInsertString(DCM_NumberOfFrames, "3");
  for (const DcmTagKey& tag :
       {DCM_ImagePositionPatient, DCM_ImageOrientationPatient, DCM_PixelSpacing, DCM_WindowCenter, DCM_WindowWidth})
    data.findAndDeleteElement(tag);
  DcmItem* shared = nullptr;
  ASSERT_TRUE(data.findOrCreateSequenceItem(DCM_SharedFunctionalGroupsSequence, shared).good());
  put(*shared, DCM_PlaneOrientationSequence, DCM_ImageOrientationPatient, "0\\1\\0\\0\\0\\-1");
  put(*shared, DCM_PixelMeasuresSequence, DCM_PixelSpacing, "0.6\\0.4");
  const char* positions[] = {"10\\20\\30", "14.5\\20\\30", "19\\20\\30"};
  const char* intercepts[] = {"0", "-5", "-10"};
  for (int frame = 0; frame < 3; ++frame) {
    DcmItem* own = nullptr;
    ASSERT_TRUE(data.findOrCreateSequenceItem(DCM_PerFrameFunctionalGroupsSequence, own, -2).good());
    put(*own, DCM_PlanePositionSequence, DCM_ImagePositionPatient, positions[frame]);
    put(*own, DCM_PixelValueTransformationSequence, DCM_RescaleSlope, "2");
    put(*own, DCM_PixelValueTransformationSequence, DCM_RescaleIntercept, intercepts[frame]);
    put(*own, DCM_FrameVOILUTSequence, DCM_WindowCenter, "40\\50");
    put(*own, DCM_FrameVOILUTSequence, DCM_WindowWidth, "400\\500");
    if (frame == 2) put(*own, DCM_PixelMeasuresSequence, DCM_PixelSpacing, "0.9\\0.8");
  }
  std::vector<Uint16> samples;
  for (int frame = 1; frame <= 3; ++frame)
    for (int row = 0; row < 6; ++row)
      for (int column = 0; column < 8; ++column)
        samples.push_back(static_cast<Uint16>(1000 * frame + 10 * row + column));
  ASSERT_TRUE(data.putAndInsertUint16Array(DCM_PixelData, samples.data(), samples.size()).good());
}

class EnhancedImage : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    write(sagittalImage(), folder_.file("image"));
    edit(folder_.file("image"), [](DcmDataset& data) { makeEnhanced(data, GetParam()); });
  }
  TemporaryFolder folder_;
};

TEST_P(EnhancedImage, GivesARecordAFrameWithItsOwnPlace) {
  const ReadResult result = readImages(folder_.path());
  ASSERT_EQ(result.images.size(), 3U);
  for (int i = 0; i < 3; ++i) {
    const ImageRecord& record = result.images[static_cast<std::size_t>(i)];
    EXPECT_EQ(record.frame, i + 1);
    EXPECT_EQ(record.sopInstanceUid, sagittalImage().sopInstanceUid);
    ASSERT_TRUE(record.geometry) << record.geometryProblem;
    EXPECT_EQ(record.geometry->position, (std::array<double, 3>{10 + 4.5 * i, 20, 30}));
    EXPECT_EQ(record.geometry->row, (std::array<double, 3>{0, 1, 0}));
    EXPECT_EQ(record.geometry->column, (std::array<double, 3>{0, 0, -1}));
    EXPECT_EQ(record.geometry->spacingX, i == 2 ? 0.8 : 0.4);
    EXPECT_EQ(record.geometry->spacingY, i == 2 ? 0.9 : 0.6);
  }
}

TEST_P(EnhancedImage, GivesThePixelsOfTheFrameThatIsAskedFor) {
  const ReadResult result = readImages(folder_.path());
  ASSERT_EQ(result.images.size(), 3U);
  PixelReader reader;
  for (int i = 2; i >= 0; --i) {
    std::string problem;
    const auto pixels = reader.pixels(result.images[static_cast<std::size_t>(i)], problem);
    ASSERT_TRUE(pixels) << problem;
    ASSERT_EQ(pixels->samples.size(), 48U);
    for (int row = 0; row < 6; ++row)
      for (int column = 0; column < 8; ++column)
        EXPECT_EQ(pixels->samples[static_cast<std::size_t>(8 * row + column)], 1000 * (i + 1) + 10 * row + column);
    EXPECT_EQ(pixels->rescaleSlope, 2);
    EXPECT_EQ(pixels->rescaleIntercept, -5 * i);
    EXPECT_EQ(pixels->windowCentre, 40);
    EXPECT_EQ(pixels->windowWidth, 400);
  }
}

TEST_P(EnhancedImage, HasNoGeometryWhereAFrameHasNoPosition) {
  edit(folder_.file("image"), [](DcmDataset& data) {
    DcmItem* own = nullptr;
    ASSERT_TRUE(data.findAndGetSequenceItem(DCM_PerFrameFunctionalGroupsSequence, own, 1).good());
    own->findAndDeleteElement(DCM_PlanePositionSequence);
  });
  const ReadResult result = readImages(folder_.path());
  ASSERT_EQ(result.images.size(), 3U);
  EXPECT_TRUE(result.images[0].geometry);
  EXPECT_FALSE(result.images[1].geometry);
  EXPECT_NE(result.images[1].geometryProblem.find("where each frame lies"), std::string::npos);
  EXPECT_TRUE(result.images[2].geometry);
}

TEST_P(EnhancedImage, IsTruncatedWhenItDeclaresMoreFramesThanItHolds) {
  edit(folder_.file("image"), [](DcmDataset& data) { data.putAndInsertString(DCM_NumberOfFrames, "4"); });
  const ReadResult result = readImages(folder_.path());
  EXPECT_TRUE(result.images.empty());
  EXPECT_NE(reasonFor(folder_.file("image"), result).find("truncated"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Classes, EnhancedImage,
                         testing::Values(UID_EnhancedMRImageStorage, UID_EnhancedCTImageStorage), [](const auto& uid) {
                           return std::string(uid.param) == UID_EnhancedMRImageStorage ? "MR" : "CT";
                         });

TEST(PlainMultiFrame, HasSlicesWithoutGeometry) {
  const TemporaryFolder folder;
  write(sagittalImage(), folder.file("image"));
  edit(folder.file("image"), [](DcmDataset& data) {
    data.putAndInsertString(DCM_NumberOfFrames, "2");
    ASSERT_TRUE(data.putAndInsertUint16Array(DCM_PixelData, std::vector<Uint16>(96, 5).data(), 96).good());
  });
  const ReadResult result = readImages(folder.path());
  ASSERT_EQ(result.images.size(), 2U);
  for (const ImageRecord& record : result.images) {
    EXPECT_FALSE(record.geometry);
    EXPECT_FALSE(record.geometryProblem.empty());
    EXPECT_EQ(record.pixelAspect, 1.5) << "0.75 mm between rows, 0.5 mm between columns";
  }
}

}  // namespace
}  // namespace workstation::test
