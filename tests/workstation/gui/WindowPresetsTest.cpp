#include "workstation/gui/WindowPresets.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/workstation/model/TestImages.h"
#include "workstation/gui/OpeningStacks.h"
#include "workstation/gui/StackTitle.h"

namespace workstation {
namespace {

PixelData greys() {
  PixelData pixels;
  pixels.rows = 1;
  pixels.columns = 4;
  pixels.samples = {0, 100, 200, 1000};
  pixels.rescaleIntercept = -24;
  return pixels;
}

const WindowPreset* presetOf(const std::vector<WindowPreset>& presets, const std::string& title) {
  const auto found =
      std::find_if(presets.begin(), presets.end(), [&](const auto& each) { return each.title == title; });
  return found == presets.end() ? nullptr : &*found;
}

TEST(WindowPresets, BeginWithWhatTheFileAsksFor) {
  const auto presets = windowPresets("MR", greys(), {300, 600, {}});
  EXPECT_EQ(presets.front().title, "As in the file");
  EXPECT_FALSE(presets.front().window);
}

TEST(WindowPresets, OfferTheFurtherWindowsOfTheFile) {
  PixelData pixels = greys();
  pixels.windows = {{300, 600, "Normal"}, {40, 80, "Narrow"}, {1, 2, ""}};
  const auto presets = windowPresets("MR", pixels, {300, 600, {}});
  EXPECT_EQ(presetOf(presets, "Normal"), nullptr) << "that is what the file asks for";
  ASSERT_NE(presetOf(presets, "Narrow"), nullptr);
  EXPECT_EQ(presetOf(presets, "Narrow")->window->width, 80);
  EXPECT_NE(presetOf(presets, "Window 3 of the file"), nullptr);
}

TEST(WindowPresets, OfferTheTablesOfTheFileByTheirExplanations) {
  PixelData pixels = greys();
  pixels.voiLuts = {{0, 8, {1}, "SPINE"}, {0, 8, {2}, ""}};
  auto presets = windowPresets("MR", pixels, {300, 600, {}});
  EXPECT_EQ(presets.front().title, "As in the file: SPINE");
  EXPECT_EQ(presetOf(presets, "SPINE"), nullptr) << "that is what the file asks for";
  ASSERT_NE(presetOf(presets, "Table 2 of the file"), nullptr);
  EXPECT_EQ(presetOf(presets, "Table 2 of the file")->voiTable, 1U);
  EXPECT_FALSE(presetOf(presets, "Table 2 of the file")->window);
  pixels.windows = {{300, 600, "Normal"}};
  presets = windowPresets("MR", pixels, {300, 600, {}});
  EXPECT_EQ(presets.front().title, "As in the file: Normal");
  ASSERT_NE(presetOf(presets, "SPINE"), nullptr) << "a window comes before the tables";
  EXPECT_EQ(presetOf(presets, "SPINE")->voiTable, 0U);
}

TEST(WindowPresets, TheChosenOneIsTheWindowTheTableOrNeither) {
  const WindowSetting narrow{40, 80, "Narrow"};
  const WindowPreset asInFile{"As in the file", {}, {}};
  const WindowPreset window{"Narrow", narrow, {}};
  const WindowPreset table{"SPINE", {}, 1};
  EXPECT_TRUE(isChosen(asInFile, {}, {}));
  EXPECT_FALSE(isChosen(asInFile, narrow, {}));
  EXPECT_FALSE(isChosen(asInFile, {}, 1));
  EXPECT_TRUE(isChosen(window, WindowSetting{40, 80, ""}, {}));
  EXPECT_FALSE(isChosen(window, WindowSetting{40, 81, ""}, {}));
  EXPECT_FALSE(isChosen(window, narrow, 1)) << "the table comes first";
  EXPECT_TRUE(isChosen(table, narrow, 1));
  EXPECT_FALSE(isChosen(table, {}, 0));
}

TEST(WindowPresets, InCtAreFixedAndElsewhereRelative) {
  const auto ct = windowPresets("CT", greys(), {300, 600, {}});
  ASSERT_NE(presetOf(ct, "Bone"), nullptr);
  EXPECT_EQ(presetOf(ct, "More contrast"), nullptr);
  const auto mr = windowPresets("MR", greys(), {300, 600, {}});
  EXPECT_EQ(presetOf(mr, "Bone"), nullptr);
  ASSERT_NE(presetOf(mr, "More contrast"), nullptr);
  EXPECT_EQ(presetOf(mr, "More contrast")->window->centre, 300);
  EXPECT_LT(presetOf(mr, "More contrast")->window->width, 600);
}

TEST(WindowPresets, TheWholeRangeReachesFromTheLowestToTheHighestValue) {
  const auto presets = windowPresets("MR", greys(), {300, 600, {}});
  // Modality values -24 .. 976.
  EXPECT_NEAR(presetOf(presets, "Whole range")->window->centre, 476, 1);
  EXPECT_NEAR(presetOf(presets, "Whole range")->window->width, 1000, 2);
}

TEST(OpeningStacks, ASagittalOneComesFirstThenTheAxialOnes) {
  auto images = test::smallStudy();
  images.push_back(test::coronal("1.0", 0, 1, 3));
  images.push_back(test::axial("1.4", 4, 1, 3));
  images.push_back(test::sagittal("1.5", 5, 1, 3));
  images.push_back(test::axial("1.6", 6, 1, 3));
  Workstation workstation;
  workstation.addImages(images);
  std::vector<int> numbers;
  for (const auto& id : stacksToOpen(workstation, "1.2.3")) numbers.push_back(*workstation.series(id)->number);
  EXPECT_EQ(numbers, (std::vector<int>{1, 2, 4, 6}));
}

TEST(OpeningStacks, WithoutAxialOnesTheOthersFollowAndScoutsComeOnlyAlone) {
  auto scout = test::sagittal("1.0", 0, 1, 3);
  scout.imageType = {"ORIGINAL", "PRIMARY", "LOCALIZER"};
  Workstation workstation;
  workstation.addImages({scout, test::coronal("1.1", 1, 1, 3), test::sagittal("1.5", 5, 1, 3)});
  std::vector<int> numbers;
  for (const auto& id : stacksToOpen(workstation, "1.2.3")) numbers.push_back(*workstation.series(id)->number);
  EXPECT_EQ(numbers, (std::vector<int>{5, 1}));
  Workstation onlyScout;
  onlyScout.addImages({scout});
  EXPECT_EQ(stacksToOpen(onlyScout, "1.2.3").size(), 1U);
  EXPECT_TRUE(stacksToOpen(onlyScout, "none").empty());
}

TEST(StackTitle, TellsNumberDescriptionAndSlices) {
  Workstation workstation;
  workstation.addImages(test::smallStudy());
  EXPECT_EQ(stackTitle(workstation, {"1.2.3", 0, 0}), "1: series 1 (2 slices)");
  EXPECT_EQ(stackTitle(workstation, {"1.2.3", 9, 0}), "");
}

TEST(StackTitle, NamesThePlaneWhereASeriesHasSeveral) {
  Workstation workstation;
  workstation.addImages({test::sagittal("1.1", 1, 1, 3), test::axial("1.1", 1, 2, 3)});
  EXPECT_EQ(stackTitle(workstation, {"1.2.3", 0, 0}), "1: series 1, sagittal (1 slice)");
  EXPECT_EQ(stackTitle(workstation, {"1.2.3", 0, 1}), "1: series 1, axial (1 slice)");
}

}  // namespace
}  // namespace workstation
