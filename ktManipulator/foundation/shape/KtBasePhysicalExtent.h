#pragma once

#include "ktManipulator/foundation/shape/KtShape.h"
#include "ktManipulator/foundation/shape/algorithms/KtVolumeMoments.h"

/// A shape with an extent of its own in space: matter, where it is solid.
class KT_EXPORT KtBasePhysicalExtent : public KtShape {
 public:
  const KtBasePhysicalExtent& physicalExtent() const override { return *this; }

  /// Cuts every length and coordinate down, towards 0, to a multiple of a precision; orientations
  /// stay. Volumes around the extent that are of a kind to add are fitted anew. A precision that is
  /// not positive and finite changes nothing.
  virtual void truncateValues(const double& precision);
  /// Whether the extent encloses a volume. An open mesh doesn't; what has no thickness encloses 0.
  virtual bool isSolid() const { return true; }
  /// The integrals over the volume; what is not solid has none. Those of a union are the sum of its
  /// members': where they overlap, their common volume counts more than once.
  virtual KtVolumeMoments volumeMoments() const = 0;
  /// Whether a point lies inside or on the surface; never, where the extent is not solid.
  virtual bool contains(const KtVector& point) const = 0;

  /// The volume, m^3.
  double volume() const { return volumeMoments().volume; }
  /// The mass properties of a uniform solid about the origin of the frame: what
  /// `KtRigidBodyMassProperties` is made of.
  ///
  /// @param density       kg / m^3
  /// @param mass          receives the mass, kg
  /// @param firstMoment   receives the mass times the centre of mass, kg m
  /// @param secondMoment  receives the inertia tensor, kg m^2
  /// @return              whether the extent is solid
  bool massMoments(double density, double& mass, KtVector& firstMoment,
                   KtSecondMoment& secondMoment) const;

  bool operator==(const KtBasePhysicalExtent&) const = default;

 protected:
  /// Applies a function to every length and coordinate of this very extent.
  virtual void truncateOwn(double precision) = 0;
  /// A value cut down towards 0 to a multiple of the precision. A value that is a multiple but for
  /// rounding stays as it is.
  static double truncated(double value, double precision) noexcept;
  /// The same for each coordinate.
  static KtVector truncated(const KtVector& v, double precision) noexcept {
    return {truncated(v.x, precision), truncated(v.y, precision), truncated(v.z, precision)};
  }
};
