#include "ktManipulator/activestate/KtManipulatorActiveForceState.h"

#include "ktManipulator/foundation/core/KtPrint.h"

const KtExternalForceDescription KtManipulatorActiveForceState::m_theZeroForceDescription;

void KtManipulatorActiveForceState::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtLinkForceStatesToken, entries_.linksComponent());
  registerComponent(KtManip::KtBaseForceStateToken, entries_.baseComponent());
}

void KtManipulatorActiveForceState::resize(KtU32 count) {
  entries_.resize(count);
  invalidateAll();
}

bool KtManipulatorActiveForceState::hasEntry(const char* operation, KtU32 index) const {
  if (index == ktBaseIndex || index < linkCount()) return true;
  Kt::Print::instance().write(Kt::Print::kError,
                              "KtManipulatorActiveForceState::%s(): index %u out of range %u.\n",
                              operation, index, linkCount());
  return false;
}

const KtExternalForceDescription& KtManipulatorActiveForceState::externalForceDescription(
    const KtU32& index) const {
  return hasEntry("externalForceDescription", index) ? entry(index).externalForceDescription()
                                                     : m_theZeroForceDescription;
}

void KtManipulatorActiveForceState::setExternalForceDescription(
    const KtU32& index, const KtExternalForceDescription& description) {
  if (!hasEntry("setExternalForceDescription", index)) return;
  entry(index).setExternalForceDescription(description);
}

void KtManipulatorActiveForceState::invalidateAll() {
  entries_.invalidateAll();
}
