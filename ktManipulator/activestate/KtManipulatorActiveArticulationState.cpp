#include "ktManipulator/activestate/KtManipulatorActiveArticulationState.h"

void KtManipulatorActiveArticulationState::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtLinkArticulationStatesToken, &linkArticulationStates_);
  registerComponent(KtManip::KtBaseArticulationStateToken, &baseArticulationState_);
}

void KtManipulatorActiveArticulationState::invalidateAll() {
  for (KtLinkArticulationState& state : linkArticulationStates_.elements()) {
    state.invalidateAll();
  }
  baseArticulationState_.invalidateAll();
}
