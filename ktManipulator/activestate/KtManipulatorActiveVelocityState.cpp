#include "ktManipulator/activestate/KtManipulatorActiveVelocityState.h"

bool KtManipulatorActiveVelocityState::read(KtXmlReader& reader) {
  entries_.handOut();  // a file can have valid entries
  return KtXmlPersistent::read(reader);
}

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
