#include "ktManipulator/activestate/KtManipulatorActiveVelocityState.h"

void KtManipulatorActiveVelocityState::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtVelocityStateToken, &velocityState_);
  registerComponent(KtManip::KtLinkVelocityStatesToken, entries_.linksComponent());
  registerComponent(KtManip::KtBaseVelocityStateToken, entries_.baseComponent());
}

void KtManipulatorActiveVelocityState::setVelocityState(const KtVelocityState& state) {
  velocityState_ = state;
  entries_.resize(velocityState_.jointVelocities().size());
  invalidateAll();
}

void KtManipulatorActiveVelocityState::invalidateAll() {
  entries_.invalidateAll();
}
