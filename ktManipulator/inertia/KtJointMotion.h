/// @file
/// How a joint moves whose motion doesn't depend on where it stands.
#pragma once

#include "ktManipulator/foundation/geometry/KtVector.h"

namespace Kt::detail {

/// The motion of a joint's outboard frame relative to the inboard one, in the outboard frame's axes
/// at its origin, where none of it depends on the joint parameter.
struct JointMotion {
  KtVector linear;           ///< Velocity at a unit of joint rate.
  KtVector angular;          ///< Angular velocity at a unit of joint rate.
  KtVector centripetal;      ///< Linear acceleration at a unit of joint rate.
  bool turnsAboutZ = false;  ///< Whether all is zero but the angular z, which is 1.

  /// Adds the motion at a joint rate, or the acceleration at a joint acceleration.
  void addTo(double rate, KtVector& toLinear, KtVector& toAngular) const noexcept {
    if (turnsAboutZ) {
      toAngular.z += rate;
      return;
    }
    toLinear += linear * rate;
    toAngular += angular * rate;
  }
  /// Adds the acceleration of a joint, that of Coriolis included.
  ///
  /// @param w        angular velocity of the inboard frame
  /// @param qDot     joint rate
  /// @param qDotDot  joint acceleration
  void addAccelerationTo(const KtVector& w, double qDot, double qDotDot, KtVector& toLinear,
                         KtVector& toAngular) const noexcept {
    if (turnsAboutZ) {
      toAngular += KtVector(w.y * qDot, -w.x * qDot, qDotDot);
      return;
    }
    toLinear += w.cross(linear) * (2.0 * qDot) + linear * qDotDot + centripetal * (qDot * qDot);
    toAngular += w.cross(angular * qDot) + angular * qDotDot;
  }
  /// The power of a force and a moment at a unit of joint rate.
  double power(const KtVector& force, const KtVector& moment) const noexcept {
    return turnsAboutZ ? moment.z : linear.dot(force) + angular.dot(moment);
  }
};

}  // namespace Kt::detail
