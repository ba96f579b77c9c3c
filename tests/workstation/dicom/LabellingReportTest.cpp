#include "workstation/dicom/LabellingReport.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>
#include <gtest/gtest.h>

#include "ReportFixtures.h"
#include "workstation/dicom/Uid.h"

namespace workstation::test {
namespace {

namespace fs = std::filesystem;

/// What a report of the labelling says once it is written.
StoredReport writtenAndRead(const SavedLabelling& labelling) {
  TemporaryFolder folder;
  return stored(writeReport(folder, reportOf(folder, labelling)));
}

using RegionAndExtra = std::tuple<int, bool>;
class EveryRegion : public testing::TestWithParam<RegionAndExtra> {
 protected:
  SavedLabelling labelling_ = labellingOf(std::get<0>(GetParam()), std::get<1>(GetParam()));
};

TEST_P(EveryRegion, SaysInItsContentWhatTheLabellingSays) {
  const StoredReport report = writtenAndRead(labelling_);
  EXPECT_EQ(report.archive, someArchive());
  ASSERT_TRUE(report.content);
  EXPECT_EQ(*report.content, inSinglePrecision(labelling_));
  EXPECT_TRUE(sameInSinglePrecision(*report.content, labelling_));
  const ReportContext written = contextOf(labelling_);
  EXPECT_EQ(report.context.frameOfReferenceUid, written.frameOfReferenceUid);
  EXPECT_EQ(report.context.verticalSeriesUid, written.verticalSeriesUid);
  EXPECT_EQ(report.context.verticalModality, "MR");
  EXPECT_EQ(report.context.verticalImages, written.verticalImages);
  EXPECT_EQ(report.context.sliceLevels, written.sliceLevels);
}

TEST_P(EveryRegion, IsReadFromItsContentWhenTheBlockWasTakenOut) {
  const StoredReport report = afterEdit(removeBlock, labelling_);
  EXPECT_TRUE(report.archive.empty());
  EXPECT_EQ(report.content, inSinglePrecision(labelling_));
}

std::string nameOf(const testing::TestParamInfo<RegionAndExtra>& row) {
  const std::vector<std::string> regions = {"None", "Cervical", "Thoracic", "Lumbar"};
  const auto [region, extra] = row.param;
  return regions.at(static_cast<std::size_t>(region + 1)) + (extra ? "WithExtra" : "");
}

INSTANTIATE_TEST_SUITE_P(Regions, EveryRegion, testing::Combine(testing::Values(-1, 0, 1, 2), testing::Bool()), nameOf);

TEST(LabellingReport, HasTheHeaderThatItWasGiven) {
  const StoredReport report = writtenAndRead(labellingOf(2, false));
  EXPECT_EQ(report.studyInstanceUid, makeUid("study"));
  EXPECT_EQ(report.seriesInstanceUid, makeUid("series of reports"));
  EXPECT_EQ(report.seriesNumber, 20170720);
  EXPECT_EQ(report.seriesDescription, "Pelmar Vertana Plugin Intervertebral Planes SR");
  EXPECT_EQ(report.sopClassUid, "1.2.840.10008.5.1.4.1.1.88.34");
  EXPECT_EQ(report.sopInstanceUid, makeUid("report"));
  EXPECT_EQ(report.instanceNumber, 3);
  EXPECT_EQ(report.contentTime, (ContentTime{"20240229", "101500.123456"}));
}

TEST(LabellingReport, OfTheEmptyStateSaysThatThereIsNoLabelling) {
  const StoredReport report = writtenAndRead({});
  EXPECT_EQ(report.content, SavedLabelling());
  EXPECT_EQ(report.archive, someArchive());
}

TEST(LabellingReport, CanSayAnyPartOfALabellingAlone) {
  const SavedLabelling whole = labellingOf(1, true);
  for (int parts = 0; parts < 8; ++parts) {
    SavedLabelling labelling;
    if (parts & 1) labelling.anatomicalRegion = whole.anatomicalRegion;
    if (parts & 2) labelling.additionalVertebra = whole.additionalVertebra;
    if (parts & 4) labelling.levels = whole.levels;
    EXPECT_EQ(writtenAndRead(labelling).content, inSinglePrecision(labelling)) << parts;
  }
  SavedLabelling noLevels;
  noLevels.levels.emplace();
  EXPECT_EQ(writtenAndRead(noLevels).content, noLevels);
}

TEST(LabellingReport, NeedsNoContextForALabellingWithoutLevels) {
  TemporaryFolder folder;
  SavedLabelling labelling;
  labelling.additionalVertebra = false;
  ReportToWrite report = reportOf(folder, labelling);
  report.context = {};
  EXPECT_EQ(stored(writeReport(folder, report)).content, labelling);
}

TEST(LabellingReport, KeepsLevelsThatItHasNoCodeFor) {
  SavedLabelling labelling;
  labelling.levels = {{{"L4-L5", {1, 2, 3}, {0, 0, 1}},
                       {"Some level", {1, 2, 3}, {0, 0, 0}},
                       {"L4-L5", {-1e30, 0, 1e-30}, {1e-30, 3e38, -0.0}},
                       {"", {4, 5, 6}, {0, 1, 0}}}};
  EXPECT_EQ(writtenAndRead(labelling).content, inSinglePrecision(labelling));
}

TEST(LabellingReport, HasTheSameBytesEachTime) {
  TemporaryFolder folder;
  const ReportToWrite report = reportOf(folder, labellingOf(0, true));
  EXPECT_EQ(*encodeReport(report).value, *encodeReport(report).value);
}

TEST(LabellingReport, IsReadFromBytesAsFromAFile) {
  TemporaryFolder folder;
  const Result<pelmar::Bytes> bytes = encodeReport(reportOf(folder, labellingOf(2, true)));
  ASSERT_TRUE(bytes);
  const Result<StoredReport> report = readReport(*bytes);
  ASSERT_TRUE(report) << report.problem;
  EXPECT_EQ(report->content, inSinglePrecision(labellingOf(2, true)));
  EXPECT_EQ(report->archive, someArchive());
}

TEST(LabellingReport, GivesAnArchiveOfOddLengthWithThePadThatDicomAdds) {
  TemporaryFolder folder;
  ReportToWrite report = reportOf(folder, {});
  report.archive = {1, 2, 3};
  EXPECT_EQ(stored(writeReport(folder, report)).archive, (pelmar::Bytes{1, 2, 3, 0}));
}

// The private block.

void insertBytes(DcmDataset& dataset, const DcmTagKey& tag, DcmEVR representation, const pelmar::Bytes& bytes) {
  auto* element = new DcmOtherByteOtherWord(DcmTag(tag.getGroup(), tag.getElement(), DcmVR(representation)));
  if (representation == EVR_OW) {
    std::vector<Uint16> words;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
      words.push_back(static_cast<Uint16>(bytes[i] | (bytes[i + 1] << 8)));
    EXPECT_TRUE(element->putUint16Array(words.data(), words.size()).good());
  } else {
    EXPECT_TRUE(element->putUint8Array(bytes.data(), bytes.size()).good());
  }
  EXPECT_TRUE(dataset.insert(element, OFTrue).good());
}

void insertCreator(DcmDataset& dataset, Uint16 block, const char* creator) {
  auto* element = new DcmLongString(DcmTag(0x7321, block, DcmVR(EVR_LO)));
  EXPECT_TRUE(element->putString(creator).good());
  EXPECT_TRUE(dataset.insert(element, OFTrue).good());
}

class AnyRepresentation : public testing::TestWithParam<DcmEVR> {};

TEST_P(AnyRepresentation, AndAnyBlockOfTheGroupHoldsTheArchive) {
  for (const Uint16 block : std::initializer_list<Uint16>{0x10, 0x11, 0x80, 0xFF}) {
    const StoredReport report = afterEdit([&](DcmDataset& dataset) {
      removeBlock(dataset);
      for (const Uint16 other : std::initializer_list<Uint16>{0x10, 0x11, 0xFE})
        if (other != block) {
          insertCreator(dataset, other, "SOMEBODY ELSE");
          insertBytes(dataset, DcmTagKey(0x7321, static_cast<Uint16>(other << 8 | 3)), EVR_OB, {9, 9});
        }
      insertCreator(dataset, block, "VERTANA ");
      insertBytes(dataset, DcmTagKey(0x7321, static_cast<Uint16>(block << 8 | 3)), GetParam(), someArchive());
    });
    EXPECT_EQ(report.archive, someArchive()) << block;
  }
}

INSTANTIATE_TEST_SUITE_P(Representations, AnyRepresentation, testing::Values(EVR_OB, EVR_UN, EVR_OW),
                         [](const auto& row) { return DcmVR(row.param).getVRName(); });

TEST(LabellingReport, OfAnotherCreatorHasNoArchive) {
  const StoredReport report = afterEdit([](DcmDataset& dataset) { insertCreator(dataset, 0x10, "VERTANA 2"); });
  EXPECT_TRUE(report.archive.empty());
}

TEST(LabellingReport, CarriesTheArchiveInAnEncapsulatedDocumentJustAsWell) {
  const auto encapsulate = [](DcmDataset& dataset) { insertBytes(dataset, DCM_EncapsulatedDocument, EVR_OB, {7, 8}); };
  EXPECT_EQ(afterEdit(encapsulate).archive, someArchive());  // the block comes first
  const StoredReport report = afterEdit([&](DcmDataset& dataset) {
    removeBlock(dataset);
    encapsulate(dataset);
  });
  EXPECT_EQ(report.archive, (pelmar::Bytes{7, 8}));
}

TEST(LabellingReport, WithAnArchiveThatIsASequenceHasNone) {
  const StoredReport report = afterEdit([](DcmDataset& dataset) {
    dataset.findAndDeleteElement(DcmTagKey(0x7321, 0x1003));
    auto* sequence = new DcmSequenceOfItems(DcmTag(0x7321, 0x1003, DcmVR(EVR_SQ)));
    sequence->append(new DcmItem);
    EXPECT_TRUE(dataset.insert(sequence).good());
  });
  EXPECT_TRUE(report.archive.empty());
  EXPECT_TRUE(report.content);
}

TEST(LabellingReport, DeclaresItsBlockHarmless) {
  afterEdit([](DcmDataset& dataset) {
    DcmItem* item = nullptr;
    ASSERT_TRUE(dataset.findAndGetSequenceItem(DCM_PrivateDataElementCharacteristicsSequence, item).good());
    Uint16 group = 0;
    OFString creator;
    OFString status;
    EXPECT_TRUE(item->findAndGetUint16(DCM_PrivateGroupReference, group).good());
    item->findAndGetOFString(DCM_PrivateCreatorReference, creator);
    item->findAndGetOFString(DCM_BlockIdentifyingInformationStatus, status);
    EXPECT_EQ(group, 0x7321);
    EXPECT_EQ(creator, "VERTANA");
    EXPECT_EQ(status, "SAFE");
  });
}

}  // namespace
}  // namespace workstation::test
