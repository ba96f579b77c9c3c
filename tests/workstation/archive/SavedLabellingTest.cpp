#include "workstation/archive/SavedLabelling.h"

#include <gtest/gtest.h>

#include <limits>

#include "ArchiveTesting.h"

namespace {

using archive_testing::DoublePointClass;
using pelmar::Value;
using workstation::labellingFromValue;
using workstation::sameInSinglePrecision;
using workstation::SavedLabelling;

Value point(double x = 1, double y = 2, double z = 3) {
  DoublePointClass points;
  return points.pointWithX(x, y, z);
}

Value root(const char* key, Value value) { return Value::Dictionary{{key, std::move(value)}}; }

Value levels(Value::Dictionary level) { return root("intervertebralPlanes", Value::Array{std::move(level)}); }

SavedLabelling oneLevel(double x) {
  return {2, false, std::vector<workstation::SavedLevel>{{"L4-L5", {x, 0, 0}, {0, 0, 1}}}};
}

TEST(SavedLabelling, entries_are_read_one_by_one) {
  struct Row {
    const char* what;
    Value root;
    SavedLabelling expected;
  };
  const std::vector<Row> rows{
      {"empty state", Value::Dictionary(), {}},
      {"region none", root("VertanaAnatomicalRegion", -1), {-1, {}, {}}},
      {"region lumbar", root("VertanaAnatomicalRegion", 2), {2, {}, {}}},
      {"region as real", root("VertanaAnatomicalRegion", 1.0), {1, {}, {}}},
      {"flag", root("kAdditionalVertebra", true), {{}, true, {}}},
      {"flag as integer", root("kAdditionalVertebra", 1), {{}, true, {}}},
      {"flag as integer 0", root("kAdditionalVertebra", 0), {{}, false, {}}},
      {"no levels", root("intervertebralPlanes", Value::Array()), {{}, {}, std::vector<workstation::SavedLevel>()}},
      {"a level, and what other programs add",
       levels({{"name", "C2-C3"}, {"point", point()}, {"vector", point(0, 0, 1)}, {"colour", "red"}}),
       {{}, {}, std::vector<workstation::SavedLevel>{{"C2-C3", {1, 2, 3}, {0, 0, 1}}}}},
      {"unknown entry", root("other", 5), {}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    EXPECT_EQ(labellingFromValue(row.root), row.expected);
    EXPECT_EQ(labellingFromValue(row.root)->isEmpty(), row.expected == SavedLabelling());
  }
}

TEST(SavedLabelling, wrong_entries_make_it_none) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  struct Row {
    const char* what;
    Value root;
  };
  const std::vector<Row> rows{
      {"nil", Value()},
      {"array", Value::Array()},
      {"region 3", root("VertanaAnatomicalRegion", 3)},
      {"region -2", root("VertanaAnatomicalRegion", -2)},
      {"region whose low 32 bits are 2", root("VertanaAnatomicalRegion", std::int64_t{4294967298})},
      {"region with a fraction", root("VertanaAnatomicalRegion", 1.5)},
      {"region as boolean", root("VertanaAnatomicalRegion", true)},
      {"region as text", root("VertanaAnatomicalRegion", "2")},
      {"flag 2", root("kAdditionalVertebra", 2)},
      {"flag as text", root("kAdditionalVertebra", "yes")},
      {"levels as dictionary", root("intervertebralPlanes", Value::Dictionary())},
      {"level as text", root("intervertebralPlanes", Value::Array{"L4-L5"})},
      {"level without name", levels({{"point", point()}, {"vector", point()}})},
      {"level without point", levels({{"name", "L4-L5"}, {"vector", point()}})},
      {"level without vector", levels({{"name", "L4-L5"}, {"point", point()}})},
      {"level with a number as name", levels({{"name", 4}, {"point", point()}, {"vector", point()}})},
      {"level with a text as point", levels({{"name", "L4-L5"}, {"point", "0"}, {"vector", point()}})},
      {"infinite point", levels({{"name", "L4-L5"}, {"point", point(infinity)}, {"vector", point()}})},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    EXPECT_EQ(labellingFromValue(row.root), std::nullopt);
  }
}

TEST(SavedLabelling, becomes_the_dictionary_that_the_plug_in_reads) {
  DoublePointClass points;
  const Value value = workstation::valueFromLabelling({2, true, oneLevel(7).levels}, points);
  const Value expected = Value::Dictionary{
      {"VertanaAnatomicalRegion", 2},
      {"kAdditionalVertebra", true},
      {"intervertebralPlanes",
       Value::Array{Value::Dictionary{{"name", "L4-L5"}, {"point", point(7, 0, 0)}, {"vector", point(0, 0, 1)}}}}};
  EXPECT_TRUE(archive_testing::sameContent(value, expected));
  EXPECT_TRUE(archive_testing::sameContent(workstation::valueFromLabelling({}, points), Value::Dictionary()));
}

TEST(SavedLabelling, is_compared_in_single_precision) {
  // The neighbours of 100 in single precision are 2^-17 = 7.6e-6 away.
  EXPECT_TRUE(sameInSinglePrecision(oneLevel(100), oneLevel(100 + 3e-6)));
  EXPECT_FALSE(sameInSinglePrecision(oneLevel(100), oneLevel(100 + 8e-6)));
  EXPECT_TRUE(sameInSinglePrecision(oneLevel(0.0), oneLevel(-0.0)));
  EXPECT_TRUE(sameInSinglePrecision(oneLevel(1e300), oneLevel(1e200)));
  EXPECT_FALSE(sameInSinglePrecision(oneLevel(1e300), oneLevel(-1e300)));

  const SavedLabelling labelling = oneLevel(1);
  SavedLabelling other = labelling;
  other.anatomicalRegion = 1;
  EXPECT_FALSE(sameInSinglePrecision(labelling, other));
  other = labelling;
  other.additionalVertebra.reset();
  EXPECT_FALSE(sameInSinglePrecision(labelling, other));
  other = labelling;
  other.levels->front().name = "L5-S1";
  EXPECT_FALSE(sameInSinglePrecision(labelling, other));
  other = labelling;
  other.levels->front().vector[2] = 0.5;
  EXPECT_FALSE(sameInSinglePrecision(labelling, other));
  other = labelling;
  other.levels->push_back(other.levels->front());
  EXPECT_FALSE(sameInSinglePrecision(labelling, other));
  EXPECT_FALSE(sameInSinglePrecision({{}, {}, std::vector<workstation::SavedLevel>()}, {}));
  EXPECT_TRUE(sameInSinglePrecision({}, {}));
}

}  // namespace
