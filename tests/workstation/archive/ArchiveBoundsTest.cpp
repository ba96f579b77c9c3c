// What keeps the bounds is written and read; one more is refused by both.

#include <gtest/gtest.h>

#include "ArchiveTesting.h"
#include "workstation/archive/ArchiveBounds.h"

namespace {

using archive_testing::read;
using pelmar::Value;
using workstation::writeArchive;
namespace bounds = workstation::archive_bounds;

void expectWithin(const Value& value) {
  const auto archive = writeArchive(value);
  ASSERT_TRUE(archive) << archive.problem;
  const auto again = read(*archive);
  ASSERT_TRUE(again) << again.problem;
  EXPECT_TRUE(archive_testing::sameContent(*again, value));
}

void expectBeyond(const Value& value, const std::string& reason) {
  const auto archive = writeArchive(value);
  EXPECT_FALSE(archive);
  EXPECT_NE(archive.problem.find(reason), std::string::npos) << archive.problem;
}

Value nested(std::size_t levels) {
  Value value = Value::Array();
  for (std::size_t i = 1; i < levels; ++i) {
    Value::Array outer;
    outer.push_back(std::move(value));
    value = std::move(outer);
  }
  return value;
}

TEST(ArchiveBounds, depth) {
  expectWithin(nested(bounds::depth));
  expectBeyond(nested(bounds::depth + 1), "more than 64 deep");
}

TEST(ArchiveBounds, number_of_values) {
  expectWithin(Value::Array(bounds::values - 1, Value(1)));
  expectBeyond(Value::Array(bounds::values, Value(1)), "more than 10000 values");
}

TEST(ArchiveBounds, dictionary_keys_count_as_values) {
  Value::Dictionary entries;
  while (1 + 2 * entries.size() < bounds::values - 1) entries.emplace("k" + std::to_string(entries.size()), 1);
  expectWithin(entries);
  entries.emplace("another", 1);
  expectBeyond(entries, "more than 10000 values");
}

TEST(ArchiveBounds, the_values_that_take_most_objects_and_bytes_still_fit) {
  archive_testing::DoublePointClass points;
  Value::Array distinctPoints;
  for (std::size_t i = 1; i < bounds::values; ++i) {
    const auto number = static_cast<double>(i);
    distinctPoints.push_back(points.pointWithX(number + 0.1, number + 0.2, number + 0.3));
  }
  expectWithin(distinctPoints);

  Value::Array dictionaries;
  for (std::size_t i = 0; i < (bounds::values - 1) / 3; ++i) {
    const auto number = static_cast<int>(i);
    dictionaries.push_back(Value::Dictionary{{"key " + std::to_string(i), 1000 + number}});
  }
  expectWithin(dictionaries);

  // Points with texts in UTF-16, twice as long there as here.
  const std::size_t texts = bounds::totalTextBytes / bounds::textBytes;
  for (std::size_t i = 0; i < texts; ++i)
    distinctPoints[i] = std::string(bounds::textBytes - 2, static_cast<char>('a' + i)) + "\xC3\xA9";
  expectWithin(distinctPoints);
}

TEST(ArchiveBounds, length_of_a_text) {
  expectWithin(std::string(bounds::textBytes, 'a'));
  expectBeyond(std::string(bounds::textBytes + 1, 'a'), "a text of more than 16384 bytes");
}

TEST(ArchiveBounds, length_of_all_texts) {
  const std::size_t count = bounds::totalTextBytes / bounds::textBytes;
  Value::Array texts(count, Value(std::string(bounds::textBytes, 'a')));
  expectWithin(texts);
  texts.emplace_back("b");
  expectBeyond(texts, "longer than 131072 bytes together");
}

TEST(ArchiveBounds, a_text_that_another_writer_made_too_long_is_refused) {
  archive_testing::ListMaker maker;
  const auto archive = maker.archive({maker.text("$null"), maker.text(std::string(bounds::textBytes + 1, 'a'))});
  EXPECT_NE(read(archive).problem.find("a text of more than 16384 bytes"), std::string::npos) << read(archive).problem;
  archive_testing::ListMaker wide;
  // 6000 characters that take three bytes each in UTF-8.
  pelmar::Bytes utf16{0x6F, 0x11, 0x17, 0x70};
  for (int i = 0; i < 6000; ++i) utf16.insert(utf16.end(), {0x20, 0xAC});
  const auto wideArchive = wide.archive({wide.text("$null"), wide.raw(utf16)});
  EXPECT_NE(read(wideArchive).problem.find("a text of more than 16384 bytes"), std::string::npos);
}

}  // namespace
