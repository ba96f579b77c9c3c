#include "cli/export/Nifti.h"

#include <zlib.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <stdexcept>

namespace cli {

using workstation::cross;
using workstation::dot;
using workstation::lengthOf;
using workstation::normalized;
using workstation::Vector3;
// NOLINTBEGIN(misc-unused-using-decls): operators that are used, which the check does not see
using workstation::operator*;
// NOLINTEND(misc-unused-using-decls)

namespace {

constexpr std::size_t headerSize = 348;
constexpr std::size_t voxelOffset = 352;  // the header, and four bytes that say that no extension follows

/// Where the header's fields begin, in bytes.
enum HeaderField : std::size_t {
  SizeOfHeader = 0,
  Dimensions = 40,
  DataType = 70,
  BitsPerVoxel = 72,
  PixelDimensions = 76,
  VoxelOffset = 108,
  ScaleSlope = 112,
  SpatialUnits = 123,
  DisplayMaximum = 124,
  Description = 148,
  QformCode = 252,
  SformCode = 254,
  Quaternion = 256,
  QuaternionOffset = 268,
  SformRows = 280,
  Magic = 344,
};

constexpr std::int16_t unsignedBytes = 2;
constexpr std::int16_t scannerCoordinates = 1;
constexpr char unitMillimetre = 2;

class Header {
 public:
  explicit Header(std::string& bytes) : bytes_(bytes) {}

  void put(std::size_t at, std::int16_t number) { putBytes(at, static_cast<std::uint16_t>(number), 2); }
  void put(std::size_t at, std::int32_t number) { putBytes(at, static_cast<std::uint32_t>(number), 4); }
  void put(std::size_t at, float number) { putBytes(at, std::bit_cast<std::uint32_t>(number), 4); }
  void put(std::size_t at, double number) { put(at, static_cast<float>(number)); }
  void put(std::size_t at, const std::string& text, std::size_t room) { text.copy(&bytes_[at], room); }

 private:
  void putBytes(std::size_t at, std::uint32_t number, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) bytes_[at + i] = static_cast<char>((number >> (8 * i)) & 0xff);
  }

  std::string& bytes_;
};

/// From left, back, head to right, front, head.
Vector3 toRas(const Vector3& lps) { return {-lps[0], -lps[1], lps[2]}; }

/// The rotation with these columns as a unit quaternion a + bi + cj + dk with a >= 0.
std::array<double, 4> quaternionOf(const Vector3& x, const Vector3& y, const Vector3& z) {
  // Four times the square of each part; dividing by the largest keeps the others exact.
  const std::array<double, 4> squares{1 + x[0] + y[1] + z[2], 1 + x[0] - y[1] - z[2], 1 - x[0] + y[1] - z[2],
                                      1 - x[0] - y[1] + z[2]};
  const auto largest = std::max_element(squares.begin(), squares.end()) - squares.begin();
  const double part = std::sqrt(squares[static_cast<std::size_t>(largest)]) / 2;
  const double share = 1 / (4 * part);
  std::array<double, 4> q{};
  switch (largest) {
    case 0:
      q = {part, (y[2] - z[1]) * share, (z[0] - x[2]) * share, (x[1] - y[0]) * share};
      break;
    case 1:
      q = {(y[2] - z[1]) * share, part, (y[0] + x[1]) * share, (z[0] + x[2]) * share};
      break;
    case 2:
      q = {(z[0] - x[2]) * share, (y[0] + x[1]) * share, part, (z[1] + y[2]) * share};
      break;
    default:
      q = {(x[1] - y[0]) * share, (z[0] + x[2]) * share, (z[1] + y[2]) * share, part};
  }
  if (q[0] < 0) q = {-q[0], -q[1], -q[2], -q[3]};
  return q;
}

/// The parts b, c and d as a file holds them. Readers take what is missing to 1 as the square of a: after half a turn,
/// where a is 0, rounding must leave nothing missing.
std::array<float, 3> storedParts(const std::array<double, 4>& quaternion) {
  std::array<float, 3> parts{};
  double sum = 0;
  for (std::size_t i = 0; i < 3; ++i) {
    parts[i] = static_cast<float>(quaternion[i + 1]);
    sum += double{parts[i]} * double{parts[i]};
  }
  if (quaternion[0] > 1e-6) return parts;
  const auto smaller = [](float a, float b) { return std::fabs(a) < std::fabs(b); };
  auto& largest = *std::max_element(parts.begin(), parts.end(), smaller);
  while (sum < 1) {
    sum -= double{largest} * double{largest};
    largest = std::nextafter(largest, std::copysign(2.0F, largest));
    sum += double{largest} * double{largest};
  }
  return parts;
}

void putGrid(Header& header, const VoxelGrid& grid) {
  const std::array<Vector3, 3> steps{toRas(grid.columnStep), toRas(grid.rowStep), toRas(grid.sliceStep)};
  const auto origin = toRas(grid.origin);
  header.put(Dimensions, std::int16_t{3});
  for (std::size_t axis = 0; axis < 7; ++axis) {
    header.put(Dimensions + 2 * (axis + 1), static_cast<std::int16_t>(axis < 3 ? grid.size[axis] : 1));
    header.put(PixelDimensions + 4 * (axis + 1), axis < 3 ? lengthOf(steps[axis]) : 1.0);
  }
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t axis = 0; axis < 3; ++axis) header.put(SformRows + 16 * row + 4 * axis, steps[axis][row]);
    header.put(SformRows + 16 * row + 12, origin[row]);
    header.put(QuaternionOffset + 4 * row, origin[row]);
  }
  // A quaternion tells a right-handed system only: the first number of pixdim says whether the third axis is turned.
  const double handedness = dot(cross(steps[0], steps[1]), steps[2]) < 0 ? -1 : 1;
  const auto quaternion =
      storedParts(quaternionOf(normalized(steps[0]), normalized(steps[1]), handedness * normalized(steps[2])));
  for (std::size_t i = 0; i < 3; ++i) header.put(Quaternion + 4 * i, quaternion[i]);
  header.put(PixelDimensions, handedness);
  header.put(QformCode, scannerCoordinates);
  header.put(SformCode, scannerCoordinates);
}

}  // namespace

std::string niftiFile(const VoxelGrid& grid, const std::vector<LabelledVoxel>& labels, const std::string& description) {
  std::string file(voxelOffset + grid.voxelCount(), '\0');
  Header header(file);
  header.put(SizeOfHeader, static_cast<std::int32_t>(headerSize));
  header.put(DataType, unsignedBytes);
  header.put(BitsPerVoxel, std::int16_t{8});
  header.put(VoxelOffset, static_cast<double>(voxelOffset));
  header.put(ScaleSlope, 1.0);
  header.put(SpatialUnits, std::string(1, unitMillimetre), 1);
  header.put(Description, description, 79);
  header.put(Magic, "n+1", 3);
  putGrid(header, grid);
  const auto columns = static_cast<std::size_t>(grid.size[0]);
  const auto rows = static_cast<std::size_t>(grid.size[1]);
  std::uint8_t largest = 0;
  for (const auto& [voxel, value] : labels) {
    const auto i = static_cast<std::size_t>(voxel[0]);
    const auto j = static_cast<std::size_t>(voxel[1]);
    const auto k = static_cast<std::size_t>(voxel[2]);
    file[voxelOffset + (k * rows + j) * columns + i] = static_cast<char>(value);
    largest = std::max(largest, value);
  }
  header.put(DisplayMaximum, static_cast<double>(largest));
  return file;
}

std::string gzipped(const std::string& bytes) {
  constexpr int gzipFormat = 15 + 16;  // the largest window, with gzip's header, which then tells no time
  z_stream stream{};
  if (deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, gzipFormat, 8, Z_DEFAULT_STRATEGY) != Z_OK) {
    throw std::runtime_error("the compressor could not be started");
  }
  std::string packed(deflateBound(&stream, static_cast<uLong>(bytes.size())), '\0');
  // The library only reads what is to be packed.
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
  stream.avail_in = static_cast<uInt>(bytes.size());
  stream.next_out = reinterpret_cast<Bytef*>(packed.data());
  stream.avail_out = static_cast<uInt>(packed.size());
  const int ended = deflate(&stream, Z_FINISH);
  packed.resize(stream.total_out);
  deflateEnd(&stream);
  if (ended != Z_STREAM_END) throw std::runtime_error("the compressor did not finish");
  return packed;
}

}  // namespace cli
