#include "cli/export/SctDiscLabels.h"

#include <gtest/gtest.h>

#include "SagittalStack.h"

namespace cli::test {
namespace {

using workstation::Series;

Series seriesOf(workstation::Stack stack) {
  Series series;
  series.number = 6;
  series.stacks.push_back(std::move(stack));
  return series;
}

/// Two discs on the middle one of three slices.
Labelling twoDiscs() {
  Labelling labelling;
  labelling.region = 0;
  labelling.planes = {{"C2-C3", {0, 12, 100}, {0, 0, -1}}, {"C3-C4", {0, 14, 97}, {0, 0, -1}}};
  return labelling;
}

std::string refusal(const Labelling& labelling, const Series* series) {
  const auto file = sctDiscLabels(labelling, series);
  EXPECT_FALSE(file);
  EXPECT_EQ(file.failure.status, ExitNotAllowed);
  EXPECT_NE(file.failure.sentence.find("The labelling cannot be told by Spinal Cord Toolbox labels: "),
            std::string::npos)
      << file.failure.sentence;
  return file.failure.sentence;
}

std::string refusal(const Labelling& labelling) {
  const auto series = seriesOf(sagittalStack(3));
  return refusal(labelling, &series);
}

void expectWords(const std::string& sentence, const std::string& words) {
  EXPECT_NE(sentence.find(words), std::string::npos) << sentence;
}

TEST(SctNumber, CountsTheDiscsFromTheSecondCervicalVertebra) {
  const std::vector<std::pair<const char*, int>> known{
      {"C2-C3", 3},  {"C3-C4", 4},  {"C4-C5", 5},   {"C5-C6", 6},    {"C6-C7", 7},    {"C7-T1", 8},
      {"T1-T2", 9},  {"T2-T3", 10}, {"T3-T4", 11},  {"T4-T5", 12},   {"T5-T6", 13},   {"T6-T7", 14},
      {"T7-T8", 15}, {"T8-T9", 16}, {"T9-T10", 17}, {"T10-T11", 18}, {"T11-T12", 19}, {"T12-L1", 20},
      {"L1-L2", 21}, {"L2-L3", 22}, {"L3-L4", 23},  {"L4-L5", 24},   {"L5-S1", 25}};
  for (const auto& [name, number] : known) EXPECT_EQ(sctNumber(name), number) << name;
}

TEST(SctNumber, IsMissingForExtraVertebraeAndForWhatTheyDisplace) {
  for (const char* name : {"C0-C1", "C7-C8", "C8-T1", "T12-T13", "T13-L1", "L5-L6", "L6-S1", "", "L4"}) {
    EXPECT_FALSE(sctNumber(name)) << name;
  }
}

TEST(SctDiscLabels, AreOneVoxelADisc) {
  const auto series = seriesOf(sagittalStack(3));
  const auto file = sctDiscLabels(twoDiscs(), &series);
  ASSERT_TRUE(file) << file.failure.sentence;
  // 4 columns, 3 rows and 3 slices. By hand: column 1, row 0 and column 2, row 1 of slice 1, which begins at 12.
  std::string expected(36, '\0');
  expected[12 + 1] = 3;
  expected[12 + 4 + 2] = 4;
  EXPECT_EQ(file->substr(352), expected);
  EXPECT_STREQ(&(*file)[148], "Disc labels, cervical spine");
}

TEST(SctDiscLabels, LeaveOutTheJointOfSkullAndAtlas) {
  auto labelling = twoDiscs();
  EXPECT_FALSE(hasSkullJoint(labelling));
  labelling.planes.insert(labelling.planes.begin(), {"C0-C1", {0, 12, 1000}, {0, 0, -1}});
  EXPECT_TRUE(hasSkullJoint(labelling));
  const auto labels = sctLabels(labelling.planes, *gridOf(sagittalStack(3)));
  ASSERT_TRUE(labels) << labels.failure.sentence;
  ASSERT_EQ(labels->size(), 2U);
  EXPECT_EQ((*labels)[0].value, 3);
}

TEST(SctDiscLabels, AreRefusedForALevelWithoutANumber) {
  auto labelling = twoDiscs();
  labelling.planes[1].name = "C7-C8";
  expectWords(refusal(labelling), "they have no number for C7-C8 (they go from C2-C3 to L5-S1).");
}

TEST(SctDiscLabels, AreRefusedForADiscOutsideTheImages) {
  auto labelling = twoDiscs();
  labelling.planes[1].point[0] = 8;
  expectWords(refusal(labelling), "C3-C4 lies outside the images that were drawn on");
}

TEST(SctDiscLabels, AreRefusedForTwoDiscsInOneVoxel) {
  auto labelling = twoDiscs();
  labelling.planes[1].point = {0.5, 12.4, 99};
  expectWords(refusal(labelling), "C3-C4 lies in the same voxel as the disc before it");
}

TEST(SctDiscLabels, AreRefusedWithoutAnyDisc) {
  auto labelling = twoDiscs();
  labelling.planes.resize(1);
  labelling.planes[0].name = "C0-C1";
  expectWords(refusal(labelling), "it has no disc that they have a number for");
}

TEST(SctDiscLabels, AreRefusedWithoutTheSeries) {
  expectWords(refusal(twoDiscs(), nullptr), "the study does not hold the series that was drawn on");
}

TEST(SctDiscLabels, AreRefusedForASeriesOfSeveralStacks) {
  auto series = seriesOf(sagittalStack(3));
  series.stacks.push_back(sagittalStack(3));
  expectWords(refusal(twoDiscs(), &series), "series 6 is no single volume: it falls into several stacks");
}

TEST(SctDiscLabels, AreRefusedForSlicesThatAreNoGrid) {
  auto series = seriesOf(sagittalStack(1));
  expectWords(refusal(twoDiscs(), &series), "series 6 has one slice only");
}

}  // namespace
}  // namespace cli::test
