#include "workstation/model/Pix.h"

#include <gtest/gtest.h>

#include "TestImages.h"

namespace workstation {
namespace {

std::shared_ptr<const ImageRecord> shared(ImageRecord record) {
  return std::make_shared<const ImageRecord>(std::move(record));
}

ImageRecord uneven() {
  ImageRecord record = test::sagittal("1", 1, 1, 7);  // first pixel at (7, -25, 20)
  record.geometry->spacingX = 0.5;
  record.geometry->spacingY = 2;
  return record;
}

TEST(Pix, APixelLiesColumnSpacingsAlongTheRowAndRowSpacingsAlongTheColumn) {
  const Pix pix(shared(uneven()), {});
  pelmar::Vector3f position;
  pix.convertPixX(4, 3, position);
  EXPECT_FLOAT_EQ(position.x, 7);
  EXPECT_FLOAT_EQ(position.y, -23);  // -25 + 4 * 0.5
  EXPECT_FLOAT_EQ(position.z, 14);   // 20 - 3 * 2
}

TEST(Pix, APatientPositionIsProjectedOntoTheSliceInMillimetresFromTheFirstPixel) {
  const Pix pix(shared(uneven()), {});
  const pelmar::SlicePoint point = pix.convertDICOMCoords({99, -23, 14});
  EXPECT_DOUBLE_EQ(point.x, 2);
  EXPECT_DOUBLE_EQ(point.y, 6);
}

TEST(Pix, OrientationIsRowColumnAndTheirCrossProduct) {
  const Pix pix(shared(uneven()), {});
  // (0, 1, 0) x (0, 0, -1) = (-1, 0, 0)
  EXPECT_EQ(pix.orientation(), (std::array<double, 9>{0, 1, 0, 0, 0, -1, -1, 0, 0}));
  std::array<float, 9> single{};
  pix.orientation(single);
  EXPECT_EQ(single[6], -1.0f);
}

TEST(Pix, AnImageWithoutGeometryAnswersZeros) {
  const Pix pix(shared(test::slice("1", 1, 1)), {});
  EXPECT_EQ(pix.orientation(), (std::array<double, 9>{}));
  pelmar::Vector3f position{1, 1, 1};
  pix.convertPixX(5, 5, position);
  EXPECT_EQ(position.x, 0);
  EXPECT_EQ(pix.pixelSpacingX(), 0);
  EXPECT_EQ(pix.convertDICOMCoords({1, 2, 3}).x, 0);
}

TEST(Pix, AShapeOfPixelsAloneGivesNoMillimetres) {
  ImageRecord record = test::slice("1", 1, 1);
  record.pixelAspect = 2;
  const Pix pix(shared(record), {});
  EXPECT_EQ(pix.pixelSpacingX(), 0);
  EXPECT_EQ(pix.pixelSpacingY(), 0);
  pelmar::Vector3f position{1, 1, 1};
  pix.convertPixX(5, 5, position);
  EXPECT_EQ(position.x, 0);
  EXPECT_EQ(position.z, 0);
}

TEST(Pix, TheContentIsTheWholeImage) {
  const Pix pix(shared(uneven()), {});
  EXPECT_EQ(pix.contentFrameRect(), (pelmar::PixelRect{{0, 0}, {100, 80}}));
}

TEST(Pix, BodyPartIsAbsentWhereTheHostLacksIt) {
  ImageRecord record = uneven();
  record.bodyPartExamined = "LSPINE";
  const Pix has(shared(record), {});
  EXPECT_TRUE(has.supports(pelmar::Capability::DCMPixBodyPartExamined));
  EXPECT_EQ(has.bodyPartExamined(), "LSPINE");
  const Pix lacks(shared(record), {pelmar::Capability::DCMPixBodyPartExamined});
  EXPECT_FALSE(lacks.supports(pelmar::Capability::DCMPixBodyPartExamined));
  EXPECT_FALSE(lacks.bodyPartExamined().has_value());
}

}  // namespace
}  // namespace workstation
