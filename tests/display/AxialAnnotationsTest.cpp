// The annotations that carry the names of axial slices, and the slices and views that get them.

#include "AxialNames.h"

namespace vertana {
namespace {

using pelmar::PixelPoint;
using pelmar::Ref;
using testhost::TestROI;
using Lines = std::vector<std::string>;

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
