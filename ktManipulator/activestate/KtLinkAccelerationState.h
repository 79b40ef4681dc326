#pragma once

#include "ktManipulator/activestate/KtLinkMotions.h"
#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// How one link accelerates: an entry of a `KtManipulatorActiveAccelerationState`. Accelerations
/// are in m/s^2 and rad/s^2, rates of momenta in N and N m.
///
/// The accelerations are those of points, not spatial ones: the linear part is the second
/// derivative of the place of the frame's origin. A motion means nothing unless its flag is set.
/// All flags are false and all motions zero by default. Entries stand by value in lists that the
/// innermost loops walk over, so none of the operations is virtual. Equality is that of what files
/// hold, the first three motions.
class KT_EXPORT KtLinkAccelerationState
    : public KtXmlPersistent<KtLinkAccelerationState, KtXmlCompoundType> {
 public:
  /// Reads the state, valid flags included; motions that files don't have get invalid. See
  /// `KtXmlObject::read`.
  bool read(KtXmlReader& reader) override;
  void registerComponents() override;

  /// Absolute acceleration of the DH frame's origin, and of the link's rotation, in DH axes.
  const KtGeneralMotion& dhFrameAccelerationInLocal() const noexcept {
    return motions_[kDhFrameAccelerationInLocal];
  }
  /// Sets what `dhFrameAccelerationInLocal()` answers and marks it as valid.
  void setDhFrameAccelerationInLocal(const KtGeneralMotion& motion) noexcept {
    motions_.set(kDhFrameAccelerationInLocal, motion);
  }
  /// The same from its two parts.
  void setDhFrameAccelerationInLocal(const KtVector& linear, const KtVector& angular) noexcept {
    motions_.set(kDhFrameAccelerationInLocal, linear, angular);
  }
  /// Whether `dhFrameAccelerationInLocal()` holds.
  bool localDhValid() const noexcept { return motions_.valid(kDhFrameAccelerationInLocal); }
  /// Sets what `localDhValid()` answers.
  void setLocalDhValid(bool valid) noexcept {
    motions_.setValid(kDhFrameAccelerationInLocal, valid);
  }
  /// The same in system axes. The reference point stays the DH frame's origin.
  const KtGeneralMotion& dhFrameAccelerationInSystem() const noexcept {
    return motions_[kDhFrameAccelerationInSystem];
  }
  /// Sets what `dhFrameAccelerationInSystem()` answers and marks it as valid.
  void setDhFrameAccelerationInSystem(const KtGeneralMotion& motion) noexcept {
    motions_.set(kDhFrameAccelerationInSystem, motion);
  }
  /// Whether `dhFrameAccelerationInSystem()` holds.
  bool systemDhValid() const noexcept { return motions_.valid(kDhFrameAccelerationInSystem); }
  /// Sets what `systemDhValid()` answers.
  void setSystemDhValid(bool valid) noexcept {
    motions_.setValid(kDhFrameAccelerationInSystem, valid);
  }
  /// Acceleration of the primary frame's origin and of the link's rotation, in system axes.
  const KtGeneralMotion& primaryFrameAccelerationInSystem() const noexcept {
    return motions_[kPrimaryFrameAccelerationInSystem];
  }
  /// Sets what `primaryFrameAccelerationInSystem()` answers and marks it as valid.
  void setPrimaryFrameAccelerationInSystem(const KtGeneralMotion& motion) noexcept {
    motions_.set(kPrimaryFrameAccelerationInSystem, motion);
  }
  /// Whether `primaryFrameAccelerationInSystem()` holds.
  bool systemPrimaryValid() const noexcept {
    return motions_.valid(kPrimaryFrameAccelerationInSystem);
  }
  /// Sets what `systemPrimaryValid()` answers.
  void setSystemPrimaryValid(bool valid) noexcept {
    motions_.setValid(kPrimaryFrameAccelerationInSystem, valid);
  }
  /// Acceleration of the centre of mass and of the link's rotation, in DH axes.
  const KtGeneralMotion& comAccelerationInLocal() const noexcept {
    return motions_[kComAccelerationInLocal];
  }
  /// Sets what `comAccelerationInLocal()` answers and marks it as valid.
  void setComAccelerationInLocal(const KtGeneralMotion& motion) noexcept {
    motions_.set(kComAccelerationInLocal, motion);
  }
  /// Whether `comAccelerationInLocal()` holds.
  bool localComValid() const noexcept { return motions_.valid(kComAccelerationInLocal); }
  /// Sets what `localComValid()` answers.
  void setLocalComValid(bool valid) noexcept { motions_.setValid(kComAccelerationInLocal, valid); }
  /// Rate of the linear momentum, and of the angular momentum about the centre of mass, in DH axes.
  const KtGeneralMotion& momentumRateInLocal() const noexcept {
    return motions_[kMomentumRateInLocal];
  }
  /// Sets what `momentumRateInLocal()` answers and marks it as valid.
  void setMomentumRateInLocal(const KtGeneralMotion& motion) noexcept {
    motions_.set(kMomentumRateInLocal, motion);
  }
  /// Whether `momentumRateInLocal()` holds.
  bool localMomentumRateValid() const noexcept { return motions_.valid(kMomentumRateInLocal); }
  /// Sets what `localMomentumRateValid()` answers.
  void setLocalMomentumRateValid(bool valid) noexcept {
    motions_.setValid(kMomentumRateInLocal, valid);
  }
  /// The same summed up over the link and all links outboard of it.
  const KtGeneralMotion& compositeMomentumRateInLocal() const noexcept {
    return motions_[kCompositeMomentumRateInLocal];
  }
  /// Sets what `compositeMomentumRateInLocal()` answers and marks it as valid.
  void setCompositeMomentumRateInLocal(const KtGeneralMotion& motion) noexcept {
    motions_.set(kCompositeMomentumRateInLocal, motion);
  }
  /// Whether `compositeMomentumRateInLocal()` holds.
  bool compositeMomentumRateValid() const noexcept {
    return motions_.valid(kCompositeMomentumRateInLocal);
  }
  /// Sets what `compositeMomentumRateValid()` answers.
  void setCompositeMomentumRateValid(bool valid) noexcept {
    motions_.setValid(kCompositeMomentumRateInLocal, valid);
  }
  /// Makes all six motions invalid.
  void invalidateAll() noexcept { motions_.invalidateAll(); }

  /// Exact equality of what files hold.
  bool operator==(const KtLinkAccelerationState&) const = default;
  /// Name of the class in files.
  static const KtToken& classToken() { return KtManip::KtLinkAccelerationStateToken; }

 private:
  enum Motion : unsigned {
    kDhFrameAccelerationInLocal,
    kDhFrameAccelerationInSystem,
    kPrimaryFrameAccelerationInSystem,
    kComAccelerationInLocal,
    kMomentumRateInLocal,
    kCompositeMomentumRateInLocal
  };

  Kt::detail::LinkMotions motions_;
};

extern template class KtXmlVectorType<KtLinkAccelerationState>;
