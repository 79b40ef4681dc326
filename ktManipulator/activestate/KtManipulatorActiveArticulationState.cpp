#include "ktManipulator/activestate/KtManipulatorActiveArticulationState.h"

void KtManipulatorActiveArticulationState::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtLinkArticulationStatesToken, entries_.linksComponent());
  registerComponent(KtManip::KtBaseArticulationStateToken, entries_.baseComponent());
}

void KtManipulatorActiveArticulationState::invalidateAll() {
  entries_.invalidateAll();
}
