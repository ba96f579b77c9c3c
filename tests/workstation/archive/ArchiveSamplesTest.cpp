// Archives that an independent writer made, and variants of them. What they hold is known from how they were made: an
// invented lumbar labelling.

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

#include "ArchiveTesting.h"
#include "tests/support/Requirements.h"
#include "workstation/archive/SavedLabelling.h"

namespace {

using workstation::SavedLabelling;
using workstation::SavedLevel;

const std::filesystem::path samples = ARCHIVE_SAMPLES;

SavedLabelling lumbarLabelling() {
  SavedLabelling labelling;
  labelling.anatomicalRegion = 2;
  labelling.additionalVertebra = false;
  labelling.levels.emplace();
  const std::vector<std::string> names{"T12-L1", "L1-L2", "L2-L3", "L3-L4", "L4-L5", "L5-S1"};
  for (std::size_t i = 0; i < names.size(); ++i) {
    const auto number = static_cast<double>(i);
    const double angleRad = 0.05 * (number - 2);
    labelling.levels->push_back({names[i],
                                 {1.25 + number, -10.1 + 0.1 * number, 120.0 - 35.5 * number},
                                 {0, std::sin(angleRad), std::cos(angleRad)}});
  }
  return labelling;
}

void expectNear(const SavedLabelling& labelling, const SavedLabelling& expected, double tolerance) {
  EXPECT_EQ(labelling.anatomicalRegion, expected.anatomicalRegion);
  EXPECT_EQ(labelling.additionalVertebra, expected.additionalVertebra);
  ASSERT_TRUE(labelling.levels);
  ASSERT_EQ(labelling.levels->size(), expected.levels->size());
  for (std::size_t i = 0; i < expected.levels->size(); ++i) {
    const SavedLevel& level = labelling.levels->at(i);
    const SavedLevel& expectedLevel = expected.levels->at(i);
    EXPECT_EQ(level.name, expectedLevel.name);
    for (std::size_t axis = 0; axis < 3; ++axis) {
      EXPECT_NEAR(level.point[axis], expectedLevel.point[axis], tolerance) << level.name;
      EXPECT_NEAR(level.vector[axis], expectedLevel.vector[axis], tolerance) << level.name;
    }
  }
}

class ArchiveSamples : public testing::Test {
 protected:
  void SetUp() override { SKIP_WITHOUT_FOLDER(samples); }
};

TEST_F(ArchiveSamples, good_ones_hold_the_labelling) {
  struct Row {
    const char* file;
    double tolerance;  // mm; that of the reals in the file
  };
  for (const Row& row :
       {Row{"double-binary", 1e-14}, Row{"double-xml", 1e-14}, Row{"float-binary", 1e-6}, Row{"float-xml", 1e-6},
        Row{"mutable-binary", 1e-14}, Row{"v_xml", 1e-14}, Row{"v_cfuid_binary", 1e-14}, Row{"v_top0", 1e-14},
        Row{"v_mutstring", 1e-14}, Row{"v_boolasint", 1e-14}}) {
    SCOPED_TRACE(row.file);
    const auto value =
        archive_testing::read(archive_testing::bytesOfFile(samples / (std::string(row.file) + ".plist")));
    ASSERT_TRUE(value) << value.problem;
    const auto labelling = workstation::labellingFromValue(*value);
    ASSERT_TRUE(labelling);
    expectNear(*labelling, lumbarLabelling(), row.tolerance);
  }
}

TEST_F(ArchiveSamples, integer_coordinates_are_read_as_they_stand) {
  SavedLabelling expected = lumbarLabelling();
  // In that file x is cut to an integer, y and z stay reals.
  for (SavedLevel& level : *expected.levels) level.point[0] = std::trunc(level.point[0]);
  const auto value = archive_testing::read(archive_testing::bytesOfFile(samples / "v_intcoord.plist"));
  ASSERT_TRUE(value) << value.problem;
  const auto labelling = workstation::labellingFromValue(*value);
  ASSERT_TRUE(labelling);
  expectNear(*labelling, expected, 1e-14);
}

TEST_F(ArchiveSamples, wrong_ones_are_refused_and_the_sentence_says_why) {
  struct Row {
    const char* file;
    const char* reason;
  };
  for (const Row& row :
       {Row{"v_archiver", "it was not made by NSKeyedArchiver"}, Row{"v_version", "its version is not 100000"},
        Row{"v_baduid", "object 999 of 38"}, Row{"v_selfref", "object 7, which it is itself a part of"},
        Row{"v_nullitem", "there is nothing where a value must stand"}, Row{"v_otherclass", "a class"},
        Row{"v_shortobjects", "3 keys but 2 values"}, Row{"v_negregion", "region"}, Row{"v_bigregion", "region"},
        Row{"misc", "a class"}}) {
    SCOPED_TRACE(row.file);
    const auto value =
        archive_testing::read(archive_testing::bytesOfFile(samples / (std::string(row.file) + ".plist")));
    EXPECT_FALSE(value);
    EXPECT_TRUE(value.problem.starts_with("The archive cannot be read: ")) << value.problem;
    EXPECT_NE(value.problem.find(row.reason), std::string::npos) << value.problem;
  }
}

TEST_F(ArchiveSamples, a_root_that_is_a_text_is_no_labelling) {
  const auto value = archive_testing::read(archive_testing::bytesOfFile(samples / "root0.plist"));
  ASSERT_TRUE(value) << value.problem;
  EXPECT_EQ(*value, pelmar::Value("zz"));
  EXPECT_FALSE(workstation::labellingFromValue(*value));
}

}  // namespace
