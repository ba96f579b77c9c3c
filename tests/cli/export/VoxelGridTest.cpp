#include "cli/export/VoxelGrid.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>

#include "SagittalStack.h"

namespace cli::test {
namespace {

using workstation::ImageRecord;
using workstation::Stack;
using workstation::Vector3;
using Voxel = std::array<int, 3>;

void expectVector(const Vector3& actual, const Vector3& expected) {
  for (std::size_t axis = 0; axis < 3; ++axis) EXPECT_NEAR(actual[axis], expected[axis], 1e-12) << "axis " << axis;
}

TEST(VoxelGrid, OfAStackHasItsFirstPixelAndItsSteps) {
  const auto grid = gridOf(sagittalStack(3));
  ASSERT_TRUE(grid) << grid.problem;
  EXPECT_EQ(grid->size, (Voxel{4, 3, 3}));
  EXPECT_EQ(grid->voxelCount(), 36U);
  expectVector(grid->origin, {-5, 10, 100});
  expectVector(grid->columnStep, {0, 2, 0});
  expectVector(grid->rowStep, {0, 0, -3});
  expectVector(grid->sliceStep, {5, 0, 0});
}

TEST(VoxelGrid, OfObliqueSlicesFollowsTheirNormal) {
  // Rows turned by 30 degrees about the long axis; the normal, row x column, is (-cos 30, sin 30, 0).
  auto stack = sagittalStack(2);
  const double c = std::sqrt(3.0) / 2;
  stack.slices[0].geometry = workstation::ImageGeometry{{0, 0, 0}, {0.5, c, 0}, {0, 0, -1}, 1, 1};
  stack.slices[1].geometry = workstation::ImageGeometry{{4 * c, -2, 0}, {0.5, c, 0}, {0, 0, -1}, 1, 1};
  const auto grid = gridOf(stack);
  ASSERT_TRUE(grid) << grid.problem;
  expectVector(grid->sliceStep, {4 * c, -2, 0});
  expectVector(grid->columnStep, {0.5, c, 0});
}

TEST(VoxelGrid, AllowsForRoundedPositions) {
  auto stack = sagittalStack(3);
  stack.slices[1].geometry->position = {0.15, 9.9, 100.05};
  EXPECT_TRUE(gridOf(stack)) << gridOf(stack).problem;
}

TEST(VoxelGrid, GivesAPositionTheVoxelWithTheNearestCentre) {
  const auto grid = *gridOf(sagittalStack(3));
  EXPECT_EQ(nearestVoxel(grid, {-5, 10, 100}), (Voxel{0, 0, 0}));
  EXPECT_EQ(nearestVoxel(grid, {5, 16, 94}), (Voxel{3, 2, 2})) << "the last voxel's centre";
  EXPECT_EQ(nearestVoxel(grid, {-2.6, 10.9, 98.6}), (Voxel{0, 0, 0}));
  EXPECT_EQ(nearestVoxel(grid, {-2.4, 11.1, 98.4}), (Voxel{1, 1, 1}));
}

TEST(VoxelGrid, ReachesHalfAVoxelBeyondTheOuterCentresAndNoFurther) {
  const auto grid = *gridOf(sagittalStack(3));
  EXPECT_EQ(nearestVoxel(grid, {7.4, 16.9, 92.6}), (Voxel{3, 2, 2}));
  for (const Vector3& outside :
       {Vector3{-7.6, 10, 100}, Vector3{7.6, 10, 100}, Vector3{0, 8.9, 100}, Vector3{0, 17.1, 100},
        Vector3{0, 10, 101.6}, Vector3{0, 10, 92.4}, Vector3{NAN, 10, 100}}) {
    EXPECT_FALSE(nearestVoxel(grid, outside)) << outside[0] << ' ' << outside[1] << ' ' << outside[2];
  }
}

struct BadStack {
  const char* name;
  std::function<void(Stack&)> spoil;
  const char* problem;
};
void PrintTo(const BadStack& bad, std::ostream* out) { *out << bad.name; }

class StackWithoutGrid : public testing::TestWithParam<BadStack> {};

TEST_P(StackWithoutGrid, SaysWhy) {
  auto stack = sagittalStack(4);
  ASSERT_TRUE(gridOf(stack));
  GetParam().spoil(stack);
  const auto grid = gridOf(stack);
  ASSERT_FALSE(grid);
  EXPECT_NE(grid.problem.find(GetParam().problem), std::string::npos) << grid.problem;
}

void resize(Stack& stack, int columns, int rows) {
  for (auto& slice : stack.slices) {
    slice.columns = columns;
    slice.rows = rows;
  }
}

std::string nameOfStack(const testing::TestParamInfo<BadStack>& bad) {
  std::string name = bad.param.name;
  std::replace(name.begin(), name.end(), ' ', '_');
  return name;
}

INSTANTIATE_TEST_SUITE_P(
    VoxelGrid, StackWithoutGrid,
    testing::Values(
        BadStack{"unevenly spaced", [](Stack& s) { s.slices[1].geometry->position[0] += 0.3; },
                 "has slices that are not evenly spaced"},
        BadStack{"a slice twice", [](Stack& s) { s.slices[2] = s.slices[1]; }, "has slices that are not evenly spaced"},
        BadStack{"tilted",
                 [](Stack& s) {
                   for (std::size_t i = 0; i < 4; ++i)
                     s.slices[i].geometry->position[2] += 0.1 * static_cast<double>(i);
                 },
                 "is tilted: its slices are shifted against each other"},
        BadStack{"turned",
                 [](Stack& s) {
                   s.slices[3].geometry->row = {std::sin(0.1), std::cos(0.1), 0};
                 },
                 "has slices that differ in size, pixel spacing or direction"},
        BadStack{"finer rows", [](Stack& s) { s.slices[3].geometry->spacingY = 2.5; },
                 "has slices that differ in size, pixel spacing or direction"},
        BadStack{"more rows", [](Stack& s) { s.slices[3].rows = 4; },
                 "has slices that differ in size, pixel spacing or direction"},
        BadStack{"no position", [](Stack& s) { s.slices[3].geometry.reset(); },
                 "has slices without a position in the patient"},
        BadStack{"one slice", [](Stack& s) { s.slices.resize(1); }, "has one slice only, which has no thickness"},
        BadStack{"all in one place", [](Stack& s) { s.slices.assign(4, s.slices[0]); },
                 "has slices that lie in one plane"},
        BadStack{"too wide", [](Stack& s) { resize(s, 32768, 1); }, "has more than 32767 voxels along a side"},
        BadStack{"too many voxels", [](Stack& s) { resize(s, 32767, 32767); }, "has more than 1073741824 voxels"}),
    nameOfStack);

}  // namespace
}  // namespace cli::test
