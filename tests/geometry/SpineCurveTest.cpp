#include <cmath>

#include "tests/geometry/SpineCurve.h"

namespace vertana {
namespace {

using pelmar::PixelPoint;

// --- when nothing is built ---

TEST_F(SpineCurve, withoutInputAndPlanesNothingIsBuilt) {
  filter.createOpenPolygon();
  EXPECT_FALSE(filter.openPolygonROI());
  EXPECT_TRUE(host.calls.lines().empty());
}

TEST_F(SpineCurve, withoutAVerticalViewerNothingIsBuilt) {
  holdForeignPlane();
  sagittal->orientationCode = 4;
  filter.createOpenPolygon();
  EXPECT_FALSE(filter.openPolygonROI());
  EXPECT_TRUE(host.calls.lines().empty());
}

TEST_F(SpineCurve, whereTheInputIsNotShownNothingIsBuilt) {
  inputLine({100, 0}, {100, 50})->view = nullptr;
  filter.createOpenPolygon();
  EXPECT_FALSE(filter.openPolygonROI());
}

// --- the annotation ---

TEST_F(SpineCurve, curveIsAGreenSelectablePolygonThatStaysOutOfKeyImages) {
  inputLine({100, 0}, {100, 50});
  sagittal->view->current = 2;
  filter.createOpenPolygon();
  const auto made = curve();
  ASSERT_TRUE(made);
  EXPECT_EQ(made->kind, 10);
  EXPECT_TRUE(made->view.lock() == sagittal->view);
  EXPECT_EQ(made->tags->tags, std::vector<std::string>{"kConstructionOpenPolygonStringTag"});
  EXPECT_TRUE(made->hiddenInKeyImages);
  EXPECT_TRUE(made->keepsWindowSettings);
  EXPECT_TRUE(made->aliased);
  EXPECT_EQ(made->aliasIndex, 2);
  EXPECT_FALSE(made->showsText);
  EXPECT_TRUE(made->isSelectable);
  EXPECT_EQ(made->width, 1.0F);
  EXPECT_EQ(made->thicknessGlobally, std::optional<bool>(false));
  EXPECT_EQ(made->colour, (pelmar::Colour{0, 1, 0, 1}));
  EXPECT_EQ(made->colourGlobally, std::optional<bool>(false));
  EXPECT_EQ(host.calls.lines().back(), "viewer1.needsDisplayUpdate()");
}

TEST_F(SpineCurve, rebuildingKeepsTheSameObjectAndRefillsItsPoints) {
  const auto line = inputLine({100, 0}, {100, 50});
  filter.createOpenPolygon();
  const auto first = curve();
  first->isSelectable = false;
  first->showsText = true;
  first->width = 9;
  first->colour = {};
  line->pointList->elements() = {pelmar::MyPoint::point({100, 0}), pelmar::MyPoint::point({100, 100})};
  filter.createOpenPolygon();
  EXPECT_TRUE(curve() == first);
  EXPECT_EQ(host.calls.count("roiWithType(10)"), 1U);
  EXPECT_EQ(curvePoints(), downFromHead({0, 2, 4, 6, 8, 10}));
  EXPECT_TRUE(first->isSelectable);
  EXPECT_FALSE(first->showsText);
  EXPECT_EQ(first->width, 1.0F);
  EXPECT_EQ(first->colour, (pelmar::Colour{0, 1, 0, 1}));
}

TEST_F(SpineCurve, drawnAnewOnAnotherSliceItLiesInThatSlice) {
  inputLine({100, 0}, {100, 50});
  filter.createOpenPolygon();
  for (const std::size_t slice : {2U, 0U}) {
    sagittal->view->current = static_cast<long>(slice);
    filter.createOpenPolygon();
    EXPECT_TRUE(curve()->pix() == sagittal->images[slice]) << "its vertices are pixels of slice " << slice;
    EXPECT_EQ(curve()->originalIndexForAlias(), static_cast<long>(slice));
  }
}

TEST_F(SpineCurve, curveHeadsEverySlicesListAndIsNeverDuplicated) {
  inputLine({100, 0}, {100, 50});
  for (std::size_t slice = 0; slice < 3; ++slice) host.addROI(19, sagittal, slice, {{1, 1}});
  filter.createOpenPolygon();
  // Something came to stand before it since.
  sagittal->sliceLists[1]->insertObject(host.addROI(19, sagittal, 99, {{2, 2}}), 0);
  filter.createOpenPolygon();
  for (std::size_t slice = 0; slice < 3; ++slice) {
    const auto rois = sagittal->roisOnSlice(slice);
    EXPECT_TRUE(rois.front() == curve()) << slice;
    EXPECT_EQ(std::count(rois.begin(), rois.end(), curve()), 1) << slice;
  }
}

// --- from a finished line ---

struct RegionRow {
  std::string name;
  long region;
  bool additionalVertebra;
  double lineInSteps;
  std::vector<double> vertices;  ///< in steps from the head end
  friend std::ostream& operator<<(std::ostream& out, const RegionRow& row) { return out << row.name; }
};

struct FinishedLine : SpineCurve, ::testing::WithParamInterface<RegionRow> {};

TEST_P(FinishedLine, givesTheRegionsVertices) {
  const auto& row = GetParam();
  useRegion(row.region, row.additionalVertebra);
  inputLine({100, 0}, {100, 10 * row.lineInSteps}, pelmar::ROIModeFinished, 7.0F);
  filter.createOpenPolygon();
  EXPECT_EQ(curvePoints(), downFromHead(row.vertices));
}

TEST_P(FinishedLine, drawnFromFeetToHeadRunsHeadFirstAllTheSame) {
  const auto& row = GetParam();
  useRegion(row.region, row.additionalVertebra);
  inputLine({100, 10 * row.lineInSteps}, {100, 0}, pelmar::ROIModeFinished, 7.0F);
  filter.createOpenPolygon();
  EXPECT_EQ(curvePoints(), downFromHead(row.vertices));
}

TEST_P(FinishedLine, selectedInsteadOfFinishedCountsAsFinished) {
  const auto& row = GetParam();
  useRegion(row.region, row.additionalVertebra);
  inputLine({100, 10 * row.lineInSteps}, {100, 0}, pelmar::ROIModeSelected, 7.0F);
  filter.createOpenPolygon();
  EXPECT_EQ(curvePoints(), downFromHead(row.vertices));
}

INSTANTIATE_TEST_SUITE_P(
    Regions, FinishedLine,
    ::testing::Values(
        // Six labels, seven steps: A, A+2s, A+3s, ..., A+7s = B.
        RegionRow{"Cervical", 0, false, 7, {0, 2, 3, 4, 5, 6, 7}},
        RegionRow{"CervicalWithExtraVertebra", 0, true, 8, {0, 2, 3, 4, 5, 6, 7, 8}},
        RegionRow{"Thoracic", 1, false, 12, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}},
        RegionRow{"ThoracicWithExtraVertebra", 1, true, 13, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13}},
        RegionRow{"Lumbar", 2, false, 5, {0, 1, 2, 3, 4, 5}},
        RegionRow{"LumbarWithExtraVertebra", 2, true, 6, {0, 1, 2, 3, 4, 5, 6}},
        // The list of no region holds one empty label: A and B.
        RegionRow{"None", -1, false, 5, {0, 5}}),
    [](const auto& tested) { return tested.param.name; });

TEST_F(SpineCurve, finishedInputGivesEachDiscItsVertex) {
  for (const long region : {0, 1, 2}) {
    for (const bool additional : {false, true}) {
      useRegion(region, additional);
      inputLine({100, 0}, {100, 200});
      filter.createOpenPolygon();
      EXPECT_EQ(curvePoints().size(), filter.intervertebralPlanesLabels().at(region).size());
    }
  }
}

TEST_F(SpineCurve, levelLineIsNotUpward) {
  // Both ends at the same z: only a smaller one turns the line.
  inputLine({0, 80}, {50, 80});
  filter.createOpenPolygon();
  EXPECT_EQ(curvePoints().front(), (PixelPoint{0, 80}));
}

TEST_F(SpineCurve, upwardIsJudgedByThePatientNotByTheImage) {
  // Columns run to the head: the lower end of the image is the head end.
  for (const auto& image : sagittal->images) image->geometry.column = {0, 0, 1};
  inputLine({100, 0}, {100, 50});
  filter.createOpenPolygon();
  EXPECT_EQ(curvePoints().front(), (PixelPoint{100, 50}));
  EXPECT_EQ(curvePoints().back(), (PixelPoint{100, 0}));
}

TEST_F(SpineCurve, lineWithMoreThanTwoPointsRunsFromItsFirstToItsLast) {
  const auto line = inputLine({100, 0}, {300, 300});
  line->pointList->addObject(pelmar::MyPoint::point({100, 50}));
  filter.createOpenPolygon();
  EXPECT_EQ(curvePoints(), downFromHead({0, 1, 2, 3, 4, 5}));
}

TEST_F(SpineCurve, stepBetweenVerticesIsTakenInSinglePrecision) {
  inputLine({0, 0}, {1, 3});
  filter.createOpenPolygon();
  EXPECT_EQ(curvePoints()[1].x, static_cast<double>(0.2F));
  EXPECT_EQ(curvePoints()[1].y, static_cast<double>(0.6F));
}

// --- from a line that is being drawn ---

struct LiveRow {
  std::string name;
  long region;
  float lengthCm;
  std::size_t vertices;
  friend std::ostream& operator<<(std::ostream& out, const LiveRow& row) { return out << row.name; }
};

struct LiveLine : SpineCurve, ::testing::WithParamInterface<LiveRow> {};

TEST_P(LiveLine, countsVertebraeByItsLength) {
  const auto& row = GetParam();
  useRegion(row.region);
  inputLine({100, 0}, {100, 100}, pelmar::ROIModeDrawing, row.lengthCm);
  filter.createOpenPolygon();
  EXPECT_EQ(curvePoints().size(), row.vertices);
}

INSTANTIATE_TEST_SUITE_P(Lengths, LiveLine,
                         ::testing::Values(LiveRow{"ThoracicSevenIsThreeAndAHalfAndRoundsUp", 1, 7.0F, 5},
                                           LiveRow{"ThoracicNineIsFourAndAHalfAndRoundsAwayFromZero", 1, 9.0F, 6},
                                           LiveRow{"ThoracicJustBelowNineRoundsDown", 1, 8.99F, 5},
                                           LiveRow{"ThoracicFortyIsCappedAtTwelve", 1, 40.0F, 13},
                                           LiveRow{"ThoracicTwentyFourIsTheFullCount", 1, 24.0F, 13},
                                           LiveRow{"ThoracicTwentyTwoIsOneShort", 1, 22.0F, 12},
                                           LiveRow{"LumbarSevenIsTwoAndAThird", 2, 7.0F, 3},
                                           LiveRow{"LumbarSevenAndAHalfIsTwoAndAHalf", 2, 7.5F, 4},
                                           LiveRow{"LumbarThirtyIsCappedAtFive", 2, 30.0F, 6},
                                           LiveRow{"CervicalSevenIsFourAndTwoThirds", 0, 7.0F, 6},
                                           LiveRow{"CervicalSixAndThreeQuartersIsFourAndAHalf", 0, 6.75F, 6},
                                           LiveRow{"CervicalThirtyIsCappedAtSix", 0, 30.0F, 7},
                                           LiveRow{"NoneIsCappedAtOne", -1, 7.0F, 2}),
                         [](const auto& tested) { return tested.param.name; });

TEST_F(SpineCurve, lineBeingDrawnUpwardStartsAtTheFeet) {
  inputLine({100, 50}, {100, 0}, pelmar::ROIModeDrawing, 30.0F);
  filter.createOpenPolygon();
  EXPECT_EQ(curvePoints(), downFromHead({5, 4, 3, 2, 1, 0}));
}

TEST_F(SpineCurve, cervicalLineBeingDrawnDownwardHasItsLongIntervalAtTheHead) {
  useRegion(0);
  // 6 cm / 1.5 cm: four vertebrae, five steps.
  inputLine({100, 0}, {100, 50}, pelmar::ROIModeDrawing, 6.0F);
  filter.createOpenPolygon();
  EXPECT_EQ(curvePoints(), downFromHead({0, 2, 3, 4, 5}));
}

TEST_F(SpineCurve, cervicalLineBeingDrawnUpwardHasNoLongIntervalBeforeTheFullCount) {
  useRegion(0);
  inputLine({100, 50}, {100, 0}, pelmar::ROIModeDrawing, 6.0F);
  filter.createOpenPolygon();
  EXPECT_EQ(curvePoints(), downFromHead({5, 4, 3, 2, 1}));
}

TEST_F(SpineCurve, cervicalLineBeingDrawnUpwardHasItsLongIntervalAtTheFarEndOnceTheCountIsFull) {
  useRegion(0);
  inputLine({100, 70}, {100, 0}, pelmar::ROIModeDrawing, 9.0F);
  filter.createOpenPolygon();
  EXPECT_EQ(curvePoints(), downFromHead({7, 6, 5, 4, 3, 2, 0}));
}

TEST_F(SpineCurve, lineBeingDrawnForgetsThePlanesAndAFinishedOneDoesNot) {
  holdForeignPlane();
  const auto line = inputLine({100, 0}, {100, 50});
  for (const long mode : {pelmar::ROIModeFinished, pelmar::ROIModeSelected, pelmar::ROIModeEditing}) {
    line->mode = mode;
    filter.createOpenPolygon();
    EXPECT_TRUE(holdsForeignPlane()) << mode;
  }
  line->mode = pelmar::ROIModeDrawing;
  filter.createOpenPolygon();
  EXPECT_FALSE(holdsPlanes());
}

}  // namespace
}  // namespace vertana
