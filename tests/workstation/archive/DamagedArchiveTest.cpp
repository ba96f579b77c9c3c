// Good archives, cut off at every byte and changed at every byte.

#include <gtest/gtest.h>

#include "ArchiveTesting.h"

namespace {

using archive_testing::read;
using pelmar::Bytes;
using pelmar::Value;

Value twoLevels() {
  archive_testing::DoublePointClass points;
  const auto level = [&](const char* name, double z) {
    return Value::Dictionary{
        {"name", name}, {"point", points.pointWithX(1.5, -10.1, z)}, {"vector", points.pointWithX(0, 0.1, 0.995)}};
  };
  return Value::Dictionary{
      {"VertanaAnatomicalRegion", 2},
      {"kAdditionalVertebra", false},
      {"intervertebralPlanes", Value::Array{level("L4-L5", -20), level("L5-S1 \xE2\x82\xAC", -55)}}};
}

const char* const xmlArchive = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0"><dict>
<key>$archiver</key><string>NSKeyedArchiver</string><key>$version</key><integer>100000</integer>
<key>$top</key><dict><key>root</key><dict><key>CF$UID</key><integer>1</integer></dict></dict>
<key>$objects</key><array><string>$null</string>
<dict><key>NS.objects</key><array><dict><key>CF$UID</key><integer>2</integer></dict>
<dict><key>CF$UID</key><integer>3</integer></dict></array>
<key>$class</key><dict><key>CF$UID</key><integer>4</integer></dict></dict>
<string>a &amp; b</string><real>1.5</real>
<dict><key>$classname</key><string>NSArray</string></dict>
</array></dict></plist>)";

/// Reading ends with a value that can be written, or with a sentence.
void expectConsistent(const Bytes& bytes) {
  const auto value = read(bytes);
  if (value) {
    const auto written = workstation::writeArchive(*value);
    ASSERT_TRUE(written) << written.problem;
    EXPECT_TRUE(archive_testing::sameContent(*read(*written), *value));
  } else {
    EXPECT_TRUE(value.problem.starts_with("The archive cannot be read: ")) << value.problem;
    EXPECT_TRUE(value.problem.ends_with(".")) << value.problem;
  }
}

void expectConsistentWhenChanged(const Bytes& good) {
  ASSERT_TRUE(read(good));
  for (std::size_t i = 0; i < good.size(); ++i) {
    SCOPED_TRACE("byte " + std::to_string(i));
    for (const unsigned flip : {0x01u, 0x02u, 0x10u, 0x80u, 0xFFu}) {
      Bytes changed = good;
      changed[i] = static_cast<std::uint8_t>(changed[i] ^ flip);
      expectConsistent(changed);
    }
    for (const unsigned byte : {0x00u, 0x7Fu, 0xFFu}) {
      Bytes changed = good;
      changed[i] = static_cast<std::uint8_t>(byte);
      expectConsistent(changed);
    }
  }
}

TEST(DamagedArchive, a_binary_one_cut_off_anywhere_is_refused) {
  const Bytes good = *workstation::writeArchive(twoLevels());
  ASSERT_TRUE(read(good));
  for (std::size_t length = 0; length < good.size(); ++length)
    EXPECT_FALSE(read(Bytes(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(length)))) << length;
}

TEST(DamagedArchive, one_in_xml_cut_off_anywhere_is_refused) {
  const Bytes good = archive_testing::bytesOfText(xmlArchive);
  ASSERT_TRUE(read(good)) << read(good).problem;
  for (std::size_t length = 0; length < good.size(); ++length)
    EXPECT_FALSE(read(Bytes(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(length)))) << length;
}

TEST(DamagedArchive, a_binary_one_changed_anywhere_is_read_or_refused) {
  expectConsistentWhenChanged(*workstation::writeArchive(twoLevels()));
}

TEST(DamagedArchive, one_in_xml_changed_anywhere_is_read_or_refused) {
  expectConsistentWhenChanged(archive_testing::bytesOfText(xmlArchive));
}

TEST(DamagedArchive, a_byte_behind_the_archive_is_dropped_on_the_second_try_only) {
  archive_testing::DoublePointClass points;
  for (const Bytes& good : {*workstation::writeArchive(twoLevels()), archive_testing::bytesOfText(xmlArchive)}) {
    for (const std::uint8_t pad : pelmar::Bytes{0x00, 0x41, 0xFF}) {
      Bytes padded = good;
      padded.push_back(pad);
      EXPECT_FALSE(read(padded));
      const auto value = workstation::readPaddedArchive(padded, points);
      ASSERT_TRUE(value) << value.problem;
      EXPECT_TRUE(archive_testing::sameContent(*value, *read(good)));
      // The plug-in's way: the same bytes without the last.
      padded.pop_back();
      EXPECT_TRUE(read(padded));
      padded.insert(padded.end(), 2, pad);
      EXPECT_FALSE(workstation::readPaddedArchive(padded, points));
    }
    const auto exact = workstation::readPaddedArchive(good, points);
    ASSERT_TRUE(exact) << exact.problem;
    EXPECT_TRUE(archive_testing::sameContent(*exact, *read(good)));
  }
  EXPECT_FALSE(workstation::readPaddedArchive({}, points));
}

}  // namespace
