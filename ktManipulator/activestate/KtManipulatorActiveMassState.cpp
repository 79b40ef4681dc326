#include "ktManipulator/activestate/KtManipulatorActiveMassState.h"

void KtManipulatorActiveMassState::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtLinkMassStatesToken, entries_.linksComponent());
  registerComponent(KtManip::KtBaseMassStateToken, entries_.baseComponent());
}

void KtManipulatorActiveMassState::invalidateAll() {
  entries_.invalidateAll();
}
