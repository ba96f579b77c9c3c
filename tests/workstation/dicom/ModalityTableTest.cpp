// Stored values go through the Modality LUT of a file (PS3.3 C.11.1) before anything else looks at them.
#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>
#include <gtest/gtest.h>

#include "DicomFixtures.h"
#include "workstation/dicom/PixelReader.h"

namespace workstation::test {
namespace {

using Words = std::vector<Uint16>;

class ModalityTable : public testing::Test {
 protected:
  /// The image with a table instead of Rescale Slope and Intercept; the descriptor as unsigned words.
  void store(const ImageToWrite& image, const Words& descriptor, const Words& entries) {
    write(image, file_);
    edit(file_, [&](DcmDataset& data) {
      data.findAndDeleteElement(DCM_RescaleSlope);
      data.findAndDeleteElement(DCM_RescaleIntercept);
      DcmItem* item = nullptr;
      ASSERT_TRUE(data.findOrCreateSequenceItem(DCM_ModalityLUTSequence, item).good());
      item->putAndInsertUint16Array(DCM_LUTDescriptor, descriptor.data(), descriptor.size());
      item->putAndInsertString(DCM_ModalityLUTType, "US");
      if (!entries.empty()) item->putAndInsertUint16Array(DCM_LUTData, entries.data(), entries.size());
    });
  }

  PixelData pixels() {
    PixelReader reader;
    const std::optional<PixelData> data = reader.pixels(onlyImage(file_), problem_);
    EXPECT_TRUE(data) << problem_;
    return data.value_or(PixelData());
  }
  std::vector<std::int32_t> firstRow() {
    const PixelData data = pixels();
    if (data.samples.size() != 48) return {};
    return {data.samples.begin(), data.samples.begin() + 8};
  }

  TemporaryFolder folder_;
  std::filesystem::path file_ = folder_.file("image");
  std::string problem_;
};

using Row = std::vector<std::int32_t>;

TEST_F(ModalityTable, ValuesBeforeAndBehindItGetItsFirstAndLastEntry) {
  store(sagittalImage(), {4, 1, 16}, {1000, 2000, 3000, 65535});  // stored 0 .. 7, then 100 and more
  EXPECT_EQ(firstRow(), (Row{1000, 1000, 2000, 3000, 65535, 65535, 65535, 65535}));
  const PixelData data = pixels();
  EXPECT_EQ(data.samples.back(), 65535);
  EXPECT_EQ(data.rescaleSlope, 1);
  EXPECT_EQ(data.rescaleIntercept, 0);
}

TEST_F(ModalityTable, StartsBelowZeroWhereStoredValuesAreSigned) {
  store(axialImage(), {3, 65536 - 199, 16}, {5, 6, 7});  // stored -200 .. -193
  EXPECT_EQ(firstRow(), (Row{5, 5, 6, 7, 7, 7, 7, 7}));
}

TEST_F(ModalityTable, StartsAbove32767WhereTheyAreNot) {
  store(sagittalImage(), {2, 65536 - 199, 16}, {5, 6});
  EXPECT_EQ(firstRow(), Row(8, 5)) << "all lie before 65337";
}

TEST_F(ModalityTable, NoNumberOfEntriesMeans65536) {
  Words entries;
  for (int value = 0; value < 65536; ++value) entries.push_back(static_cast<Uint16>(65535 - value));
  store(sagittalImage(), {0, 0, 16}, entries);
  EXPECT_EQ(firstRow(), (Row{65535, 65534, 65533, 65532, 65531, 65530, 65529, 65528}));
  EXPECT_EQ(pixels().samples.back(), 65535 - 507);
}

TEST_F(ModalityTable, EntriesOfEightBitsMayShareAWord) {
  store(sagittalImage(), {4, 0, 8}, {0x0201, 0x0403});
  EXPECT_EQ(firstRow(), (Row{1, 2, 3, 4, 4, 4, 4, 4}));
}

TEST_F(ModalityTable, ItsValuesAreNeverNegativeForTheVoiTableThatFollows) {
  store(axialImage(), {2, 65536 - 200, 16}, {40000, 40001});
  edit(file_, [](DcmDataset& data) {
    DcmItem* item = nullptr;
    ASSERT_TRUE(data.findOrCreateSequenceItem(DCM_VOILUTSequence, item).good());
    item->putAndInsertUint16Array(DCM_LUTDescriptor, Words{2, 40000, 8}.data(), 3);
    item->putAndInsertUint16Array(DCM_LUTData, Words{10, 200}.data(), 2);
  });
  ASSERT_EQ(pixels().voiLuts.size(), 1U);
  EXPECT_EQ(pixels().voiLuts[0].firstMapped, 40000);
}

TEST_F(ModalityTable, RescaleCountsWhereAFileHasBoth) {
  store(sagittalImage(), {2, 0, 16}, {8, 9});
  edit(file_, [](DcmDataset& data) { data.putAndInsertString(DCM_RescaleSlope, "2"); });
  EXPECT_EQ(firstRow(), (Row{0, 1, 2, 3, 4, 5, 6, 7}));
  EXPECT_EQ(pixels().rescaleSlope, 2);
}

TEST_F(ModalityTable, OfAProjectionLeadsToWhatIsShownOnlyFromLinearValues) {
  store(sagittalImage(), {2, 0, 16}, {8, 9});
  edit(file_, [](DcmDataset& data) {
    data.putAndInsertString(DCM_SOPClassUID, UID_XRayAngiographicImageStorage);
    data.putAndInsertString(DCM_PixelIntensityRelationship, "LOG");
  });
  EXPECT_EQ(firstRow(), (Row{0, 1, 2, 3, 4, 5, 6, 7}));
  edit(file_, [](DcmDataset& data) { data.putAndInsertString(DCM_PixelIntensityRelationship, "LIN"); });
  EXPECT_EQ(firstRow(), (Row{8, 9, 9, 9, 9, 9, 9, 9}));
}

TEST_F(ModalityTable, OneThatIsNotWholeIsNamedAndNothingIsMadeUp) {
  const std::pair<Words, const char*> damaged[] = {{{1, 2}, "its Modality LUT is shorter than it says"},
                                                   {{}, "its Modality LUT has no table that can be read"}};
  for (const auto& [entries, reason] : damaged) {
    store(sagittalImage(), {9, 0, 16}, entries);
    PixelReader reader;
    EXPECT_FALSE(reader.pixels(onlyImage(file_), problem_));
    EXPECT_EQ(problem_, "The pixels of \"" + file_.string() + "\" could not be read: " + reason + ".");
  }
}

TEST_F(ModalityTable, AnEmptySequenceIsNone) {
  write(sagittalImage(), file_);
  edit(file_, [](DcmDataset& data) { data.insertEmptyElement(DCM_ModalityLUTSequence); });
  EXPECT_EQ(firstRow(), (Row{0, 1, 2, 3, 4, 5, 6, 7}));
}

}  // namespace
}  // namespace workstation::test
