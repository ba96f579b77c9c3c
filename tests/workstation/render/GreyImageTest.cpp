#include "workstation/render/GreyImage.h"

#include <gtest/gtest.h>

#include "tests/workstation/render/GreyPixels.h"

namespace workstation::test {
namespace {

using Levels = std::vector<int>;

QImage imageOf(const PixelData& pixels) {
  const StoredRange range = storedRange(pixels);
  return imageOfPixels(pixels, range, voiTransformOf(pixels, range, {}));
}

/// The grey levels of a picture's first row; the test fails where a pixel has a colour.
Levels levelsOf(const QImage& image) {
  Levels levels;
  for (int x = 0; x < image.width(); ++x) {
    const QRgb pixel = image.pixel(x, 0);
    EXPECT_EQ(qRed(pixel), qGreen(pixel));
    EXPECT_EQ(qRed(pixel), qBlue(pixel));
    levels.push_back(qRed(pixel));
  }
  return levels;
}

TEST(GreyImage, AppliesTheFirstWindowOfTheFile) {
  PixelData pixels = greyPixels({-51, -50, -49, -1, 48, 49, 32767});
  pixels.windows = {{0, 100, {}}, {1000, 5, {}}};
  // ((x + 0.5) / 99 + 0.5) * 255: -49 -> 2.58, -1 -> 126.2, 48 -> 252.4
  EXPECT_EQ(levelsOf(imageOf(pixels)), (Levels{0, 0, 3, 126, 252, 255, 255}));
}

TEST(GreyImage, TurnsMonochrome1Round) {
  PixelData pixels = greyPixels({-50, -49, -1, 49});
  pixels.windows = {{0, 100, {}}};
  pixels.monochrome1 = true;
  EXPECT_EQ(levelsOf(imageOf(pixels)), (Levels{255, 252, 129, 0}));
}

TEST(GreyImage, WindowsModalityValues) {
  PixelData pixels = greyPixels({0, 487, 512, 600, 974});
  pixels.rescaleSlope = 2;
  pixels.rescaleIntercept = -1024;
  pixels.windows = {{0, 101, {}}};
  // -1024, -50, 0, 176, 924 through ((x + 0.5) / 100 + 0.5) * 255: -50 -> 1.3, 0 -> 128.8
  EXPECT_EQ(levelsOf(imageOf(pixels)), (Levels{0, 1, 129, 255, 255}));
}

TEST(GreyImage, WithoutWindowReachesFromTheLowestToTheHighestValue) {
  EXPECT_EQ(levelsOf(imageOf(greyPixels({100, 151, 202, 355}))), (Levels{0, 51, 102, 255}));
  EXPECT_EQ(levelsOf(imageOf(greyPixels({-32768, 0, 32767}))), (Levels{0, 128, 255}));  // 32768 / 65535 * 255 = 127.502
  EXPECT_EQ(levelsOf(imageOf(greyPixels({0, 32767, 65535}))), (Levels{0, 127, 255}));
  EXPECT_EQ(levelsOf(imageOf(greyPixels({7, 7}))), (Levels{0, 0}));
}

TEST(GreyImage, ValuesTooFarApartForATableComeOutTheSame) {
  EXPECT_EQ(levelsOf(imageOf(greyPixels({-2147483647, 0, 2147483647}))), (Levels{0, 128, 255}));
  PixelData pixels = greyPixels({-2000000000, -49, -1, 2000000000});
  pixels.windows = {{0, 100, {}}};
  EXPECT_EQ(levelsOf(imageOf(pixels)), (Levels{0, 3, 126, 255}));
}

TEST(GreyImage, EveryValueOfSixteenBitsComesOutAsWhenItIsWindowedAlone) {
  for (const auto function : {WindowFunction::linear, WindowFunction::linearExact, WindowFunction::sigmoid}) {
    for (const double slope : {1.0, -0.37}) {
      PixelData pixels;
      pixels.rows = 1;
      for (std::int32_t value = -32768; value <= 32767; ++value) pixels.samples.push_back(value);
      pixels.columns = static_cast<int>(pixels.samples.size());
      pixels.rescaleSlope = slope;
      pixels.rescaleIntercept = 12.25;
      pixels.windows = {{40, 4001.5, {}}};
      pixels.windowFunction = function;
      const VoiTransform transform = voiTransformOf(pixels, storedRange(pixels), {});
      const QImage image = imageOf(pixels);
      int different = 0;
      for (int x = 0; x < image.width(); ++x) {
        const double modality = slope * pixels.samples[static_cast<std::size_t>(x)] + 12.25;
        if (qRed(image.pixel(x, 0)) != eightBits(transform.brightness(modality))) ++different;
      }
      EXPECT_EQ(different, 0) << "function " << static_cast<int>(function) << ", slope " << slope;
    }
  }
}

TEST(GreyImage, UsesTheTableOfTheFile) {
  PixelData pixels = greyPixels({0, 1, 2, 3});
  pixels.voiLuts = {{1, 8, {10, 20}, {}}};
  EXPECT_EQ(levelsOf(imageOf(pixels)), (Levels{10, 10, 20, 20}));
  pixels.monochrome1 = true;
  EXPECT_EQ(levelsOf(imageOf(pixels)), (Levels{245, 245, 235, 235}));
}

TEST(GreyImage, KeepsColours) {
  PixelData pixels;
  pixels.rows = 2;
  pixels.columns = 1;
  pixels.samplesPerPixel = 3;
  pixels.samples = {1, 2, 3, 255, 128, 300};
  const QImage image = imageOf(pixels);
  EXPECT_EQ(image.pixel(0, 0), qRgb(1, 2, 3));
  EXPECT_EQ(image.pixel(0, 1), qRgb(255, 128, 255));
}

TEST(GreyImage, RowsFollowOneAnother) {
  PixelData pixels = greyPixels({0, 51, 102, 153, 204, 255});
  pixels.rows = 2;
  pixels.columns = 3;
  const QImage image = imageOf(pixels);
  EXPECT_EQ(image.size(), QSize(3, 2));
  EXPECT_EQ(qRed(image.pixel(2, 0)), 102);
  EXPECT_EQ(qRed(image.pixel(0, 1)), 153);
}

TEST(GreyImage, NoImageWhereSamplesAreMissing) {
  PixelData pixels = greyPixels({1, 2, 3});
  pixels.columns = 4;
  EXPECT_TRUE(imageOf(pixels).isNull());
  EXPECT_TRUE(imageOf(PixelData()).isNull());
  pixels = greyPixels({1, 2});
  pixels.columns = 1;
  pixels.samplesPerPixel = 2;
  EXPECT_TRUE(imageOf(pixels).isNull());
}

}  // namespace
}  // namespace workstation::test
