#include "ktManipulator/activestate/KtManipulatorActiveAccelerationState.h"

void KtManipulatorActiveAccelerationState::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtAccelerationStateToken, &accelerationState_);
  registerComponent(KtManip::KtLinkAccelerationStatesToken, &linkAccelerationStates_);
  registerComponent(KtManip::KtBaseAccelerationStateToken, &baseAccelerationState_);
  // The name that the lists of the other sub-states suggest; read, never written.
  specialDescriptorMap().add(KtToken(KtManip::ns.text() + "linkAccelerationStates"),
                             &linkAccelerationStates_, true);
}

void KtManipulatorActiveAccelerationState::setAccelerationState(const KtAccelerationState& state) {
  accelerationState_ = state;
  invalidateAll();
}

void KtManipulatorActiveAccelerationState::invalidateAll() {
  for (KtLinkAccelerationState& state : linkAccelerationStates_.elements()) {
    state.invalidateAll();
  }
  baseAccelerationState_.invalidateAll();
}

void KtManipulatorActiveAccelerationState::resize(KtU32 count) {
  linkAccelerationStates_.resize(count);
  invalidateAll();
}
