#include "ktManipulator/activestate/KtSystemActiveState.h"

bool KtSystemActiveState::read(KtXmlReader& reader) {
  const bool good = KtXmlPersistent::read(reader);
  manipulatorLinkProximityStateVector_.resize(manipulatorActiveStateVector_.size());
  for (KtManipulatorLinkProximityState& state : manipulatorLinkProximityStateVector_) {
    state.invalidateAll();
  }
  invalidateSystemLevel();
  return good;
}

void KtSystemActiveState::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtManipulatorActiveStateVectorToken, &manipulatorActiveStateVector_);
}

template <class PositionOf, class VelocityOf>
void KtSystemActiveState::setStates(KtU32 count, PositionOf&& positionOf, VelocityOf&& velocityOf) {
  const bool countChanged = manipulatorActiveStateVector_.size() != count;
  manipulatorActiveStateVector_.resize(count);
  manipulatorLinkProximityStateVector_.resize(count);
  bool systemChanged = countChanged;
  for (KtU32 i = 0; i < count; ++i) {
    KtManipulatorActiveState& activeState = manipulatorActiveStateVector_[i];
    if (activeState.setPositionState(positionOf(i)) || countChanged) {
      systemChanged = true;
      invalidateProximity(i);
    }
    if (const KtVelocityState* const velocity = velocityOf(i)) {
      activeState.setVelocityState(*velocity);
    }
  }
  if (systemChanged) invalidateSystemLevel();
}

void KtSystemActiveState::setNonredundantState(const KtManipulatorSystemState& state) {
  const auto& positions = state.positionStates();
  const auto& velocities = state.velocityStates();
  const KtU32 velocityCount = velocities.size();
  setStates(
      positions.size(), [&](KtU32 i) -> const KtPositionState& { return positions[i]; },
      [&](KtU32 i) { return i < velocityCount ? &velocities[i] : nullptr; });
}

void KtSystemActiveState::setNonredundantStateFromActiveStateVector(
    const ActiveStateVector& states) {
  setStates(
      states.size(), [&](KtU32 i) -> const KtPositionState& { return states[i].positionState(); },
      [&](KtU32 i) { return &states[i].velocityState(); });
}

void KtSystemActiveState::setManipulatorNonredundantState(
    const KtManipulatorActiveState& activeState, KtU32 index) {
  if (index >= manipulatorActiveStateVector_.size()) return;
  KtManipulatorActiveState& own = manipulatorActiveStateVector_[index];
  const bool moved = own.setPositionState(activeState.positionState());
  if (moved) {
    manipulatorLinkProximityStateVector_.resize(std::size_t{index} + 1);
    invalidateProximity(index);
  }
  own.setVelocityState(activeState.velocityState());
  if (moved) invalidateSystemLevel();
}

void KtSystemActiveState::setManipulatorNonredundantPositionState(const KtPositionState& state,
                                                                  KtU32 index) {
  if (index >= manipulatorActiveStateVector_.size()) return;
  if (!manipulatorActiveStateVector_[index].setPositionState(state)) return;
  invalidateSystemLevel();
  manipulatorLinkProximityStateVector_.resize(std::size_t{index} + 1);
  invalidateProximity(index);
}

void KtSystemActiveState::invalidateProximity(KtU32 manipulatorIndex) {
  for (KtManipulatorLinkProximityState& state : manipulatorLinkProximityStateVector_) {
    state.invalidate(manipulatorIndex);
  }
}

void KtSystemActiveState::invalidateAll() {
  for (KtManipulatorActiveState& state : manipulatorActiveStateVector_.elements()) {
    state.invalidateAll();
  }
  for (KtManipulatorLinkProximityState& state : manipulatorLinkProximityStateVector_) {
    state.invalidateAll();
  }
  invalidateSystemLevel();
}

void KtSystemActiveState::invalidateSystemLevel() {
  systemActiveBoundingBoxState_.invalidateAll();
  systemShapeCollisionCache_.invalidateAll();
  generalForceValid_ = false;
}

void KtSystemActiveState::resetForSystemChange() {
  manipulatorActiveStateVector_.resize(0);
  systemActiveBoundingBoxState_.setIsInitialized(false);
  generalForceVector_.resize(0);
  modifiedShapeKeyVec_.clear();
  manipulatorLinkProximityStateVector_.clear();
  systemShapeCollisionCache_.clear();
}
