#include "ktManipulator/state/KtAccelerationState.h"

#include "ktManipulator/state/KtJointVector.h"
#include "ktManipulator/state/KtVelocityState.h"

template class KtXmlVectorType<KtAccelerationState>;

void KtAccelerationState::registerComponents() {
  registerComponent(KtManip::KtJointAccelerationsToken, &jointAccelerations_);
  registerComponent(KtManip::KtGeneralAccelerationToken, &generalAcceleration_);
}

void KtAccelerationState::setJointAccelerations(const KtReArray& accelerations) {
  Kt::detail::setFromColumn(accelerations, jointAccelerations_);
}

bool KtAccelerationState::approxEq(const KtAccelerationState& other, double tolerance) const {
  return generalAcceleration_.approxEq(other.generalAcceleration_, tolerance) &&
         Kt::detail::approxEqual(jointAccelerations_, other.jointAccelerations_, tolerance);
}

KtAccelerationState KtAccelerationState::zeroCompatibleState(const KtVelocityState& velocity) {
  KtAccelerationState zero;
  zero.jointAccelerations_.resize(velocity.jointVelocities().size());
  return zero;
}
