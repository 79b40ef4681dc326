#include "ktManipulator/activestate/KtManipulatorActiveAccelerationState.h"

void KtManipulatorActiveAccelerationState::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtAccelerationStateToken, &accelerationState_);
  registerComponent(KtManip::KtLinkAccelerationStatesToken, entries_.linksComponent());
  registerComponent(KtManip::KtBaseAccelerationStateToken, entries_.baseComponent());
  // The name that the lists of the other sub-states suggest; read, never written.
  specialDescriptorMap().add(KtToken(KtManip::ns.text() + "linkAccelerationStates"),
                             entries_.linksComponent(), true);
}

void KtManipulatorActiveAccelerationState::setAccelerationState(const KtAccelerationState& state) {
  accelerationState_ = state;
  invalidateAll();
}

void KtManipulatorActiveAccelerationState::invalidateAll() {
  entries_.invalidateAll();
}

void KtManipulatorActiveAccelerationState::resize(KtU32 count) {
  entries_.resize(count);
  invalidateAll();
}
