#include "workstation/model/Roi.h"

#include <gtest/gtest.h>

#include "Recorder.h"
#include "TestImages.h"
#include "workstation/model/Workstation.h"

namespace workstation {
namespace {

using pelmar::MyPoint;
using pelmar::Ref;
using pelmar::ROI;
using test::Lines;

class Annotations : public testing::Test {
 protected:
  Annotations() {
    workstation.addImages(test::smallStudy());
    sagittal = *workstation.openViewer({"1.2.3", 0, 0});  // 2 slices
    axial = *workstation.openViewer({"1.2.3", 1, 0});     // 3 slices
    recorder.take();
  }
  Ref<pelmar::DCMView> view(int viewer) const { return workstation.controller(viewer)->imageView(); }
  Ref<pelmar::ROIList> list(int viewer, std::size_t slice) const {
    return workstation.controller(viewer)->roiList()->objectAtIndex(slice);
  }
  Ref<ROI> make(long type, int viewer) { return workstation.api().roiClass().roiWithType(type, view(viewer)); }
  void putOnAllSlices(const Ref<ROI>& roi, int viewer) {
    const auto lists = workstation.controller(viewer)->roiList();
    for (std::size_t slice = 0; slice < lists->count(); ++slice) lists->objectAtIndex(slice)->addObject(roi);
  }

  Workstation workstation;
  test::Recorder recorder{workstation.api()};
  int sagittal = 0;
  int axial = 0;
};

TEST_F(Annotations, AFreshOneIsInNoListAndHasTheStatedDefaults) {
  const Ref<ROI> roi = make(10, sagittal);
  EXPECT_EQ(roi->type(), 10);
  EXPECT_EQ(roi->ROImode(), 0);
  EXPECT_EQ(roi->thickness(), 2);
  EXPECT_EQ(roi->rect(), pelmar::PixelRect{});
  EXPECT_EQ(roi->points()->count(), 0u);
  EXPECT_EQ(roi->pix(), view(sagittal)->curDCM());
  EXPECT_TRUE(workstation.annotations(sagittal).empty());
  EXPECT_TRUE(recorder.lines.empty());
}

TEST_F(Annotations, NoneIsMadeWithoutAView) { EXPECT_FALSE(workstation.api().roiClass().roiWithType(5, nullptr)); }

TEST_F(Annotations, WhatCodeDoesPostsNothing) {
  const Ref<ROI> roi = make(5, sagittal);
  list(sagittal, 0)->addObject(roi);
  roi->setPoints({MyPoint::point({1, 2}), MyPoint::point({3, 4})});
  roi->setROIMode(2);
  roi->setROIRect({{1, 1}, {2, 2}});
  list(sagittal, 0)->removeObject(roi);
  list(sagittal, 0)->insertObject(roi, 0);
  EXPECT_TRUE(recorder.lines.empty());
}

TEST_F(Annotations, LengthIsInCentimetresOnThePatient) {
  const Ref<ROI> line = make(5, sagittal);
  line->setPoints({MyPoint::point({0, 0}), MyPoint::point({0, 140})});  // 140 pixels of 0.5 mm
  EXPECT_EQ(line->length(), 7.0f);
  line->setPoints({MyPoint::point({0, 0}), MyPoint::point({30, 40})});
  EXPECT_FLOAT_EQ(line->length(), 2.5f);
}

TEST_F(Annotations, LengthOfAPolygonRunsAlongItsSpline) {
  const Ref<ROI> polygon = make(10, sagittal);
  polygon->setPoints({MyPoint::point({0, 0}), MyPoint::point({0, 70}), MyPoint::point({0, 140})});
  EXPECT_NEAR(polygon->length(), 7.0, 1e-5);
  // Around a corner the curve bulges and is longer than the two straight pieces.
  polygon->setPoints({MyPoint::point({0, 0}), MyPoint::point({40, 0}), MyPoint::point({40, 40})});
  EXPECT_GT(polygon->length(), 4.0f);
  EXPECT_LT(polygon->length(), 4.4f);
}

TEST_F(Annotations, TheAliasedOneIsListedOnceWithAllItsSlices) {
  const Ref<ROI> roi = make(10, axial);
  putOnAllSlices(roi, axial);
  const auto infos = workstation.annotations(axial);
  ASSERT_EQ(infos.size(), 1u);
  EXPECT_EQ(infos[0].slices, (std::vector<int>{0, 1, 2}));
  EXPECT_EQ(workstation.annotationId(roi), infos[0].id);
  EXPECT_EQ(roi->curView(), view(axial));
}

TEST_F(Annotations, DeletingOneTakesItOutOfEveryListAndPostsOnceWhileItsViewStillAnswers) {
  const Ref<ROI> roi = make(10, axial);
  putOnAllSlices(roi, axial);
  list(sagittal, 1)->addObject(roi);
  bool viewAnswered = false;
  bool stillListed = true;
  recorder.react = [&](const std::string&, const pelmar::Notification& posted) {
    viewAnswered = posted.object == roi && roi->curView() == view(axial);
    stillListed = list(axial, 0)->containsObject(roi);
  };
  workstation.api().roiClass().deleteROI(roi);
  EXPECT_EQ(recorder.take(), Lines{"remove"});
  EXPECT_TRUE(viewAnswered);
  EXPECT_FALSE(stillListed);
  EXPECT_FALSE(roi->curView());
  EXPECT_TRUE(workstation.annotations(axial).empty());
  EXPECT_TRUE(workstation.annotations(sagittal).empty());
}

TEST_F(Annotations, RepeatedAndNilEntriesOfADeletionCountOnce) {
  const Ref<ROI> first = make(5, axial);
  const Ref<ROI> second = make(5, axial);
  const Ref<ROI> kept = make(5, axial);
  for (const auto& roi : {first, second, kept}) putOnAllSlices(roi, axial);
  workstation.api().roiClass().deleteROIs({first, nullptr, first, second, first}, true);
  EXPECT_EQ(recorder.take(), (Lines{"remove", "remove"}));
  const auto infos = workstation.annotations(axial);
  ASSERT_EQ(infos.size(), 1u);
  EXPECT_EQ(infos[0].roi, kept);
  EXPECT_EQ(infos[0].slices, (std::vector<int>{0, 1, 2}));
}

TEST_F(Annotations, DeletingWithNotificationsOffPostsNothing) {
  const Ref<ROI> roi = make(5, axial);
  putOnAllSlices(roi, axial);
  workstation.api().roiClass().deleteROIs({roi}, false);
  EXPECT_TRUE(recorder.lines.empty());
  EXPECT_TRUE(workstation.annotations(axial).empty());
}

TEST_F(Annotations, DeletingNilDoesNothing) {
  workstation.api().roiClass().deleteROI(nullptr);
  EXPECT_TRUE(recorder.lines.empty());
}

TEST_F(Annotations, AfterDeletionItCanBePutIntoAListAgain) {
  const Ref<ROI> roi = make(5, axial);
  putOnAllSlices(roi, axial);
  workstation.api().roiClass().deleteROIs({roi}, false);
  list(axial, 1)->addObject(roi);
  EXPECT_EQ(roi->curView(), view(axial));
  workstation.api().roiClass().deleteROI(roi);
  EXPECT_EQ(recorder.take(), Lines{"remove"});
  EXPECT_TRUE(workstation.annotations(axial).empty());
}

TEST_F(Annotations, OneThatStandsTwiceInAListGoesTwice) {
  const Ref<ROI> roi = make(5, axial);
  list(axial, 2)->addObject(roi);
  list(axial, 2)->addObject(roi);
  list(axial, 0)->addObject(roi);
  list(axial, 0)->removeObject(roi);
  workstation.api().roiClass().deleteROI(roi);
  EXPECT_EQ(list(axial, 2)->count(), 0u);
}

TEST_F(Annotations, ListsKeepTheirOrderAndIgnorePlacesBeyondTheEnd) {
  const Ref<ROI> a = make(5, axial);
  const Ref<ROI> b = make(5, axial);
  list(axial, 0)->addObject(a);
  list(axial, 0)->insertObject(b, 0);
  list(axial, 0)->insertObject(make(5, axial), 7);
  EXPECT_EQ(list(axial, 0)->count(), 2u);
  EXPECT_EQ(list(axial, 0)->objectAtIndex(0), b);
  EXPECT_FALSE(list(axial, 0)->objectAtIndex(2));
  const auto infos = workstation.annotations(axial, 0);
  ASSERT_EQ(infos.size(), 2u);
  EXPECT_EQ(infos[0].roi, b);
}

TEST_F(Annotations, ThoseOfOneSliceComeOnceEachInDrawingOrderWithAllTheSlicesThatHoldThem) {
  const Ref<ROI> everywhere = make(10, axial);
  const Ref<ROI> alone = make(5, axial);
  const Ref<ROI> elsewhere = make(5, axial);
  const Ref<ROI> atTheEnds = make(13, axial);
  list(axial, 1)->addObject(alone);
  list(axial, 1)->addObject(alone);
  putOnAllSlices(everywhere, axial);
  putOnAllSlices(atTheEnds, axial);
  list(axial, 1)->removeObject(atTheEnds);
  list(axial, 2)->insertObject(elsewhere, 0);
  list(sagittal, 0)->addObject(everywhere);
  const auto middle = workstation.annotations(axial, 1);
  ASSERT_EQ(middle.size(), 2u);
  EXPECT_EQ(middle[0].roi, alone);
  EXPECT_EQ(middle[0].slices, std::vector<int>{1});
  EXPECT_EQ(middle[1].roi, everywhere);
  EXPECT_EQ(middle[1].id, workstation.annotationId(everywhere));
  EXPECT_EQ(middle[1].slices, (std::vector<int>{0, 1, 2})) << "of this viewer alone";
  EXPECT_FALSE(middle[1].drawnByPerson);
  const auto last = workstation.annotations(axial, 2);
  ASSERT_EQ(last.size(), 3u);
  EXPECT_EQ(last[0].roi, elsewhere);
  EXPECT_EQ(last[2].slices, (std::vector<int>{0, 2}));
}

TEST_F(Annotations, ASliceOrViewerThatIsNotThereHasNone) {
  putOnAllSlices(make(5, axial), axial);
  EXPECT_TRUE(workstation.annotations(axial, -1).empty());
  EXPECT_TRUE(workstation.annotations(axial, 3).empty());
  EXPECT_TRUE(workstation.annotations(99, 0).empty());
  EXPECT_TRUE(workstation.annotations(99).empty());
}

TEST_F(Annotations, TagsAreKeptOnce) {
  const Ref<ROI> roi = make(5, axial);
  roi->stringTags()->addObject("one");
  roi->stringTags()->addObject("one");
  roi->stringTags()->addObject("two");
  EXPECT_TRUE(roi->stringTags()->containsObject("one"));
  EXPECT_FALSE(roi->stringTags()->containsObject("On"));
  EXPECT_EQ(roi->stringTags()->allObjects().size(), 2u);
}

TEST_F(Annotations, APointOutsideThePointListIsTheOrigin) {
  const Ref<ROI> roi = make(5, axial);
  roi->setPoints({MyPoint::point({4, 5})});
  EXPECT_EQ(roi->pointAtIndex(0), (pelmar::PixelPoint{4, 5}));
  EXPECT_EQ(roi->pointAtIndex(-1), (pelmar::PixelPoint{}));
  EXPECT_EQ(roi->pointAtIndex(1), (pelmar::PixelPoint{}));
}

TEST_F(Annotations, AListThatOutlivesItsViewersSeriesStandsAlone) {
  const auto old = list(axial, 0);
  const Ref<ROI> roi = make(5, axial);
  old->addObject(roi);
  ASSERT_TRUE(workstation.switchSeries(axial, {"1.2.3", 0, 0}));
  EXPECT_FALSE(roi->curView());
  old->addObject(make(5, axial));  // must neither crash nor show
  EXPECT_TRUE(workstation.annotations(axial).empty());
}

}  // namespace
}  // namespace workstation
