#include "ktManipulator/activestate/KtManipulatorActiveVelocityState.h"

void KtManipulatorActiveVelocityState::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtVelocityStateToken, &velocityState_);
  registerComponent(KtManip::KtLinkVelocityStatesToken, &linkVelocityStates_);
  registerComponent(KtManip::KtBaseVelocityStateToken, &baseVelocityState_);
}

void KtManipulatorActiveVelocityState::setVelocityState(const KtVelocityState& state) {
  velocityState_ = state;
  linkVelocityStates_.resize(velocityState_.jointVelocities().size());
  invalidateAll();
}

void KtManipulatorActiveVelocityState::invalidateAll() {
  for (KtLinkVelocityState& state : linkVelocityStates_.elements()) state.invalidateAll();
  baseVelocityState_.invalidateAll();
}
