// Viewers opening, closing and changing their series.
#include "ContractHost.h"

namespace contract {
namespace {

class Viewer : public OnEveryHost {
 protected:
  bool isListed(const pelmar::Ref<pelmar::HostObject>& viewer) {
    const auto open = api().viewerControllersList();
    return std::find(open.begin(), open.end(), viewer) != open.end();
  }
};
ON_EVERY_HOST(Viewer);

TEST_P(Viewer, isListedInTheOrderOfOpening) {
  const int second = host->open(Plane::axial);
  const int third = host->open(Plane::sagittal);
  ASSERT_EQ(api().viewerControllersList().size(), 3U);
  EXPECT_TRUE(api().viewerControllersList()[0] == viewer(0));
  EXPECT_TRUE(api().viewerControllersList()[1] == viewer(second));
  EXPECT_TRUE(api().viewerControllersList()[2] == viewer(third));
  EXPECT_TRUE(api().viewerControllerClass().frontMostDisplayed2DViewer() == viewer(third));
  host->close(second);
  ASSERT_EQ(api().viewerControllersList().size(), 2U);
  EXPECT_TRUE(api().viewerControllersList()[1] == viewer(third));
}

TEST_P(Viewer, isLoadedWhenItSaysSo) {
  Recorder recorder(api());
  recorder.react = [&](const std::string&, const pelmar::Notification& posted) {
    const auto loaded = pelmar::ref_cast<pelmar::ViewerController>(posted.object);
    ASSERT_TRUE(loaded);
    EXPECT_TRUE(isListed(loaded));
    EXPECT_TRUE(loaded->isEverythingLoaded());
    EXPECT_EQ(loaded->orientationVector(), 4);
    EXPECT_EQ(loaded->roiList()->count(), 3U);
    EXPECT_EQ(loaded->imageView()->dcmPixList()->count(), 3U);
    EXPECT_EQ(loaded->imageView()->curImage(), 0);
    EXPECT_EQ(*loaded->currentStudy()->studyInstanceUID(), "1.2.3");
    EXPECT_EQ(*loaded->currentStudy()->studyName(), "Spine");
    EXPECT_TRUE(loaded->window()->isVisible());
  };
  host->open(Plane::axial);
  EXPECT_EQ(recorder.take(), Lines{"ViewerControllerDidLoadImages"});
}

TEST_P(Viewer, hasLeftTheListAndIsStillWholeWhileItsClosingIsPosted) {
  const auto closing = viewer();
  const auto roi = annotation(5, {0});
  const int other = host->open(Plane::axial);
  Recorder recorder(api());
  recorder.react = [&](const std::string&, const pelmar::Notification& posted) {
    EXPECT_TRUE(posted.object == closing);
    EXPECT_FALSE(isListed(closing));
    EXPECT_TRUE(closing->imageView()->viewer() == closing);
    EXPECT_TRUE(closing->window()->isVisible());
    EXPECT_EQ(*closing->currentStudy()->studyInstanceUID(), "1.2.3");
    EXPECT_TRUE(closing->roiList()->objectAtIndex(0)->containsObject(roi));
    EXPECT_TRUE(roi->curView() == closing->imageView());
  };
  host->close(0);
  recorder.react = nullptr;
  EXPECT_EQ(recorder.take(), Lines{"CloseViewer"});
  EXPECT_FALSE(closing->window()->isVisible());
  EXPECT_TRUE(roi->curView() == nullptr);
  EXPECT_TRUE(api().viewerControllerClass().frontMostDisplayed2DViewer() == viewer(other));
  host->close(other);
  EXPECT_TRUE(api().viewerControllerClass().frontMostDisplayed2DViewer() == nullptr);
  EXPECT_TRUE(api().viewerControllersList().empty());
}

TEST_P(Viewer, thatChangesItsSeriesLetsGoOfItsAnnotations) {
  const auto changing = viewer();
  const auto roi = annotation(5, {0, 1});
  Recorder recorder(api());
  recorder.react = [&](const std::string& line, const pelmar::Notification& posted) {
    if (line == "ViewerWillChange") {
      EXPECT_TRUE(roi->curView() == changing->imageView()) << "not yet";
      EXPECT_EQ(changing->orientationVector(), 0);
    } else {
      EXPECT_TRUE(posted.object == changing);
      EXPECT_TRUE(roi->curView() == nullptr);
      EXPECT_EQ(changing->orientationVector(), 4);
      EXPECT_TRUE(changing->isEverythingLoaded());
    }
  };
  host->switchSeries(0, Plane::axial);
  EXPECT_EQ(recorder.take(), (Lines{"ViewerWillChange", "ViewerControllerDidLoadImages"}));
  EXPECT_TRUE(viewer() == changing);
  for (std::size_t slice = 0; slice < 3; ++slice) EXPECT_EQ(list(slice)->count(), 0U);
}

TEST_P(Viewer, whoseSeriesChangesForgetsADrawing) {
  viewer()->setROIToolTag(10);
  host->press(0, {10, 10});
  host->release(0, {10, 10});
  const auto polygon = list(0)->objectAtIndex(0);
  host->switchSeries(0, Plane::axial);
  Recorder recorder(api());
  host->doubleClick(0, {10, 10});
  host->pressReturn(0);
  EXPECT_EQ(recorder.take(), Lines{});
  EXPECT_TRUE(polygon->curView() == nullptr);
  EXPECT_NE(polygon->ROImode(), 1);
}

TEST_P(Viewer, listsThatOutliveTheirSeriesBringNothingOntoTheView) {
  const auto old = list(0);
  const auto roi = annotation(5, {0});
  host->switchSeries(0, Plane::axial);
  api().roiClass().deleteROI(roi);
  old->addObject(roi);
  EXPECT_TRUE(roi->curView() == nullptr);
  EXPECT_EQ(list(0)->count(), 0U);
}

}  // namespace
}  // namespace contract
