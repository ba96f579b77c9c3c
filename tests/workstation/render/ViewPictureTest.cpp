#include "workstation/render/ViewPicture.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/workstation/model/TestImages.h"
#include "workstation/model/Workstation.h"

namespace workstation::test {
namespace {

using pelmar::PixelPoint;

/// Viewer 0 shows two sagittal slices, viewer 1 three axial ones and is in front.
class ViewPictureTest : public testing::Test {
 protected:
  ViewPictureTest() {
    const auto studies = workstation_.addImages(smallStudy());
    EXPECT_TRUE(workstation_.openStudy(studies.front()));
  }

  ViewPicture picture(int viewer = 0, const PictureOptions& options = {}) {
    auto made = pictureOf(workstation_, viewer, options);
    EXPECT_TRUE(made);
    return made.value_or(ViewPicture());
  }

  pelmar::Ref<pelmar::ROI> add(long type, std::vector<pelmar::MyPoint> points, int slice = 0) {
    const auto controller = workstation_.controller(0);
    auto roi = workstation_.api().roiClass().roiWithType(type, controller->imageView());
    roi->setPoints(points);
    controller->roiList()->objectAtIndex(static_cast<std::size_t>(slice))->addObject(roi);
    return roi;
  }

  static pelmar::MyPoint at(double x, double y) { return pelmar::MyPoint::point({x, y}); }

  Workstation workstation_;
};

TEST_F(ViewPictureTest, NoViewerNoPicture) { EXPECT_FALSE(pictureOf(workstation_, 7)); }

TEST_F(ViewPictureTest, ShowsTheSliceAsItLiesInTheView) {
  ASSERT_TRUE(workstation_.scroll(0, 1));
  ASSERT_TRUE(workstation_.zoom(0, 3));
  ASSERT_TRUE(workstation_.rotate(0, 90));
  const ViewPicture made = picture();
  EXPECT_EQ(made.image.sopInstanceUid, workstation_.sliceRecord(0, 1)->sopInstanceUid);
  EXPECT_EQ(made.transform.scale, 3);
  EXPECT_EQ(made.transform.rotationDegrees, 90);
  EXPECT_EQ(made.transform.columns, 100);
  EXPECT_EQ(made.transform.rows, 80);
  const auto viewer = workstation_.viewer(0);
  EXPECT_EQ(made.transform.viewWidth, viewer->viewFrame.width);
  EXPECT_EQ(made.transform.viewHeight, viewer->viewFrame.height);
  EXPECT_EQ(made.letters.top, "A");  // turned clockwise: what was at the left
  EXPECT_EQ(made.corners.bottomLeft.front(), "Slice 2 / 2");
  EXPECT_EQ(made.corners.topRight.front(), "Spine");
}

TEST_F(ViewPictureTest, GivesALengthItsMeasurement) {
  const auto line = add(pelmar::ROITypeLength, {at(10, 10), at(70, 10)});  // 60 pixels of 0.5 mm
  line->setNSColor({0, 1, 0, 1}, false);
  line->setThickness(4);
  ViewPicture made = picture();
  ASSERT_EQ(made.annotations.size(), 1U);
  EXPECT_EQ(made.annotations[0].lines, std::vector<std::string>{"3.00 cm"});
  EXPECT_EQ(made.annotations[0].stroke, (std::vector<PixelPoint>{{10, 10}, {70, 10}}));
  EXPECT_EQ(made.annotations[0].colour, (pelmar::Colour{0, 1, 0, 1}));
  EXPECT_EQ(made.annotations[0].thickness, 4);
  EXPECT_FALSE(made.annotations[0].handles);
  line->setDisplayTextualData(false);
  line->setROIMode(pelmar::ROIModeSelected);
  made = picture();
  EXPECT_TRUE(made.annotations[0].lines.empty());
  EXPECT_TRUE(made.annotations[0].handles);
}

TEST_F(ViewPictureTest, StrokesAPolygonAlongItsSpline) {
  add(pelmar::ROITypeOpenPolygon, {at(10, 10), at(50, 30), at(10, 50)});
  const ViewPicture made = picture();
  const auto& stroke = made.annotations.at(0).stroke;
  ASSERT_GT(stroke.size(), 10U);
  EXPECT_EQ(stroke.front(), (PixelPoint{10, 10}));
  EXPECT_EQ(stroke.back(), (PixelPoint{10, 50}));
  EXPECT_EQ(made.annotations[0].vertices.size(), 3U);
  // The curve is round where the vertices have a corner: it leaves the straight way to the middle vertex.
  double farthest = 0;
  for (const PixelPoint& point : stroke)
    farthest = std::max(farthest, std::abs(std::abs(point.y - 30) - (50 - point.x) / 2) / std::sqrt(1.25));
  EXPECT_GT(farthest, 1);
}

TEST_F(ViewPictureTest, TextStandsOnItsRectanglesOriginWithItsOwnLines) {
  const auto text = add(pelmar::ROITypeText, {});
  text->setName("L4\nextra");
  text->setROIRect({{33, 44}, {0, 0}});
  text->setThickness(15);
  text->setDisplayTextualData(false);
  const ViewPicture made = picture();
  EXPECT_EQ(made.annotations.at(0).vertices, std::vector<PixelPoint>({{33, 44}}));
  EXPECT_EQ(made.annotations.at(0).lines, (std::vector<std::string>{"L4", "extra"}));
}

TEST_F(ViewPictureTest, AliasedAnnotationsAreOnEverySliceAndOthersOnTheirs) {
  const auto everywhere = add(pelmar::ROITypeText, {});
  everywhere->setIsAliased(true);
  workstation_.controller(0)->roiList()->objectAtIndex(1)->addObject(everywhere);
  add(pelmar::ROITypePoint, {at(5, 5)}, 1);
  EXPECT_EQ(picture().annotations.size(), 1U);
  ASSERT_TRUE(workstation_.scroll(0, 1));
  EXPECT_EQ(picture().annotations.size(), 2U);
}

TEST_F(ViewPictureTest, LeavesOutWhatHasNoPlace) {
  add(pelmar::ROITypeLength, {});
  add(pelmar::ROITypePoint, {at(std::nan(""), 5)});
  EXPECT_TRUE(picture().annotations.empty());
}

TEST_F(ViewPictureTest, ShowsWhereTheFrontSliceCutsTheOthers) {
  // The first axial slice lies at z = 10 mm, and the sagittal image's row y at 20 - 0.5 y.
  ASSERT_EQ(workstation_.frontViewer(), 1);
  ASSERT_EQ(picture(0).referenceLines.size(), 1U);
  EXPECT_NEAR(picture(0).referenceLines[0].from.y, 20, 1e-9);
  EXPECT_TRUE(picture(1).referenceLines.empty());
  PictureOptions options;
  options.referenceLines = false;
  EXPECT_TRUE(picture(0, options).referenceLines.empty());
}

TEST_F(ViewPictureTest, PassesOnWindowAndWarnings) {
  PictureOptions options;
  options.window = WindowSetting{40, 400, {}};
  options.banners = {"not yet saved"};
  options.texts = false;
  const ViewPicture made = picture(0, options);
  EXPECT_EQ(made.window->width, 400);
  EXPECT_EQ(made.banners, options.banners);
  EXPECT_FALSE(made.scaleBar);
  EXPECT_TRUE(made.corners.topLeft.empty());
  EXPECT_TRUE(made.letters.top.empty());
}

TEST_F(ViewPictureTest, AnotherSizeShowsTheSamePart) {
  ASSERT_TRUE(workstation_.pan(0, 12, -8));
  ViewPicture made = picture();
  const ViewTransform before = made.transform;
  resize(made, before.viewWidth * 2, before.viewHeight * 2);
  for (const PixelPoint pixel : {PixelPoint{0, 0}, {99, 79}, {30, 50}}) {
    EXPECT_NEAR(made.transform.toView(pixel).x, 2 * before.toView(pixel).x, 1e-9);
    EXPECT_NEAR(made.transform.toView(pixel).y, 2 * before.toView(pixel).y, 1e-9);
  }
  // A wider view keeps the scale that its height allows.
  made = picture();
  resize(made, before.viewWidth * 5, before.viewHeight);
  EXPECT_EQ(made.transform.scale, before.scale);
}

TEST_F(ViewPictureTest, PixelsOfKnownShapeWithoutMillimetresArePaintedInItWithNothingMeasured) {
  Workstation workstation;
  ImageRecord high = slice("1.1", 1, 1);  // 100 x 80 pixels, as high as 160 of their widths
  high.pixelAspect = 2;
  ImageRecord square = slice("1.1", 1, 2);
  ASSERT_TRUE(workstation.openStudy(workstation.addImages({high, square}).front()));
  ASSERT_TRUE(workstation.setViewerFrame(0, {0, 0, 400, 320}));
  ASSERT_TRUE(workstation.fit(0));
  ASSERT_TRUE(workstation.drawLine(0, 0, {10, 10}, {70, 10}));
  const ViewPicture made = pictureOf(workstation, 0, {}).value_or(ViewPicture());
  EXPECT_EQ(made.transform.scale, 2) << "320 points over 160 widths";
  const auto centre = made.transform.toView({49.5, 39.5});
  EXPECT_EQ(made.transform.toView({50.5, 39.5}).x - centre.x, 2);
  EXPECT_EQ(made.transform.toView({49.5, 38.5}).y - centre.y, 4);
  EXPECT_FALSE(made.scaleBar);
  EXPECT_EQ(made.letters.top, "");
  ASSERT_EQ(made.annotations.size(), 1U);
  EXPECT_TRUE(made.annotations[0].lines.empty()) << "no length";
  EXPECT_EQ(workstation.viewer(0)->orientationCode, -1) << "so it is never labelled";
  ASSERT_TRUE(workstation.scroll(0, 1));
  EXPECT_EQ(pictureOf(workstation, 0, {})->transform.pixelAspect, 1) << "each slice has its own";
}

TEST_F(ViewPictureTest, ScaleBarIsAsLongAsItSays) {
  const ViewPicture made = picture();
  ASSERT_TRUE(made.scaleBar);
  const double pixels = made.scaleBar->lengthMm / 0.5;
  const double points = made.transform.toView({pixels, 0}).x - made.transform.toView({0, 0}).x;
  EXPECT_NEAR(made.scaleBar->lengthPoints, points, 1e-9);
  EXPECT_LE(made.scaleBar->lengthPoints, made.transform.viewWidth / 4);
}

}  // namespace
}  // namespace workstation::test
