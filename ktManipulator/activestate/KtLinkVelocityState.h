#pragma once

#include "ktManipulator/activestate/KtLinkMotions.h"
#include "ktManipulator/foundation/containers/KtXmlVectorType.h"

/// The velocities of one link: an entry of a `KtManipulatorActiveVelocityState`. Velocities are in
/// m/s and rad/s, momenta in N s and N m s.
///
/// A motion is undefined unless its flag is set; setting a motion sets its flag. All flags are
/// false and all motions zero by default. Entries are stored by value in lists that the innermost
/// loops read, so no operation is virtual. Equality compares what files hold, the first three
/// motions.
class KT_EXPORT KtLinkVelocityState : public Kt::detail::LinkMotions<KtLinkVelocityState> {
 public:
  void registerComponents() override;

  /// Absolute velocity of the DH frame's origin, and of the link's rotation, in DH axes.
  const KtGeneralMotion& dhFrameVelocityInLocal() const noexcept { return motion(kDhFrameInLocal); }
  void setDhFrameVelocityInLocal(const KtGeneralMotion& motion) noexcept {
    setMotion(kDhFrameInLocal, motion);
  }
  void setDhFrameVelocityInLocal(const KtVector& linear, const KtVector& angular) noexcept {
    setMotion(kDhFrameInLocal, linear, angular);
  }
  /// The same in system axes. The reference point stays the DH frame's origin.
  const KtGeneralMotion& dhFrameVelocityInSystem() const noexcept {
    return motion(kDhFrameInSystem);
  }
  void setDhFrameVelocityInSystem(const KtGeneralMotion& motion) noexcept {
    setMotion(kDhFrameInSystem, motion);
  }
  void setDhFrameVelocityInSystem(const KtVector& linear, const KtVector& angular) noexcept {
    setMotion(kDhFrameInSystem, linear, angular);
  }
  /// Velocity of the primary frame's origin and of the link's rotation, in system axes.
  const KtGeneralMotion& primaryFrameVelocityInSystem() const noexcept {
    return motion(kPrimaryFrameInSystem);
  }
  void setPrimaryFrameVelocityInSystem(const KtGeneralMotion& motion) noexcept {
    setMotion(kPrimaryFrameInSystem, motion);
  }
  /// Velocity of the centre of mass and of the link's rotation, in DH axes.
  const KtGeneralMotion& comVelocityInLocal() const noexcept { return motion(kComInLocal); }
  void setComVelocityInLocal(const KtGeneralMotion& motion) noexcept {
    setMotion(kComInLocal, motion);
  }
  /// Linear momentum, and angular momentum about the centre of mass, in DH axes.
  const KtGeneralMotion& momentumInLocal() const noexcept { return motion(kMomentum); }
  void setMomentumInLocal(const KtGeneralMotion& motion) noexcept { setMotion(kMomentum, motion); }
  /// Whether `momentumInLocal()` holds.
  bool localMomentumValid() const noexcept { return motionValid(kMomentum); }
  void setLocalMomentumValid(bool valid) noexcept { setMotionValid(kMomentum, valid); }
  /// The same summed up over the link and all links outboard of it.
  const KtGeneralMotion& compositeMomentumInLocal() const noexcept {
    return motion(kCompositeMomentum);
  }
  void setCompositeMomentumInLocal(const KtGeneralMotion& motion) noexcept {
    setMotion(kCompositeMomentum, motion);
  }
  /// Whether `compositeMomentumInLocal()` holds.
  bool compositeMomentumValid() const noexcept { return motionValid(kCompositeMomentum); }
  void setCompositeMomentumValid(bool valid) noexcept { setMotionValid(kCompositeMomentum, valid); }

  /// Exact equality of what files hold.
  bool operator==(const KtLinkVelocityState&) const = default;
  static const KtToken& classToken() { return KtManip::KtLinkVelocityStateToken; }
};

extern template class KtXmlVectorType<KtLinkVelocityState>;
