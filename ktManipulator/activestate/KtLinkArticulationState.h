#pragma once

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/containers/KtXmlFlagMask.h"
#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/geometry/KtGeneralMotion.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"
#include "ktManipulator/inertia/KtArticulatedBodyDynamics.h"

/// The articulated dynamics of one link: an entry of a `KtManipulatorActiveArticulationState`.
///
/// A value is undefined unless its flag is set; setting a value sets its flag. All flags are false
/// and all values zero by default. Entries are stored by value in lists that the innermost loops
/// read, so no operation is virtual.
class KT_EXPORT KtLinkArticulationState
    : public KtXmlPersistent<KtLinkArticulationState, KtXmlCompoundType> {
 public:
  void registerComponents() override;

  /// The dynamics of the link and all links outboard of it, in the DH frame.
  const KtArticulatedBodyDynamics& arbd() const noexcept { return arbd_; }
  /// The same, to be computed in place; its flag is left to the caller.
  KtArticulatedBodyDynamics& arbdToFill() noexcept { return arbd_; }
  void setArbd(const KtArticulatedBodyDynamics& dynamics) {
    arbd_ = dynamics;
    valid_.set(kArbd);
  }
  /// Whether `arbd()` holds.
  bool arbdValid() const noexcept { return valid_.test(kArbd); }
  void setArbdValid(bool valid) noexcept { valid_.set(kArbd, valid); }
  /// What torques and forces add to the acceleration of the DH frame, m/s^2 and rad/s^2, in DH
  /// axes.
  const KtGeneralMotion& supplementalDhAcceleration() const noexcept {
    return supplementalDhAcceleration_;
  }
  void setSupplementalDhAcceleration(const KtGeneralMotion& acceleration) noexcept {
    supplementalDhAcceleration_ = acceleration;
    valid_.set(kSupplementalDhAcceleration);
  }
  void setSupplementalDhAcceleration(const KtVector& linear, const KtVector& angular) noexcept {
    supplementalDhAcceleration_.setLinear(linear);
    supplementalDhAcceleration_.setAngular(angular);
    valid_.set(kSupplementalDhAcceleration);
  }
  /// Whether `supplementalDhAcceleration()` holds.
  bool supplementalDhAccelerationValid() const noexcept {
    return valid_.test(kSupplementalDhAcceleration);
  }
  void setSupplementalDhAccelerationValid(bool valid) noexcept {
    valid_.set(kSupplementalDhAcceleration, valid);
  }
  /// The acceleration of the joint under torques and forces, rad/s^2 or m/s^2.
  double supplementalJointAcceleration() const noexcept { return supplementalJointAcceleration_; }
  void setSupplementalJointAcceleration(double acceleration) noexcept {
    supplementalJointAcceleration_ = acceleration;
    valid_.set(kSupplementalJointAcceleration);
  }
  /// Whether `supplementalJointAcceleration()` holds.
  bool supplementalJointAccelerationValid() const noexcept {
    return valid_.test(kSupplementalJointAcceleration);
  }
  void setSupplementalJointAccelerationValid(bool valid) noexcept {
    valid_.set(kSupplementalJointAcceleration, valid);
  }
  /// Makes all three values invalid.
  void invalidateAll() noexcept { valid_.clear(); }

  bool operator==(const KtLinkArticulationState&) const = default;
  static const KtToken& classToken() { return KtManip::KtLinkArticulationStateToken; }

 private:
  enum Flag : unsigned { kArbd, kSupplementalDhAcceleration, kSupplementalJointAcceleration };

  KtXmlFlagMask<3> valid_;
  KtArticulatedBodyDynamics arbd_;
  KtGeneralMotion supplementalDhAcceleration_;
  KtXmlBasicType<double> supplementalJointAcceleration_;
};

extern template class KtXmlVectorType<KtLinkArticulationState>;
