// What every operation of every class answers when it is sent to nil: one test a class, one line an operation.
#include <gtest/gtest.h>

#include "host/PelmarAPI.h"

namespace contract {
namespace {

using namespace pelmar;

template <class T>
void expectNoCapabilities() {
  using enum Capability;
  for (const Capability one : {Point3DKeyedArchiving, DCMPixBodyPartExamined, ROIDontDisplayInKeyImagesWindow,
                               ROIStringTags, ROIResamplePoints, ViewerControllerROIToolTag}) {
    EXPECT_FALSE(Ref<T>()->supports(one));
  }
}

bool isZero(const FrameRect& r) { return r.x == 0 && r.y == 0 && r.width == 0 && r.height == 0; }

TEST(NilAnswers, ofViewerController) {
  const Ref<ViewerController> nil;
  expectNoCapabilities<ViewerController>();
  nil->needsDisplayUpdate();
  nil->setROIToolTag(5);
  nil->setToolTag(3);
  EXPECT_TRUE(nil->currentStudy() == nullptr);
  EXPECT_TRUE(nil->imageView() == nullptr);
  EXPECT_TRUE(nil->window() == nullptr);
  EXPECT_EQ(nil->orientationVector(), 0);
  EXPECT_FALSE(nil->isEverythingLoaded());
  EXPECT_TRUE(nil->roiList() == nullptr);
  EXPECT_EQ(nil->ROIToolTag(), 0);
}

TEST(NilAnswers, ofDCMView) {
  const Ref<DCMView> nil;
  expectNoCapabilities<DCMView>();
  nil->stopROIEditingForce(true);
  EXPECT_TRUE(nil->viewer() == nullptr);
  EXPECT_TRUE(nil->curDCM() == nullptr);
  EXPECT_EQ(nil->curImage(), 0);
  EXPECT_TRUE(nil->dcmPixList() == nullptr);
  EXPECT_TRUE(nil->dcmRoiList() == nullptr);
  EXPECT_TRUE(nil->studyObj() == nullptr);
  EXPECT_EQ(nil->currentTool(), 0);
  const ViewPoint inView = nil->ConvertFromGL2NSView({3, 4});
  EXPECT_EQ(inView.x, 0);
  EXPECT_EQ(inView.y, 0);
  EXPECT_EQ(nil->ConvertFromNSView2GL({3, 4}), (PixelPoint{0, 0}));
  std::array<float, 9> vector{1, 2, 3, 4, 5, 6, 7, 8, 9};
  const auto before = vector;
  nil->orientationCorrectedToView(vector);
  EXPECT_EQ(vector, before);
  EXPECT_TRUE(isZero(nil->frame()));
  EXPECT_TRUE(nil->window() == nullptr);
  const WindowPoint inWindow = nil->convertPoint({3, 4}, nullptr);
  EXPECT_EQ(inWindow.x, 0);
  EXPECT_EQ(inWindow.y, 0);
}

TEST(NilAnswers, ofDCMPix) {
  const Ref<DCMPix> nil;
  expectNoCapabilities<DCMPix>();
  EXPECT_EQ(nil->orientation(), (std::array<double, 9>{}));
  std::array<float, 9> vector{1, 2, 3, 4, 5, 6, 7, 8, 9};
  const auto before = vector;
  nil->orientation(vector);
  EXPECT_EQ(vector, before);
  Vector3f position{1, 2, 3};
  nil->convertPixX(5, 6, position);
  EXPECT_EQ(position.x, 1);
  EXPECT_EQ(position.y, 2);
  EXPECT_EQ(position.z, 3);
  const SlicePoint inSlice = nil->convertDICOMCoords({1, 2, 3});
  EXPECT_EQ(inSlice.x, 0);
  EXPECT_EQ(inSlice.y, 0);
  EXPECT_EQ(nil->pixelSpacingX(), 0);
  EXPECT_EQ(nil->pixelSpacingY(), 0);
  EXPECT_EQ(nil->pwidth(), 0);
  EXPECT_EQ(nil->pheight(), 0);
  EXPECT_FALSE(nil->isRGB());
  EXPECT_FALSE(nil->bodyPartExamined().has_value());
  EXPECT_EQ(nil->contentFrameRect(), PixelRect{});
}

TEST(NilAnswers, ofROI) {
  const Ref<ROI> nil;
  expectNoCapabilities<ROI>();
  nil->setROIMode(2);
  nil->setPoints({MyPoint::point({1, 2})});
  nil->setROIRect({{1, 2}, {3, 4}});
  nil->setPix(makeRef<DCMPix>());
  nil->setName("L1");
  nil->setNSColor({1, 1, 1, 1}, false);
  nil->setThickness(7);
  nil->setThickness(8, false);
  nil->setSelectable(true);
  nil->setDisplayTextualData(true);
  nil->setIsAliased(true);
  nil->setOriginalIndexForAlias(4);
  nil->setDontDisplayInKeyImagesWindow(true);
  nil->setDontSavePreferredWLWW(true);
  EXPECT_EQ(nil->type(), 0);
  EXPECT_EQ(nil->ROImode(), 0);
  EXPECT_TRUE(nil->points() == nullptr);
  EXPECT_EQ(nil->pointAtIndex(0), (PixelPoint{0, 0}));
  EXPECT_FALSE(nil->splinePoints().has_value());
  std::vector<long> segments{4};
  EXPECT_FALSE(nil->splinePoints(5, &segments).has_value());
  EXPECT_EQ(segments, std::vector<long>{4});
  EXPECT_FALSE(nil->splinePoints(5, nullptr).has_value());
  EXPECT_EQ(nil->length(), 0);
  EXPECT_EQ(nil->rect(), PixelRect{});
  EXPECT_TRUE(nil->curView() == nullptr);
  EXPECT_TRUE(nil->pix() == nullptr);
  EXPECT_TRUE(nil->stringTags() == nullptr);
  EXPECT_EQ(nil->name(), "");
  EXPECT_EQ(nil->NSColor(), Colour{});
  EXPECT_EQ(nil->thickness(), 0);
  EXPECT_FALSE(nil->selectable());
  EXPECT_FALSE(nil->displayTextualData());
  EXPECT_FALSE(nil->isAliased());
  EXPECT_EQ(nil->originalIndexForAlias(), 0);
  EXPECT_FALSE(nil->dontDisplayInKeyImagesWindow());
  EXPECT_FALSE(nil->dontSavePreferredWLWW());
}

TEST(NilAnswers, ofStringTags) {
  const Ref<StringTags> nil;
  nil->addObject("tag");
  EXPECT_FALSE(nil->containsObject("tag"));
  EXPECT_TRUE(nil->allObjects().empty());
}

TEST(NilAnswers, ofLists) {
  const Ref<ROIList> nil;
  const auto roi = makeRef<ROI>();
  nil->addObject(roi);
  nil->insertObject(roi, 0);
  nil->removeObject(roi);
  nil->removeAllObjects();
  EXPECT_EQ(nil->count(), 0U);
  EXPECT_TRUE(nil->objectAtIndex(0) == nullptr);
  EXPECT_FALSE(nil->containsObject(roi));
  EXPECT_EQ(Ref<ROILists>()->count(), 0U);
  EXPECT_TRUE(Ref<ROILists>()->objectAtIndex(0) == nullptr);
  EXPECT_EQ(Ref<MutableList<MyPoint>>()->objectAtIndex(0), MyPoint());
}

TEST(NilAnswers, ofPoint3D) {
  const Ref<Point3D> nil;
  nil->setPoint3D(makeRef<Point3D>());
  nil->add(makeRef<Point3D>());
  nil->subtract(makeRef<Point3D>());
  nil->multiply(2);
  EXPECT_EQ(nil->x(), 0);
  EXPECT_EQ(nil->y(), 0);
  EXPECT_EQ(nil->z(), 0);
  const N3Vector vector = nil->N3VectorValue();
  EXPECT_EQ(vector.x, 0);
  EXPECT_EQ(vector.y, 0);
  EXPECT_EQ(vector.z, 0);
}

TEST(NilAnswers, ofStudiesSeriesAndImages) {
  const Ref<DicomStudy> study;
  EXPECT_FALSE(study->studyInstanceUID().has_value());
  EXPECT_FALSE(study->studyName().has_value());
  EXPECT_TRUE(study->objectID() == nullptr);
  EXPECT_FALSE(study->series().has_value());
  EXPECT_FALSE(study->PelmarSRSeries().has_value());
  EXPECT_TRUE(study->SRImageWithSeriesID(1, "description") == nullptr);
  const Ref<DicomSeries> series;
  EXPECT_FALSE(series->name().has_value());
  EXPECT_EQ(series->id(), 0);
  EXPECT_FALSE(series->seriesDICOMUID().has_value());
  EXPECT_FALSE(series->images().has_value());
  EXPECT_FALSE(Ref<DicomImage>()->completePathResolved().has_value());
  EXPECT_FALSE(Ref<ObjectID>()->isEqual(makeRef<ObjectID>()));
  EXPECT_FALSE(Ref<ObjectID>()->isEqual({}));
  EXPECT_TRUE(Ref<ObjectID>()->persistentStore() == nullptr);
}

TEST(NilAnswers, ofTheDatabaseAndReports) {
  const Ref<DicomDatabase> database;
  database->addFilesAtPaths({"/none"}, true, true, true, true);
  EXPECT_FALSE(database->uniquePathForNewDataFileWithExtension("dcm", {}).has_value());
  EXPECT_TRUE(database->independentDatabase() == nullptr);
  EXPECT_TRUE(Ref<BrowserController>()->database() == nullptr);
  const Ref<SRAnnotation> report;
  report->setSeriesInstanceUID("1.2.3");
  EXPECT_FALSE(report->writeToFileAtPath("/none"));
  EXPECT_FALSE(report->dataEncapsulated().has_value());
}

TEST(NilAnswers, ofWindow) {
  const Ref<Window> nil;
  nil->setFrameOrigin({3, 4});
  nil->makeKeyAndOrderFront();
  nil->close();
  EXPECT_TRUE(isZero(nil->frame()));
  EXPECT_FALSE(nil->isVisible());
  const ScreenPoint onScreen = nil->convertBaseToScreen({3, 4});
  EXPECT_EQ(onScreen.x, 0);
  EXPECT_EQ(onScreen.y, 0);
  EXPECT_EQ(nil->frameAutosaveName(), "");
}

}  // namespace
}  // namespace contract
