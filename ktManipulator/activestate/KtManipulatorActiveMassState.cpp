#include "ktManipulator/activestate/KtManipulatorActiveMassState.h"

bool KtManipulatorActiveMassState::read(KtXmlReader& reader) {
  entries_.handOut();  // a file can have valid entries
  return KtXmlPersistent::read(reader);
}

void KtManipulatorActiveMassState::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtLinkMassStatesToken, entries_.linksComponent());
  registerComponent(KtManip::KtBaseMassStateToken, entries_.baseComponent());
}

void KtManipulatorActiveMassState::invalidateAll() {
  entries_.invalidateAll();
}
