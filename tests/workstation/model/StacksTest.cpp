#include "workstation/model/Stacks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "TestImages.h"

namespace workstation {
namespace {

using test::axial;
using test::coronal;
using test::sagittal;
using test::slice;

std::vector<ImageRecord> shuffled(std::vector<ImageRecord> images, unsigned seed) {
  std::mt19937 generator(seed);
  std::shuffle(images.begin(), images.end(), generator);
  return images;
}

std::vector<int> instancesOf(const Stack& stack) {
  std::vector<int> numbers;
  for (const ImageRecord& image : stack.slices) numbers.push_back(image.instanceNumber.value_or(-1));
  return numbers;
}

/// An axial slice tilted about the patient's left-right axis, its centre at (0, y, z).
ImageRecord tilted(int instance, double degrees, double centreYMm, double centreZMm) {
  const double angleRad = degrees * std::acos(-1.0) / 180;
  const std::array<double, 3> column{0, std::cos(angleRad), std::sin(angleRad)};
  const double halfWidthMm = 0.5 * 99 * 0.5;
  const double halfHeightMm = 0.5 * 79 * 0.5;
  return test::placed(slice("5.1", 5, instance),
                      {-halfWidthMm, centreYMm - halfHeightMm * column[1], centreZMm - halfHeightMm * column[2]},
                      {1, 0, 0}, column);
}

TEST(Stacks, SagittalSlicesRunFromRightToLeft) {
  const auto studies = groupIntoStudies({sagittal("1", 1, 1, 4), sagittal("1", 1, 2, -8), sagittal("1", 1, 3, 0)});
  ASSERT_EQ(studies.size(), 1u);
  const Stack& stack = studies[0].series.at(0).stacks.at(0);
  EXPECT_EQ(stack.plane, Plane::sagittal);
  EXPECT_EQ(instancesOf(stack), (std::vector<int>{2, 3, 1}));  // x = -8, 0, 4: x grows to the left
}

TEST(Stacks, CoronalSlicesRunFromFrontToBack) {
  const auto studies = groupIntoStudies({coronal("1", 1, 1, 4), coronal("1", 1, 2, -8), coronal("1", 1, 3, 0)});
  EXPECT_EQ(instancesOf(studies.at(0).series.at(0).stacks.at(0)), (std::vector<int>{2, 3, 1}));
}

TEST(Stacks, AxialSlicesRunFromHeadToFeet) {
  const auto studies = groupIntoStudies({axial("1", 1, 1, 4), axial("1", 1, 2, -8), axial("1", 1, 3, 0)});
  EXPECT_EQ(instancesOf(studies.at(0).series.at(0).stacks.at(0)), (std::vector<int>{1, 3, 2}));
}

TEST(Stacks, OrientationCodeIsEvenWhereTheStoredOrderRunsWithTheShownOneAndOddWhereItRunsAgainstIt) {
  struct Row {
    const char* name;
    std::vector<ImageRecord> images;
    long code;
  };
  const auto frame = [](int number, double zMm) {
    ImageRecord record = axial("1", 1, 1, zMm);
    record.frame = number;
    return record;
  };
  const auto unnumbered = [](double zMm) {
    ImageRecord record = axial("1", 1, 1, zMm);
    record.instanceNumber.reset();
    return record;
  };
  const std::vector<Row> rows = {
      {"sagittal, stored right to left", {sagittal("1", 1, 1, -4), sagittal("1", 1, 2, 4)}, 0},
      {"sagittal, stored left to right", {sagittal("1", 1, 1, 4), sagittal("1", 1, 2, -4)}, 1},
      {"coronal, stored front to back", {coronal("1", 1, 1, -4), coronal("1", 1, 2, 4)}, 2},
      {"coronal, stored back to front", {coronal("1", 1, 1, 4), coronal("1", 1, 2, -4)}, 3},
      {"axial, stored head to feet", {axial("1", 1, 1, 4), axial("1", 1, 2, -4)}, 4},
      {"axial, stored feet to head", {axial("1", 1, 1, -4), axial("1", 1, 2, 4)}, 5},
      {"axial frames of one file, stored head to feet", {frame(1, 4), frame(2, -4)}, 4},
      {"axial frames of one file, stored feet to head", {frame(1, -4), frame(2, 4)}, 5},
      {"axial without numbers", {unnumbered(4), unnumbered(-4)}, 4},
      {"a single slice has no order", {axial("1", 1, 1, -4)}, 4},
      {"no geometry", {slice("1", 1, 1), slice("1", 1, 2)}, -1},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(groupIntoStudies(row.images).at(0).series.at(0).stacks.at(0).orientationCode, row.code);
  }
}

TEST(Stacks, PlaneIsThatOfTheLargestComponentOfTheNormal) {
  const double tilt = 40 * std::acos(-1.0) / 180;
  ImageRecord record = slice("1", 1, 1);
  EXPECT_EQ(planeOf(record), Plane::unknown);
  record = test::placed(record, {}, {1, 0, 0}, {0, std::cos(tilt), std::sin(tilt)});  // normal (0, -0.64, 0.77)
  EXPECT_EQ(planeOf(record), Plane::axial);
  record = test::placed(record, {}, {1, 0, 0}, {0, std::sin(tilt), std::cos(tilt)});  // normal (0, -0.77, 0.64)
  EXPECT_EQ(planeOf(record), Plane::coronal);
}

TEST(Stacks, FiveTiltedBlocksFollowEachOtherDownTheSpineWhateverTheOrderOfTheFiles) {
  // Four slices a block, 4 mm apart along the block's normal; the discs lie 35 mm apart. Neighbouring blocks cross
  // each other away from the spine, and the corners of the tilted slices lie up to 10 mm off their centres.
  const std::vector<double> tiltsDegrees = {-12, -4, 6, 16, 28};
  std::vector<ImageRecord> images;
  std::vector<int> expected;
  int instance = 0;
  for (std::size_t block = 0; block < tiltsDegrees.size(); ++block) {
    const double angleRad = tiltsDegrees[block] * std::acos(-1.0) / 180;
    for (int step = 0; step < 4; ++step) {
      // Towards the feet along the normal (0, sin, -cos).
      const double alongMm = 4.0 * step - 6;
      images.push_back(tilted(++instance, tiltsDegrees[block], alongMm * std::sin(angleRad),
                              -35.0 * static_cast<double>(block) - alongMm * std::cos(angleRad)));
      expected.push_back(instance);
    }
  }
  for (unsigned seed = 1; seed <= 5; ++seed) {
    const auto studies = groupIntoStudies(shuffled(images, seed));
    ASSERT_EQ(studies.at(0).series.at(0).stacks.size(), 1u);
    EXPECT_EQ(instancesOf(studies[0].series[0].stacks[0]), expected) << "seed " << seed;
  }
}

TEST(Stacks, BlocksThatOverlapAlongTheSpineAreNotMixed) {
  // Centres at z 0, -4, -8, -12 untilted and -10, -14, -18 tilted by 20 degrees: sorted by z alone, the third tilted
  // slice would come between the last two of the first block.
  const std::vector<ImageRecord> images = {tilted(1, 0, 0, 0),   tilted(2, 0, 0, -4),   tilted(3, 0, 0, -8),
                                           tilted(4, 0, 0, -12), tilted(5, 20, 0, -10), tilted(6, 20, 0, -14),
                                           tilted(7, 20, 0, -18)};
  EXPECT_EQ(instancesOf(groupIntoStudies(shuffled(images, 3)).at(0).series.at(0).stacks.at(0)),
            (std::vector<int>{1, 2, 3, 4, 5, 6, 7}));
}

TEST(Stacks, TwoDiscsOfTheSameTiltWithAnotherBetweenThemAreTwoBlocks) {
  const std::vector<ImageRecord> images = {tilted(1, 0, 0, 0),    tilted(2, 0, 0, -4),   tilted(3, 15, 0, -33),
                                           tilted(4, 15, 0, -37), tilted(5, 0, 0, -66),  tilted(6, 0, 0, -70),
                                           tilted(7, 15, 0, -99), tilted(8, 15, 0, -103)};
  EXPECT_EQ(instancesOf(groupIntoStudies(shuffled(images, 7)).at(0).series.at(0).stacks.at(0)),
            (std::vector<int>{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(Stacks, OrientationsLessThanADegreeApartAreOneBlock) {
  // Alternating tilts of 0 and 0.9 degrees are one block and keep the order of position; with 1.1 degrees they are
  // two blocks, of which the one with the higher mean comes first.
  const auto order = [](double degrees) {
    return instancesOf(groupIntoStudies({tilted(1, 0, 0, 0), tilted(2, degrees, 0, -4), tilted(3, 0, 0, -8),
                                         tilted(4, degrees, 0, -12)})
                           .at(0)
                           .series.at(0)
                           .stacks.at(0));
  };
  EXPECT_EQ(order(0.9), (std::vector<int>{1, 2, 3, 4}));
  EXPECT_EQ(order(1.1), (std::vector<int>{1, 3, 2, 4}));
}

TEST(Stacks, ALocalizerWithThreePlanesBecomesThreeStacks) {
  const auto studies = groupIntoStudies({axial("1", 1, 1, 0), coronal("1", 1, 2, 0), sagittal("1", 1, 3, 0)});
  const Series& series = studies.at(0).series.at(0);
  ASSERT_EQ(series.stacks.size(), 3u);
  EXPECT_EQ(series.stacks[0].plane, Plane::sagittal);
  EXPECT_EQ(series.stacks[1].plane, Plane::coronal);
  EXPECT_EQ(series.stacks[2].plane, Plane::axial);
}

TEST(Stacks, FrameOfReferenceColourScoutAndReferenceImagesAreStacksOfTheirOwn) {
  std::vector<ImageRecord> images;
  for (int instance = 1; instance <= 5; ++instance) images.push_back(axial("1", 1, instance, instance));
  images[1].frameOfReferenceUid = "9.8";
  images[2].colour = true;
  images[3].imageType.push_back("LOCALIZER");
  images[4].imageType.push_back("REFERENCE");
  const auto studies = groupIntoStudies(images);
  const Series& series = studies.at(0).series.at(0);
  ASSERT_EQ(series.stacks.size(), 5u);
  // By kind, then frame of reference ("9.8" before "9.9").
  EXPECT_EQ(instancesOf(series.stacks[0]), std::vector<int>{2});
  EXPECT_EQ(instancesOf(series.stacks[1]), std::vector<int>{1});
  EXPECT_EQ(series.stacks[2].kind, StackKind::colour);
  EXPECT_EQ(series.stacks[3].kind, StackKind::scout);
  EXPECT_EQ(series.stacks[4].kind, StackKind::reference);
}

TEST(Stacks, DerivedImagesAreScrolledWithTheOthersAndSplitByPlaneAlone) {
  std::vector<ImageRecord> images = {axial("1", 1, 1, 9), axial("1", 1, 2, 6), axial("1", 1, 3, 3),
                                     coronal("1", 1, 4, 0), coronal("1", 1, 5, 4)};
  images[1].imageType = {"DERIVED", "SECONDARY", "MPR"};
  images[2].imageType = {"DERIVED", "SECONDARY", "AXIAL", "REFORMATTED"};
  images[3].imageType = images[4].imageType = {"DERIVED", "SECONDARY", "REFORMATTED"};
  const auto studies = groupIntoStudies(images);
  const Series& series = studies.at(0).series.at(0);
  ASSERT_EQ(series.stacks.size(), 2u);
  EXPECT_EQ(instancesOf(series.stacks[0]), (std::vector<int>{4, 5}));
  EXPECT_EQ(instancesOf(series.stacks[1]), (std::vector<int>{1, 2, 3}));
  EXPECT_EQ(series.stacks[1].kind, StackKind::image);
}

TEST(Stacks, ImagesWithoutGeometryFormTheLastStackByInstanceNumber) {
  ImageRecord unnumbered = slice("1", 1, 0);
  unnumbered.instanceNumber.reset();
  const auto studies = groupIntoStudies({unnumbered, slice("1", 1, 9), axial("1", 1, 2, 0), slice("1", 1, 3)});
  const Series& series = studies.at(0).series.at(0);
  ASSERT_EQ(series.stacks.size(), 2u);
  EXPECT_EQ(series.stacks[1].orientationCode, -1);
  EXPECT_EQ(instancesOf(series.stacks[1]), (std::vector<int>{3, 9, -1}));
}

TEST(Stacks, SizesAndSpacingsMayDifferFromSliceToSlice) {
  ImageRecord large = axial("1", 1, 2, -4);
  large.rows = large.columns = 512;
  large.geometry->spacingX = large.geometry->spacingY = 0.3;
  const auto studies = groupIntoStudies({large, axial("1", 1, 1, 0), axial("1", 1, 3, -8)});
  ASSERT_EQ(studies.at(0).series.at(0).stacks.size(), 1u);
  EXPECT_EQ(instancesOf(studies[0].series[0].stacks[0]), (std::vector<int>{1, 2, 3}));
}

TEST(Stacks, FramesOfOneFileAreSlices) {
  std::vector<ImageRecord> images;
  for (int frame = 1; frame <= 3; ++frame) {
    images.push_back(axial("1", 1, 1, 10.0 * frame));
    images.back().frame = frame;
  }
  const auto studies = groupIntoStudies(images);
  const Stack& stack = studies.at(0).series.at(0).stacks.at(0);
  ASSERT_EQ(stack.slices.size(), 3u);
  EXPECT_EQ(stack.slices[0].frame, 3);  // highest z first
}

TEST(Stacks, SeriesComeByNumberAndThoseWithoutOneLast) {
  ImageRecord unnumbered = axial("0.1", 0, 1, 0);
  unnumbered.seriesNumber.reset();
  const auto studies = groupIntoStudies({unnumbered, axial("3", 10, 1, 0), axial("2", 2, 1, 0), axial("1", 10, 1, 0)});
  std::vector<std::string> uids;
  for (const Series& series : studies.at(0).series) uids.push_back(series.uid);
  EXPECT_EQ(uids, (std::vector<std::string>{"2", "1", "3", "0.1"}));
}

TEST(Stacks, StudiesComeByDateAndKeepAnAbsentDescriptionApartFromAnEmptyOne) {
  ImageRecord later = axial("1", 1, 1, 0);
  later.studyInstanceUid = "1";
  later.studyDate = "20210101";
  later.studyDescription.reset();
  ImageRecord earlier = axial("2", 1, 1, 0);
  earlier.studyInstanceUid = "2";
  earlier.studyDescription = "";
  const auto studies = groupIntoStudies({later, earlier});
  ASSERT_EQ(studies.size(), 2u);
  EXPECT_EQ(studies[0].uid, "2");
  EXPECT_EQ(studies[0].description, std::optional<std::string>(""));
  EXPECT_FALSE(studies[1].description.has_value());
}

}  // namespace
}  // namespace workstation
