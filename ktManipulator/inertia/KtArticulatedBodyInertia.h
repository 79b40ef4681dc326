#pragma once

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/geometry/KtCoordinateSystemTransformation.h"
#include "ktManipulator/foundation/geometry/KtGeneralForce.h"
#include "ktManipulator/foundation/geometry/KtGeneralMotion.h"
#include "ktManipulator/foundation/geometry/KtRotationMatrix.h"
#include "ktManipulator/foundation/matrix/KtSecondMoment.h"
#include "ktManipulator/foundation/matrix/KtSpatialMatrix.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

class KtReArray;
class KtRigidBodyMassProperties;

/// The inertia that an articulated body shows at one of its links: a symmetric 6 by 6 matrix
/// I = [ L, X ; X^T, A ], linear rows first, about the origin of the link's frame in its axes.
/// An acceleration with the linear part a and the angular part alpha takes
///
///     force  = L a + X alpha
///     moment = X^T a + A alpha
///
/// of which L is in kg, X in kg m and A in kg m^2. While `isRigid()`, the inertia is that of one
/// rigid body: L is the mass times the unit matrix, X is the cross-product matrix of minus the
/// first moment, and operations save work by that.
///
/// @see R. Featherstone, Rigid Body Dynamics Algorithms, Springer 2008, ch. 7 (there with angular
///      rows first)
class KT_EXPORT KtArticulatedBodyInertia
    : public KtXmlPersistent<KtArticulatedBodyInertia, KtXmlCompoundType> {
 public:
  /// Zero.
  KtArticulatedBodyInertia() = default;

  void registerComponents() override;

  /// Moves the body: given in frame B and transformed by T_A_B, the inertia stands in frame A.
  virtual void transformBy(const KtCoordinateSystemTransformation& t);
  /// Rotates the body about the origin.
  virtual void transformBy(const KtOrientation& r);
  /// Moves the body by p.
  virtual void transformBy(const KtVector& p);
  /// The same as `transformBy`, computed in one pass whatever T is. The two agree to rounding.
  virtual void transformBy2(const KtCoordinateSystemTransformation& t);
  /// Adds a child's inertia in the same frame as far as it resists through the joint between them;
  /// see `setToTransformedValue`.
  virtual void joinWith(const KtArticulatedBodyInertia& child, const KtGeneralMotion& s, double d);
  /// The same, and tells what it came by on the way.
  virtual void joinWith(const KtArticulatedBodyInertia& child, const KtGeneralMotion& s, double d,
                        KtGeneralForce& h, double& denominator);
  /// Sets this to what a child's inertia shows to its parent through the joint between them:
  /// I - (I s)(I s)^T / (s . I s + d). A denominator of exactly 0 takes nothing off.
  ///
  /// @param child        inertia I, in the same frame
  /// @param s            unit motion of the joint
  /// @param d            the joint's own inertia, as that of a rotor behind a gear
  /// @param h            set to I s
  /// @param denominator  set to s . I s + d
  virtual void setToTransformedValue(const KtArticulatedBodyInertia& child,
                                     const KtGeneralMotion& s, double d, KtGeneralForce& h,
                                     double& denominator);
  /// The force of an acceleration: I times it.
  virtual KtGeneralForce calculateForce(const KtGeneralMotion& acceleration) const;
  /// The same, fast for an acceleration of which most components are zero.
  virtual KtGeneralForce calculateForceSparse(const KtGeneralMotion& acceleration) const;
  /// The acceleration under a force: the inverse of `calculateForce`. A singular inertia gives a
  /// large answer, which may overflow, where nothing resists the force.
  virtual KtGeneralMotion calculateAcceleration(const KtGeneralForce& force) const;
  /// The block L, as a symmetric matrix.
  virtual const KtSecondMoment& linearMatrix() const { return linear_; }
  /// The block A.
  virtual const KtSecondMoment& angularMatrix() const { return angular_; }
  /// The block X.
  virtual const KtSpatialMatrix& crossMatrix() const { return cross_; }
  /// Whether this is known to be the inertia of one rigid body.
  virtual bool isRigid() const { return isRigid_; }
  /// Sets the three blocks, as those of an articulated body.
  virtual void set(const KtSecondMoment& linear, const KtSecondMoment& angular,
                   const KtSpatialMatrix& cross);
  /// Sets this to a rigid body's inertia.
  virtual void setFromRigidBody(const KtRigidBodyMassProperties& properties);
  /// Sets the blocks from a symmetric 6 by 6 array, as those of an articulated body. An array of
  /// another shape is reported and changes nothing.
  virtual void setFromArray(const KtReArray& array);
  /// Writes I, 6 by 6.
  virtual void getArray(KtReArray& array) const;
  /// Whether no entry of the blocks differs by more than the tolerance.
  virtual bool approxEq(const KtArticulatedBodyInertia& other, double tolerance) const;

  // Sums and differences of inertias about the same frame. They are rigid if both operands are.

  /// In-place sum.
  KtArticulatedBodyInertia& operator+=(const KtArticulatedBodyInertia& other) noexcept;
  /// In-place difference.
  KtArticulatedBodyInertia& operator-=(const KtArticulatedBodyInertia& other) noexcept;
  /// Sum.
  KtArticulatedBodyInertia operator+(const KtArticulatedBodyInertia& other) const {
    return KtArticulatedBodyInertia(*this) += other;
  }
  /// Difference.
  KtArticulatedBodyInertia operator-(const KtArticulatedBodyInertia& other) const {
    return KtArticulatedBodyInertia(*this) -= other;
  }

  /// Exact equality of the blocks and of `isRigid()`.
  bool operator==(const KtArticulatedBodyInertia&) const = default;
  static const KtToken& classToken() { return KtManip::KtArticulatedBodyInertiaToken; }

 private:
  friend class KtArticulatedBodyDynamics;

  void addRotatedAndMoved(const double* linear, const double* angular, const double* cross,
                          const Kt::detail::RotationMatrix& r, const KtVector& p) noexcept;
  // I s, without multiplying by components of s that are zero.
  void getSparseForce(const KtVector& a, const KtVector& alpha, KtVector& force,
                      KtVector& moment) const noexcept;
  void rotateBlocks(const KtOrientation& r) noexcept;
  void translateBlocks(const KtVector& p) noexcept;

  KtSecondMoment linear_;
  KtSecondMoment angular_;
  KtSpatialMatrix cross_;
  KtXmlBasicType<bool> isRigid_;
};
