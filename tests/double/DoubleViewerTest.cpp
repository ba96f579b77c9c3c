#include <gtest/gtest.h>

#include <numbers>

#include "tests/double/TestHost.h"

namespace testhost {
namespace {

using pelmar::MyPoint;
using pelmar::PixelPoint;
using pelmar::Ref;
using pelmar::Vector3f;

/// One sagittal viewer of three slices of 101 pixels, 2 mm a pixel.
struct DoubleViewer : ::testing::Test {
  TestHost host;
  Ref<TestStudy> study = host.addStudy("1.2.3", "MRI lumbar spine");
  Ref<TestViewer> viewer = host.addViewer(study, sagittalSeries(3, 101, 2, 4));
};

TEST_F(DoubleViewer, sagittalSlicesRunFromRightToLeftAndAreCentredOnThePatient) {
  // 101 pixels of 2 mm: the first centre is 100 mm from the middle; columns run to the feet, so it is the highest.
  EXPECT_EQ(viewer->images[0]->geometry.origin, (std::array<double, 3>{-4, -100, 100}));
  EXPECT_EQ(viewer->images[2]->geometry.origin, (std::array<double, 3>{4, -100, 100}));
  EXPECT_EQ(viewer->images[0]->orientation()[6], -1);
  EXPECT_EQ(viewer->orientationVector(), 0);
}

TEST_F(DoubleViewer, coronalAndAxialSeriesHaveTheirNormalsAlongTheirAxes) {
  const auto coronal = host.addViewer(study, coronalSeries(2));
  const auto axial = host.addViewer(study, axialSeries(2, 64, 1, 5));
  EXPECT_EQ(coronal->images[0]->orientation()[7], 1);
  EXPECT_EQ(coronal->orientationVector(), 2);
  EXPECT_EQ(axial->images[0]->orientation()[8], 1);
  EXPECT_EQ(axial->orientationVector(), 4);
  EXPECT_GT(axial->images[0]->geometry.origin[2], axial->images[1]->geometry.origin[2]) << "head first";
}

TEST_F(DoubleViewer, pixelsGoToThePatientAndBackAsMillimetresInTheSlice) {
  Vector3f position;
  viewer->images[1]->convertPixX(10, 20, position);
  EXPECT_FLOAT_EQ(position.x, 0);
  EXPECT_FLOAT_EQ(position.y, -80);
  EXPECT_FLOAT_EQ(position.z, 60);
  const auto inSlice = viewer->images[1]->convertDICOMCoords(position);
  EXPECT_DOUBLE_EQ(inSlice.x, 20);
  EXPECT_DOUBLE_EQ(inSlice.y, 40);
}

TEST_F(DoubleViewer, viewCoordinatesHaveTheirOriginAtTheBottomLeft) {
  viewer->view->zoom = 2;
  const auto inView = viewer->view->ConvertFromGL2NSView({10, 20});
  EXPECT_DOUBLE_EQ(inView.x, 20);
  EXPECT_DOUBLE_EQ(inView.y, 512 - 40);
  const auto back = viewer->view->ConvertFromNSView2GL(inView);
  EXPECT_EQ(back, (PixelPoint{10, 20}));
}

TEST_F(DoubleViewer, toolsAreSetAndLogged) {
  viewer->setROIToolTag(5);
  viewer->setToolTag(3);
  EXPECT_EQ(viewer->ROIToolTag(), 5);
  EXPECT_EQ(viewer->imageView()->currentTool(), 3);
  EXPECT_EQ(host.calls.lines(), (std::vector<std::string>{"viewer1.setROIToolTag(5)", "viewer1.setToolTag(3)"}));
  viewer->hasROIToolTag = false;
  EXPECT_FALSE(viewer->supports(pelmar::Capability::ViewerControllerROIToolTag));
}

TEST_F(DoubleViewer, splineOfStraightSegmentsHasEveryVertexAndTheLastBelongsToTheLastSegment) {
  const auto roi = host.addROI(10, viewer, 0, {{0, 0}, {4, 0}, {4, 1}});
  std::vector<long> segments;
  const auto samples = roi->splinePoints(1, &segments);
  ASSERT_TRUE(samples);
  // Four samples on the first segment (length 4), two on the second (length 1, at least two), and the end.
  EXPECT_EQ(segments, (std::vector<long>{0, 0, 0, 0, 1, 1, 1}));
  EXPECT_EQ((*samples)[0].point(), (PixelPoint{0, 0}));
  EXPECT_EQ((*samples)[4].point(), (PixelPoint{4, 0}));
  EXPECT_EQ((*samples)[5].point(), (PixelPoint{4, 0.5}));
  EXPECT_EQ(samples->back().point(), (PixelPoint{4, 1}));
}

TEST_F(DoubleViewer, splineAndLengthCanBeOverridden) {
  const auto roi = host.addROI(10, viewer, 0, {{0, 0}, {30, 40}});
  EXPECT_FLOAT_EQ(roi->length(), 10) << "50 pixels of 2 mm are 10 cm";
  roi->lengthOverride = 6.9F;
  EXPECT_EQ(roi->length(), 6.9F);
  roi->splineOverride = std::vector<MyPoint>{MyPoint::point({1, 1})};
  roi->segmentOverride = std::vector<long>{7};
  std::vector<long> segments;
  EXPECT_EQ(roi->splinePoints(5, &segments)->size(), 1U);
  EXPECT_EQ(segments, std::vector<long>{7});
}

TEST_F(DoubleViewer, resamplingSpreadsEvenlyAndKeepsTheEnds) {
  const std::vector<MyPoint> line{MyPoint::point({0, 0}), MyPoint::point({6, 0}), MyPoint::point({6, 2})};
  const auto resampled = host.rois.resamplePoints(line, 5, false);
  ASSERT_TRUE(resampled);
  ASSERT_EQ(resampled->size(), 5U);
  EXPECT_EQ((*resampled)[0].point(), (PixelPoint{0, 0}));
  EXPECT_EQ((*resampled)[1].point(), (PixelPoint{2, 0}));
  EXPECT_EQ((*resampled)[3].point(), (PixelPoint{6, 0}));
  EXPECT_EQ((*resampled)[4].point(), (PixelPoint{6, 2}));
  EXPECT_FALSE(host.rois.resamplePoints(std::nullopt, 5, false));
}

TEST_F(DoubleViewer, deletingOneAnnotationPostsItsRemovalWhileItIsStillShown) {
  const auto roi = host.addROI(5, viewer, 0, {});
  viewer->sliceLists[2]->elements().push_back(roi);
  bool shown = false;
  bool listed = true;
  host.center.addObserver(this, pelmar::PelmarRemoveROINotification, {}, [&](const pelmar::Notification& note) {
    shown = note.object == roi && roi->curView() == viewer->view;
    listed = viewer->sliceLists[0]->containsObject(roi) || viewer->sliceLists[2]->containsObject(roi);
  });
  host.rois.deleteROI(roi);
  EXPECT_TRUE(shown);
  EXPECT_FALSE(listed);
  EXPECT_FALSE(roi->curView());
  EXPECT_EQ(host.calls.count("deleteROI(5)"), 1U);
}

TEST_F(DoubleViewer, deletingSeveralPostsNothingUnlessAskedAndNamesEachOnce) {
  const auto first = host.addROI(5, viewer, 0, {});
  const auto second = host.addROI(5, viewer, 1, {});
  host.rois.deleteROIs({first, first, {}}, false);
  EXPECT_TRUE(host.center.posted.empty());
  EXPECT_TRUE(viewer->roisOnSlice(0).empty());
  EXPECT_EQ(viewer->roisOnSlice(1).size(), 1U);
  host.rois.deleteROIs({second, second}, true);
  EXPECT_EQ(host.center.posted, std::vector<std::string>{"PelmarRemoveROINotification"});
}

TEST_F(DoubleViewer, freshAnnotationsAreEmptyAndInNoList) {
  const auto roi = host.roiClass().roiWithType(10, viewer->view);
  EXPECT_EQ(roi->type(), 10);
  EXPECT_EQ(roi->ROImode(), 0);
  EXPECT_EQ(roi->thickness(), 2);
  EXPECT_EQ(roi->points()->count(), 0U);
  EXPECT_TRUE(viewer->allROIs().empty());
  host.rois.makesROIs = false;
  EXPECT_FALSE(host.roiClass().roiWithType(10, viewer->view));
}

TEST_F(DoubleViewer, closingAViewerPostsWhileItIsWholeAndOutOfTheList) {
  const auto roi = host.addROI(10, viewer, 0, {});
  bool whole = false;
  host.center.addObserver(this, pelmar::PelmarCloseViewerNotification, {}, [&](const pelmar::Notification& note) {
    whole = note.object == viewer && host.viewerControllersList().empty() && roi->curView() == viewer->view;
  });
  host.closeViewer(viewer);
  EXPECT_TRUE(whole);
  EXPECT_FALSE(roi->curView());
  EXPECT_FALSE(host.viewerControllerClass().frontMostDisplayed2DViewer());
}

TEST_F(DoubleViewer, distanceToAPlaneTakesNormalsOfAnyLength) {
  Vector3f foot;
  const float distance = host.dcmViewClass().pbase_Plane({1, 2, -7}, {0, 0, 3}, {0, 0, 5}, foot);
  EXPECT_FLOAT_EQ(distance, 10);
  EXPECT_FLOAT_EQ(foot.x, 1);
  EXPECT_FLOAT_EQ(foot.y, 2);
  EXPECT_FLOAT_EQ(foot.z, 3);
}

TEST_F(DoubleViewer, anglesAreUnsigned) {
  EXPECT_FLOAT_EQ(host.dcmViewClass().angleBetweenVector({1, 0, 0}, {0, -2, 0}),
                  static_cast<float>(std::numbers::pi / 2));
  EXPECT_FLOAT_EQ(host.dcmViewClass().angleBetweenVector({1, 0, 0}, {-3, 0, 0}), static_cast<float>(std::numbers::pi));
}

TEST_F(DoubleViewer, orientationOfAPixArrayIsWrittenOnlyForAnArray) {
  long code = 77;
  host.viewerControllerClass().computeOriginalOrientationForPixArray({}, code);
  EXPECT_EQ(code, 77);
  host.viewerControllerClass().computeOriginalOrientationForPixArray(viewer->view->dcmPixList(), code);
  EXPECT_EQ(code, 0);
}

}  // namespace
}  // namespace testhost
