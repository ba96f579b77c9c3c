// The same object is the same however often and through whichever class it is handed out; weak handles let go.
#include "ContractHost.h"

namespace contract {
namespace {

using pelmar::Ref;

class Identity : public OnEveryHost {};
ON_EVERY_HOST(Identity);

TEST_P(Identity, ofWhatAViewerHandsOutTwice) {
  const auto first = viewer();
  EXPECT_TRUE(first == api().viewerControllersList().at(0));
  EXPECT_TRUE(first->imageView() == first->imageView());
  EXPECT_TRUE(first->window() == first->window());
  EXPECT_TRUE(first->roiList() == first->roiList());
  EXPECT_TRUE(first->roiList()->objectAtIndex(1) == first->roiList()->objectAtIndex(1));
  EXPECT_FALSE(first->roiList()->objectAtIndex(0) == first->roiList()->objectAtIndex(1));
}

TEST_P(Identity, ofWhatTheViewAndItsViewerShare) {
  EXPECT_TRUE(view()->viewer() == viewer());
  EXPECT_TRUE(view()->window() == viewer()->window());
  EXPECT_TRUE(view()->studyObj() == viewer()->currentStudy());
  EXPECT_TRUE(view()->dcmRoiList()->objectAtIndex(2) == viewer()->roiList()->objectAtIndex(2));
  EXPECT_TRUE(view()->curDCM() == view()->dcmPixList()->objectAtIndex(0));
}

TEST_P(Identity, ofAStudyInTwoViewers) {
  const int other = host->open(Plane::axial);
  EXPECT_TRUE(viewer()->currentStudy() == viewer(other)->currentStudy());
  EXPECT_TRUE(viewer()->currentStudy()->objectID()->isEqual(viewer(other)->currentStudy()->objectID()));
  EXPECT_FALSE(viewer() == viewer(other));
  EXPECT_FALSE(view() == view(other));
  EXPECT_FALSE(viewer()->window() == viewer(other)->window());
}

TEST_P(Identity, ofAnAnnotationsPartsAndItsPlaceInAList) {
  const auto roi = annotation(5, {0});
  EXPECT_TRUE(list(0)->objectAtIndex(0) == roi);
  EXPECT_TRUE(roi->points() == roi->points());
  EXPECT_TRUE(roi->stringTags() == roi->stringTags());
  EXPECT_TRUE(roi->curView() == view());
  EXPECT_TRUE(roi->pix() == view()->curDCM());
}

TEST_P(Identity, isTheSameThroughABaseClass) {
  const Ref<pelmar::HostObject> base = view();
  EXPECT_TRUE(base == view());
  EXPECT_TRUE(pelmar::ref_cast<pelmar::DCMView>(base) == view());
  EXPECT_TRUE(pelmar::ref_cast<pelmar::ROI>(base) == nullptr);
  const auto roi = annotation(5, {0});
  EXPECT_TRUE(pelmar::ref_cast<pelmar::ROI>(Ref<pelmar::HostObject>(roi)) == roi);
  EXPECT_TRUE(pelmar::Value(roi).object() == roi);
}

TEST_P(Identity, ofAWeakHandleEndsWithTheAnnotation) {
  pelmar::WeakRef<pelmar::ROI> weak;
  {
    const auto roi = annotation(5, {0, 1});
    weak = roi;
  }
  EXPECT_TRUE(weak.lock() == list(1)->objectAtIndex(0)) << "the lists keep it";
  api().roiClass().deleteROI(weak.lock());
  host->letGo();
  EXPECT_TRUE(weak.lock() == nullptr);
  EXPECT_EQ(weak.lock()->type(), 0);
}

TEST_P(Identity, ofAWeakHandleEndsWithTheViewer) {
  const int other = host->open(Plane::axial);
  const pelmar::WeakRef<pelmar::ViewerController> weak = viewer(other);
  const pelmar::WeakRef<pelmar::DCMView> weakView = view(other);
  EXPECT_TRUE(weak.lock() == viewer(other));
  host->close(other);
  host->letGo();
  EXPECT_TRUE(weak.lock() == nullptr);
  EXPECT_TRUE(weakView.lock() == nullptr);
}

TEST_P(Identity, aViewThatOutlivesItsViewerHasNone) {
  const auto kept = view();
  const auto roi = annotation(5, {0});
  host->close(0);
  host->letGo();
  EXPECT_TRUE(kept->viewer() == nullptr);
  EXPECT_TRUE(roi->curView() == nullptr);
}

}  // namespace
}  // namespace contract
