#include "ktManipulator/activestate/KtManipulatorActivePositionState.h"

template class KtXmlVectorType<KtManipulatorActivePositionState>;

void KtManipulatorActivePositionState::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtPositionStateToken, &positionState_);
  registerComponent(KtManip::KtLinkPositionStatesToken, entries_.linksComponent());
  registerComponent(KtManip::KtBasePositionStateToken, entries_.baseComponent());
}

void KtManipulatorActivePositionState::setPositionState(const KtPositionState& state) {
  positionState_ = state;
  entries_.resize(positionState_.jointPositions().size());
  invalidateAll();
}

void KtManipulatorActivePositionState::invalidateAll() {
  entries_.invalidateAll();
}
