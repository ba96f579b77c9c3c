#pragma once
// What the archive tests share: points that keep all that is read, property lists made by hand, comparison by content.

#include <cstdint>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "host/Database.h"
#include "host/Point3D.h"
#include "host/Value.h"
#include "workstation/archive/KeyedArchive.h"

namespace archive_testing {

/// A point that keeps double precision, to see whether an archive does.
class DoublePoint final : public pelmar::Point3D {
 public:
  DoublePoint(double x, double y, double z) : x_(x), y_(y), z_(z) {}
  double x() const override { return x_; }
  double y() const override { return y_; }
  double z() const override { return z_; }

 private:
  double x_;
  double y_;
  double z_;
};

class DoublePointClass final : public pelmar::Point3DClass {
 public:
  pelmar::Ref<pelmar::Point3D> pointWithX(double x, double y, double z) override {
    return pelmar::makeRef<DoublePoint>(x, y, z);
  }
  pelmar::Ref<pelmar::Point3D> pointWithN3Vector(const pelmar::N3Vector& vector) override {
    return pointWithX(vector.x, vector.y, vector.z);
  }
};

/// All 64 bits of an integer value, found among the neighbours of the rounded number.
std::int64_t integerOf(const pelmar::Value& value);

/// Like ==, but of the same kind too, and points by their coordinates instead of by identity.
bool sameContent(const pelmar::Value& a, const pelmar::Value& b);

pelmar::Bytes bytesOfFile(const std::filesystem::path& file);
pelmar::Bytes bytesOfText(const std::string& text);

/// readArchive with points in double precision.
workstation::Result<pelmar::Value> read(const pelmar::Bytes& archive);

/// A binary property list put together object by object, each from its bytes, so that it can be wrong in any way.
/// References take two bytes.
class ListMaker {
 public:
  using Index = std::uint32_t;
  using Entries = std::vector<std::pair<Index, Index>>;
  Index raw(pelmar::Bytes object);
  Index text(const std::string& ascii);
  Index integer(std::int64_t value);
  Index real(double value);
  Index uid(std::uint32_t value);
  Index array(const std::vector<Index>& elements);
  Index dictionary(const Entries& entries);

  // Archived objects, as property list objects.
  Index classEntry(const std::string& name);
  Index archivedArray(const std::vector<std::uint32_t>& elementUids, std::uint32_t classUid);
  Index archivedDictionary(const std::vector<std::uint32_t>& keyUids, const std::vector<std::uint32_t>& valueUids,
                           std::uint32_t classUid);
  Index archivedPoint(Index x, Index y, Index z, std::uint32_t classUid);

  /// The archive of these objects, the root being object 1.
  pelmar::Bytes archive(const std::vector<Index>& objects);
  /// The list with that top object.
  pelmar::Bytes list(Index top) const;

 private:
  std::vector<pelmar::Bytes> objects_;
};

}  // namespace archive_testing
