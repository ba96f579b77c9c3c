// The name of the level that an axial slice cuts.

#include "AxialNames.h"

namespace vertana {
namespace {

using pelmar::Ref;
using pelmar::Vector3f;
using Name = std::optional<std::string>;

// --- the name ---

struct NameRow {
  std::string name;
  long z;
  Name expected;
  friend std::ostream& operator<<(std::ostream& out, const NameRow& row) { return out << row.name; }
};

struct NameAlongTheSpine : AxialNames, ::testing::WithParamInterface<NameRow> {};

TEST_P(NameAlongTheSpine, isThatOfTheLevelThatTheSliceCuts) {
  holdLumbarPlanes();
  EXPECT_EQ(nameAtZ(GetParam().z), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Lumbar, NameAlongTheSpine,
    ::testing::Values(
        NameRow{"OnTheFirstDisc", 90, "T12-L1"}, NameRow{"OnALaterDisc", 0, "L3-L4"},
        NameRow{"OnTheLastDisc", -60, "L5-S1"}, NameRow{"ExactlyAThirdBelowTheFirstDisc", 80, "T12-L1"},
        NameRow{"JustBeyondAThirdBelowTheFirstDisc", 79, "L1"},
        NameRow{"HalfWayTheFirstOfEqualDistancesWins", 75, "L1"},
        NameRow{"MiddleThirdNearerToTheNextDiscStaysThatDisc", 74, "L1-L2"},
        NameRow{"MiddleThirdEndsAtTheNextDisc", 71, "L1-L2"}, NameRow{"ExactlyAThirdAboveTheNextDisc", 70, "L1-L2"},
        NameRow{"AThirdBelowAMiddleDisc", 20, "L2-L3"}, NameRow{"JustBeyondAThirdBelowAMiddleDisc", 19, "L3"},
        NameRow{"HalfWayInTheLastGap", -45, "L5"}, NameRow{"NearerToTheLastDisc", -46, "L5-S1"},
        NameRow{"AboveTheFirstDiscBelowAThird", 99, "T12-L1"}, NameRow{"AboveTheFirstDiscExactlyAThird", 100, "T12"},
        NameRow{"AboveTheFirstDiscExactlyTwoThirds", 110, "T12"},
        NameRow{"AboveTheFirstDiscBeyondTwoThirds", 111, std::nullopt},
        NameRow{"BelowTheLastDiscBelowAThird", -69, "L5-S1"}, NameRow{"BelowTheLastDiscExactlyAThird", -70, "S1"},
        NameRow{"BelowTheLastDiscExactlyTwoThirds", -80, "S1"},
        NameRow{"BelowTheLastDiscBeyondTwoThirds", -81, std::nullopt}, NameRow{"FarBelow", -120, std::nullopt}),
    [](const auto& tested) { return tested.param.name; });

TEST_F(AxialNames, endsAreNamedByTheRegion) {
  holdLumbarPlanes();
  const auto planes = filter.intervertebralPlanes();
  const std::vector<std::tuple<long, std::string, std::string>> rows{
      {0, "C0", "T1"}, {1, "C7", "L1"}, {2, "T12", "S1"}, {-1, "", ""}};
  for (const auto& [region, above, below] : rows) {
    filter.setAnatomicalRegion(region);
    filter.setIntervertebralPlanes(planes);
    EXPECT_EQ(nameAtZ(105), Name(above)) << region;
    EXPECT_EQ(nameAtZ(-75), Name(below)) << region;
  }
}

TEST_F(AxialNames, regionOfAnotherProgramNamesTheDiscsAlone) {
  // A stored labelling may tell a region that has no vertebrae here.
  filter.setAnatomicalRegion(7);
  holdLumbarPlanes();
  EXPECT_EQ(nameAtZ(90), Name("T12-L1"));
  EXPECT_EQ(nameAtZ(75), std::nullopt) << "half way to the next disc";
  EXPECT_EQ(nameAtZ(105), std::nullopt) << "beyond the first disc";
  EXPECT_EQ(nameAtZ(-75), std::nullopt) << "beyond the last disc";
}

TEST_F(AxialNames, gapBeyondTheVertebraeOfTheRegionHasNoName) {
  filter.setAnatomicalRegion(AnatomicalRegionNone);  // its one vertebra is the empty text
  holdLumbarPlanes();
  EXPECT_EQ(nameAtZ(75), Name(""));
  EXPECT_EQ(nameAtZ(45), std::nullopt);
}

TEST_F(AxialNames, withoutPlanesThereIsNoName) {
  EXPECT_EQ(nameAtZ(0), std::nullopt);
  filter.setIntervertebralPlanes(std::vector<IntervertebralPlane>{});
  EXPECT_EQ(nameAtZ(0), std::nullopt);
}

TEST_F(AxialNames, hostMayAskForTheNameOfAnySlice) {
  const Ref<pelmar::DCMPix> atDisc = axial->view->dcmPixList()->objectAtIndex(120 - 30);
  const auto asked = [this](const Ref<pelmar::HostObject>& object, std::string_view key = "sliceName") {
    return filter.valueForObject(object, key);
  };
  curveThrough({{200, 20}, {200, 380}});
  EXPECT_TRUE(asked(atDisc).isNil()) << "asking computes no planes";
  EXPECT_EQ(filter.stateSnapshot().dictionary()->at("intervertebralPlanes"), pelmar::Value());
  holdLumbarPlanes();
  EXPECT_EQ(asked(atDisc), pelmar::Value("L2-L3"));
  EXPECT_EQ(asked(axial->view->dcmPixList()->objectAtIndex(120 - 15)), pelmar::Value("L3")) << "half way down to L3-L4";
  EXPECT_TRUE(asked(axial->view->dcmPixList()->objectAtIndex(0)).isNil()) << "30 mm above the first disc";
  EXPECT_TRUE(asked(atDisc, "name").isNil());
  EXPECT_TRUE(asked(axial).isNil()) << "a viewer is no slice";
  EXPECT_TRUE(asked(nullptr).isNil());
}

TEST_F(AxialNames, singlePlaneNamesEverySlice) {
  filter.setIntervertebralPlanes({{plane("L4-L5", {0, 0, 0})}});
  EXPECT_EQ(nameAtZ(0), Name("L4-L5"));
  EXPECT_EQ(nameAtZ(-120), Name("L4-L5"));
}

TEST_F(AxialNames, planesBeforeTheCrossingAreMeasuredFromTheSlicesCentre) {
  // The spine runs 100 mm in front of the slice's centre C = (0.5, 0.5, 0); the first plane is tilted so far that it
  // passes through C, though it lies 37 mm from where the spine cuts the slice. It is the nearest: distance 0.
  filter.setIntervertebralPlanes({{plane("T12-L1", {0, -100, 40}, {0, 40, 100.5F}), plane("L1-L2", {0, -100, 20}),
                                   plane("L2-L3", {0, -100, -20})}});
  EXPECT_EQ(nameAtZ(0), Name("T12-L1"));
}

TEST_F(AxialNames, planesAfterTheCrossingAreMeasuredFromTheCrossing) {
  // The third plane passes through the slice's centre, but the spine has crossed the slice before: from there the
  // first two planes are 10 mm away and the third one 37 mm. The first of the equal ones wins: the vertebra below it.
  filter.setIntervertebralPlanes({{plane("T12-L1", {0, -100, 10}), plane("L1-L2", {0, -100, -10}),
                                   plane("L2-L3", {0, -100, -40}, {0, -40, 100.5F})}});
  EXPECT_EQ(nameAtZ(0), Name("L1"));
}

TEST_F(AxialNames, spineThatCrossesTheSliceTwiceIsMeasuredFromTheNewerCrossing) {
  // The slice z = 0 is crossed at y = -100, 20 mm from the first disc, and again at y = -40, 20 mm from the second.
  // There (0, -20, -20) from the third disc is 12 - 16 = -4 mm along its normal: the nearest, within a third of 4 + 20
  // mm. From the first crossing (0, -80, -20) would be 48 - 16 = 32 mm, and the slice half way between the first two
  // discs.
  filter.setIntervertebralPlanes({{plane("T12-L1", {0, -140, 20}), plane("L1-L2", {0, -60, -20}),
                                   plane("L2-L3", {0, -20, 20}, {0, -0.6F, 0.8F})}});
  EXPECT_EQ(nameAtZ(0), Name("L2-L3"));
}

TEST_F(AxialNames, nearestPlaneAndItsNeighbourAreComparedAsSeenFromTheLastCrossing) {
  // The spine crosses the slice at Q = (0, -100, 0), 16 mm from the second disc and 20 mm from the third. The first
  // disc comes before the crossing and is measured from the slice's centre C = (0.5, 0.5, 0): 12 mm. Seen from Q the
  // feet of the first two lie on opposite sides, both further than a third of 12 + 16 mm: the vertebra between them.
  // 0.28 * 100.5 - 0.96 * 41.8 = -12, foot (0.5, 3.86, 11.5); the neighbour's is (0, -109.6, 12.8). Seen from C the
  // foot of the first one would lie on the neighbour's side of Q, and C itself is 76 mm from the neighbour.
  filter.setIntervertebralPlanes({{plane("T12-L1", {0, -100, 41.8F}, {0, 0.28F, 0.96F}),
                                   plane("L1-L2", {0, -100, 20}, {0, 0.6F, -0.8F}), plane("L2-L3", {0, -100, -20})}});
  EXPECT_EQ(nameAtZ(0), Name("L1"));
  // -0.28 * 100.5 + 0.96 * 16.8 = -12, foot (0.5, -2.86, 11.5); the neighbour's is (0, -109.6, -12.8). Seen from C both
  // feet would lie on one side: beyond the first disc, further than two thirds of the gap of 16 - 12 mm, no name.
  filter.setIntervertebralPlanes({{plane("T12-L1", {0, -100, -16.8F}, {0, -0.28F, 0.96F}),
                                   plane("L1-L2", {0, -100, -20}, {0, -0.6F, -0.8F}), plane("L2-L3", {0, -100, 20})}});
  EXPECT_EQ(nameAtZ(0), Name("L1"));
}

TEST_F(AxialNames, sliceIsTakenThroughTheMiddleOfItsPixelsAlongItsOwnNormal) {
  // Normal (0, 0.6, 0.8), centre (0, 0, 2): the slice cuts the spine at y = -100 where z = 2 + 75. There the first disc
  // (z = 90) is 13 mm away and the second 17 mm.
  auto& geometry = axial->images[5]->geometry;
  geometry = {{-10.5, -150.5 * 0.8, 2 + 150.5 * 0.6}, {1, 0, 0}, {0, 0.8, -0.6}, 1, 1, 21, 301};
  axial->images[5]->cosines = {1, 0, 0, 0, 0.8, -0.6, 0, 0.6, 0.8};
  filter.setIntervertebralPlanes({{plane("T12-L1", {0, -100, 90}), plane("L1-L2", {0, -100, 60}),
                                   plane("L2-L3", {0, -100, 30}), plane("L3-L4", {0, -100, 0})}});
  EXPECT_EQ(filter.nameForSliceAtIndex(5, axial->view), Name("L1"));
}

TEST_F(AxialNames, sliceBeyondTheEndsIsMeasuredFromHalfItsWidthAndHalfItsHeight) {
  // Centre (0, 0, 105). By the tilted normals the discs at z = 90 and 60 are 15 * 0.8 = 12 mm and 45 * 0.8 = 36 mm
  // away: a gap of 24 mm, so that 12 mm lie between a third and two thirds. 140 mm off the centre they would be far
  // away.
  axial->images[5]->geometry = {{-10.5, -150.5, 105}, {1, 0, 0}, {0, 1, 0}, 1, 1, 21, 301};
  for (const Vector3f& normal : {Vector3f{0, 0.6F, -0.8F}, Vector3f{0.6F, 0, -0.8F}}) {
    filter.setIntervertebralPlanes({{plane("T12-L1", {0, 0, 90}, normal), plane("L1-L2", {0, 0, 60}, normal)}});
    EXPECT_EQ(filter.nameForSliceAtIndex(5, axial->view), Name("T12"));
  }
}

TEST_F(AxialNames, namesAreComputedFromTheCurveWhenThereAreNoPlanes) {
  curveThrough({{200, 170}, {200, 200}, {200, 230}});  // z = 30, 0, -30
  EXPECT_EQ(nameAtZ(30), Name("T12-L1"));
  EXPECT_EQ(nameAtZ(15), Name("L1"));
}

}  // namespace
}  // namespace vertana
