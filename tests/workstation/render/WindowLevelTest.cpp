#include "workstation/render/WindowLevel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/workstation/render/GreyPixels.h"

namespace workstation::test {
namespace {

VoiTransform windowOf(double centre, double width, WindowFunction function = WindowFunction::linear) {
  VoiTransform transform;
  transform.window = {centre, width, {}};
  transform.function = function;
  return transform;
}

VoiLut lutOf(std::int32_t firstMapped, int bits, std::vector<std::uint16_t> entries) {
  return {firstMapped, bits, std::move(entries), {}};
}

struct Row {
  const char* name;
  double centre;
  double width;
  double value;
  int level;  ///< of 0 .. 255
};

// y = ((x - (c - 0.5)) / (w - 1) + 0.5) * 255, worked out by hand.
TEST(WindowLevel, LinearFollowsTheStandardToTheLetter) {
  const Row rows[] = {
      {"12 bits: at the lower end", 2048, 4096, 0, 0},
      {"12 bits: at the upper end", 2048, 4096, 4095, 255},
      {"12 bits: below the middle", 2048, 4096, 2047, 127},  // (-0.5 / 4095 + 0.5) * 255 = 127.469
      {"12 bits: above the middle", 2048, 4096, 2048, 128},  // ( 0.5 / 4095 + 0.5) * 255 = 127.531
      {"width 100: last black value", 0, 100, -50, 0},
      {"width 100: one above it", 0, 100, -49, 3},      // (-48.5 / 99 + 0.5) * 255 = 2.576
      {"width 100: one below white", 0, 100, 48, 252},  // (48.5 / 99 + 0.5) * 255 = 252.424
      {"width 100: white", 0, 100, 49, 255},
      {"width 100: far above", 0, 100, 1e9, 255},
      {"width 2: below", 10, 2, 9, 0},
      {"width 2: at the half", 10, 2, 9.5, 128},  // 0.5 * 255 = 127.5, rounded up
      {"width 2: above", 10, 2, 10, 255},
      {"width 1: at the step", 10, 1, 9.5, 0},
      {"width 1: just above the step", 10, 1, 9.5001, 255},
  };
  for (const Row& row : rows)
    EXPECT_EQ(eightBits(windowOf(row.centre, row.width).brightness(row.value)), row.level) << row.name;
}

TEST(WindowLevel, LinearExactIsSymmetricAboutTheCentre) {
  const VoiTransform transform = windowOf(0, 100, WindowFunction::linearExact);
  EXPECT_EQ(transform.brightness(-50), 0);
  EXPECT_EQ(transform.brightness(0), 0.5);
  EXPECT_EQ(transform.brightness(25), 0.75);
  EXPECT_EQ(transform.brightness(50), 1);
  EXPECT_EQ(transform.brightness(50.001), 1);
}

TEST(WindowLevel, LinearNarrowerThanOneIsTakenAsExact) {
  const VoiTransform transform = windowOf(0.5, 0.5);
  EXPECT_EQ(transform.brightness(0.25), 0);
  EXPECT_EQ(transform.brightness(0.5), 0.5);
  EXPECT_EQ(transform.brightness(0.75), 1);
}

TEST(WindowLevel, SigmoidFollowsItsFormula) {
  const VoiTransform transform = windowOf(100, 40, WindowFunction::sigmoid);
  EXPECT_DOUBLE_EQ(transform.brightness(100), 0.5);
  EXPECT_DOUBLE_EQ(transform.brightness(110), 1 / (1 + std::exp(-1.0)));
  EXPECT_DOUBLE_EQ(transform.brightness(90), 1 / (1 + std::exp(1.0)));
}

TEST(WindowLevel, TableGivesItsEndsToValuesOutside) {
  const VoiLut table = lutOf(-10, 8, {5, 100, 255});
  VoiTransform transform;
  transform.table = &table;
  const std::pair<double, int> rows[] = {{-1000, 5}, {-10, 5}, {-9, 100}, {-8, 255}, {1000, 255}, {-9.4, 100}};
  for (const auto& [value, level] : rows) EXPECT_EQ(eightBits(transform.brightness(value)), level) << value;
}

TEST(WindowLevel, TableOfTwelveBitsIsScaledToTheDisplay) {
  const VoiLut table = lutOf(0, 12, {0, 2048, 4095, 5000});
  VoiTransform transform;
  transform.table = &table;
  EXPECT_EQ(eightBits(transform.brightness(0)), 0);
  EXPECT_EQ(eightBits(transform.brightness(1)), 128);  // 2048 / 4095 * 255 = 127.53
  EXPECT_EQ(eightBits(transform.brightness(2)), 255);
  EXPECT_EQ(eightBits(transform.brightness(3)), 255);  // an entry beyond its own bits
}

TEST(WindowLevel, NotANumberIsBlack) {
  EXPECT_EQ(windowOf(10, 20).brightness(std::numeric_limits<double>::quiet_NaN()), 0);
}

TEST(WindowLevel, FullWindowReachesFromTheLowestToTheHighestValue) {
  const PixelData pixels = greyPixels({-5, 7, 3});
  const VoiTransform transform = voiTransformOf(pixels, storedRange(pixels), {});
  EXPECT_EQ(transform.brightness(-5), 0);
  EXPECT_EQ(transform.brightness(1), 0.5);
  EXPECT_EQ(transform.brightness(7), 1);
  EXPECT_LT(transform.brightness(6.9), 1);
  EXPECT_GT(transform.brightness(-4.9), 0);
}

TEST(WindowLevel, FullWindowIsInModalityValuesAlsoWithANegativeSlope) {
  PixelData pixels = greyPixels({0, 100});
  pixels.rescaleSlope = -0.5;
  pixels.rescaleIntercept = 10;
  const VoiTransform transform = voiTransformOf(pixels, storedRange(pixels), {});
  EXPECT_EQ(transform.brightness(-40), 0);
  EXPECT_EQ(transform.brightness(-15), 0.5);
  EXPECT_EQ(transform.brightness(10), 1);
}

TEST(WindowLevel, ChoiceOfThePersonComesBeforeWindowBeforeTableBeforeFullRange) {
  PixelData pixels = greyPixels({0, 1000});
  const StoredRange range = storedRange(pixels);
  EXPECT_EQ(voiTransformOf(pixels, range, {}).window.width, 1001);
  pixels.voiLuts = {lutOf(0, 8, {1, 2})};
  EXPECT_EQ(voiTransformOf(pixels, range, {}).table, &pixels.voiLuts.front());
  pixels.windows = {{40, 400, "SOFT"}, {400, 2000, "BONE"}};
  EXPECT_EQ(voiTransformOf(pixels, range, {}).table, nullptr);
  EXPECT_EQ(voiTransformOf(pixels, range, {}).window.centre, 40);
  EXPECT_EQ(voiTransformOf(pixels, range, WindowSetting{7, 8, {}}).window.width, 8);
}

TEST(WindowLevel, AChosenTableComesBeforeEverythingElseAndOneThatIsNotThereCountsAsNone) {
  PixelData pixels = greyPixels({0, 1000});
  const StoredRange range = storedRange(pixels);
  pixels.voiLuts = {lutOf(0, 8, {1, 2}), lutOf(0, 8, {3, 4})};
  pixels.windows = {{40, 400, "SOFT"}};
  EXPECT_EQ(voiTransformOf(pixels, range, WindowSetting{7, 8, {}}, 1).table, &pixels.voiLuts[1]);
  EXPECT_EQ(voiTransformOf(pixels, range, WindowSetting{7, 8, {}}, 2).table, nullptr);
  EXPECT_EQ(voiTransformOf(pixels, range, WindowSetting{7, 8, {}}, 2).window.width, 8);
  EXPECT_EQ(voiTransformOf(pixels, range, {}, 2).window.width, 400);
}

TEST(WindowLevel, ImpossibleChoiceCountsAsNone) {
  PixelData pixels = greyPixels({0, 1000});
  pixels.windows = {{40, 400, {}}};
  const double infinity = std::numeric_limits<double>::infinity();
  for (const WindowSetting& chosen : {WindowSetting{1, 0, {}}, {1, -5, {}}, {infinity, 5, {}}, {1, std::nan(""), {}}})
    EXPECT_EQ(voiTransformOf(pixels, storedRange(pixels), chosen).window.centre, 40);
}

TEST(WindowLevel, TellsItsNumbersOrTheTablesName) {
  EXPECT_EQ(windowText(windowOf(300, 600)), "WL 300 WW 600");
  EXPECT_EQ(windowText(windowOf(-0.04, 350.25)), "WL 0 WW 350.2");
  VoiLut table = lutOf(0, 8, {1});
  table.explanation = "SPINE";
  VoiTransform transform;
  transform.table = &table;
  EXPECT_EQ(windowText(transform), "SPINE");
}

}  // namespace
}  // namespace workstation::test
