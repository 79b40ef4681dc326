#include "ktManipulator/activestate/KtManipulatorActiveState.h"

template class KtXmlVectorType<KtManipulatorActiveState>;

bool KtManipulatorActiveState::read(KtXmlReader& reader) {
  // A file can have valid entries.
  accelerationClean_ = false;
  forceClean_ = false;
  return KtXmlPersistent::read(reader);
}

void KtManipulatorActiveState::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtActivePositionStateToken, &activePositionState_);
  registerComponent(KtManip::KtActiveVelocityStateToken, &activeVelocityState_);
  registerComponent(KtManip::KtActiveAccelerationStateToken, &activeAccelerationState_);
  registerComponent(KtManip::KtActiveForceStateToken, &activeForceState_);
  registerComponent(KtManip::KtActiveMassStateToken, &activeMassState_);
  registerComponent(KtManip::KtActiveArticulationStateToken, &activeArticulationState_);
  registerComponent(KtManip::KtActuatorStateToken, &actuatorState_);
}

bool KtManipulatorActiveState::setPositionState(const KtPositionState& state) {
  if (state == activePositionState_.positionState()) return false;
  activePositionState_.setPositionState(state);
  const KtU32 joints = activePositionState_.linkCount();
  activeVelocityState_.invalidateAll();
  activeVelocityState_.resize(joints);
  activeMassState_.invalidateAll();
  activeMassState_.resize(joints);
  activeArticulationState_.invalidateAll();
  activeArticulationState_.resize(joints);
  if (activeAccelerationState_.size() != joints) {
    activeAccelerationState_.resize(joints);  // invalidates its entries
    accelerationClean_ = true;
  }
  if (activeForceState_.size() != joints) {
    activeForceState_.resize(joints);
    forceClean_ = true;
  }
  actuatorState_.resize(joints);
  invalidateAccelerationUnlessClean();
  invalidateForceUnlessClean();
  return true;
}

bool KtManipulatorActiveState::setVelocityState(const KtVelocityState& state) {
  if (state == activeVelocityState_.velocityState()) return false;
  activeVelocityState_.setVelocityState(state);
  activeArticulationState_.invalidateAll();
  invalidateAccelerationUnlessClean();
  invalidateForceUnlessClean();
  return true;
}

void KtManipulatorActiveState::setAccelerationState(const KtAccelerationState& state) {
  activeAccelerationState_.setAccelerationState(state);
  invalidateForceUnlessClean();
  activeArticulationState_.invalidateAll();
}

void KtManipulatorActiveState::invalidateAll() {
  activePositionState_.invalidateAll();
  activeVelocityState_.invalidateAll();
  activeMassState_.invalidateAll();
  activeAccelerationState_.invalidateAll();
  activeForceState_.invalidateAll();
  activeArticulationState_.invalidateAll();
  accelerationClean_ = true;
  forceClean_ = true;
}

void KtManipulatorActiveState::invalidateAccelerationUnlessClean() {
  if (accelerationClean_) return;
  activeAccelerationState_.invalidateAll();
  accelerationClean_ = true;
}

void KtManipulatorActiveState::invalidateForceUnlessClean() {
  if (forceClean_) return;
  activeForceState_.invalidateAll();
  forceClean_ = true;
}
