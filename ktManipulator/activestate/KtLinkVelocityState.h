#pragma once

#include "ktManipulator/activestate/KtLinkMotions.h"
#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// How one link moves: an entry of a `KtManipulatorActiveVelocityState`. Velocities are in m/s and
/// rad/s, momenta in N s and N m s.
///
/// A motion means nothing unless its flag is set. All flags are false and all motions zero by
/// default. Entries stand by value in lists that the innermost loops walk over, so none of the
/// operations is virtual. Equality is that of what files hold, the first three motions.
class KT_EXPORT KtLinkVelocityState
    : public KtXmlPersistent<KtLinkVelocityState, KtXmlCompoundType> {
 public:
  /// Reads the state, valid flags included; motions that files don't have get invalid. See
  /// `KtXmlObject::read`.
  bool read(KtXmlReader& reader) override;
  void registerComponents() override;

  /// Absolute velocity of the DH frame's origin, and of the link's rotation, in DH axes.
  const KtGeneralMotion& dhFrameVelocityInLocal() const noexcept {
    return motions_[kDhFrameVelocityInLocal];
  }
  /// Sets what `dhFrameVelocityInLocal()` answers and marks it as valid.
  void setDhFrameVelocityInLocal(const KtGeneralMotion& motion) noexcept {
    motions_.set(kDhFrameVelocityInLocal, motion);
  }
  /// The same from its two parts.
  void setDhFrameVelocityInLocal(const KtVector& linear, const KtVector& angular) noexcept {
    motions_.set(kDhFrameVelocityInLocal, linear, angular);
  }
  /// Whether `dhFrameVelocityInLocal()` holds.
  bool localDhValid() const noexcept { return motions_.valid(kDhFrameVelocityInLocal); }
  /// Sets what `localDhValid()` answers.
  void setLocalDhValid(bool valid) noexcept { motions_.setValid(kDhFrameVelocityInLocal, valid); }
  /// The same in system axes. The reference point stays the DH frame's origin.
  const KtGeneralMotion& dhFrameVelocityInSystem() const noexcept {
    return motions_[kDhFrameVelocityInSystem];
  }
  /// Sets what `dhFrameVelocityInSystem()` answers and marks it as valid.
  void setDhFrameVelocityInSystem(const KtGeneralMotion& motion) noexcept {
    motions_.set(kDhFrameVelocityInSystem, motion);
  }
  /// The same from its two parts.
  void setDhFrameVelocityInSystem(const KtVector& linear, const KtVector& angular) noexcept {
    motions_.set(kDhFrameVelocityInSystem, linear, angular);
  }
  /// Whether `dhFrameVelocityInSystem()` holds.
  bool systemDhValid() const noexcept { return motions_.valid(kDhFrameVelocityInSystem); }
  /// Sets what `systemDhValid()` answers.
  void setSystemDhValid(bool valid) noexcept { motions_.setValid(kDhFrameVelocityInSystem, valid); }
  /// Velocity of the primary frame's origin and of the link's rotation, in system axes.
  const KtGeneralMotion& primaryFrameVelocityInSystem() const noexcept {
    return motions_[kPrimaryFrameVelocityInSystem];
  }
  /// Sets what `primaryFrameVelocityInSystem()` answers and marks it as valid.
  void setPrimaryFrameVelocityInSystem(const KtGeneralMotion& motion) noexcept {
    motions_.set(kPrimaryFrameVelocityInSystem, motion);
  }
  /// Whether `primaryFrameVelocityInSystem()` holds.
  bool systemPrimaryValid() const noexcept { return motions_.valid(kPrimaryFrameVelocityInSystem); }
  /// Sets what `systemPrimaryValid()` answers.
  void setSystemPrimaryValid(bool valid) noexcept {
    motions_.setValid(kPrimaryFrameVelocityInSystem, valid);
  }
  /// Velocity of the centre of mass and of the link's rotation, in DH axes.
  const KtGeneralMotion& comVelocityInLocal() const noexcept {
    return motions_[kComVelocityInLocal];
  }
  /// Sets what `comVelocityInLocal()` answers and marks it as valid.
  void setComVelocityInLocal(const KtGeneralMotion& motion) noexcept {
    motions_.set(kComVelocityInLocal, motion);
  }
  /// Whether `comVelocityInLocal()` holds.
  bool localComValid() const noexcept { return motions_.valid(kComVelocityInLocal); }
  /// Sets what `localComValid()` answers.
  void setLocalComValid(bool valid) noexcept { motions_.setValid(kComVelocityInLocal, valid); }
  /// Linear momentum, and angular momentum about the centre of mass, in DH axes.
  const KtGeneralMotion& momentumInLocal() const noexcept { return motions_[kMomentumInLocal]; }
  /// Sets what `momentumInLocal()` answers and marks it as valid.
  void setMomentumInLocal(const KtGeneralMotion& motion) noexcept {
    motions_.set(kMomentumInLocal, motion);
  }
  /// Whether `momentumInLocal()` holds.
  bool localMomentumValid() const noexcept { return motions_.valid(kMomentumInLocal); }
  /// Sets what `localMomentumValid()` answers.
  void setLocalMomentumValid(bool valid) noexcept { motions_.setValid(kMomentumInLocal, valid); }
  /// The same summed up over the link and all links outboard of it.
  const KtGeneralMotion& compositeMomentumInLocal() const noexcept {
    return motions_[kCompositeMomentumInLocal];
  }
  /// Sets what `compositeMomentumInLocal()` answers and marks it as valid.
  void setCompositeMomentumInLocal(const KtGeneralMotion& motion) noexcept {
    motions_.set(kCompositeMomentumInLocal, motion);
  }
  /// Whether `compositeMomentumInLocal()` holds.
  bool compositeMomentumValid() const noexcept { return motions_.valid(kCompositeMomentumInLocal); }
  /// Sets what `compositeMomentumValid()` answers.
  void setCompositeMomentumValid(bool valid) noexcept {
    motions_.setValid(kCompositeMomentumInLocal, valid);
  }
  /// Makes all six motions invalid.
  void invalidateAll() noexcept { motions_.invalidateAll(); }

  /// Exact equality of what files hold.
  bool operator==(const KtLinkVelocityState&) const = default;
  /// Name of the class in files.
  static const KtToken& classToken() { return KtManip::KtLinkVelocityStateToken; }

 private:
  enum Motion : unsigned {
    kDhFrameVelocityInLocal,
    kDhFrameVelocityInSystem,
    kPrimaryFrameVelocityInSystem,
    kComVelocityInLocal,
    kMomentumInLocal,
    kCompositeMomentumInLocal
  };

  Kt::detail::LinkMotions motions_;
};

extern template class KtXmlVectorType<KtLinkVelocityState>;
