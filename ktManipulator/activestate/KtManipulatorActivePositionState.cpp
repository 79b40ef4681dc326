#include "ktManipulator/activestate/KtManipulatorActivePositionState.h"

template class KtXmlVectorType<KtManipulatorActivePositionState>;

void KtManipulatorActivePositionState::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtPositionStateToken, &positionState_);
  registerComponent(KtManip::KtLinkPositionStatesToken, &linkPositionStates_);
  registerComponent(KtManip::KtBasePositionStateToken, &basePositionState_);
}

void KtManipulatorActivePositionState::setPositionState(const KtPositionState& state) {
  positionState_ = state;
  linkPositionStates_.resize(positionState_.jointPositions().size());
  invalidateAll();
}

void KtManipulatorActivePositionState::invalidateAll() {
  for (KtLinkPositionState& state : linkPositionStates_.elements()) state.invalidateAll();
  basePositionState_.invalidateAll();
}
