// Annotations as code makes and changes them, and the lists that they stand in.
#include "ContractHost.h"

namespace contract {
namespace {

using pelmar::MyPoint;
using pelmar::PixelPoint;
using pelmar::Ref;

class Annotation : public OnEveryHost {};
ON_EVERY_HOST(Annotation);

TEST_P(Annotation, isFreshWithItsDefaults) {
  host->scroll(0, 1);
  const auto roi = api().roiClass().roiWithType(10, view());
  ASSERT_TRUE(roi);
  EXPECT_EQ(roi->type(), 10);
  EXPECT_EQ(roi->ROImode(), 0);
  EXPECT_EQ(roi->thickness(), 2);
  EXPECT_EQ(roi->rect(), pelmar::PixelRect{});
  EXPECT_EQ(roi->points()->count(), 0U);
  EXPECT_TRUE(roi->curView() == view());
  EXPECT_TRUE(roi->pix() == view()->dcmPixList()->objectAtIndex(1)) << "the slice that is shown";
  EXPECT_TRUE(roi->stringTags()->allObjects().empty());
  EXPECT_FALSE(roi->isAliased());
  EXPECT_TRUE(roi->supports(pelmar::Capability::ROIStringTags));
  EXPECT_TRUE(roi->supports(pelmar::Capability::ROIDontDisplayInKeyImagesWindow));
  for (std::size_t slice = 0; slice < 3; ++slice) EXPECT_EQ(list(slice)->count(), 0U) << "in no list yet";
}

TEST_P(Annotation, keepsWhatCodeSets) {
  const auto roi = annotation(13, {0});
  roi->setROIMode(2);
  roi->setROIRect({{1, 2}, {3, 4}});
  roi->setName("L3");
  roi->setNSColor({0.1, 0.2, 0.3, 0.4}, false);
  roi->setThickness(15);
  EXPECT_EQ(roi->thickness(), 15);
  roi->setThickness(7, false);
  roi->setSelectable(false);
  roi->setDisplayTextualData(false);
  roi->setIsAliased(true);
  roi->setOriginalIndexForAlias(2);
  roi->setDontDisplayInKeyImagesWindow(true);
  roi->setDontSavePreferredWLWW(true);
  roi->setPix(view()->dcmPixList()->objectAtIndex(2));
  EXPECT_EQ(roi->ROImode(), 2);
  EXPECT_EQ(roi->rect(), (pelmar::PixelRect{{1, 2}, {3, 4}}));
  EXPECT_EQ(roi->name(), "L3");
  EXPECT_EQ(roi->NSColor(), (pelmar::Colour{0.1, 0.2, 0.3, 0.4}));
  EXPECT_EQ(roi->thickness(), 7);
  EXPECT_FALSE(roi->selectable());
  EXPECT_FALSE(roi->displayTextualData());
  EXPECT_TRUE(roi->isAliased());
  EXPECT_EQ(roi->originalIndexForAlias(), 2);
  EXPECT_TRUE(roi->dontDisplayInKeyImagesWindow());
  EXPECT_TRUE(roi->dontSavePreferredWLWW());
  EXPECT_TRUE(roi->pix() == view()->dcmPixList()->objectAtIndex(2));
}

TEST_P(Annotation, belongsToTheSliceThatItsAliasIsMadeFor) {
  const auto roi = annotation(10, {0, 1, 2}, {{1, 2}, {3, 4}});
  const auto slice = [this](std::size_t index) { return view()->dcmPixList()->objectAtIndex(index); };
  ASSERT_TRUE(roi->pix() == slice(static_cast<std::size_t>(view()->curImage())));
  for (const std::size_t index : {2U, 0U, 1U}) {
    roi->setOriginalIndexForAlias(static_cast<long>(index));
    EXPECT_TRUE(roi->pix() == slice(index)) << index;
  }
  for (const long none : {3L, -1L}) {
    roi->setOriginalIndexForAlias(none);
    EXPECT_EQ(roi->originalIndexForAlias(), none);
    EXPECT_TRUE(roi->pix() == slice(1)) << "the view has no such slice";
  }
}

TEST_P(Annotation, withoutAViewItStaysOnItsSlice) {
  const auto roi = annotation(10, {0, 1, 2}, {{1, 2}, {3, 4}});
  const auto slice = roi->pix();
  api().roiClass().deleteROI(roi);
  ASSERT_FALSE(roi->curView());
  roi->setOriginalIndexForAlias(2);
  EXPECT_TRUE(roi->pix() == slice);
}

TEST_P(Annotation, thatCodeMakesChangesAndInsertsPostsNothing) {
  Recorder recorder(api());
  const auto roi = annotation(10, {0, 1}, {{1, 2}, {3, 4}});
  roi->setROIMode(2);
  roi->setROIRect({{1, 2}, {3, 4}});
  roi->points()->addObject(MyPoint::point({5, 6}));
  roi->setName("L3");
  list(2)->insertObject(roi, 0);
  list(2)->removeObject(roi);
  list(1)->removeAllObjects();
  viewer()->needsDisplayUpdate();
  EXPECT_EQ(recorder.take(), Lines{});
}

TEST_P(Annotation, hasOnePointListThatEveryHolderSees) {
  const auto roi = annotation(10, {0}, {{1, 2}});
  const auto held = roi->points();
  roi->setPoints({MyPoint::point({3, 4}), MyPoint::point({5, 6})});
  EXPECT_EQ(held->count(), 2U);
  held->removeObject(MyPoint::point({3, 4}));
  EXPECT_EQ(roi->pointAtIndex(0), (PixelPoint{5, 6}));
  EXPECT_EQ(roi->pointAtIndex(1), (PixelPoint{0, 0})) << "outside the list";
  EXPECT_EQ(roi->pointAtIndex(-1), (PixelPoint{0, 0}));
}

TEST_P(Annotation, hasATagOnceAndComparesTagsExactly) {
  const auto tags = annotation(5, {})->stringTags();
  tags->addObject("Tag");
  tags->addObject("Tag");
  tags->addObject("other");
  EXPECT_EQ(tags->allObjects().size(), 2U);
  EXPECT_TRUE(tags->containsObject("Tag"));
  EXPECT_FALSE(tags->containsObject("tag"));
  EXPECT_FALSE(tags->containsObject("Ta"));
}

TEST_P(Annotation, standsInListsAsOftenAsItIsPutThere) {
  const auto first = annotation(5, {0});
  const auto second = annotation(10, {0});
  list(0)->insertObject(second, 0);
  list(0)->insertObject(first, 99);
  ASSERT_EQ(list(0)->count(), 3U);
  EXPECT_TRUE(list(0)->objectAtIndex(0) == second);
  EXPECT_TRUE(list(0)->objectAtIndex(1) == first);
  EXPECT_TRUE(list(0)->objectAtIndex(3) == nullptr);
  list(0)->removeObject(second);
  EXPECT_EQ(list(0)->count(), 1U) << "every entry of it goes";
  EXPECT_FALSE(list(0)->containsObject(second));
  EXPECT_TRUE(list(0)->containsObject(first));
}

TEST_P(Annotation, nilIsNotTakenIntoAList) {
  list(0)->addObject({});
  list(0)->insertObject({}, 0);
  EXPECT_EQ(list(0)->count(), 0U);
}

TEST_P(Annotation, thatLiesOnNoViewLiesOnTheViewOfTheListItIsPutInto) {
  const auto roi = annotation(5, {0});
  api().roiClass().deleteROI(roi);
  EXPECT_TRUE(roi->curView() == nullptr);
  list(1)->addObject(roi);
  EXPECT_TRUE(roi->curView() == view());
}

}  // namespace
}  // namespace contract
