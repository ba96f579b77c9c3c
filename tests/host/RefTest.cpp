// Handles: what nil answers, identity, weak handles, casts.

#include "host/Ref.h"

#include <gtest/gtest.h>

#include "host/PelmarAPI.h"

namespace pelmar {
namespace {

struct Annotation : ROI {
  long type() const override { return 10; }
};
struct SpecialAnnotation : Annotation {};

TEST(NilHandle, answersZeroFalseEmptyAndNil) {
  const Ref<ROI> roi;
  EXPECT_FALSE(roi);
  EXPECT_EQ(roi->type(), 0);
  EXPECT_EQ(roi->length(), 0);
  EXPECT_FALSE(roi->points());
  EXPECT_FALSE(roi->splinePoints());
  EXPECT_EQ(roi->pointAtIndex(3), PixelPoint{});
  EXPECT_EQ(roi->name(), "");
  EXPECT_FALSE(roi->curView());
  EXPECT_FALSE(roi->supports(Capability::ROIStringTags));
}

TEST(NilHandle, answersThroughWholeChains) {
  const Ref<ViewerController> viewer;
  EXPECT_FALSE(viewer->imageView()->curDCM());
  EXPECT_EQ(viewer->imageView()->curDCM()->pixelSpacingX(), 0);
  EXPECT_FALSE(viewer->window()->isVisible());
  EXPECT_EQ(viewer->roiList()->count(), 0U);
  EXPECT_FALSE(viewer->roiList()->objectAtIndex(0)->containsObject({}));
  EXPECT_FALSE(viewer->currentStudy()->studyInstanceUID());
  EXPECT_FALSE(viewer->currentStudy()->objectID()->isEqual({}));
  EXPECT_FALSE(viewer->currentStudy()->SRImageWithSeriesID(1, "")->completePathResolved());
}

TEST(NilHandle, takesCommandsAndStaysAsItWas) {
  const Ref<ROI> roi;
  roi->setName("L4");
  roi->setROIMode(2);
  roi->setThickness(15);
  roi->stringTags()->addObject("tag");
  EXPECT_EQ(roi->name(), "");
  EXPECT_EQ(roi->ROImode(), 0);
  EXPECT_FALSE(roi->stringTags()->containsObject("tag"));
}

TEST(NilHandle, leavesOutputsUntouched) {
  const Ref<DCMPix> pix;
  Vector3f position{1, 2, 3};
  pix->convertPixX(5, 5, position);
  EXPECT_EQ(position.y, 2);
  std::array<float, 9> vector{7};
  pix->orientation(vector);
  EXPECT_EQ(vector[0], 7);
  EXPECT_EQ(pix->orientation(), (std::array<double, 9>{})) << "the field of nil reads as zeros";
  Ref<DCMView>()->orientationCorrectedToView(vector);
  EXPECT_EQ(vector[0], 7);
  std::vector<long> segments{4};
  EXPECT_FALSE(Ref<ROI>()->splinePoints(5, &segments));
  EXPECT_EQ(segments, std::vector<long>{4});
}

TEST(NilHandle, ofAPointIsTheOrigin) {
  const Ref<Point3D> point;
  point->multiply(3);
  EXPECT_EQ(point->x(), 0);
  EXPECT_EQ(point->N3VectorValue().z, 0);
}

TEST(Handle, isEqualByIdentityNotByContent) {
  const auto first = makeRef<Annotation>();
  const auto second = makeRef<Annotation>();
  const Ref<ROI> same = first;
  EXPECT_TRUE(same == first);
  EXPECT_FALSE(first == second);
  EXPECT_TRUE(Ref<ROI>() == Ref<DCMView>()) << "nil is nil, whatever its type";
  EXPECT_TRUE(Ref<ROI>() == nullptr);
  EXPECT_FALSE(first == nullptr);
}

TEST(Handle, keepsItsObjectAliveAndAWeakOneDoesNot) {
  auto strong = makeRef<Annotation>();
  const WeakRef<ROI> weak{Ref<ROI>(strong)};
  EXPECT_TRUE(weak.lock() == strong);
  strong = nullptr;
  EXPECT_FALSE(weak.lock());
  EXPECT_EQ(weak.lock()->type(), 0);
}

TEST(Handle, castsToWhatTheObjectIsSubclassesIncluded) {
  const Ref<HostObject> object = makeRef<SpecialAnnotation>();
  EXPECT_TRUE(ref_cast<ROI>(object) == object);
  EXPECT_EQ(ref_cast<ROI>(object)->type(), 10);
  EXPECT_FALSE(ref_cast<DCMView>(object));
  EXPECT_FALSE(ref_cast<ROI>(Ref<HostObject>()));
}

TEST(NotificationInfo, isNilForAMissingKeyAndAMissingDictionary) {
  Notification notification{"n", {}, std::nullopt};
  EXPECT_TRUE(notification.userInfoValue("action").isNil());
  notification.userInfo = Value::Dictionary{{"action", "mouseUp"}};
  EXPECT_EQ(*notification.userInfoValue("action").string(), "mouseUp");
  EXPECT_TRUE(notification.userInfoValue("ROI").isNil());
}

}  // namespace
}  // namespace pelmar
