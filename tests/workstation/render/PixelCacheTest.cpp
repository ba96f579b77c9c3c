#include "workstation/render/PixelCache.h"

#include <gtest/gtest.h>

namespace workstation::test {
namespace {

/// Slices of 100 samples, or of as many as the file is named after; "broken" cannot be read.
class CountingSource final : public PixelSource {
 public:
  std::optional<PixelData> pixels(const ImageRecord& image, std::string& problem) override {
    ++reads;
    if (image.file == "broken") {
      problem = "The pixels of \"broken\" could not be read.";
      return std::nullopt;
    }
    PixelData data;
    data.samples.assign(image.file == "large" ? 100000 : 100, image.frame);
    data.samples.shrink_to_fit();
    return data;
  }

  int reads = 0;
};

ImageRecord imageOf(const std::string& file, int frame = 1) {
  ImageRecord image;
  image.file = file;
  image.frame = frame;
  return image;
}

class PixelCacheTest : public testing::Test {
 protected:
  /// Whether looking at the image had it read.
  bool reads(const ImageRecord& image) {
    const int before = source_.reads;
    std::string problem;
    EXPECT_TRUE(cache_.pixels(image, problem)) << problem;
    return source_.reads > before;
  }

  static constexpr std::size_t imageBytes = sizeof(PixelData) + 100 * sizeof(std::int32_t);
  CountingSource source_;
  PixelCache cache_{source_, 3 * imageBytes};
};

TEST_F(PixelCacheTest, ReadsAnImageOnce) {
  EXPECT_TRUE(reads(imageOf("a")));
  EXPECT_FALSE(reads(imageOf("a")));
  EXPECT_EQ(cache_.usedBytes(), imageBytes);
}

TEST_F(PixelCacheTest, TellsFramesOfAFileApart) {
  std::string problem;
  EXPECT_EQ(cache_.pixels(imageOf("a", 1), problem)->samples[0], 1);
  EXPECT_EQ(cache_.pixels(imageOf("a", 2), problem)->samples[0], 2);
  EXPECT_EQ(cache_.pixels(imageOf("a", 1), problem)->samples[0], 1);
  EXPECT_EQ(source_.reads, 2);
}

TEST_F(PixelCacheTest, LetsTheLeastRecentlyUsedGo) {
  for (const char* file : {"a", "b", "c"}) EXPECT_TRUE(reads(imageOf(file)));
  EXPECT_FALSE(reads(imageOf("a")));
  EXPECT_TRUE(reads(imageOf("d")));  // b goes
  EXPECT_EQ(cache_.count(), 3U);
  for (const char* file : {"a", "c", "d"}) EXPECT_FALSE(reads(imageOf(file))) << file;
  EXPECT_TRUE(reads(imageOf("b")));
}

TEST_F(PixelCacheTest, NeverHoldsMoreThanItsCapacity) {
  for (int frame = 1; frame <= 1000; ++frame) {
    EXPECT_TRUE(reads(imageOf("a", frame)));
    ASSERT_LE(cache_.usedBytes(), cache_.capacityBytes());
  }
  EXPECT_EQ(cache_.count(), 3U);
}

TEST_F(PixelCacheTest, HandsOutWhatIsTooLargeAndKeepsTheRest) {
  EXPECT_TRUE(reads(imageOf("a")));
  EXPECT_TRUE(reads(imageOf("large")));
  EXPECT_TRUE(reads(imageOf("large")));
  EXPECT_FALSE(reads(imageOf("a")));
}

TEST_F(PixelCacheTest, PixelsOutliveTheirPlace) {
  std::string problem;
  const auto held = cache_.pixels(imageOf("a", 7), problem);
  cache_.clear();
  EXPECT_EQ(cache_.usedBytes(), 0U);
  EXPECT_EQ(cache_.count(), 0U);
  EXPECT_EQ(held->samples[99], 7);
  EXPECT_TRUE(reads(imageOf("a", 7)));
}

TEST_F(PixelCacheTest, SmallerCapacityCountsAtOnce) {
  for (const char* file : {"a", "b", "c"}) EXPECT_TRUE(reads(imageOf(file)));
  cache_.setCapacity(imageBytes);
  EXPECT_EQ(cache_.count(), 1U);
  EXPECT_FALSE(reads(imageOf("c")));
}

TEST_F(PixelCacheTest, TellsWhatCouldNotBeReadAndTriesAgain) {
  for (int attempt = 1; attempt <= 2; ++attempt) {
    std::string problem;
    EXPECT_FALSE(cache_.pixels(imageOf("broken"), problem));
    EXPECT_NE(problem.find("broken"), std::string::npos);
    EXPECT_EQ(source_.reads, attempt);
  }
}

}  // namespace
}  // namespace workstation::test
