#include "ktManipulator/activestate/KtManipulatorActiveArticulationState.h"

bool KtManipulatorActiveArticulationState::read(KtXmlReader& reader) {
  entries_.handOut();  // a file can have valid entries
  return KtXmlPersistent::read(reader);
}

void KtManipulatorActiveArticulationState::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtLinkArticulationStatesToken, entries_.linksComponent());
  registerComponent(KtManip::KtBaseArticulationStateToken, entries_.baseComponent());
}

void KtManipulatorActiveArticulationState::invalidateAll() {
  entries_.invalidateAll();
}
