#pragma once

#include <string>

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/containers/KtXmlMapType.h"
#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/core/KtExport.h"
#include "ktManipulator/foundation/core/KtNonNegReal.h"
#include "ktManipulator/foundation/core/KtOnDemand.h"
#include "ktManipulator/foundation/geometry/KtCoordinateSystemTransformation.h"
#include "ktManipulator/foundation/geometry/KtGeneralForce.h"
#include "ktManipulator/foundation/geometry/KtGeneralMotion.h"
#include "ktManipulator/foundation/geometry/KtRotationMatrix.h"
#include "ktManipulator/foundation/geometry/KtXmlVector.h"
#include "ktManipulator/foundation/matrix/KtReArray.h"
#include "ktManipulator/foundation/matrix/KtSecondMoment.h"
#include "ktManipulator/foundation/matrix/KtSpatialMatrix.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

class KtCapsule;
class KtEllipsoid;

/// The inertia of one rigid body about the origin of a reference frame, which need not be its
/// centre of mass: mass m in kg, first moment c = m r in kg m (r being the centre of mass), and
/// second moment J in kg m^2, the inertia tensor about the origin, all in the frame's axes.
///
/// The spatial inertia, linear rows first, is I = [ m E, -(c x) ; (c x), J ]: it maps an
/// acceleration to the force at the origin that it takes. Sums of bodies about the same frame are
/// sums of the three members.
///
/// The factor of I and the inverse of J are computed on first need and kept. They are no part of
/// the value: a copy starts without them, and they take no memory until they are asked for.
///
/// @see R. Featherstone, Rigid Body Dynamics Algorithms, Springer 2008, section 2.13 (there with
///      angular rows first)
class KT_EXPORT KtRigidBodyMassProperties
    : public KtXmlPersistent<KtRigidBodyMassProperties, KtXmlCompoundType> {
 public:
  /// No mass: all three members are zero, and the object is not valid.
  KtRigidBodyMassProperties() = default;
  /// From the three members, followed by `makeValid()`.
  KtRigidBodyMassProperties(KtNonNegReal mass, const KtVector& firstMoment,
                            const KtSecondMoment& secondMoment);

  /// Also forgets the inverse of J and the factor.
  bool read(KtXmlReader& reader) override;
  void registerComponents() override;

  /// Moves the body: rotates it by T's orientation, then translates it by T's translation. Given in
  /// frame B and transformed by T_A_B, the properties stand in frame A.
  virtual void transformBy(const KtCoordinateSystemTransformation& t);
  /// Rotates the body about the origin.
  virtual void transformBy(const KtOrientation& r);
  /// Moves the body by p, which is the same as moving the reference origin by -p.
  virtual void transformBy(const KtVector& p);
  /// The force at the origin, with the moment about it, that the body's motion takes.
  ///
  /// @param velocity      velocity of the body; its linear part plays no part
  /// @param acceleration  acceleration of the body's point at the origin, and angular acceleration
  virtual KtGeneralForce calculateForce(const KtGeneralMotion& velocity,
                                        const KtGeneralMotion& acceleration) const;
  /// The same for a body at rest: I times the acceleration.
  virtual KtGeneralForce calculateForce(const KtGeneralMotion& acceleration) const;
  /// The acceleration under a force at the origin: the inverse of `calculateForce`.
  virtual KtGeneralMotion calculateAcceleration(const KtGeneralMotion& velocity,
                                                const KtGeneralForce& force) const;
  /// The same for a body at rest. Without a mass, or with a singular tensor, the answer is large
  /// but finite.
  virtual KtGeneralMotion calculateAcceleration(const KtGeneralForce& force) const;
  /// The mass, kg.
  virtual const KtNonNegReal& mass() const { return mass_.value(); }
  /// The mass times the centre of mass, kg m.
  virtual const KtXmlVector& firstMoment() const { return firstMoment_; }
  /// The inertia tensor about the origin, kg m^2.
  virtual const KtSecondMoment& secondMoment() const { return secondMoment_; }
  /// The inverse of J as last computed; computed now if there is none.
  ///
  /// After `set` and `scaleBy` this is still the inverse from before, if there was one; see there.
  virtual const KtSpatialMatrix& invSecondMoment() const;
  /// Sets the three members. An inverse of J that was computed before stays as it is, until the
  /// body is moved, added to, assigned or read, or `computeSecondMomentInverse` is called.
  ///
  /// @param makeValidToo  whether `makeValid()` follows
  virtual void set(KtNonNegReal mass, const KtVector& firstMoment,
                   const KtSecondMoment& secondMoment, bool makeValidToo);
  /// The centre of mass; the zero vector if the mass is exactly 0.
  virtual void getCenterOfMass(KtVector& center) const;
  /// The frame at the centre of mass in whose axes the tensor about that point is diagonal, in the
  /// reference frame.
  ///
  /// @return true
  virtual bool getPrincipalFrame(KtCoordinateSystemTransformation& frame) const;
  /// Whether the mass is at least 1e-09 kg and `KtSecondMoment::isValid` holds for J as it stands,
  /// about the reference origin.
  virtual bool isValid() const;
  /// The lower triangular 6 by 6 L with L L^T = I. Its first three rows are diagonal; only the
  /// 3 by 3 block of the tensor about the centre of mass takes a factorisation.
  virtual const KtReArray& spatialCholeskyDecomposition() const;
  /// Writes I, 6 by 6.
  virtual void getArray(KtReArray& array) const;
  /// Whether none of the ten numbers differs by more than the tolerance.
  virtual bool approxEq(const KtRigidBodyMassProperties& other, double tolerance) const;
  /// Scales all lengths at constant density: the mass by s^3, the first moment by s^4, the second
  /// by s^5. An inverse of J that was computed before stays as it is, as with `set`.
  virtual void scaleBy(double s);
  /// The uniform solid ellipsoid of the same inertia.
  ///
  /// @param ellipsoid  its semi-axes in m, each at least 1e-12 where the tensor leaves none, along
  ///                   the principal axes, centred at the centre of mass
  /// @param density    kg / m^3
  virtual void getEllipsoid(KtEllipsoid& ellipsoid, double& density) const;
  /// Repairs the properties so that I is positive definite: raises the mass to 1e-09 kg, and, if J
  /// is not valid, repairs the tensor about the centre of mass by `KtSecondMoment::makeValid`,
  /// where its eigenvalues have their physical meaning. Valid properties stay as they are, and so
  /// does a first moment that is not finite, which nothing can repair.
  virtual void makeValid();
  /// Computes the inverse of J.
  virtual void computeSecondMomentInverse() const;

  // Sums and differences of bodies about the same frame. A difference of masses is at least 0.

  /// In-place sum.
  KtRigidBodyMassProperties& operator+=(const KtRigidBodyMassProperties& other);
  /// In-place difference.
  KtRigidBodyMassProperties& operator-=(const KtRigidBodyMassProperties& other);
  /// Sum.
  KtRigidBodyMassProperties operator+(const KtRigidBodyMassProperties& other) const;
  /// Difference.
  KtRigidBodyMassProperties operator-(const KtRigidBodyMassProperties& other) const;

  /// Exact equality of the ten numbers.
  bool operator==(const KtRigidBodyMassProperties&) const = default;

  // For passes over many links: the members, without virtual calls.

  /// What `mass()` answers.
  double massValue() const noexcept { return mass_.value(); }
  /// What `firstMoment()` answers.
  const KtVector& firstMomentValue() const noexcept { return firstMoment_; }
  /// What `secondMoment()` answers.
  const KtSecondMoment& secondMomentValue() const noexcept { return secondMoment_; }
  /// `calculateForce` of an angular velocity and an acceleration.
  void getForce(const KtVector& w, const KtGeneralMotion& acceleration, KtVector& force,
                KtVector& moment) const noexcept {
    const KtVector& c = firstMoment_;
    const KtVector& a = acceleration.linear();
    const KtVector& alpha = acceleration.angular();
    force = a * mass_.value() - c.cross(alpha) + w.cross(w.cross(c));
    moment = secondMoment_ * alpha + c.cross(a) + w.cross(secondMoment_ * w);
  }
  /// Adds a body that stands in another frame, given by its rotation and translation in this one.
  void addTransformed(const KtRigidBodyMassProperties& other, const Kt::detail::RotationMatrix& r,
                      const KtVector& p) noexcept;

  // Common bodies of mass m in kg and lengths in m, in a frame at the body's natural origin and
  // axes. All are valid.

  /// A point at the origin. It gets the least inertia that `KtSecondMoment::makeValid` gives.
  static KtRigidBodyMassProperties pointMass(double m);
  /// A solid ball of radius r.
  static KtRigidBodyMassProperties uniformSolidSphere(double m, double r);
  /// Flat face on the xy plane, bulging towards +z. Its first moment is (0, 0, 0.375 r), as for a
  /// mass of 1 kg, whatever m is.
  static KtRigidBodyMassProperties uniformSolidHemisphere(double m, double r);
  /// A sphere's surface.
  static KtRigidBodyMassProperties uniformSphericalShell(double m, double r);
  /// Semi-axes a, b, c along x, y, z.
  static KtRigidBodyMassProperties uniformSolidAxisAlignedEllipsoid(double m, double a, double b,
                                                                    double c);
  /// A box with edges x, y, z, centred at the origin.
  static KtRigidBodyMassProperties uniformSolidAxisAlignedRectangularPrism(double m, double x,
                                                                           double y, double z);
  /// A cylinder about the z axis with radius r and height h, centred at the origin.
  static KtRigidBodyMassProperties uniformSolidAxisAlignedCylinder(double m, double r, double h);
  /// A torus about the z axis, centred at the origin.
  ///
  /// @param ringRadius  distance of the tube's centre line from the axis
  /// @param tubeRadius  radius of the tube
  static KtRigidBodyMassProperties uniformSolidAxisAlignedTorus(double m, double ringRadius,
                                                                double tubeRadius);
  /// A capsule where it stands: a cylinder and two hemispheres (see there for their first moment),
  /// or a sphere for a segment of length 0.
  static KtRigidBodyMassProperties uniformSolidCapsule(double m, const KtCapsule& capsule);

  /// The least valid object: 1e-09 kg at the origin.
  static KtRigidBodyMassProperties nullObject();
  /// An example of typical numbers: 1.5 kg, first moment (1, 2, 3), second moment
  /// (3, 4, 5, 0.1, 0.2, 0.3). It passes `isValid`, though its mass lies too far out for that
  /// tensor to be a real body's.
  static KtRigidBodyMassProperties defaultObject();

  static const KtToken& classToken() { return KtManip::KtRigidBodyMassPropertiesToken; }

 private:
  struct Caches {
    KtSpatialMatrix inverse;
    KtReArray factor;
  };
  // Which of the caches hold. A copy starts with none, an assignment leaves none.
  struct CacheFlags {
    bool inverse = false;
    bool factor = false;

    constexpr CacheFlags() noexcept = default;
    constexpr CacheFlags(const CacheFlags&) noexcept {}
    constexpr CacheFlags& operator=(const CacheFlags&) noexcept {
      clear();
      return *this;
    }
    constexpr void clear() noexcept { inverse = factor = false; }
    constexpr bool operator==(const CacheFlags&) const noexcept { return true; }
  };

  // Written to files
  KtXmlBasicType<KtNonNegReal> mass_;
  KtXmlVector firstMoment_;
  KtSecondMoment secondMoment_;
  // Filled by constant operations
  mutable KtOnDemand<Caches> caches_;
  mutable CacheFlags valid_;
};

extern template class KtXmlVectorType<KtRigidBodyMassProperties>;
extern template class KtXmlMapType<KtXmlBasicType<std::string>, KtRigidBodyMassProperties>;
