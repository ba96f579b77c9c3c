#include "tests/geometry/SpineStudy.h"

namespace vertana {
namespace {

using pelmar::Colour;
using pelmar::PixelPoint;
using pelmar::Ref;
using testhost::TestROI;
using Lines = std::vector<std::string>;
using Points = std::vector<PixelPoint>;

const std::string temporary = "VertanaFilterTemporayROI";

struct TemporaryAnnotations : SpineStudy {
  Ref<testhost::TestViewer> second = host.addViewer(study, testhost::coronalSeries(2, 101));

  Ref<TestROI> withUID(const std::string& uid) { return pelmar::ref_cast<TestROI>(filter.temporaryROIWithUID(uid)); }
  static std::vector<Ref<TestROI>> concrete(const std::vector<Ref<pelmar::ROI>>& rois) {
    std::vector<Ref<TestROI>> result;
    for (const auto& roi : rois) result.push_back(pelmar::ref_cast<TestROI>(roi));
    return result;
  }
};

// --- finding ---

TEST_F(TemporaryAnnotations, areFoundByTheirTagViewerByViewerSliceBySliceInListOrder) {
  const auto d = host.addROI(5, second, 1, {}, {temporary});
  const auto c = host.addROI(13, sagittal, 2, {}, {temporary});
  const auto a = host.addROI(19, sagittal, 0, {}, {"uid", temporary});
  const auto b = host.addROI(14, sagittal, 0, {}, {temporary});
  host.addROI(19, sagittal, 1, {});
  EXPECT_EQ(concrete(filter.temporaryROIs()), (std::vector<Ref<TestROI>>{a, b, c, d}));
  EXPECT_EQ(concrete(filter.temporaryROIsForViewer(sagittal)), (std::vector<Ref<TestROI>>{a, b, c}));
  EXPECT_EQ(concrete(filter.temporaryROIsForViewer(second)), (std::vector<Ref<TestROI>>{d}));
}

TEST_F(TemporaryAnnotations, rightSpellingOfTheTagIsNotOurs) {
  host.addROI(19, sagittal, 0, {}, {"VertanaFilterTemporaryROI"});
  EXPECT_TRUE(filter.temporaryROIs().empty());
  EXPECT_TRUE(filter.temporaryROIsForViewer(sagittal).empty());
}

TEST_F(TemporaryAnnotations, areFoundOnViewersOfEveryStudy) {
  const auto other = host.addViewer(host.addStudy("9.9"), testhost::sagittalSeries(1, 11));
  host.addROI(19, other, 0, {}, {temporary});
  EXPECT_EQ(filter.temporaryROIs().size(), 1U);
}

TEST_F(TemporaryAnnotations, firstOneWithTheUIDIsFoundOverAllViewers) {
  host.addROI(19, sagittal, 0, {}, {"wanted"});  // not temporary
  const auto later = host.addROI(19, second, 1, {}, {"wanted", temporary});
  EXPECT_TRUE(withUID("wanted") == later);
  const auto first = host.addROI(19, sagittal, 2, {}, {temporary, "wanted"});
  EXPECT_TRUE(withUID("wanted") == first);
  EXPECT_FALSE(withUID("want"));
  EXPECT_FALSE(withUID("Wanted"));
}

TEST_F(TemporaryAnnotations, uidEqualToTheMarkerMatchesEveryTemporaryAnnotation) {
  const auto any = host.addROI(19, second, 0, {}, {"something", temporary});
  EXPECT_TRUE(withUID(temporary) == any);
}

TEST_F(TemporaryAnnotations, withNoViewersOpenThereAreNoneAndRemovingDoesNothing) {
  host.viewers.clear();
  EXPECT_TRUE(filter.temporaryROIs().empty());
  host.calls.clear();
  filter.removeTemporaryROIs();
  EXPECT_EQ(host.calls.countContaining("needsDisplayUpdate"), 0U);
}

// --- adding ---

TEST_F(TemporaryAnnotations, addedAnnotationIsTaggedUnselectableAndOnTheShownSliceOnly) {
  const auto roi = pelmar::makeRef<TestROI>(&host.calls, 19, second->view);
  roi->mode = pelmar::ROIModeSelected;
  second->view->current = 1;
  filter.addTemporaryROI(roi, second->view, "mark", {0.1, 0.2, 0.3, 0.4});
  EXPECT_EQ(roi->tags->tags, (Lines{"mark", temporary}));
  EXPECT_TRUE(second->roisOnSlice(0).empty());
  EXPECT_EQ(second->roisOnSlice(1), std::vector<Ref<TestROI>>{roi});
  EXPECT_EQ(roi->mode, pelmar::ROIModeFinished);
  EXPECT_FALSE(roi->showsText);
  EXPECT_FALSE(roi->isSelectable);
  EXPECT_EQ(roi->colour, (Colour{0.1, 0.2, 0.3, 0.4}));
  EXPECT_EQ(roi->colourGlobally, std::optional<bool>(false));
  EXPECT_TRUE(roi->hiddenInKeyImages);
  EXPECT_EQ(host.calls.lines().back(), "viewer2.needsDisplayUpdate()");
}

TEST_F(TemporaryAnnotations, addingNilDoesNothing) {
  filter.addTemporaryROI(nullptr, sagittal->view, "mark", {});
  EXPECT_TRUE(host.calls.lines().empty());
}

TEST_F(TemporaryAnnotations, addingUnderAnExistingUIDLeavesTheTagsAsTheyAre) {
  host.addROI(19, second, 0, {}, {"mark", temporary});
  const auto roi = pelmar::makeRef<TestROI>(&host.calls, 19, sagittal->view);
  filter.addTemporaryROI(roi, sagittal->view, "mark", {});
  EXPECT_TRUE(roi->tags->tags.empty());
  EXPECT_EQ(sagittal->roisOnSlice(0), std::vector<Ref<TestROI>>{roi});
}

TEST_F(TemporaryAnnotations, addingAgainMovesTheAnnotationToTheEndOfTheList) {
  const auto roi = host.addROI(19, sagittal, 0, {}, {"mark", temporary});
  const auto other = host.addROI(5, sagittal, 0, {});
  filter.addTemporaryROI(roi, sagittal->view, "mark", {});
  EXPECT_EQ(sagittal->roisOnSlice(0), (std::vector<Ref<TestROI>>{other, roi}));
}

TEST_F(TemporaryAnnotations, changingTheImageLeavesTheStaleEntryUntilTheNextRemoval) {
  filter.displayTemporaryPoint({1, 2}, sagittal->view, "mark");
  const auto roi = withUID("mark");
  sagittal->view->current = 2;
  filter.displayTemporaryPoint({3, 4}, sagittal->view, "mark");
  EXPECT_EQ(sagittal->roisOnSlice(0), std::vector<Ref<TestROI>>{roi});
  EXPECT_EQ(sagittal->roisOnSlice(2), std::vector<Ref<TestROI>>{roi});
  filter.removeTemporaryROIs();
  EXPECT_TRUE(sagittal->allROIs().empty());
}

// --- points ---

TEST_F(TemporaryAnnotations, pointIsMadeWithItsRectangleAtThePoint) {
  filter.displayTemporaryPoint({12, 34}, second->view, "mark", {0, 0, 1, 0.7});
  const auto roi = withUID("mark");
  ASSERT_TRUE(roi);
  EXPECT_EQ(roi->kind, 19);
  EXPECT_TRUE(roi->hiddenInKeyImages);
  EXPECT_TRUE(roi->keepsWindowSettings);
  EXPECT_EQ(roi->positions(), (Points{{12, 34}}));
  EXPECT_EQ(roi->rectangle, (pelmar::PixelRect{{12, 34}, {0, 0}}));
  EXPECT_EQ(roi->colour, (Colour{0, 0, 1, 0.7}));
  EXPECT_EQ(second->roisOnSlice(0), std::vector<Ref<TestROI>>{roi});
}

TEST_F(TemporaryAnnotations, pointShownTwiceUnderOneUIDMovesTheOneThatThereIs) {
  filter.displayTemporaryPoint({12, 34}, sagittal->view, "mark");
  const auto roi = withUID("mark");
  roi->rectangle.size = {7, 9};
  filter.displayTemporaryPoint({50, 60}, sagittal->view, "mark");
  EXPECT_EQ(host.calls.count("roiWithType(19)"), 1U);
  EXPECT_EQ(sagittal->allROIs(), std::vector<Ref<TestROI>>{roi});
  EXPECT_EQ(sagittal->roisOnSlice(0).size(), 1U);
  EXPECT_EQ(roi->tags->tags, (Lines{"mark", temporary}));
  EXPECT_EQ(roi->positions(), (Points{{50, 60}}));
  EXPECT_EQ(roi->rectangle, (pelmar::PixelRect{{50, 60}, {7, 9}})) << "only the origin moves";
}

TEST_F(TemporaryAnnotations, pointWithoutAColourIsHalfTransparentOrange) {
  filter.displayTemporaryPoint({12, 34}, sagittal->view, "mark");
  EXPECT_EQ(withUID("mark")->colour, (Colour{1.0, 0.5, 0.0, 0.5}));
}

TEST_F(TemporaryAnnotations, whereTheHostMakesNoAnnotationNothingIsShown) {
  host.rois.makesROIs = false;
  filter.displayTemporaryPoint({12, 34}, sagittal->view, "mark");
  filter.displayTemporaryVectorFromPoint({1, 2}, {3, 4}, sagittal->view, "arrow");
  EXPECT_EQ(host.calls.lines(), (Lines{"roiWithType(19)", "roiWithType(14)"}));
  EXPECT_EQ(sagittal->sliceLists[0]->count(), 0U);
}

// --- vectors ---

TEST_F(TemporaryAnnotations, vectorHoldsItsEndFirstAndItsStartSecond) {
  filter.displayTemporaryVectorFromPoint({1, 2}, {30, 40}, true, second->view, "arrow", {0, 1, 1, 0.3});
  const auto roi = withUID("arrow");
  ASSERT_TRUE(roi);
  EXPECT_EQ(roi->kind, 14);
  EXPECT_EQ(roi->positions(), (Points{{30, 40}, {1, 2}}));
  EXPECT_EQ(roi->width, 2.0F);
  EXPECT_EQ(roi->thicknessGlobally, std::optional<bool>(false));
  EXPECT_TRUE(roi->hiddenInKeyImages);
  EXPECT_TRUE(roi->keepsWindowSettings);
  EXPECT_EQ(roi->colour, (Colour{0, 1, 1, 0.3}));
  EXPECT_EQ(roi->tags->tags, (Lines{"arrow", temporary}));
  EXPECT_EQ(second->roisOnSlice(0), std::vector<Ref<TestROI>>{roi});
}

TEST_F(TemporaryAnnotations, vectorWithoutAnArrowIsALengthLine) {
  filter.displayTemporaryVectorFromPoint({1, 2}, {30, 40}, false, second->view, "line", {});
  EXPECT_EQ(withUID("line")->kind, 5);
}

TEST_F(TemporaryAnnotations, vectorFirstShownWithoutAnArrowStaysAPlainLine) {
  filter.displayTemporaryVectorFromPoint({1, 2}, {30, 40}, false, sagittal->view, "line", {});
  const auto roi = withUID("line");
  roi->width = 9;
  filter.displayTemporaryVectorFromPoint({5, 6}, {7, 8}, true, sagittal->view, "line", {});
  EXPECT_TRUE(withUID("line") == roi);
  EXPECT_EQ(roi->kind, 5);
  EXPECT_EQ(roi->positions(), (Points{{7, 8}, {5, 6}})) << "points replaced, not added";
  EXPECT_EQ(roi->width, 2.0F);
  EXPECT_EQ(sagittal->allROIs().size(), 1U);
}

TEST_F(TemporaryAnnotations, vectorWithoutFlagAndColourIsAnOrangeArrow) {
  filter.displayTemporaryVectorFromPoint({1, 2}, {30, 40}, sagittal->view, "arrow");
  EXPECT_EQ(withUID("arrow")->kind, 14);
  EXPECT_EQ(withUID("arrow")->colour, (Colour{1.0, 0.5, 0.0, 0.5}));
  EXPECT_EQ(withUID("arrow")->positions(), (Points{{30, 40}, {1, 2}}));
}

// --- removing ---

TEST_F(TemporaryAnnotations, allAreRemovedInOneSilentCallAndTheirViewersRedrawnInOrder) {
  host.addROI(19, sagittal, 0, {}, {temporary});
  host.addROI(5, second, 1, {}, {temporary});
  const auto persons = host.addROI(5, second, 1, {}, {"VertanaFilterLabel"});
  const auto hidden = host.addROI(5, second, 0, {}, {temporary});
  hidden->view = nullptr;
  host.calls.clear();
  filter.removeTemporaryROIs();
  EXPECT_EQ(host.calls.lines(),
            (Lines{"deleteROIs(3,false)", "viewer1.needsDisplayUpdate()", "viewer2.needsDisplayUpdate()"}));
  EXPECT_TRUE(sagittal->allROIs().empty());
  EXPECT_EQ(second->allROIs(), std::vector<Ref<TestROI>>{persons});
  EXPECT_TRUE(host.center.posted.empty());
}

TEST_F(TemporaryAnnotations, viewerIsAskedForARedrawOncePerAnnotationFoundInTheOrderFound) {
  const auto everywhere = host.addROI(5, sagittal, 0, {}, {temporary});
  for (const std::size_t slice : {1U, 2U}) sagittal->sliceLists[slice]->elements().push_back(everywhere);
  // Made on the second viewer, standing in a list of the first.
  const auto guest = host.addROI(19, second, 99, {}, {temporary});
  sagittal->sliceLists[1]->elements().push_back(guest);
  host.addROI(5, second, 1, {}, {temporary});
  host.calls.clear();
  filter.removeTemporaryROIs();
  EXPECT_EQ(host.calls.lines(),
            (Lines{"deleteROIs(5,false)", "viewer1.needsDisplayUpdate()", "viewer1.needsDisplayUpdate()",
                   "viewer2.needsDisplayUpdate()", "viewer1.needsDisplayUpdate()", "viewer2.needsDisplayUpdate()"}));
}

TEST_F(TemporaryAnnotations, annotationThatLiesOnNoViewIsRemovedWithoutARedraw) {
  host.addROI(5, second, 0, {}, {temporary})->view = nullptr;
  host.calls.clear();
  filter.removeTemporaryROIs();
  EXPECT_EQ(host.calls.lines(), Lines{"deleteROIs(1,false)"});
  EXPECT_TRUE(second->allROIs().empty());
}

TEST_F(TemporaryAnnotations, thoseOfOneViewerAreRemovedAlone) {
  const auto kept = host.addROI(19, sagittal, 0, {}, {temporary});
  host.addROI(5, second, 0, {}, {temporary});
  host.addROI(5, second, 1, {}, {temporary});
  host.calls.clear();
  filter.removeTemporaryROIsForViewer(second);
  EXPECT_EQ(host.calls.lines(), (Lines{"deleteROIs(2,false)", "viewer2.needsDisplayUpdate()"}));
  EXPECT_EQ(sagittal->allROIs(), std::vector<Ref<TestROI>>{kept});
  EXPECT_TRUE(second->allROIs().empty());
  EXPECT_TRUE(host.center.posted.empty());
}

TEST_F(TemporaryAnnotations, viewerIsRedrawnAlsoWhenItHadNone) {
  filter.removeTemporaryROIsForViewer(second);
  EXPECT_EQ(host.calls.count("viewer2.needsDisplayUpdate()"), 1U);
}

}  // namespace
}  // namespace vertana
