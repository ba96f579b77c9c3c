// Any bytes as an archive: what is read can be written, has an even length and is read again as the same bytes.

#include <cstdint>
#include <cstdlib>

#include "workstation/archive/KeyedArchive.h"
#include "workstation/archive/SavedLabelling.h"

namespace {

class FuzzedPoint final : public pelmar::Point3D {
 public:
  explicit FuzzedPoint(const pelmar::N3Vector& place) : place_(place) {}
  double x() const override { return place_.x; }
  double y() const override { return place_.y; }
  double z() const override { return place_.z; }

 private:
  pelmar::N3Vector place_;
};

class FuzzedPointClass final : public pelmar::Point3DClass {
 public:
  pelmar::Ref<pelmar::Point3D> pointWithX(double x, double y, double z) override {
    return pointWithN3Vector({x, y, z});
  }
  pelmar::Ref<pelmar::Point3D> pointWithN3Vector(const pelmar::N3Vector& vector) override {
    return pelmar::makeRef<FuzzedPoint>(vector);
  }
};

void require(bool condition) {
  if (!condition) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
  FuzzedPointClass points;
  const auto value = workstation::readPaddedArchive(pelmar::Bytes(bytes, bytes + length), points);
  require(static_cast<bool>(value) == value.problem.empty());
  if (!value) return 0;
  const auto archive = workstation::writeArchive(*value);
  require(archive && archive->size() % 2 == 0);
  const auto again = workstation::readArchive(*archive, points);
  require(again && workstation::writeArchive(*again).value == archive.value);
  require(workstation::labellingFromValue(*value) == workstation::labellingFromValue(*again));
  return 0;
}
