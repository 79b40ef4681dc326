#include <algorithm>

#include "ktManipulator/model/KtManipulatorSystem.h"

void KtManipulatorSystem::propagateStateBy(KtManipulatorSystemState& state, double dt) const {
  const KtU32 count = std::min(state.positionStates().size(), state.velocityStates().size());
  for (KtU32 i = 0; i < count; ++i) {
    propagateSingleStateBy(i, state.velocityStates()[i], dt, state.positionStates()[i]);
  }
  state.setTime(state.time() + dt);
}

void KtManipulatorSystem::propagateSingleStateBy(KtU32 index, const KtVelocityState& velocity,
                                                 double dt, KtPositionState& position) const {
  if (index < manipulators_.size()) manipulators_[index].propagateState(velocity, dt, position);
}

void KtManipulatorSystem::processLinkInteractions(
    KtSystemActiveState& /*activeState*/, const KtReal& /*time*/,
    const KtXmlVectorType<KtManipulatorTorque>& /*torques*/) const {}
