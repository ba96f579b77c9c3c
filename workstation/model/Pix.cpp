#include "workstation/model/Pix.h"

#include "workstation/model/Vector3.h"

namespace workstation {

Pix::Pix(std::shared_ptr<const ImageRecord> record, const std::set<pelmar::Capability>& lacking)
    : record_(std::move(record)), hasBodyPart_(!lacking.contains(pelmar::Capability::DCMPixBodyPartExamined)) {
  if (!record_->geometry) return;
  const Vector3& row = record_->geometry->row;
  const Vector3& column = record_->geometry->column;
  const Vector3 normal = normalized(cross(row, column));
  for (std::size_t axis = 0; axis < 3; ++axis) {
    orientation_[axis] = row[axis];
    orientation_[3 + axis] = column[axis];
    orientation_[6 + axis] = normal[axis];
  }
}

bool Pix::supports(pelmar::Capability capability) const {
  return capability == pelmar::Capability::DCMPixBodyPartExamined && hasBodyPart_;
}

void Pix::orientation(std::array<float, 9>& vector) const {
  for (std::size_t index = 0; index < vector.size(); ++index) vector[index] = static_cast<float>(orientation_[index]);
}

void Pix::convertPixX(float x, float pixY, pelmar::Vector3f& toDICOMCoords) const {
  toDICOMCoords = {};
  if (!record_->geometry) return;
  const ImageGeometry& geometry = *record_->geometry;
  toDICOMCoords = narrowed(geometry.position + (x * geometry.spacingX) * geometry.row +
                           (pixY * geometry.spacingY) * geometry.column);
}

pelmar::SlicePoint Pix::convertDICOMCoords(const pelmar::Vector3f& position) const {
  if (!record_->geometry) return {};
  const ImageGeometry& geometry = *record_->geometry;
  const Vector3 fromFirstPixel = widened(position) - geometry.position;
  return {dot(fromFirstPixel, geometry.row), dot(fromFirstPixel, geometry.column)};
}

double Pix::pixelSpacingX() const { return record_->geometry ? record_->geometry->spacingX : 0; }

double Pix::pixelSpacingY() const { return record_->geometry ? record_->geometry->spacingY : 0; }

std::optional<std::string> Pix::bodyPartExamined() const {
  return hasBodyPart_ ? record_->bodyPartExamined : std::nullopt;
}

pelmar::PixelRect Pix::contentFrameRect() const {
  return {{0, 0}, {static_cast<double>(record_->columns), static_cast<double>(record_->rows)}};
}

}  // namespace workstation
