#pragma once
// Points and vectors in patient space, and the vector functions that the host offers.

#include "host/DCMView.h"
#include "host/Point3D.h"

namespace workstation {

/// A point; single precision throughout, as the contract says.
class PatientPoint final : public pelmar::Point3D {
 public:
  PatientPoint(double x, double y, double z)
      : x_(static_cast<float>(x)), y_(static_cast<float>(y)), z_(static_cast<float>(z)) {}

  double x() const override { return x_; }
  double y() const override { return y_; }
  double z() const override { return z_; }
  void setPoint3D(const pelmar::Ref<pelmar::Point3D>& other) override;
  void add(const pelmar::Ref<pelmar::Point3D>& other) override;
  void subtract(const pelmar::Ref<pelmar::Point3D>& other) override;
  void multiply(double factor) override;
  pelmar::N3Vector N3VectorValue() const override { return {x_, y_, z_}; }

 private:
  float x_;
  float y_;
  float z_;
};

class PatientPointClass final : public pelmar::Point3DClass {
 public:
  pelmar::Ref<pelmar::Point3D> pointWithX(double x, double y, double z) override;
  pelmar::Ref<pelmar::Point3D> pointWithN3Vector(const pelmar::N3Vector& vector) override;
};

class ViewClass final : public pelmar::DCMViewClass {
 public:
  /// A zero normal: 0, and the point itself.
  float pbase_Plane(const pelmar::Vector3f& point, const pelmar::Vector3f& planePoint,
                    const pelmar::Vector3f& planeNormal, pelmar::Vector3f& footPoint) override;
  /// 0 where one of them is zero.
  float angleBetweenVector(const pelmar::Vector3f& a, const pelmar::Vector3f& andVector) override;
};

}  // namespace workstation
