#include "phantom/Tissue.h"

#include <gtest/gtest.h>

#include "phantom/Render.h"

namespace phantom {
namespace {

/// A place seen from the spine: beside and behind the centre line at a level.
Vec3 placeAt(const SpineShape& shape, double along, double left, double back) {
  const Vec3 tangent = shape.tangent(along);
  const Vec3 leftwards = unitAcross({1, 0, 0}, tangent);
  return shape.point(along) + left * leftwards + back * cross(leftwards, tangent);
}

const SpineLevel& levelNamed(const SpineShape& shape, const std::string& name) {
  for (const SpineLevel& level : shape.levels()) {
    if (level.name == name) return level;
  }
  throw std::runtime_error("no level " + name);
}

TEST(SpineFrame, LocateUndoesAPlaceAlongAndAcrossTheLine) {
  const SpineShape shape(2, false, 1);
  const SpineFrame frame(shape);
  for (double along = 60; along < 600; along += 37) {
    for (const double left : {-20.0, 0.0, 11.0}) {
      for (const double back : {-15.0, 0.0, 25.0}) {
        const SpinePoint found = frame.locate(placeAt(shape, along, left, back));
        EXPECT_NEAR(found.along, along, 0.5);
        EXPECT_NEAR(found.left, left, 0.3);
        EXPECT_NEAR(found.back, back, 0.3);
      }
    }
  }
}

TEST(Anatomy, CordEndsBetweenTheFirstAndSecondLumbarVertebra) {
  for (std::uint64_t seed = 1; seed <= 10; ++seed) {
    const SpineShape shape(2, false, seed);
    const Anatomy anatomy(shape, seed);
    EXPECT_GT(anatomy.sectionAt(levelNamed(shape, "T12").centre()).cordWidth, 3);
    EXPECT_EQ(anatomy.sectionAt(levelNamed(shape, "L2").centre()).cordWidth, 0);
  }
}

TEST(Anatomy, SomeSeedsHaveBrightDiscsAndSomeDark) {
  double brightest = 0;
  double darkest = 1;
  for (std::uint64_t seed = 1; seed <= 20; ++seed) {
    const SpineShape shape(2, false, seed);
    const Anatomy anatomy(shape, seed);
    const double look = anatomy.disc(shape.levelIndexAt(levelNamed(shape, "L4-L5").centre())).brightness;
    brightest = std::max(brightest, look);
    darkest = std::min(darkest, look);
  }
  EXPECT_GT(brightest, 0.9);
  EXPECT_LT(darkest, 0.3);
}

// On a T2-weighted image fluid is the brightest, marrow and cord lie between, cortical bone, vessels and air are dark.
TEST(Tissue, T2OrdersTheTissuesAsARadiologistKnowsThem) {
  const SpineShape shape(1, false, 1);
  const Tissue tissue(shape, Contrast::T2, 1);
  const Anatomy anatomy(shape, 1);
  const SpineLevel& t8 = levelNamed(shape, "T8");
  const Section& section = anatomy.sectionAt(t8.centre());
  const double canal = section.canalBack();
  const float marrow = tissue.signal(placeAt(shape, t8.centre(), 0, 0));
  const float cord = tissue.signal(placeAt(shape, t8.centre(), 0, canal));
  const float fluid = tissue.signal(placeAt(shape, t8.centre(), 0.5 * (section.cordWidth + section.canalWidth), canal));
  const float wall = tissue.signal(placeAt(shape, t8.centre(), 0, -0.92 * section.bodyDepth + 0.4));
  const float outside = tissue.signal({0, 300, 0});
  EXPECT_GT(fluid, 800);
  EXPECT_GT(cord, 300);
  EXPECT_LT(cord, 600);
  EXPECT_GT(marrow, 300);
  EXPECT_LT(marrow, 600);
  EXPECT_LT(wall, 150);
  EXPECT_LT(outside, 30);
}

TEST(Tissue, CtShowsBoneBrightAndFatAndAirBelowWater) {
  const SpineShape shape(2, false, 2);
  const Tissue tissue(shape, Contrast::Ct, 2);
  const SpineLevel& l3 = levelNamed(shape, "L3");
  const double depth = Anatomy(shape, 2).sectionAt(l3.centre()).bodyDepth;
  EXPECT_GT(tissue.signal(placeAt(shape, l3.centre(), 0, 0)), 100);
  EXPECT_GT(tissue.signal(placeAt(shape, l3.centre(), 0, -0.92 * depth + 0.4)), 600);
  EXPECT_EQ(tissue.signal({0, 300, 0}), -1000);
}

TEST(Tissue, EveryDiscOfARegionCanBeToldFromItsNeighbouringVertebrae) {
  for (std::uint64_t seed = 1; seed <= 5; ++seed) {
    const SpineShape shape(2, false, seed);
    const Tissue tissue(shape, Contrast::Ct, seed);
    for (const SpineLevel& disc : shape.regionDiscs()) {
      const double reach = 0.5 * (disc.end - disc.start) + 5;
      const float between = tissue.signal(placeAt(shape, disc.centre(), 0, 0));
      EXPECT_LT(between, 115) << disc.name;
      EXPECT_GT(tissue.signal(placeAt(shape, disc.centre() - reach, 0, 0)), between) << disc.name;
      EXPECT_GT(tissue.signal(placeAt(shape, disc.centre() + reach, 0, 0)), between) << disc.name;
    }
  }
}

TEST(Render, SameKeyGivesTheSameNoiseAndAnotherKeyOther) {
  const SpineShape shape(2, false, 1);
  const Tissue tissue(shape, Contrast::T2, 1);
  const SlicePlane plane = planStudy(shape, {2, false, false, 32})[0].slices[7];
  const auto first = renderSlice(tissue, plane, Contrast::T2, 1);
  EXPECT_EQ(first.size(), 32U * 32U);
  EXPECT_EQ(first, renderSlice(tissue, plane, Contrast::T2, 1));
  EXPECT_NE(first, renderSlice(tissue, plane, Contrast::T2, 2));
  for (const auto value : first) EXPECT_GE(value, 0);
}

}  // namespace
}  // namespace phantom
