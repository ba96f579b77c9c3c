#include "phantom/Studies.h"

#include <gtest/gtest.h>

#include <cmath>

namespace phantom {
namespace {

std::vector<SeriesPlan> planned(const SpineShape& shape, int region, bool angled, bool ct) {
  return planStudy(shape, {region, angled, ct, 0});
}

TEST(Studies, MrHasFifteenSagittalAndCoronalSlicesAndAStraightStack) {
  const SpineShape shape(2, false, 1);
  const auto series = planned(shape, 2, false, false);
  ASSERT_EQ(series.size(), 3U);
  EXPECT_EQ(series[0].slices.size(), 15U);
  EXPECT_EQ(series[1].slices.size(), 15U);
  EXPECT_FALSE(series[0].axial || series[1].axial);
  EXPECT_TRUE(series[2].axial);
  for (std::size_t i = 0; i < series.size(); ++i) EXPECT_EQ(series[i].number, static_cast<int>(i) + 1);
}

TEST(Studies, CtHas512AxialSlicesOfAtMostAMillimetre) {
  for (int region = 0; region <= 2; ++region) {
    const SpineShape shape(region, false, 1);
    const auto series = planned(shape, region, false, true);
    EXPECT_EQ(series[0].slices.size(), 15U);
    EXPECT_TRUE(series[0].reformat);
    EXPECT_EQ(series[2].slices.size(), 512U);
    EXPECT_FALSE(series[2].reformat);
    EXPECT_LT(series[2].spacingBetweenSlicesMm, 1.0);
  }
}

TEST(Studies, SlicesRunRightToLeftFrontToBackAndHeadToFeet) {
  const SpineShape shape(1, false, 2);
  const auto series = planned(shape, 1, false, false);
  const Vec3 directions[] = {{1, 0, 0}, {0, 1, 0}, {0, 0, -1}};
  for (std::size_t s = 0; s < 3; ++s) {
    const auto& slices = series[s].slices;
    for (std::size_t i = 1; i < slices.size(); ++i) {
      EXPECT_NEAR(dot(slices[i].position - slices[i - 1].position, directions[s]), series[s].spacingBetweenSlicesMm,
                  1e-9);
    }
    EXPECT_GT(series[s].spacingBetweenSlicesMm, slices[0].thicknessMm) << "slices of an MR leave a gap";
  }
}

TEST(Studies, RowsAndColumnsAreUnitVectorsAtRightAngles) {
  const SpineShape shape(2, false, 5);
  for (const SeriesPlan& series : planned(shape, 2, true, false)) {
    for (const SlicePlane& slice : series.slices) {
      EXPECT_NEAR(length(slice.row), 1, 1e-12);
      EXPECT_NEAR(length(slice.column), 1, 1e-12);
      EXPECT_NEAR(dot(slice.row, slice.column), 0, 1e-12);
      EXPECT_TRUE(!series.axial || slice.normal().z > 0.5);
    }
  }
}

TEST(Studies, EveryDiscCentreLiesInsideTheMiddleSagittalSlice) {
  for (int region = 0; region <= 2; ++region) {
    for (std::uint64_t seed = 1; seed <= 10; ++seed) {
      for (const bool extra : {false, true}) {
        const SpineShape shape(region, extra, seed);
        const SlicePlane middle = planStudy(shape, {region, false, false, 0})[0].slices[7];
        for (const SpineLevel& disc : shape.regionDiscs()) {
          const Vec3 from = shape.point(disc.centre()) - middle.position;
          const double x = dot(from, middle.row) / middle.spacingMm;
          const double y = dot(from, middle.column) / middle.spacingMm;
          EXPECT_GT(std::min(x, y), 20) << disc.name << " region " << region << " seed " << seed;
          EXPECT_LT(std::max(x, y), middle.size - 20) << disc.name << " region " << region << " seed " << seed;
          EXPECT_LT(std::abs(dot(from, middle.normal())), 9) << disc.name << " region " << region << " seed " << seed;
        }
      }
    }
  }
}

TEST(Studies, StraightStackReachesThirtyMillimetresBeyondTheDiscs) {
  const SpineShape shape(0, true, 1);
  const auto slices = planned(shape, 0, false, false)[2].slices;
  const auto discs = shape.regionDiscs();
  EXPECT_GE(slices.front().position.z, shape.point(discs.front().centre()).z + 29.9);
  EXPECT_LE(slices.back().position.z, shape.point(discs.back().centre()).z - 29.9);
}

TEST(Studies, BlocksLieAcrossTheirDiscsFromL1L2Down) {
  const SpineShape shape(2, false, 7);
  const auto tilted = planned(shape, 2, true, false)[3];
  const auto discs = shape.regionDiscs();
  ASSERT_EQ(tilted.slices.size(), 5U * 5U);
  for (std::size_t block = 0; block < 5; ++block) {
    const SpineLevel& disc = discs[block + 1];
    const SlicePlane& middle = tilted.slices[5 * block + 2];
    EXPECT_NEAR(length(middle.centre() - shape.point(disc.centre())), 0, 1e-9) << disc.name;
    EXPECT_NEAR(dot(middle.normal(), shape.tangent(disc.centre())), -1, 1e-12) << disc.name;
    const Vec3 step = tilted.slices[5 * block + 1].position - tilted.slices[5 * block].position;
    EXPECT_NEAR(length(step), 4.4, 1e-9);
    EXPECT_LT(step.z, 0) << "towards the feet";
  }
}

TEST(Studies, BlocksOfNeckAndChestCoverEveryDiscOfTheRegion) {
  const SpineShape neck(0, false, 1);
  EXPECT_EQ(planned(neck, 0, true, false)[3].slices.size(), 7U * 3U);
  const SpineShape chest(1, true, 1);
  EXPECT_EQ(planned(chest, 1, true, false)[3].slices.size(), 14U * 5U);
}

}  // namespace
}  // namespace phantom
