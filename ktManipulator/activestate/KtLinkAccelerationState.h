#pragma once

#include "ktManipulator/activestate/KtLinkMotions.h"
#include "ktManipulator/foundation/containers/KtXmlVectorType.h"

/// The accelerations of one link: an entry of a `KtManipulatorActiveAccelerationState`.
/// Accelerations are in m/s^2 and rad/s^2, rates of momenta in N and N m.
///
/// The accelerations are those of points, not spatial ones: the linear part is the second
/// derivative of the frame origin's position. A motion is undefined unless its flag is set; setting
/// a motion sets its flag. All flags are false and all motions zero by default. Entries are stored
/// by value in lists that the innermost loops read, so no operation is virtual. Equality compares
/// what files hold, the first three motions.
class KT_EXPORT KtLinkAccelerationState : public Kt::detail::LinkMotions<KtLinkAccelerationState> {
 public:
  void registerComponents() override;

  /// Absolute acceleration of the DH frame's origin, and of the link's rotation, in DH axes.
  const KtGeneralMotion& dhFrameAccelerationInLocal() const noexcept {
    return motion(kDhFrameInLocal);
  }
  void setDhFrameAccelerationInLocal(const KtGeneralMotion& motion) noexcept {
    setMotion(kDhFrameInLocal, motion);
  }
  void setDhFrameAccelerationInLocal(const KtVector& linear, const KtVector& angular) noexcept {
    setMotion(kDhFrameInLocal, linear, angular);
  }
  /// The same in system axes. The reference point stays the DH frame's origin.
  const KtGeneralMotion& dhFrameAccelerationInSystem() const noexcept {
    return motion(kDhFrameInSystem);
  }
  void setDhFrameAccelerationInSystem(const KtGeneralMotion& motion) noexcept {
    setMotion(kDhFrameInSystem, motion);
  }
  /// Acceleration of the primary frame's origin and of the link's rotation, in system axes.
  const KtGeneralMotion& primaryFrameAccelerationInSystem() const noexcept {
    return motion(kPrimaryFrameInSystem);
  }
  void setPrimaryFrameAccelerationInSystem(const KtGeneralMotion& motion) noexcept {
    setMotion(kPrimaryFrameInSystem, motion);
  }
  /// Acceleration of the centre of mass and of the link's rotation, in DH axes.
  const KtGeneralMotion& comAccelerationInLocal() const noexcept { return motion(kComInLocal); }
  void setComAccelerationInLocal(const KtGeneralMotion& motion) noexcept {
    setMotion(kComInLocal, motion);
  }
  /// Rate of the linear momentum, and of the angular momentum about the centre of mass, in DH axes.
  const KtGeneralMotion& momentumRateInLocal() const noexcept { return motion(kMomentum); }
  void setMomentumRateInLocal(const KtGeneralMotion& motion) noexcept {
    setMotion(kMomentum, motion);
  }
  /// Whether `momentumRateInLocal()` holds.
  bool localMomentumRateValid() const noexcept { return motionValid(kMomentum); }
  void setLocalMomentumRateValid(bool valid) noexcept { setMotionValid(kMomentum, valid); }
  /// The same summed up over the link and all links outboard of it.
  const KtGeneralMotion& compositeMomentumRateInLocal() const noexcept {
    return motion(kCompositeMomentum);
  }
  void setCompositeMomentumRateInLocal(const KtGeneralMotion& motion) noexcept {
    setMotion(kCompositeMomentum, motion);
  }
  /// Whether `compositeMomentumRateInLocal()` holds.
  bool compositeMomentumRateValid() const noexcept { return motionValid(kCompositeMomentum); }
  void setCompositeMomentumRateValid(bool valid) noexcept {
    setMotionValid(kCompositeMomentum, valid);
  }

  /// Exact equality of what files hold.
  bool operator==(const KtLinkAccelerationState&) const = default;
  static const KtToken& classToken() { return KtManip::KtLinkAccelerationStateToken; }
};

extern template class KtXmlVectorType<KtLinkAccelerationState>;
