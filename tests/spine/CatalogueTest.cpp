// The names of vertebrae and discs, region by region, against the tables written out in full.

#include "tests/plugin/LabellingFixture.h"

namespace testhost {
namespace {

using Names = std::vector<std::string>;

struct CatalogueRow {
  const char* name;
  long region;
  bool additionalVertebra;
  Names vertebrae;
  Names discs;
  const char* above;
  const char* below;
  friend std::ostream& operator<<(std::ostream& out, const CatalogueRow& row) { return out << row.name; }
};

class Catalogue : public LabellingFixture, public ::testing::WithParamInterface<CatalogueRow> {
 public:
  void SetUp() override {
    LabellingFixture::SetUp();
    filter.setAdditionalVertebra(GetParam().additionalVertebra);
  }
};

TEST_P(Catalogue, namesTheVertebraeFromHeadToFoot) {
  EXPECT_EQ(filter.vertebraeLabels().at(GetParam().region), GetParam().vertebrae);
}

TEST_P(Catalogue, namesTheDiscsFromHeadToFoot) {
  EXPECT_EQ(filter.intervertebralPlanesLabels().at(GetParam().region), GetParam().discs);
}

TEST_P(Catalogue, namesWhatLiesBeyondTheRegionWhateverTheFlag) {
  EXPECT_EQ(filter.upperVertebraeLabels().at(GetParam().region), GetParam().above);
  EXPECT_EQ(filter.lowerVertebraeLabels().at(GetParam().region), GetParam().below);
}

TEST_P(Catalogue, hasOneDiscMoreThanVertebraeInEveryRealRegion) {
  const std::size_t discs = filter.intervertebralPlanesLabels().at(GetParam().region).size();
  const std::size_t vertebrae = filter.vertebraeLabels().at(GetParam().region).size();
  EXPECT_EQ(discs, GetParam().region == -1 ? vertebrae : vertebrae + 1);
}

TEST_P(Catalogue, doesNotDependOnTheCurrentRegion) {
  for (const long current : {-1L, 0L, 1L, 2L}) {
    filter.setAnatomicalRegion(current);
    EXPECT_EQ(filter.vertebraeLabels().at(GetParam().region), GetParam().vertebrae);
    EXPECT_EQ(filter.intervertebralPlanesLabels().at(GetParam().region), GetParam().discs);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Tables, Catalogue,
    ::testing::Values(CatalogueRow{"none", -1, false, {""}, {""}, "", ""},
                      CatalogueRow{"noneExtra", -1, true, {""}, {""}, "", ""},
                      CatalogueRow{"cervical",
                                   0,
                                   false,
                                   {"C1-C2", "C3", "C4", "C5", "C6", "C7"},
                                   {"C0-C1", "C2-C3", "C3-C4", "C4-C5", "C5-C6", "C6-C7", "C7-T1"},
                                   "C0",
                                   "T1"},
                      CatalogueRow{"cervicalExtra",
                                   0,
                                   true,
                                   {"C1-C2", "C3", "C4", "C5", "C6", "C7", "C8"},
                                   {"C0-C1", "C2-C3", "C3-C4", "C4-C5", "C5-C6", "C6-C7", "C7-C8", "C8-T1"},
                                   "C0",
                                   "T1"},
                      CatalogueRow{"thoracic",
                                   1,
                                   false,
                                   {"T1", "T2", "T3", "T4", "T5", "T6", "T7", "T8", "T9", "T10", "T11", "T12"},
                                   {"C7-T1", "T1-T2", "T2-T3", "T3-T4", "T4-T5", "T5-T6", "T6-T7", "T7-T8", "T8-T9",
                                    "T9-T10", "T10-T11", "T11-T12", "T12-L1"},
                                   "C7",
                                   "L1"},
                      CatalogueRow{"thoracicExtra",
                                   1,
                                   true,
                                   {"T1", "T2", "T3", "T4", "T5", "T6", "T7", "T8", "T9", "T10", "T11", "T12", "T13"},
                                   {"C7-T1", "T1-T2", "T2-T3", "T3-T4", "T4-T5", "T5-T6", "T6-T7", "T7-T8", "T8-T9",
                                    "T9-T10", "T10-T11", "T11-T12", "T12-T13", "T13-L1"},
                                   "C7",
                                   "L1"},
                      CatalogueRow{"lumbar",
                                   2,
                                   false,
                                   {"L1", "L2", "L3", "L4", "L5"},
                                   {"T12-L1", "L1-L2", "L2-L3", "L3-L4", "L4-L5", "L5-S1"},
                                   "T12",
                                   "S1"},
                      CatalogueRow{"lumbarExtra",
                                   2,
                                   true,
                                   {"L1", "L2", "L3", "L4", "L5", "L6"},
                                   {"T12-L1", "L1-L2", "L2-L3", "L3-L4", "L4-L5", "L5-L6", "L6-S1"},
                                   "T12",
                                   "S1"}),
    [](const auto& row) { return std::string(row.param.name); });

class CatalogueRules : public LabellingFixture {};

TEST_F(CatalogueRules, everyCatalogueHasTheFourRegionsAndNoOther) {
  const std::vector<long> expected{-1, 0, 1, 2};
  const auto keys = [](const auto& catalogue) {
    std::vector<long> result;
    for (const auto& entry : catalogue) result.push_back(entry.first);
    return result;
  };
  EXPECT_EQ(keys(filter.vertebraeLabels()), expected);
  EXPECT_EQ(keys(filter.intervertebralPlanesLabels()), expected);
  EXPECT_EQ(keys(filter.upperVertebraeLabels()), expected);
  EXPECT_EQ(keys(filter.lowerVertebraeLabels()), expected);
}

TEST_F(CatalogueRules, neighbouringRegionsShareTheirJunctionDisc) {
  const auto discs = filter.intervertebralPlanesLabels();
  EXPECT_EQ(discs.at(0).back(), discs.at(1).front());
  EXPECT_EQ(discs.at(1).back(), discs.at(2).front());
}

TEST_F(CatalogueRules, extraVertebraLeavesTheJunctionAtTheHeadEndAsItIs) {
  filter.setAdditionalVertebra(true);
  const auto discs = filter.intervertebralPlanesLabels();
  EXPECT_EQ(discs.at(0).back(), "C8-T1");
  EXPECT_EQ(discs.at(1).front(), "C7-T1");
  EXPECT_EQ(discs.at(1).back(), "T13-L1");
  EXPECT_EQ(discs.at(2).front(), "T12-L1");
}

TEST_F(CatalogueRules, thereIsNoDiscBetweenAtlasAndAxis) {
  const auto cervical = filter.intervertebralPlanesLabels().at(0);
  EXPECT_EQ(std::count(cervical.begin(), cervical.end(), "C1-C2"), 0);
}

TEST_F(CatalogueRules, atlasAndAxisCountAsOneVertebra) { EXPECT_EQ(filter.vertebraeLabels().at(0).front(), "C1-C2"); }

}  // namespace
}  // namespace testhost
