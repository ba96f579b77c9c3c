// No study is ever shown another study's levels: planes and curve are forgotten before another study becomes current.

#include "tests/plugin/LabellingFixture.h"

namespace testhost {
namespace {

using pelmar::Ref;
using pelmar::Value;

/// A labelled first study, the palette closed; a second patient's study with a sagittal and an axial viewer.
class StudyIsolation : public LabellingFixture {
 public:
  Ref<TestStudy> second = host.addStudy("9.9.9", "MRI SPINE");
  Ref<TestViewer> secondSagittal;
  Ref<TestViewer> secondAxial;

  void SetUp() override {
    LabellingFixture::SetUp();
    chooseLabels();
    drawLine();
    palette()->close();
    secondSagittal = host.addViewer(second, sagittalSeries(3));
    secondAxial = addAxial(second);
  }
  /// A lumbar state of two discs only, so that it cannot be mistaken for the first study's.
  static Value twoDiscs() {
    return Value(Value::Dictionary{{"VertanaAnatomicalRegion", 2},
                                   {"kAdditionalVertebra", false},
                                   {"intervertebralPlanes", planeRecords({"L4-L5", "L5-S1"})}});
  }
};

TEST_F(StudyIsolation, theMenuCommandStartsAnotherStudyWithNothing) {
  choose("Labels", secondSagittal);
  EXPECT_FALSE(filter.intervertebralPlanes());
  EXPECT_FALSE(filter.openPolygonROI());
  EXPECT_TRUE(secondSagittal->allROIs().empty());
  palette()->close();
  EXPECT_EQ(planeCount(storedState(second)), 0U) << "nor is the first study's labelling saved into it";
  EXPECT_TRUE(secondSagittal->allROIs().empty());
  EXPECT_EQ(axialNameCount(secondAxial), 0U);
}

TEST_F(StudyIsolation, theMenuCommandShowsAnotherStudyItsOwnLevels) {
  storeState(second, twoDiscs());
  choose("Labels", secondSagittal);
  ASSERT_TRUE(filter.intervertebralPlanes());
  EXPECT_EQ(filter.intervertebralPlanes()->size(), 2U);
  EXPECT_EQ(labelsOn(secondSagittal).size(), 1U);
}

TEST_F(StudyIsolation, anotherEntryOnAnotherStudyForgetsThePlanes) {
  choose("Other", secondSagittal);
  EXPECT_TRUE(filter.study() == second);
  EXPECT_FALSE(filter.intervertebralPlanes());
}

TEST_F(StudyIsolation, loadingAnUnlabelledStudyShowsNothingOnIt) {
  for (const auto& viewer : {secondSagittal, secondAxial}) {
    host.post(pelmar::PelmarViewerControllerDidLoadImagesNotification, viewer);
    EXPECT_TRUE(viewer->allROIs().empty());
  }
  EXPECT_FALSE(filter.intervertebralPlanes());
}

TEST_F(StudyIsolation, loadingALabelledStudyShowsItsOwnLevels) {
  storeState(second, twoDiscs());
  host.post(pelmar::PelmarViewerControllerDidLoadImagesNotification, secondSagittal);
  ASSERT_TRUE(filter.intervertebralPlanes());
  EXPECT_EQ(filter.intervertebralPlanes()->size(), 2U);
  EXPECT_EQ(labelsOn(secondSagittal).size(), 1U);
}

TEST_F(StudyIsolation, loadingAStudyWhoseLabellingWasResetShowsNothing) {
  storeState(second, Value(Value::Dictionary{}));
  host.post(pelmar::PelmarViewerControllerDidLoadImagesNotification, secondSagittal);
  EXPECT_TRUE(filter.isActive());
  EXPECT_FALSE(filter.intervertebralPlanes());
  EXPECT_TRUE(secondSagittal->allROIs().empty());
}

TEST_F(StudyIsolation, scrollingAStudyWhoseLabellingWasResetShowsNothing) {
  storeState(second, Value(Value::Dictionary{}));
  for (const auto& viewer : {secondAxial, secondSagittal}) {
    host.post(pelmar::PelmarDCMViewIndexChangedNotification, viewer->view);
    EXPECT_TRUE(viewer->allROIs().empty());
  }
  EXPECT_FALSE(filter.intervertebralPlanes());
}

TEST_F(StudyIsolation, scrollingALabelledStudyShowsItsOwnLevels) {
  storeState(second, twoDiscs());
  host.post(pelmar::PelmarDCMViewIndexChangedNotification, secondSagittal->view);
  ASSERT_TRUE(filter.intervertebralPlanes());
  EXPECT_EQ(filter.intervertebralPlanes()->size(), 2U);
}

TEST_F(StudyIsolation, loadingWhileActiveWithoutStudyForgetsThePlanesInMemory) {
  filter.setIsActive(true);
  ASSERT_FALSE(filter.study());
  host.post(pelmar::PelmarViewerControllerDidLoadImagesNotification, secondSagittal);
  EXPECT_TRUE(filter.study() == second);
  EXPECT_FALSE(filter.intervertebralPlanes());
  EXPECT_TRUE(secondSagittal->allROIs().empty());
}

TEST_F(StudyIsolation, theFirstStudyKeepsItsLabelsThroughout) {
  choose("Labels", secondSagittal);
  palette()->close();
  EXPECT_EQ(labelsOn(sagittal), lumbarLabels());
  EXPECT_EQ(planeCount(storedState(study)), 6U);
}

TEST_F(StudyIsolation, aCurveThatIsStillHeldGoesWithItsStudy) {
  const auto curve = host.addROI(pelmar::ROITypeOpenPolygon, sagittal, 0, {{0, 0}, {0, 9}});
  filter.setOpenPolygonROI(curve);
  host.calls.clear();
  choose("Other", secondSagittal);
  EXPECT_FALSE(filter.openPolygonROI());
  EXPECT_FALSE(sagittal->sliceLists[0]->containsObject(curve));
  EXPECT_EQ(host.calls.count("deleteROIs(1,false)"), 1U) << "silently";
  EXPECT_TRUE(filter.study() == second);
}

}  // namespace
}  // namespace testhost
