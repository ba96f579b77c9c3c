#include "workstation/model/Points.h"

#include <cmath>

#include "workstation/model/Vector3.h"

namespace workstation {

using pelmar::Ref;

void PatientPoint::setPoint3D(const Ref<pelmar::Point3D>& other) {
  x_ = static_cast<float>(other->x());
  y_ = static_cast<float>(other->y());
  z_ = static_cast<float>(other->z());
}

void PatientPoint::add(const Ref<pelmar::Point3D>& other) {
  x_ += static_cast<float>(other->x());
  y_ += static_cast<float>(other->y());
  z_ += static_cast<float>(other->z());
}

void PatientPoint::subtract(const Ref<pelmar::Point3D>& other) {
  x_ -= static_cast<float>(other->x());
  y_ -= static_cast<float>(other->y());
  z_ -= static_cast<float>(other->z());
}

void PatientPoint::multiply(double factor) {
  x_ = static_cast<float>(x_ * factor);
  y_ = static_cast<float>(y_ * factor);
  z_ = static_cast<float>(z_ * factor);
}

Ref<pelmar::Point3D> PatientPointClass::pointWithX(double x, double y, double z) {
  return pelmar::makeRef<PatientPoint>(x, y, z);
}

Ref<pelmar::Point3D> PatientPointClass::pointWithN3Vector(const pelmar::N3Vector& vector) {
  return pointWithX(vector.x, vector.y, vector.z);
}

float ViewClass::pbase_Plane(const pelmar::Vector3f& point, const pelmar::Vector3f& planePoint,
                             const pelmar::Vector3f& planeNormal, pelmar::Vector3f& footPoint) {
  const Vector3 normal = normalized(widened(planeNormal));
  const double distanceMm = dot(widened(point) - widened(planePoint), normal);
  footPoint = narrowed(widened(point) - distanceMm * normal);
  return static_cast<float>(std::abs(distanceMm));
}

float ViewClass::angleBetweenVector(const pelmar::Vector3f& a, const pelmar::Vector3f& andVector) {
  const Vector3 first = widened(a);
  const Vector3 second = widened(andVector);
  // Well conditioned near 0 and pi, where the arc cosine of the scalar product is not.
  return static_cast<float>(std::atan2(lengthOf(cross(first, second)), dot(first, second)));
}

}  // namespace workstation
