#include "phantom/SpineShape.h"

#include <gtest/gtest.h>

#include <cmath>

namespace phantom {
namespace {

using Names = std::vector<std::string>;

Names namesOf(const std::vector<SpineLevel>& levels) {
  Names names;
  for (const SpineLevel& level : levels) names.push_back(level.name);
  return names;
}

struct Catalogue {
  const char* name;
  int region;
  bool extra;
  Names discs;
  Names vertebrae;
};

const Catalogue catalogues[] = {
    {"cervical",
     0,
     false,
     {"C0-C1", "C2-C3", "C3-C4", "C4-C5", "C5-C6", "C6-C7", "C7-T1"},
     {"C1-C2", "C3", "C4", "C5", "C6", "C7"}},
    {"cervical with C8",
     0,
     true,
     {"C0-C1", "C2-C3", "C3-C4", "C4-C5", "C5-C6", "C6-C7", "C7-C8", "C8-T1"},
     {"C1-C2", "C3", "C4", "C5", "C6", "C7", "C8"}},
    {"thoracic",
     1,
     false,
     {"C7-T1", "T1-T2", "T2-T3", "T3-T4", "T4-T5", "T5-T6", "T6-T7", "T7-T8", "T8-T9", "T9-T10", "T10-T11", "T11-T12",
      "T12-L1"},
     {"T1", "T2", "T3", "T4", "T5", "T6", "T7", "T8", "T9", "T10", "T11", "T12"}},
    {"thoracic with T13",
     1,
     true,
     {"C7-T1", "T1-T2", "T2-T3", "T3-T4", "T4-T5", "T5-T6", "T6-T7", "T7-T8", "T8-T9", "T9-T10", "T10-T11", "T11-T12",
      "T12-T13", "T13-L1"},
     {"T1", "T2", "T3", "T4", "T5", "T6", "T7", "T8", "T9", "T10", "T11", "T12", "T13"}},
    {"lumbar", 2, false, {"T12-L1", "L1-L2", "L2-L3", "L3-L4", "L4-L5", "L5-S1"}, {"L1", "L2", "L3", "L4", "L5"}},
    {"lumbar with L6",
     2,
     true,
     {"T12-L1", "L1-L2", "L2-L3", "L3-L4", "L4-L5", "L5-L6", "L6-S1"},
     {"L1", "L2", "L3", "L4", "L5", "L6"}},
};

/// The angle of the centre line at a level, degrees, > 0 where it runs backwards on its way down.
double slopeAt(const SpineShape& shape, const SpineLevel& level) {
  const Vec3 t = shape.tangent(level.centre());
  return std::atan2(t.y, -t.z) * 180 / 3.14159265358979;
}

TEST(SpineShape, RegionsHaveTheNamesOfTheirDiscsAndVertebrae) {
  for (const Catalogue& row : catalogues) {
    const SpineShape shape(row.region, row.extra, 1);
    EXPECT_EQ(namesOf(shape.regionDiscs()), row.discs) << row.name;
    EXPECT_EQ(namesOf(shape.regionVertebrae()), row.vertebrae) << row.name;
  }
}

TEST(SpineShape, LevelsFollowEachOtherWithoutGapFromSkullToCoccyx) {
  const SpineShape shape(1, true, 3);
  const auto levels = shape.levels();
  EXPECT_EQ(levels.front().name, "C0");
  EXPECT_EQ(levels.back().name, "Coccyx");
  EXPECT_EQ(levels.front().start, 0);
  EXPECT_EQ(levels.back().end, shape.length());
  for (std::size_t i = 0; i < levels.size(); ++i) {
    EXPECT_LT(levels[i].start, levels[i].end);
    EXPECT_EQ(levels[i].start, i > 0 ? levels[i - 1].end : 0.0);
    EXPECT_EQ(shape.levelIndexAt(levels[i].centre()), i);
  }
  EXPECT_EQ(shape.levelIndexAt(-5), 0U);
  EXPECT_EQ(shape.levelIndexAt(shape.length() + 5), levels.size() - 1);
}

TEST(SpineShape, DiscCentresDescendAndNormalsAreUnitVectorsTowardsTheNext) {
  for (const Catalogue& row : catalogues) {
    for (std::uint64_t seed = 1; seed <= 5; ++seed) {
      const SpineShape shape(row.region, row.extra, seed);
      const auto discs = shape.regionDiscs();
      for (std::size_t i = 0; i < discs.size(); ++i) {
        const Vec3 normal = shape.tangent(discs[i].centre());
        EXPECT_NEAR(length(normal), 1, 1e-12);
        EXPECT_LT(normal.z, -0.5) << row.name << " seed " << seed << " " << discs[i].name;
        if (i == 0) continue;
        const Vec3 step = shape.point(discs[i].centre()) - shape.point(discs[i - 1].centre());
        EXPECT_LT(step.z, -10) << row.name << " seed " << seed << " " << discs[i].name;
        EXPECT_GT(dot(step, normal), 0);
      }
    }
  }
}

TEST(SpineShape, TangentIsTheDirectionOfTheLine) {
  const SpineShape shape(2, false, 4);
  for (double along = 5; along < shape.length() - 5; along += 7.3) {
    const Vec3 chord = shape.point(along + 1) - shape.point(along - 1);
    EXPECT_NEAR(length(chord), 2, 0.01);
    EXPECT_GT(dot(unit(chord), shape.tangent(along)), 0.9999);
  }
}

// The line turns backwards where the spine is hollow at the back (neck, loin) and forwards where it is rounded (chest).
TEST(SpineShape, NeckAndLoinAreLordoticAndTheChestIsKyphotic) {
  for (std::uint64_t seed = 1; seed <= 20; ++seed) {
    const auto turn = [seed](int region, std::size_t first, std::size_t last) {
      const SpineShape shape(region, false, seed);
      const auto discs = shape.regionDiscs();
      return slopeAt(shape, discs[last]) - slopeAt(shape, discs[first]);
    };
    const double neck = turn(0, 1, 6);
    const double chest = turn(1, 1, 11);
    const double loin = turn(2, 1, 5);
    EXPECT_GT(neck, 10) << seed;
    EXPECT_LT(neck, 50) << seed;
    EXPECT_LT(chest, -20) << seed;
    EXPECT_GT(chest, -60) << seed;
    EXPECT_GT(loin, 30) << seed;
    EXPECT_LT(loin, 75) << seed;
  }
}

TEST(SpineShape, ScoliosisStaysMildAndDiffersBySeed) {
  double widest = 0;
  double narrowest = 100;
  for (std::uint64_t seed = 1; seed <= 20; ++seed) {
    const SpineShape shape(1, false, seed);
    double low = 1000;
    double high = -1000;
    for (const SpineLevel& disc : shape.regionDiscs()) {
      low = std::min(low, shape.point(disc.centre()).x);
      high = std::max(high, shape.point(disc.centre()).x);
    }
    widest = std::max(widest, high - low);
    narrowest = std::min(narrowest, high - low);
  }
  EXPECT_LT(widest, 15);
  EXPECT_GT(widest, narrowest + 2);
}

TEST(SpineShape, RegionsHaveTheLengthOfAnAdults) {
  for (std::uint64_t seed = 1; seed <= 10; ++seed) {
    const auto lengthOf = [seed](int region) {
      const SpineShape shape(region, false, seed);
      return shape.regionDiscs().back().centre() - shape.regionDiscs().front().centre();
    };
    EXPECT_NEAR(lengthOf(0), 134, 14) << seed;
    EXPECT_NEAR(lengthOf(1), 295, 28) << seed;
    EXPECT_NEAR(lengthOf(2), 180, 18) << seed;
  }
}

TEST(SpineShape, SameArgumentsGiveTheSameSpineAndAnotherSeedAnother) {
  const SpineShape a(2, false, 1);
  const SpineShape b(2, false, 1);
  const SpineShape c(2, false, 2);
  EXPECT_EQ(a.point(300).y, b.point(300).y);
  EXPECT_EQ(a.length(), b.length());
  EXPECT_NE(a.length(), c.length());
}

TEST(SpineShape, CrossingFindsWhereThePlaneCutsTheLine) {
  const SpineShape shape(2, false, 1);
  for (double along = 20; along < 500; along += 31) {
    const auto found = shape.crossing(shape.point(along), shape.tangent(along));
    ASSERT_TRUE(found);
    EXPECT_NEAR(*found, along, 1e-6);
  }
  EXPECT_FALSE(shape.crossing(shape.point(0) + Vec3{0, 0, 50}, {0, 0, 1}));
}

// A plane that leans so much that it meets both the loin and the neck belongs to the part it was laid through.
TEST(SpineShape, OfSeveralCrossingsTheNearestCounts) {
  const SpineShape shape(2, false, 1);
  const auto last = shape.regionDiscs().back();
  const Vec3 on = shape.point(last.centre());
  const Vec3 chord = unit(shape.point(100) - on);
  const Vec3 normal = unitAcross({0, 1, 0}, chord);
  const auto found = shape.crossing(on, normal);
  ASSERT_TRUE(found);
  EXPECT_NEAR(*found, last.centre(), 1e-6);
  EXPECT_TRUE(shape.crossing(shape.point(100), normal));
  EXPECT_NEAR(*shape.crossing(shape.point(100), normal), 100, 1e-6);
}

}  // namespace
}  // namespace phantom
