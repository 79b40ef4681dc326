#include "ktManipulator/activestate/KtManipulatorActiveMassState.h"

void KtManipulatorActiveMassState::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtLinkMassStatesToken, &linkMassStates_);
  registerComponent(KtManip::KtBaseMassStateToken, &baseMassState_);
}

void KtManipulatorActiveMassState::invalidateAll() {
  for (KtLinkMassState& state : linkMassStates_.vectorContainer()) state.invalidateAll();
  baseMassState_.invalidateAll();
}
