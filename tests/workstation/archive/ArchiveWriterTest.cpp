#include <gtest/gtest.h>

#include <limits>

#include "ArchiveTesting.h"
#include "workstation/archive/ArchiveBounds.h"

namespace {

using archive_testing::bytesOfText;
using archive_testing::DoublePointClass;
using pelmar::Bytes;
using pelmar::Value;
using workstation::writeArchive;

Bytes joined(const std::vector<Bytes>& parts) {
  Bytes whole;
  for (const Bytes& part : parts) whole.insert(whole.end(), part.begin(), part.end());
  return whole;
}

Bytes text(std::uint8_t marker, const std::string& characters) { return joined({{marker}, bytesOfText(characters)}); }

TEST(ArchiveWriter, the_empty_dictionary_has_exactly_these_bytes) {
  // Worked out from the form: 25 objects, so references and offsets take one byte; the objects end at byte 180, and
  // 180 + 25 + 32 is odd, so a byte stands between them and the offset table.
  const Bytes expected = joined({
      bytesOfText("bplist00"),
      {0xD4, 18, 20, 22, 23, 19, 21, 17, 24},               //  0 @8: $version $archiver $top $objects
      text(0x55, "$null"),                                  //  1 @17
      text(0x5C, "NSDictionary"),                           //  2 @23
      text(0x58, "NSObject"),                               //  3 @36
      {0xA2, 2, 3},                                         //  4 @45: $classes
      text(0x58, "$classes"),                               //  5 @48
      text(0x5A, "$classname"),                             //  6 @57
      {0xD2, 5, 6, 4, 2},                                   //  7 @68: archived object 2
      text(0x57, "NS.keys"),                                //  8 @73
      {0xA0},                                               //  9 @81
      text(0x5A, "NS.objects"),                             // 10 @82
      {0xA0},                                               // 11 @93
      text(0x56, "$class"),                                 // 12 @94
      {0x80, 2},                                            // 13 @101
      {0xD3, 8, 10, 12, 9, 11, 13},                         // 14 @103: archived object 1
      text(0x54, "root"),                                   // 15 @110
      {0x80, 1},                                            // 16 @115
      {0xD1, 15, 16},                                       // 17 @117: $top
      text(0x58, "$version"),                               // 18 @120
      {0x12, 0x00, 0x01, 0x86, 0xA0},                       // 19 @129: 100000
      text(0x59, "$archiver"),                              // 20 @134
      joined({{0x5F, 0x10}, text(15, "NSKeyedArchiver")}),  // 21 @144
      text(0x54, "$top"),                                   // 22 @162
      text(0x58, "$objects"),                               // 23 @167
      {0xA3, 1, 14, 7},                                     // 24 @176
      {0},                                                  // @180
      {8, 17, 23, 36, 45, 48, 57, 68, 73, 81, 82, 93, 94, 101, 103, 110, 115, 117, 120, 129, 134, 144, 162, 167, 176},
      {0, 0, 0, 0, 0, 0, 1, 1},
      {0, 0, 0, 0, 0, 0, 0, 25},
      {0, 0, 0, 0, 0, 0, 0, 0},
      {0, 0, 0, 0, 0, 0, 0, 181},
  });
  const auto archive = writeArchive(Value::Dictionary());
  ASSERT_TRUE(archive) << archive.problem;
  EXPECT_EQ(*archive, expected);
}

TEST(ArchiveWriter, coordinates_take_8_bytes_and_keep_all_of_them) {
  DoublePointClass points;
  const auto archive = writeArchive(points.pointWithX(-10.1, 0, 1));
  ASSERT_TRUE(archive) << archive.problem;
  // -10.1 in double precision, behind the marker of a real of 8 bytes.
  const Bytes coordinate{0x23, 0xC0, 0x24, 0x33, 0x33, 0x33, 0x33, 0x33, 0x33};
  EXPECT_NE(std::search(archive->begin(), archive->end(), coordinate.begin(), coordinate.end()), archive->end());
}

TEST(ArchiveWriter, the_length_is_even_and_the_trailer_comes_last_whatever_the_content) {
  bool needsPad = false;
  bool needsNone = false;
  for (std::size_t length = 0; length < 400; ++length) {
    const Value value(std::string(length, 'a'));
    const auto archive = writeArchive(value);
    ASSERT_TRUE(archive) << archive.problem;
    EXPECT_EQ(archive->size() % 2, 0u) << length;
    EXPECT_TRUE(archive_testing::sameContent(*archive_testing::read(*archive), value)) << length;
    const std::size_t table = archive->back() + 256u * archive->at(archive->size() - 2);
    const bool hasPad = archive->at(table - 1) == 0;
    (hasPad ? needsPad : needsNone) = true;
  }
  EXPECT_TRUE(needsPad);
  EXPECT_TRUE(needsNone);
}

TEST(ArchiveWriter, the_same_state_gives_the_same_bytes) {
  const auto state = [] {
    DoublePointClass points;
    Value::Dictionary level;
    level.emplace("name", "L4-L5");
    level.emplace("point", points.pointWithX(1, 2, 3));
    Value::Dictionary root;
    root.emplace("VertanaAnatomicalRegion", 2);
    root.emplace("kAdditionalVertebra", true);
    root.emplace("intervertebralPlanes", Value::Array{level, level});
    return Value(root);
  };
  EXPECT_EQ(*writeArchive(state()), *writeArchive(state()));
}

TEST(ArchiveWriter, what_cannot_be_archived_is_refused_with_its_place) {
  DoublePointClass points;
  constexpr double infinity = std::numeric_limits<double>::infinity();
  struct Row {
    const char* what;
    Value value;
    const char* reason;
  };
  const std::vector<Row> rows{
      {"nil", Value(), "nothing"},
      {"nil in an array", Value::Array{1, Value()}, "element 1 there is nothing"},
      {"nil in a dictionary", Value::Dictionary{{"a", Value()}}, "\"a\" there is nothing"},
      {"infinite number", Value::Array{infinity}, "not finite"},
      {"not a number", std::numeric_limits<double>::quiet_NaN(), "not finite"},
      {"infinite coordinate", points.pointWithX(0, -infinity, 0), "not finite"},
      {"coordinate beyond single precision", points.pointWithX(0, 0, 1e39), "not finite"},
      {"object that is no point", pelmar::makeRef<pelmar::HostObject>(), "no point"},
      {"invalid UTF-8", "a\xC3", "UTF-8"},
      {"key that is invalid UTF-8", Value::Dictionary{{"\xFF", 1}}, "UTF-8"},
      {"region 3", Value::Dictionary{{"VertanaAnatomicalRegion", 3}}, "region"},
      {"region as text", Value::Dictionary{{"VertanaAnatomicalRegion", "2"}}, "region"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    const auto archive = writeArchive(row.value);
    EXPECT_FALSE(archive);
    EXPECT_TRUE(archive.problem.starts_with("The value cannot be archived: ")) << archive.problem;
    EXPECT_NE(archive.problem.find(row.reason), std::string::npos) << archive.problem;
  }
}

TEST(KeyedArchive, the_plug_in_gets_nothing_where_it_is_refused) {
  DoublePointClass points;
  const workstation::KeyedArchive archiving(points);
  EXPECT_FALSE(archiving.archivedDataWithRootObject(Value()));
  EXPECT_TRUE(archiving.unarchiveObjectWithData({}).isNil());
  EXPECT_TRUE(archiving.unarchiveObjectWithData(bytesOfText("bplist00")).isNil());
  const auto archive = archiving.archivedDataWithRootObject(Value::Dictionary());
  ASSERT_TRUE(archive);
  const Value root = archiving.unarchiveObjectWithData(*archive);
  ASSERT_TRUE(root.dictionary());
  EXPECT_TRUE(root.dictionary()->empty());
}

}  // namespace
