// The content of a report in detail, and content that others have changed.

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <set>

#include "ReportFixtures.h"
#include "workstation/dicom/Uid.h"

namespace workstation::test {
namespace {

void setAnswer(DcmItem& item, const char* code, const char* scheme) {
  DcmItem* answer = nullptr;
  ASSERT_TRUE(item.findAndGetSequenceItem(DCM_ConceptCodeSequence, answer).good());
  answer->putAndInsertString(DCM_CodeValue, code);
  answer->putAndInsertString(DCM_CodingSchemeDesignator, scheme);
}

struct Damage {
  const char* name;
  std::function<void(DcmDataset&)> damage;
};
class DamagedContent : public testing::TestWithParam<Damage> {};

TEST_P(DamagedContent, IsNotTakenForALabelling) {
  const StoredReport report = afterEdit(GetParam().damage);
  EXPECT_FALSE(report.content);
  EXPECT_EQ(report.archive, someArchive());
}

std::vector<Damage> damages() {
  const auto first = [](DcmDataset& dataset, const char* type, const char* code) {
    const std::vector<DcmItem*> items = contentItems(dataset, type, code);
    EXPECT_FALSE(items.empty()) << code;
    return items.at(0);
  };
  return {
      {"NoContent", [](DcmDataset& d) { d.findAndDeleteElement(DCM_ContentSequence); }},
      {"NoEvaluations",
       [=](DcmDataset& d) { first(d, "CONTAINER", "C0034375")->findAndDeleteElement(DCM_ContentSequence); }},
      {"ForeignState", [=](DcmDataset& d) { setAnswer(*first(d, "CODE", "STATE"), "1", "99OTHER"); }},
      {"StateThatContradicts",
       [=](DcmDataset& d) { setAnswer(*first(d, "CODE", "STATE"), "NOT-LABELLED", "99VERTANA"); }},
      {"ForeignRegion",
       [=](DcmDataset& d) {
         for (DcmItem* item : contentItems(d, "CODE", "123014")) setAnswer(*item, "69536005", "SCT");
       }},
      {"VertebraPerhaps", [=](DcmDataset& d) { setAnswer(*first(d, "CODE", "EXTRA-VERTEBRA"), "64100000", "SCT"); }},
      {"NoLevels", [=](DcmDataset& d) { first(d, "CONTAINER", "126010")->findAndDeleteElement(DCM_ContentSequence); }},
      {"LevelsDenied", [=](DcmDataset& d) { setAnswer(*first(d, "CODE", "HAS-LEVELS"), "373067005", "SCT"); }},
      {"PointNotFinite",
       [=](DcmDataset& d) {
         const Float32 values[] = {0, std::numeric_limits<Float32>::infinity(), 0};
         first(d, "SCOORD3D", "111030")->putAndInsertFloat32Array(DCM_GraphicData, values, 3);
       }},
      {"PointOfTwoNumbers",
       [=](DcmDataset& d) {
         const Float32 values[] = {0, 0};
         first(d, "SCOORD3D", "111030")->putAndInsertFloat32Array(DCM_GraphicData, values, 2);
       }},
      {"NormalNotFinite",
       [=](DcmDataset& d) {
         DcmItem* value = nullptr;
         first(d, "NUM", "NORMAL-Y")->findAndGetSequenceItem(DCM_MeasuredValueSequence, value);
         value->putAndInsertFloat64(DCM_FloatingPointValue, std::numeric_limits<double>::quiet_NaN());
       }},
      {"NormalWithoutValue",
       [=](DcmDataset& d) { first(d, "NUM", "NORMAL-Z")->findAndDeleteElement(DCM_MeasuredValueSequence); }},
      {"TwoFramesOfReference",
       [=](DcmDataset& d) {
         first(d, "SCOORD3D", "111030")->putAndInsertString(DCM_ReferencedFrameOfReferenceUID, "2.25.1");
       }},
  };
}

INSTANTIATE_TEST_SUITE_P(Damages, DamagedContent, testing::ValuesIn(damages()),
                         [](const auto& row) { return row.param.name; });

TEST(ReportContent, IsReadWhateverOthersHaveAddedToIt) {
  const StoredReport report = afterEdit([](DcmDataset& dataset) {
    for (DcmItem* container : contentItems(dataset, "CONTAINER", "126010")) {
      DcmSequenceOfItems* content = nullptr;
      ASSERT_TRUE(container->findAndGetSequence(DCM_ContentSequence, content).good());
      content->prepend(new DcmItem);
      auto* group = new DcmItem(*content->getItem(1));
      DcmItem* region = contentItems(*group, "SCOORD3D", "111030").at(0);
      region->putAndInsertString(DCM_GraphicType, "ELLIPSE");
      setAnswer(*contentItems(*group, "CODE", "121071").at(0), "52988006", "SCT");  // a lesion
      content->append(group);
    }
  });
  EXPECT_EQ(report.content, inSinglePrecision(labellingOf(2, false)));
}

TEST(ReportContent, IsNotReadWhenALevelIsMissing) {
  for (const unsigned long level : {0UL, 2UL, 5UL}) {
    const StoredReport report = afterEdit([&](DcmDataset& dataset) {
      const std::vector<DcmItem*> regions = contentItems(dataset, "CONTAINER", "126010");
      ASSERT_EQ(regions.size(), 1U);
      DcmSequenceOfItems* groups = nullptr;
      ASSERT_TRUE(regions[0]->findAndGetSequence(DCM_ContentSequence, groups).good());
      delete groups->remove(level);
    });
    EXPECT_FALSE(report.content) << level << ": the levels below would be taken for their neighbours";
  }
}

TEST(ReportContent, IsReadWithNumbersThatHaveNoFloatingPointValue) {
  SavedLabelling labelling = labellingOf(2, false);
  for (SavedLevel& level : *labelling.levels) level.vector = {0.25, -0.5, 1234.5};
  const StoredReport report = afterEdit(
      [](DcmDataset& dataset) {
        for (const char* name : {"NORMAL-X", "NORMAL-Y", "NORMAL-Z"}) {
          const std::vector<DcmItem*> numbers = contentItems(dataset, "NUM", name);
          EXPECT_EQ(numbers.size(), 6U);
          for (DcmItem* number : numbers) {
            DcmItem* value = nullptr;
            ASSERT_TRUE(number->findAndGetSequenceItem(DCM_MeasuredValueSequence, value).good());
            EXPECT_TRUE(value->findAndDeleteElement(DCM_FloatingPointValue).good());
          }
        }
      },
      labelling);
  EXPECT_EQ(report.content, inSinglePrecision(labelling));
}

TEST(ReportContent, DrawsTheNormalTwentyMillimetresLong) {
  SavedLabelling labelling;
  labelling.levels = {{{"L4-L5", {1, 2, 3}, {0, 3, 4}}}};
  afterEdit(
      [](DcmDataset& dataset) {
        const std::vector<DcmItem*> lines = contentItems(dataset, "SCOORD3D", "NORMAL");
        ASSERT_EQ(lines.size(), 1U);
        OFString type;
        lines[0]->findAndGetOFString(DCM_GraphicType, type);
        EXPECT_EQ(type, "POLYLINE");
        const Float32* values = nullptr;
        unsigned long count = 0;
        lines[0]->findAndGetFloat32Array(DCM_GraphicData, values, &count);
        ASSERT_EQ(count, 6U);
        EXPECT_EQ(std::vector<Float32>(values, values + 6), (std::vector<Float32>{1, 2, 3, 1, 14, 19}));
      },
      labelling);
}

TEST(ReportContent, TracksEachLevelAndSliceUnderItsOwnIdentifier) {
  afterEdit([](DcmDataset& dataset) {
    std::set<std::string> uids;
    const std::vector<DcmItem*> items = contentItems(dataset, "UIDREF", "112040");
    for (DcmItem* item : items) {
      OFString uid;
      item->findAndGetOFString(DCM_UID, uid);
      uids.insert(uid.c_str());
    }
    EXPECT_EQ(items.size(), 6U + contextOf(labellingOf(2, false)).sliceLevels.size());
    EXPECT_EQ(uids.size(), items.size());
    EXPECT_TRUE(uids.contains(makeUid(makeUid("report") + " level L4-L5")));
  });
}

TEST(ReportContent, ListsEveryImageUnderItsSeries) {
  const ReportContext context = contextOf(labellingOf(2, false));
  afterEdit([&](DcmDataset& dataset) {
    std::set<std::string> listed;
    DcmItem* study = nullptr;
    ASSERT_TRUE(dataset.findAndGetSequenceItem(DCM_CurrentRequestedProcedureEvidenceSequence, study).good());
    DcmItem* series = nullptr;
    for (long i = 0; study->findAndGetSequenceItem(DCM_ReferencedSeriesSequence, series, i).good(); ++i) {
      OFString seriesUid;
      series->findAndGetOFString(DCM_SeriesInstanceUID, seriesUid);
      DcmItem* image = nullptr;
      for (long j = 0; series->findAndGetSequenceItem(DCM_ReferencedSOPSequence, image, j).good(); ++j) {
        OFString uid;
        image->findAndGetOFString(DCM_ReferencedSOPInstanceUID, uid);
        listed.insert(std::string(seriesUid.c_str()) + "/" + uid.c_str());
      }
    }
    std::set<std::string> referenced;
    for (const ImageReference& image : context.verticalImages)
      referenced.insert(image.seriesInstanceUid + "/" + image.sopInstanceUid);
    for (const SliceLevel& slice : context.sliceLevels)
      referenced.insert(slice.image.seriesInstanceUid + "/" + slice.image.sopInstanceUid);
    EXPECT_EQ(listed, referenced);
  });
}

}  // namespace
}  // namespace workstation::test
