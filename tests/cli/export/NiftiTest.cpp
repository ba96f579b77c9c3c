#include "cli/export/Nifti.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <cmath>
#include <cstring>

namespace cli::test {
namespace {

/// 2 columns, 3 rows and 2 slices: columns run 2 mm to the back, rows 3 mm to the feet, slices 5 mm to the left.
VoxelGrid sagittalGrid() { return {{2, 3, 2}, {-5, 10, 100}, {0, 2, 0}, {0, 0, -3}, {5, 0, 0}}; }

template <class Number>
Number numberAt(const std::string& file, std::size_t at) {
  Number number;
  std::memcpy(&number, &file[at], sizeof number);
  return number;
}

template <class Number>
std::vector<Number> numbersAt(const std::string& file, std::size_t at, std::size_t count) {
  std::vector<Number> numbers;
  for (std::size_t i = 0; i < count; ++i) numbers.push_back(numberAt<Number>(file, at + i * sizeof(Number)));
  return numbers;
}

void expectNumbers(const std::string& file, std::size_t at, const std::vector<float>& expected) {
  const auto actual = numbersAt<float>(file, at, expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_NEAR(actual[i], expected[i], 1e-6F) << "byte " << at + 4 * i;
}

TEST(Nifti, HasTheFieldsThatReadersGoBy) {
  const auto file = niftiFile(sagittalGrid(), {{{1, 0, 0}, 25}}, "Disc labels");
  EXPECT_EQ(file.size(), 352U + 12U);
  EXPECT_EQ(numberAt<std::int32_t>(file, 0), 348);
  EXPECT_EQ(numbersAt<std::int16_t>(file, 40, 8), (std::vector<std::int16_t>{3, 2, 3, 2, 1, 1, 1, 1}));
  EXPECT_EQ(numbersAt<std::int16_t>(file, 70, 2), (std::vector<std::int16_t>{2, 8})) << "unsigned bytes of 8 bits";
  expectNumbers(file, 108, {352, 1, 0});
  EXPECT_EQ(file[123], 2) << "millimetres";
  expectNumbers(file, 124, {25, 0});
  EXPECT_STREQ(&file[148], "Disc labels");
  EXPECT_EQ(file.substr(344, 8), std::string("n+1\0\0\0\0\0", 8));
}

TEST(Nifti, TellsTheGridInRightFrontHead) {
  const auto file = niftiFile(sagittalGrid(), {}, "");
  EXPECT_EQ(numbersAt<std::int16_t>(file, 252, 2), (std::vector<std::int16_t>{1, 1})) << "scanner coordinates";
  // Left and back turn their signs: columns go -2 along y, slices -5 along x, and the origin lies at (5, -10, 100).
  expectNumbers(file, 280, {0, 0, -5, 5});
  expectNumbers(file, 296, {-2, 0, 0, -10});
  expectNumbers(file, 312, {0, -3, 0, 100});
}

/// The matrix that the quaternion, pixdim and offset of a file mean, by the NIfTI-1 formula; by rows.
std::array<std::array<double, 4>, 3> qformOf(const std::string& file) {
  const auto numbers = numbersAt<float>(file, 256, 6);
  const double b = numbers[0];
  const double c = numbers[1];
  const double d = numbers[2];
  const double a = std::sqrt(std::max(0.0, 1 - b * b - c * c - d * d));
  const auto pixdim = numbersAt<float>(file, 76, 4);
  const double x = pixdim[1];
  const double y = pixdim[2];
  const double z = pixdim[0] * pixdim[3];
  return {{{(a * a + b * b - c * c - d * d) * x, 2 * (b * c - a * d) * y, 2 * (b * d + a * c) * z, numbers[3]},
           {2 * (b * c + a * d) * x, (a * a + c * c - b * b - d * d) * y, 2 * (c * d - a * b) * z, numbers[4]},
           {2 * (b * d - a * c) * x, 2 * (c * d + a * b) * y, (a * a + d * d - b * b - c * c) * z, numbers[5]}}};
}

void expectQformIsSform(const VoxelGrid& grid) {
  const auto file = niftiFile(grid, {}, "");
  const auto qform = qformOf(file);
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t column = 0; column < 4; ++column) {
      EXPECT_NEAR(qform[row][column], numberAt<float>(file, 280 + 16 * row + 4 * column), 2e-6)
          << "row " << row << ", column " << column;
    }
  }
}

TEST(Nifti, TellsTheSamePlaceTwice) {
  expectQformIsSform(sagittalGrid());
  // The same, left-handed: slices the other way round.
  expectQformIsSform({{2, 3, 2}, {-5, 10, 100}, {0, 2, 0}, {0, 0, -3}, {-5, 0, 0}});
  // Each part of the quaternion in turn is the largest: no turn, and half a turn about x, y and z.
  expectQformIsSform({{2, 2, 2}, {1, 2, 3}, {-1, 0, 0}, {0, -1, 0}, {0, 0, 1}});
  expectQformIsSform({{2, 2, 2}, {1, 2, 3}, {-1, 0, 0}, {0, 1, 0}, {0, 0, -1}});
  expectQformIsSform({{2, 2, 2}, {1, 2, 3}, {1, 0, 0}, {0, -1, 0}, {0, 0, -1}});
  expectQformIsSform({{2, 2, 2}, {1, 2, 3}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}});
  // Coronal: half a turn about an axis between two, whose parts are no single-precision numbers.
  expectQformIsSform({{2, 2, 2}, {1, 2, 3}, {0.5, 0, 0}, {0, 0, -0.7}, {0, 4, 0}});
  // The same, turned by 0.3 rad about the axis from front to back.
  const double c = std::cos(0.3);
  const double s = std::sin(0.3);
  expectQformIsSform({{2, 2, 2}, {1, 2, 3}, {0.5 * c, 0, 0.5 * s}, {s, 0, -c}, {0, 4, 0}});
}

TEST(Nifti, StoresColumnsFastestAndSlicesSlowest) {
  const auto file = niftiFile(sagittalGrid(), {{{1, 0, 0}, 3}, {{0, 2, 0}, 4}, {{1, 1, 1}, 25}}, "");
  // By hand: 1; 2 rows of 2 columns; a slice of 6, a row of 2 and 1.
  std::string expected(12, '\0');
  expected[1] = 3;
  expected[4] = 4;
  expected[9] = 25;
  EXPECT_EQ(file.substr(352), expected);
}

TEST(Nifti, CutsALongDescription) {
  const auto file = niftiFile(sagittalGrid(), {}, std::string(200, 'x'));
  EXPECT_EQ(std::string(&file[148]), std::string(79, 'x'));
}

TEST(Gzip, UnpacksToTheSameBytes) {
  const std::string bytes = std::string(100000, '\0') + "end";
  const auto packed = gzipped(bytes);
  EXPECT_EQ(packed, gzipped(bytes)) << "no time of day in it";
  EXPECT_LT(packed.size(), 1000U);
  z_stream stream{};
  ASSERT_EQ(inflateInit2(&stream, 15 + 16), Z_OK);
  std::string unpacked(bytes.size() + 1, 'x');
  std::string input = packed;
  stream.next_in = reinterpret_cast<Bytef*>(input.data());
  stream.avail_in = static_cast<uInt>(input.size());
  stream.next_out = reinterpret_cast<Bytef*>(unpacked.data());
  stream.avail_out = static_cast<uInt>(unpacked.size());
  EXPECT_EQ(inflate(&stream, Z_FINISH), Z_STREAM_END);
  unpacked.resize(stream.total_out);
  inflateEnd(&stream);
  EXPECT_TRUE(unpacked == bytes);
}

}  // namespace
}  // namespace cli::test
