#include "ktManipulator/activestate/KtManipulatorActiveState.h"

#include "ktManipulator/foundation/tokens/KtManipTokens.h"

const KtToken& KtManipulatorActiveState::classToken() {
  return KtManip::KtManipulatorActiveStateToken;
}

void KtManipulatorActiveState::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtActuatorStateToken, &actuatorState_);
}

bool KtManipulatorActiveState::setPositionState(const KtPositionState& state) {
  if (state == positionState_) return false;
  positionState_ = state;
  actuatorState_.resize(positionState_.jointPositions().size());
  return true;
}

bool KtManipulatorActiveState::setVelocityState(const KtVelocityState& state) {
  if (state == velocityState_) return false;
  velocityState_ = state;
  return true;
}
