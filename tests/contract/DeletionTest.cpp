// Taking annotations out of the lists of their slices.
#include "ContractHost.h"

namespace contract {
namespace {

using pelmar::Ref;
using pelmar::ROI;

class Deletion : public OnEveryHost {
 protected:
  Recorder recorder{api()};
  std::size_t entries() {
    std::size_t sum = 0;
    for (std::size_t slice = 0; slice < 3; ++slice) sum += list(slice)->count();
    return sum;
  }
};
ON_EVERY_HOST(Deletion);

TEST_P(Deletion, ofOnePostsItsRemovalOnceItIsOutOfTheListAndWhileItsViewStillAnswers) {
  const auto roi = annotation(5, {0});
  bool told = false;
  recorder.react = [&](const std::string&, const pelmar::Notification& posted) {
    told = true;
    EXPECT_TRUE(annotationOf(posted) == roi);
    EXPECT_TRUE(roi->curView() == view());
    EXPECT_EQ(list(0)->count(), 0U);
  };
  api().roiClass().deleteROI(roi);
  EXPECT_TRUE(told);
  EXPECT_EQ(recorder.take(), Lines{"RemoveROI (0)"});
  EXPECT_TRUE(roi->curView() == nullptr);
}

TEST_P(Deletion, ofAnAliasedOneTakesItOutOfEveryListAndPostsOnce) {
  const auto roi = annotation(5, {0, 1, 2});
  const auto other = annotation(10, {1});
  list(1)->addObject(roi);
  api().roiClass().deleteROI(roi);
  EXPECT_EQ(recorder.take(), Lines{"RemoveROI (0)"});
  EXPECT_EQ(entries(), 1U);
  EXPECT_TRUE(list(1)->objectAtIndex(0) == other);
}

TEST_P(Deletion, ofOneInTheListsOfTwoViewersEmptiesBoth) {
  const auto roi = annotation(5, {0, 2});
  const int second = host->open(Plane::axial);
  list(1, second)->addObject(roi);
  recorder.take();
  api().roiClass().deleteROI(roi);
  EXPECT_EQ(recorder.take(), Lines{"RemoveROI (0)"});
  EXPECT_EQ(entries(), 0U);
  EXPECT_EQ(list(1, second)->count(), 0U);
}

TEST_P(Deletion, ofSeveralWithoutPostingIsSilent) {
  const auto first = annotation(5, {0, 1});
  const auto second = annotation(10, {1});
  const auto kept = annotation(13, {1});
  api().roiClass().deleteROIs({first, second}, false);
  EXPECT_EQ(recorder.take(), Lines{});
  EXPECT_EQ(entries(), 1U);
  EXPECT_TRUE(first->curView() == nullptr);
  EXPECT_TRUE(kept->curView() == view());
}

TEST_P(Deletion, passesOverNilAndTakesARepeatedOneOnce) {
  const auto first = annotation(5, {0, 1});
  const auto second = annotation(10, {0});
  second->setROIMode(2);
  std::vector<Ref<ROI>> told;
  recorder.react = [&](const std::string&, const pelmar::Notification& posted) {
    told.push_back(annotationOf(posted));
    EXPECT_TRUE(told.back()->curView() == view());
  };
  api().roiClass().deleteROIs({first, nullptr, second, first, nullptr, first, second}, true);
  EXPECT_EQ(recorder.take(), (Lines{"RemoveROI (0)", "RemoveROI (2)"}));
  ASSERT_EQ(told.size(), 2U);
  EXPECT_TRUE(told[0] == first);
  EXPECT_TRUE(told[1] == second);
  EXPECT_EQ(entries(), 0U);
}

TEST_P(Deletion, ofNilOrNothingDoesNothing) {
  const auto kept = annotation(5, {0});
  api().roiClass().deleteROI({});
  api().roiClass().deleteROIs({}, true);
  api().roiClass().deleteROIs({nullptr, nullptr}, true);
  EXPECT_EQ(recorder.take(), Lines{});
  EXPECT_TRUE(list(0)->containsObject(kept));
}

TEST_P(Deletion, ofADeletedOnePostsNothingUntilItStandsInAListAgain) {
  const auto roi = annotation(5, {0});
  api().roiClass().deleteROI(roi);
  recorder.take();
  api().roiClass().deleteROI(roi);
  api().roiClass().deleteROIs({roi}, true);
  EXPECT_EQ(recorder.take(), Lines{});
  list(2)->addObject(roi);
  api().roiClass().deleteROI(roi);
  EXPECT_EQ(recorder.take(), Lines{"RemoveROI (0)"});
  EXPECT_EQ(entries(), 0U);
}

TEST_P(Deletion, askedForAgainInAnswerToItsPostingIsNotPostedAgain) {
  const auto roi = annotation(5, {0});
  recorder.react = [&](const std::string&, const pelmar::Notification& posted) {
    api().roiClass().deleteROI(annotationOf(posted));
  };
  api().roiClass().deleteROI(roi);
  EXPECT_EQ(recorder.take(), Lines{"RemoveROI (0)"});
}

}  // namespace
}  // namespace contract
