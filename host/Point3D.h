#pragma once

#include "host/Geometry.h"
#include "host/Ref.h"

namespace pelmar {

/// A mutable point or vector in patient coordinates (millimetres, LPS). The three numbers are stored in single
/// precision; the accessors widen them. Objects are compared by identity. Made by Point3DClass. A host whose points
/// can be put into a keyed archive says so with Capability::Point3DKeyedArchiving.
class Point3D : public HostObject {
 public:
  /// Nil: 0.
  virtual double x() const { return 0; }
  virtual double y() const { return 0; }
  virtual double z() const { return 0; }
  /// Copies the other point's coordinates in (of nil: zeros). Nil: nothing.
  virtual void setPoint3D(const Ref<Point3D>&) {}
  /// Adds component by component, in place, in single precision. Nil: nothing.
  virtual void add(const Ref<Point3D>&) {}
  /// Subtracts component by component, in place, in single precision. Nil: nothing.
  virtual void subtract(const Ref<Point3D>&) {}
  /// Scales in place: each product is taken in double precision and stored in single. Nil: nothing.
  virtual void multiply(double) {}
  /// The three values as a plain vector. Nil: zeros.
  virtual N3Vector N3VectorValue() const { return {}; }
};

/// The class operations of Point3D.
class Point3DClass {
 public:
  virtual ~Point3DClass() = default;
  /// A new point; the numbers are narrowed to single precision.
  virtual Ref<Point3D> pointWithX(double x, double y, double z) = 0;
  /// A new point from a plain vector; the numbers are narrowed to single precision.
  virtual Ref<Point3D> pointWithN3Vector(const N3Vector& vector) = 0;
};

}  // namespace pelmar
