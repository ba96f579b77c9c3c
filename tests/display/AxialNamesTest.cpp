#include <algorithm>
#include <cmath>

#include "tests/geometry/SpineStudy.h"

namespace vertana {
namespace {

using pelmar::PixelPoint;
using pelmar::Ref;
using pelmar::Vector3f;
using testhost::TestROI;
using Lines = std::vector<std::string>;
using Name = std::optional<std::string>;

const std::string axialTag = "VertanaFilterAxialLabel";

/// Axial slices 1 mm apart, z = 120 at index 0 down to -120; 101 pixels of 1 mm, so that the centre pixel position
/// (50.5, 50.5) lies at x = y = 0.5 mm.
struct AxialNames : SpineStudy {
  Ref<testhost::TestViewer> axial = host.addViewer(study, testhost::axialSeries(241, 101, 1, 1));

  AxialNames() {
    filter.setDisplayLabels(true);
    host.calls.clear();
  }

  /// The six lumbar discs straight down the patient's z axis, 30 mm apart from z = 90: thirds of 10 mm.
  void holdLumbarPlanes() {
    std::vector<IntervertebralPlane> planes;
    float z = 90;
    for (const char* name : {"T12-L1", "L1-L2", "L2-L3", "L3-L4", "L4-L5", "L5-S1"}) {
      planes.push_back(plane(name, {0, 0, z}));
      z -= 30;
    }
    filter.setIntervertebralPlanes(planes);
  }
  Name nameAtZ(long z) { return filter.nameForSliceAtIndex(120 - z, axial->view); }
  std::vector<Ref<TestROI>> namesOnSlice(std::size_t slice) const {
    auto rois = axial->roisOnSlice(slice);
    std::erase_if(rois, [](const auto& roi) { return !roi->tags->containsObject(axialTag); });
    return rois;
  }
};

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

// --- writing it ---

TEST_F(AxialNames, nameIsWrittenAsATextAtTheTopCentreOfItsOwnSlice) {
  filter.setName("L4", 7, axial->view);
  ASSERT_EQ(namesOnSlice(7).size(), 1U);
  const auto label = namesOnSlice(7)[0];
  EXPECT_EQ(label->kind, 13);
  EXPECT_EQ(label->caption, "L4");
  EXPECT_EQ(label->tags->tags, Lines{axialTag});
  EXPECT_TRUE(label->hiddenInKeyImages);
  EXPECT_TRUE(label->keepsWindowSettings);
  EXPECT_EQ(label->mode, pelmar::ROIModeFinished);
  EXPECT_EQ(label->width, 20.0F);
  EXPECT_FALSE(label->thicknessGlobally);
  // The view is 512 x 512 points at one point a pixel: (256, 472) from below is 40 pixels from above.
  EXPECT_EQ(label->rectangle.origin, (PixelPoint{256, 40}));
  EXPECT_EQ(axial->allROIs().size(), 1U);
  EXPECT_EQ(host.calls.lines().back(), "viewer2.needsDisplayUpdate()");
}

TEST_F(AxialNames, existingAnnotationIsRewrittenInPlace) {
  const auto label = host.addROI(13, axial, 7, {}, {axialTag});
  const auto other = host.addROI(5, axial, 7, {});
  label->rectangle = {{1, 2}, {30, 11}};
  label->mode = pelmar::ROIModeSelected;
  label->caption = "L5";
  filter.setName("L4", 7, axial->view);
  EXPECT_EQ(axial->roisOnSlice(7), (std::vector<Ref<TestROI>>{label, other}));
  EXPECT_EQ(label->caption, "L4");
  EXPECT_EQ(label->rectangle, (pelmar::PixelRect{{256, 40}, {30, 11}})) << "the size is kept";
  EXPECT_EQ(label->mode, pelmar::ROIModeFinished);
  EXPECT_EQ(label->width, 20.0F);
  EXPECT_TRUE(label->hiddenInKeyImages);
  EXPECT_TRUE(label->keepsWindowSettings);
  EXPECT_EQ(label->tags->tags, Lines{axialTag});
  EXPECT_EQ(host.calls.countContaining("roiWithType"), 0U);
}

TEST_F(AxialNames, severalAnnotationsOnASliceAreReducedToTheFirst) {
  const auto first = host.addROI(13, axial, 7, {}, {axialTag});
  host.addROI(13, axial, 7, {}, {axialTag});
  host.addROI(13, axial, 7, {}, {axialTag});
  filter.setName("L4", 7, axial->view);
  EXPECT_EQ(axial->roisOnSlice(7), std::vector<Ref<TestROI>>{first});
  EXPECT_EQ(host.calls.count("deleteROIs(2,false)"), 1U);
  EXPECT_TRUE(host.center.posted.empty());
}

TEST_F(AxialNames, onlyTextsWithTheTagAreTakenForTheName) {
  const auto wrongKind = host.addROI(5, axial, 7, {}, {axialTag});
  const auto wrongTag = host.addROI(13, axial, 7, {}, {"VertanaFilterLabel"});
  const auto otherSlice = host.addROI(13, axial, 8, {}, {axialTag});
  filter.setName("L4", 7, axial->view);
  const auto rois = axial->roisOnSlice(7);
  ASSERT_EQ(rois.size(), 3U);
  EXPECT_TRUE(rois[0] == wrongKind);
  EXPECT_TRUE(rois[1] == wrongTag);
  EXPECT_EQ(rois[2]->caption, "L4");
  EXPECT_EQ(otherSlice->caption, "");
}

TEST_F(AxialNames, nilNameRemovesTheAnnotation) {
  host.addROI(13, axial, 7, {}, {axialTag});
  host.addROI(13, axial, 7, {}, {axialTag});
  filter.setName(std::nullopt, 7, axial->view);
  EXPECT_TRUE(axial->allROIs().empty());
  EXPECT_EQ(host.calls.lines(), (Lines{"deleteROIs(1,false)", "deleteROI(13)"}));
}

TEST_F(AxialNames, nilNameWhereThereIsNoneDoesNothing) {
  filter.setName(std::nullopt, 7, axial->view);
  EXPECT_TRUE(axial->allROIs().empty());
  EXPECT_EQ(host.calls.countContaining("deleteROI("), 0U);
  EXPECT_EQ(host.calls.countContaining("roiWithType"), 0U);
}

TEST_F(AxialNames, switchedOffANameCountsAsNone) {
  filter.setDisplayLabels(false);
  host.addROI(13, axial, 7, {}, {axialTag});
  filter.setName("L4", 7, axial->view);
  EXPECT_TRUE(axial->allROIs().empty());
}

TEST_F(AxialNames, switchingOffRemovesEveryAxialAnnotation) {
  holdLumbarPlanes();
  filter.updateAxialLabels();
  ASSERT_GT(axial->allROIs().size(), 100U);
  filter.setDisplayLabels(false);
  EXPECT_TRUE(axial->allROIs().empty());
}

TEST_F(AxialNames, colourImageIsNeitherNamedNorCleared) {
  host.addROI(13, axial, 7, {}, {axialTag});
  axial->images[0]->rgb = true;  // the one that the view shows
  filter.setName("L4", 7, axial->view);
  filter.setName(std::nullopt, 7, axial->view);
  filter.displayLabelsOnAxialView(axial->view);
  EXPECT_EQ(axial->allROIs().size(), 1U);
  EXPECT_TRUE(host.calls.lines().empty());
}

struct PositionRow {
  std::string name;
  double zoom;
  double contentTop;
  PixelPoint expected;
  friend std::ostream& operator<<(std::ostream& out, const PositionRow& row) { return out << row.name; }
};

struct NamePosition : AxialNames, ::testing::WithParamInterface<PositionRow> {};

TEST_P(NamePosition, staysWithinTheImage) {
  const auto& row = GetParam();
  axial->view->zoom = row.zoom;
  axial->images[0]->content.origin = {0, row.contentTop};
  axial->view->frameRect = {8, 10, 400, 600};  // where the view lies in its window moves nothing within it
  filter.setName("L4", 7, axial->view);
  EXPECT_EQ(namesOnSlice(7)[0]->rectangle.origin, row.expected);
}

// Half the width and 40 points from the top, divided by the zoom.
INSTANTIATE_TEST_SUITE_P(Zooms, NamePosition,
                         ::testing::Values(PositionRow{"AsItIs", 1, 0, {200, 40}},
                                           PositionRow{"ExactlyTen", 4, 0, {50, 10}},
                                           PositionRow{"RaisedToTen", 8, 0, {25, 10}},
                                           PositionRow{"RaisedToTheContent", 1, 55, {200, 55}},
                                           PositionRow{"ContentAboveTenDoesNotLowerIt", 8, 4, {25, 10}},
                                           PositionRow{"ContentAboveTheTop", 8, -20, {25, 10}},
                                           PositionRow{"ContentJustBelowTen", 8, 12, {25, 12}}),
                         [](const auto& tested) { return tested.param.name; });

// --- which slices and views ---

TEST_F(AxialNames, oneSliceIsNamedAlone) {
  holdLumbarPlanes();
  filter.displayLabelsForSliceAtIndex(30, axial->view);
  ASSERT_EQ(axial->allROIs().size(), 1U);
  EXPECT_EQ(namesOnSlice(30)[0]->caption, "T12-L1");
}

TEST_F(AxialNames, everySliceOfAViewIsNamed) {
  holdLumbarPlanes();
  filter.displayLabelsOnAxialView(axial->view);
  for (std::size_t slice = 0; slice < 241; ++slice) {
    const auto expected = filter.nameForSliceAtIndex(static_cast<long>(slice), axial->view);
    ASSERT_EQ(namesOnSlice(slice).size(), expected ? 1U : 0U) << slice;
    if (expected) {
      EXPECT_EQ(namesOnSlice(slice)[0]->caption, *expected);
    }
  }
  // z = 110 .. -80 carry names.
  EXPECT_EQ(axial->allROIs().size(), 191U);
}

TEST_F(AxialNames, sliceCountIsReadAgainOnEveryPass) {
  holdLumbarPlanes();
  // A host that drops the series' second half as soon as a name has been placed.
  axial->view->viewToPixel = [this](pelmar::ViewPoint) {
    axial->view->images->elements().resize(40);
    return PixelPoint{50, 20};
  };
  filter.displayLabelsOnAxialView(axial->view);
  // z = 110 (index 10) to z = 81 (index 39).
  EXPECT_EQ(axial->allROIs().size(), 30U);
}

TEST_F(AxialNames, viewerIsNamedOnlyWhenItShowsTheStudyAndAnAxialImage) {
  holdLumbarPlanes();
  filter.displayLabelsOnAxialViewer(sagittal);
  EXPECT_TRUE(sagittal->allROIs().empty());
  axial->study = host.addStudy("9.9");
  filter.displayLabelsOnAxialViewer(axial);
  EXPECT_TRUE(axial->allROIs().empty());
  axial->study = study;
  filter.displayLabelsOnAxialViewer(axial);
  EXPECT_FALSE(axial->allROIs().empty());
}

TEST_F(AxialNames, updateNamesEveryAxialViewerOfTheStudy) {
  const auto secondAxial = host.addViewer(study, testhost::axialSeries(3, 101, 1, 30));
  const auto foreign = host.addViewer(host.addStudy("9.9"), testhost::axialSeries(3, 101, 1, 30));
  holdLumbarPlanes();
  filter.updateAxialLabels();
  EXPECT_EQ(axial->allROIs().size(), 191U);
  EXPECT_EQ(secondAxial->allROIs().size(), 3U);
  EXPECT_TRUE(foreign->allROIs().empty());
  EXPECT_TRUE(sagittal->allROIs().empty());
}

TEST_F(AxialNames, namesStayAsTheyAreWhileTheSpineIsBeingDrawn) {
  holdLumbarPlanes();
  inputLine({100, 0}, {100, 50});
  filter.updateAxialLabels();
  EXPECT_TRUE(axial->allROIs().empty());
  filter.setInputLengthROI(nullptr);
  inputPolygon({{100, 0}, {100, 50}});
  filter.updateAxialLabels();
  EXPECT_TRUE(axial->allROIs().empty());
  filter.setInputOpenPolygonROI(nullptr);
  filter.updateAxialLabels();
  EXPECT_FALSE(axial->allROIs().empty());
}

TEST_F(AxialNames, withoutAStudyNothingIsUpdated) {
  holdLumbarPlanes();
  filter.setStudy(nullptr);
  filter.updateAxialLabels();
  EXPECT_TRUE(axial->allROIs().empty());
}

}  // namespace
}  // namespace vertana
