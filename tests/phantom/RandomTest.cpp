#include "phantom/Random.h"

#include <gtest/gtest.h>

#include <cmath>

namespace phantom {
namespace {

// The first outputs of splitmix64 for the state 0, as published with the generator.
TEST(Random, ScatterIsSplitmix64) {
  EXPECT_EQ(scatter(0), 0xe220a8397b1dcdafULL);
  EXPECT_EQ(scatter(0x9e3779b97f4a7c15ULL), 0x6e789e6aa1b965f4ULL);
}

TEST(Random, SameSeedGivesTheSameSequenceAndAnotherSeedAnother) {
  Random a(5);
  Random b(5);
  Random c(6);
  for (int i = 0; i < 10; ++i) {
    const auto value = a.next();
    EXPECT_EQ(value, b.next());
    EXPECT_NE(value, c.next());
  }
}

TEST(Random, UniformFillsItsRangeAndStaysInIt) {
  Random random(1);
  double sum = 0;
  for (int i = 0; i < 10000; ++i) {
    const double value = random.uniform(-2, 4);
    ASSERT_GE(value, -2);
    ASSERT_LT(value, 4);
    sum += value;
  }
  EXPECT_NEAR(sum / 10000, 1.0, 0.1);  // standard error 0.017
}

TEST(Random, NoiseHasMeanZeroAndVarianceOne) {
  double sum = 0;
  double squares = 0;
  for (std::uint64_t i = 0; i < 20000; ++i) {
    const double value = noiseOf(i);
    sum += value;
    squares += value * value;
  }
  EXPECT_NEAR(sum / 20000, 0, 0.04);
  EXPECT_NEAR(squares / 20000, 1, 0.05);
}

}  // namespace
}  // namespace phantom
