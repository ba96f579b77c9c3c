// How much is allocated while an archive is read: the most that is held at one time, counted.

#include <gtest/gtest.h>
#include <malloc.h>

#include <cstdlib>
#include <filesystem>
#include <new>

#include "ArchiveTesting.h"
#include "tests/support/Requirements.h"
#include "workstation/archive/ArchiveBounds.h"

namespace {

std::size_t heldBytes = 0;
std::size_t mostBytes = 0;

void* allocate(std::size_t size) {
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (!memory) throw std::bad_alloc();
  heldBytes += malloc_usable_size(memory);
  if (heldBytes > mostBytes) mostBytes = heldBytes;
  return memory;
}

void release(void* memory) {
  heldBytes -= malloc_usable_size(memory);
  std::free(memory);
}

}  // namespace

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void operator delete(void* memory) noexcept { release(memory); }
void operator delete[](void* memory) noexcept { release(memory); }
void operator delete(void* memory, std::size_t) noexcept { release(memory); }
void operator delete[](void* memory, std::size_t) noexcept { release(memory); }

namespace {

using archive_testing::ListMaker;
using pelmar::Bytes;
namespace bounds = workstation::archive_bounds;

constexpr std::size_t allowedBytes = 10'000'000;

struct Reading {
  bool isRead;
  std::size_t mostBytes;
};

/// Reads an archive and counts from the moment it is there.
Reading reading(const Bytes& archive) {
  archive_testing::DoublePointClass points;
  const std::size_t before = heldBytes;
  mostBytes = heldBytes;
  const auto value = workstation::readPaddedArchive(archive, points);
  return {static_cast<bool>(value), mostBytes - before};
}

TEST(ArchiveMemory, counts_what_is_held) {
  const std::size_t before = heldBytes;
  mostBytes = heldBytes;
  { const std::vector<char> buffer(5'000'000); }
  EXPECT_GE(mostBytes - before, 5'000'000u);
  EXPECT_EQ(heldBytes, before);
}

TEST(ArchiveMemory, every_sample_is_read_in_less_than_10_megabytes) {
  const std::filesystem::path samples = ARCHIVE_SAMPLES;
  SKIP_WITHOUT_FOLDER(samples);
  std::size_t count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(samples)) {
    ++count;
    EXPECT_LT(reading(archive_testing::bytesOfFile(entry.path())).mostBytes, allowedBytes) << entry.path();
  }
  EXPECT_GE(count, 20u);
}

TEST(ArchiveMemory, an_archive_of_200_bytes_cannot_ask_for_more) {
  // Archived arrays, each holding the next one twice.
  ListMaker maker;
  std::vector<ListMaker::Index> objects{maker.text("$null")};
  for (std::uint32_t i = 1; i <= 40; ++i) objects.push_back(maker.archivedArray({i + 1, i + 1}, 42));
  objects.push_back(maker.archivedArray({}, 42));
  objects.push_back(maker.classEntry("NSArray"));
  const Reading result = reading(maker.archive(objects));
  EXPECT_FALSE(result.isRead);
  EXPECT_LT(result.mostBytes, allowedBytes);
}

TEST(ArchiveMemory, the_largest_archives_that_are_read_keep_to_it) {
  pelmar::Value::Dictionary entries;
  archive_testing::DoublePointClass points;
  const std::string text(bounds::totalTextBytes / (bounds::values / 2) - 6, 'k');
  while (1 + 2 * entries.size() < bounds::values - 1) {
    const auto number = static_cast<double>(entries.size());
    entries.emplace(text + std::to_string(entries.size()), points.pointWithX(number, number + 0.1, number + 0.2));
  }
  const auto archive = workstation::writeArchive(entries);
  ASSERT_TRUE(archive) << archive.problem;
  const Reading result = reading(*archive);
  EXPECT_TRUE(result.isRead);
  EXPECT_LT(result.mostBytes, allowedBytes);
}

TEST(ArchiveMemory, the_largest_xml_keeps_to_it) {
  // As many elements as may be, nearly all in one array, and texts as long as the file may be.
  std::string xml =
      "<plist><dict><key>$archiver</key><string>NSKeyedArchiver</string><key>$version</key><integer>100000</integer>"
      "<key>$top</key><dict><key>root</key><dict><key>CF$UID</key><integer>1</integer></dict></dict>"
      "<key>$objects</key><array><string>$null</string><string>a</string>";
  for (std::uint32_t i = 0; i < bounds::objects - 20; ++i) xml += "<true/>";
  const std::string end = "</array></dict></plist>";
  xml += "<string>" + std::string(bounds::bytes - xml.size() - end.size() - 17, 'x') + "</string>" + end;
  ASSERT_EQ(xml.size(), bounds::bytes);
  const Reading result = reading(Bytes(xml.begin(), xml.end()));
  EXPECT_TRUE(result.isRead);
  EXPECT_LT(result.mostBytes, allowedBytes);
}

}  // namespace
