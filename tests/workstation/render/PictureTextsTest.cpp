#include <gtest/gtest.h>

#include "workstation/render/NumberText.h"
#include "workstation/render/ViewPicture.h"

namespace workstation::test {
namespace {

using Lines = std::vector<std::string>;

TEST(PictureTexts, WritesNamesForPeople) {
  const std::pair<const char*, const char*> rows[] = {
      {"Doe^Jane", "Doe, Jane"},
      {"Doe^Jane^Maria^Dr.^MD", "Doe, Jane Maria Dr. MD"},
      {"Doe", "Doe"},
      {"Doe^", "Doe"},
      {"M\xC3\xBCller^\xC3\x84nne", "M\xC3\xBCller, \xC3\x84nne"},
      {"Yamada^Tarou=\xE5\xB1\xB1\xE7\x94\xB0^\xE5\xA4\xAA\xE9\x83\x8E", "Yamada, Tarou"},
      {"=\xE5\xB1\xB1\xE7\x94\xB0", "\xE5\xB1\xB1\xE7\x94\xB0"},
      {"", ""},
      {"==", ""},
      {"^^", ""},
  };
  for (const auto& [stored, shown] : rows) EXPECT_EQ(personNameText(stored), shown);
}

TEST(PictureTexts, WritesNumbersWithoutIdleZeros) {
  EXPECT_EQ(numberText(12), "12");
  EXPECT_EQ(numberText(12.5), "12.5");
  EXPECT_EQ(numberText(100, 0), "100");
  EXPECT_EQ(numberText(-0.01), "0");
  EXPECT_EQ(numberText(1.0 / 0.0), "?");
  EXPECT_EQ(fixedText(7, 2), "7.00");
  EXPECT_EQ(fixedText(12.346, 2), "12.35");
  EXPECT_EQ(fixedText(1e300, 1).size(), 303U);
}

ImageRecord imageAt(std::array<double, 3> position, std::array<double, 3> row, std::array<double, 3> column) {
  ImageRecord image;
  image.geometry = ImageGeometry{position, row, column, 1, 1};
  return image;
}

TEST(PictureTexts, TellsWhereASliceLies) {
  const std::array<double, 3> left{1, 0, 0};
  const std::array<double, 3> back{0, 1, 0};
  const std::array<double, 3> feet{0, 0, -1};
  EXPECT_EQ(slicePositionText(imageAt({12.5, 3, 4}, back, feet)), "L 12.5 mm");
  EXPECT_EQ(slicePositionText(imageAt({-12.54, 3, 4}, back, feet)), "R 12.5 mm");
  EXPECT_EQ(slicePositionText(imageAt({1, -20, 4}, left, feet)), "A 20.0 mm");
  EXPECT_EQ(slicePositionText(imageAt({1, 2, 300}, left, back)), "H 300.0 mm");
  EXPECT_EQ(slicePositionText(imageAt({1, 2, -300}, left, back)), "F 300.0 mm");
  EXPECT_EQ(slicePositionText(ImageRecord()), "");
}

TEST(PictureTexts, FillsTheCornersWithWhatIsKnown) {
  ImageRecord image = imageAt({12.5, 3, 4}, {0, 1, 0}, {0, 0, -1});
  image.patientName = "Doe^Jane";
  image.patientId = "P-1";
  image.studyDate = "20240229";
  image.seriesNumber = 3;
  image.seriesDescription = "T2 sag";
  image.modality = "MR";
  const CornerTexts texts = cornerTexts(image, "Lumbar spine", 6, 15, 1.5);
  EXPECT_EQ(texts.topLeft, (Lines{"Doe, Jane", "P-1", "2024-02-29"}));
  EXPECT_EQ(texts.topRight, (Lines{"Lumbar spine", "Series 3: T2 sag", "MR"}));
  EXPECT_EQ(texts.bottomLeft, (Lines{"Slice 7 / 15", "L 12.5 mm"}));
  EXPECT_EQ(texts.bottomRight, (Lines{"Zoom 150%"}));

  const CornerTexts bare = cornerTexts(ImageRecord(), std::nullopt, 0, 1, 1);
  EXPECT_EQ(bare.topLeft, Lines());
  EXPECT_EQ(bare.topRight, Lines());
  EXPECT_EQ(bare.bottomLeft, (Lines{"Slice 1 / 1"}));
}

}  // namespace
}  // namespace workstation::test
