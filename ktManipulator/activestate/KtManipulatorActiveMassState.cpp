#include "ktManipulator/activestate/KtManipulatorActiveMassState.h"

void KtManipulatorActiveMassState::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtLinkMassStatesToken, &linkMassStates_);
  registerComponent(KtManip::KtBaseMassStateToken, &baseMassState_);
}

void KtManipulatorActiveMassState::invalidateAll() {
  for (KtLinkMassState& state : linkMassStates_.elements()) state.invalidateAll();
  baseMassState_.invalidateAll();
}
