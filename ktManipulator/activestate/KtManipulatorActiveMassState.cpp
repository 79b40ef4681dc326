#include "ktManipulator/activestate/KtManipulatorActiveMassState.h"

bool KtManipulatorActiveMassState::read(KtXmlReader& reader) {
  entries_.handOut();  // a file can have valid entries
  return KtXmlPersistent::read(reader);
}

void KtManipulatorActiveMassState::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtLinkMassStatesToken, &entries_.links());
  registerComponent(KtManip::KtBaseMassStateToken, &entries_.base());
}

void KtManipulatorActiveMassState::invalidateAll() {
  entries_.invalidateAll();
}
