#pragma once

#include "ktManipulator/inertia/KtArticulatedBodyInertia.h"
#include "ktManipulator/inertia/KtJointMotion.h"

/// How an articulated body answers at one of its links: the force that an acceleration a takes is
/// I a + bias, with I its articulated inertia and the bias the force that it takes at rest. Both
/// stand in the link's frame, about its origin.
///
/// @see R. Featherstone, Rigid Body Dynamics Algorithms, Springer 2008, ch. 7
class KT_EXPORT KtArticulatedBodyDynamics
    : public KtXmlPersistent<KtArticulatedBodyDynamics, KtXmlCompoundType> {
 public:
  /// No inertia and no bias.
  KtArticulatedBodyDynamics() = default;
  /// From the two members.
  KtArticulatedBodyDynamics(const KtArticulatedBodyInertia& inertia, const KtGeneralForce& bias)
      : inertia_(inertia), bias_(bias) {}
  /// That of a rigid body.
  KtArticulatedBodyDynamics(const KtRigidBodyMassProperties& properties, const KtGeneralForce& bias)
      : bias_(bias) {
    inertia_.setFromRigidBody(properties);
  }

  void registerComponents() override;

  /// Moves the body: given in frame B and transformed by T_A_B, the dynamics stand in frame A.
  virtual void transformBy(const KtCoordinateSystemTransformation& t);
  /// Rotates the body about the origin.
  virtual void transformBy(const KtOrientation& r);
  /// Moves the body by p.
  virtual void transformBy(const KtVector& p);
  /// Adds a child's dynamics in the same frame as they show through the joint between them; see
  /// `setToTransformedValue`.
  virtual void joinWith(const KtArticulatedBodyDynamics& child, const KtGeneralMotion& s, double d,
                        double tau);
  /// Sets this to what a child shows to its parent through the joint between them: its inertia as
  /// `KtArticulatedBodyInertia::setToTransformedValue` says, and its bias with the force that the
  /// joint's torque transmits. A denominator of exactly 0 leaves the child's bias.
  ///
  /// @param child  dynamics in the same frame
  /// @param s      unit motion of the joint
  /// @param d      the joint's own inertia
  /// @param tau    the joint's torque (or force)
  virtual void setToTransformedValue(const KtArticulatedBodyDynamics& child,
                                     const KtGeneralMotion& s, double d, double tau);
  /// The force that an acceleration takes.
  virtual KtGeneralForce calculateForce(const KtGeneralMotion& acceleration) const;
  /// The acceleration under a force.
  virtual KtGeneralMotion calculateAcceleration(const KtGeneralForce& force) const;
  /// The inertia.
  virtual const KtArticulatedBodyInertia& inertia() const { return inertia_; }
  virtual void setInertia(const KtArticulatedBodyInertia& inertia) { inertia_ = inertia; }
  /// Sets the inertia to a rigid body's.
  virtual void setInertiaFromRigidBody(const KtRigidBodyMassProperties& properties);
  /// The force at rest.
  virtual const KtGeneralForce& bias() const { return bias_; }
  virtual void setBias(const KtGeneralForce& bias) { bias_ = bias; }
  /// Sets both members.
  virtual void set(const KtArticulatedBodyInertia& inertia, const KtGeneralForce& bias);
  /// See `KtArticulatedBodyInertia::setFromArray`.
  virtual void setInertiaFromArray(const KtReArray& array);
  /// See `KtArticulatedBodyInertia::getArray`.
  virtual void getInertiaArray(KtReArray& array) const;
  /// Whether no number differs by more than the tolerance.
  virtual bool approxEq(const KtArticulatedBodyDynamics& other, double tolerance) const;

  // For passes over many links: s is how the joint moves the child, in the child's frame, and
  // nothing is virtual.

  /// Sets this to the dynamics of a rigid body.
  void setRigid(const KtRigidBodyMassProperties& properties, const KtVector& biasForce,
                const KtVector& biasMoment) noexcept;
  /// Adds a child's dynamics as they show through the joint between them, as `joinWith` does, with
  /// the child in its own frame, which is given by its rotation and translation in this one.
  void joinThrough(const KtArticulatedBodyDynamics& child, const Kt::detail::JointMotion& s,
                   double d, double tau, const Kt::detail::RotationMatrix& r,
                   const KtVector& p) noexcept;
  /// The acceleration of the joint that carries this body, when its inboard side accelerates by
  /// (a, alpha), given in this body's frame: (tau - s . (I a + bias)) / (s . I s + d), or 0 for a
  /// denominator of exactly 0.
  double jointAcceleration(const Kt::detail::JointMotion& s, double d, double tau,
                           const KtVector& a, const KtVector& alpha) const noexcept;

  // Sums and differences about the same frame, member by member.

  /// In-place sum.
  KtArticulatedBodyDynamics& operator+=(const KtArticulatedBodyDynamics& other) noexcept {
    inertia_ += other.inertia_;
    bias_ += other.bias_;
    return *this;
  }
  /// In-place difference.
  KtArticulatedBodyDynamics& operator-=(const KtArticulatedBodyDynamics& other) noexcept {
    inertia_ -= other.inertia_;
    bias_ -= other.bias_;
    return *this;
  }
  /// Sum.
  KtArticulatedBodyDynamics operator+(const KtArticulatedBodyDynamics& other) const {
    return KtArticulatedBodyDynamics(*this) += other;
  }
  /// Difference.
  KtArticulatedBodyDynamics operator-(const KtArticulatedBodyDynamics& other) const {
    return KtArticulatedBodyDynamics(*this) -= other;
  }

  bool operator==(const KtArticulatedBodyDynamics&) const = default;
  static const KtToken& classToken() { return KtManip::KtArticulatedBodyDynamicsToken; }

 private:
  KtArticulatedBodyInertia inertia_;
  KtGeneralForce bias_;
};
