// Changing the region or the extra-vertebra flag throws the labelling away; setting the same value does nothing.

#include "tests/plugin/LabellingFixture.h"

namespace testhost {
namespace {

using pelmar::Ref;
using pelmar::Value;

/// A lumbar study with a stored labelling, shown with its palette; an axial viewer beside it.
class RegionSetter : public LabellingFixture {
 public:
  Ref<TestViewer> axial = addAxial(study);
  void SetUp() override {
    LabellingFixture::SetUp();
    storeStateOfEarlierRun(Value(lumbarState()));
    chooseLabels();
    filter.updateAxialLabels();
    ASSERT_EQ(filter.anatomicalRegion(), 2);
    ASSERT_EQ(planeCount(storedState(study)), 6U);
    host.calls.clear();
  }
  void expectEverythingCleared() {
    EXPECT_FALSE(filter.intervertebralPlanes());
    EXPECT_FALSE(filter.openPolygonROI());
    EXPECT_TRUE(isEmptyState(storedState(study)));
    EXPECT_TRUE(sagittal->allROIs().empty());
    EXPECT_EQ(axialNameCount(axial), 0U);
    EXPECT_EQ(filter.workflow(), 1);
  }
};

TEST_F(RegionSetter, anotherRegionDiscardsThePlanesAndStoresTheEmptyState) {
  filter.setAnatomicalRegion(1);
  EXPECT_EQ(filter.anatomicalRegion(), 1);
  expectEverythingCleared();
}

TEST_F(RegionSetter, anotherFlagDiscardsThePlanesAndStoresTheEmptyState) {
  filter.setAdditionalVertebra(true);
  EXPECT_TRUE(filter.additionalVertebra());
  expectEverythingCleared();
}

TEST_F(RegionSetter, theSameValuesLeavePlanesAndStoredStateUntouched) {
  filter.setAnatomicalRegion(2);
  filter.setAdditionalVertebra(false);
  EXPECT_TRUE(host.calls.lines().empty());
  ASSERT_TRUE(filter.intervertebralPlanes());
  EXPECT_EQ(filter.intervertebralPlanes()->size(), 6U);
  EXPECT_EQ(planeCount(storedState(study)), 6U);
}

TEST_F(RegionSetter, neitherWritesUserDefaults) {
  filter.setAnatomicalRegion(1);
  filter.setAdditionalVertebra(true);
  EXPECT_EQ(host.calls.countContaining("userDefaults"), 0U);
}

TEST_F(RegionSetter, theExtraVertebraReplacesTheLastDiscByTwoAndKeepsTheBoundaries) {
  filter.setAdditionalVertebra(true);
  const auto discs = filter.intervertebralPlanesLabels().at(2);
  EXPECT_EQ(discs.size(), 7U);
  EXPECT_EQ(discs[5], "L5-L6");
  EXPECT_EQ(discs[6], "L6-S1");
  EXPECT_EQ(filter.vertebraeLabels().at(2).back(), "L6");
  EXPECT_EQ(filter.upperVertebraeLabels().at(2), "T12");
  EXPECT_EQ(filter.lowerVertebraeLabels().at(2), "S1");
}

TEST_F(RegionSetter, aLineDrawnWithTheExtraVertebraHasItsDiscs) {
  filter.setAdditionalVertebra(true);
  drawLine();
  ASSERT_TRUE(filter.intervertebralPlanes());
  ASSERT_EQ(filter.intervertebralPlanes()->size(), 7U);
  EXPECT_EQ(filter.intervertebralPlanes()->back().name, "L6-S1");
}

TEST_F(RegionSetter, theMenuCommandClearsTheFlag) {
  filter.setAdditionalVertebra(true);
  chooseLabels();
  EXPECT_FALSE(filter.additionalVertebra());
}

TEST_F(RegionSetter, withoutAStudyTheSettersStillSet) {
  palette()->close();
  filter.setAnatomicalRegion(0);
  filter.setAdditionalVertebra(true);
  EXPECT_EQ(filter.anatomicalRegion(), 0);
  EXPECT_TRUE(filter.additionalVertebra());
}

}  // namespace
}  // namespace testhost
