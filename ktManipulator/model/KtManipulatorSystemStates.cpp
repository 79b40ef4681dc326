#include <algorithm>

#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/model/KtManipulatorSystem.h"

bool KtManipulatorSystem::isCompatible(const KtManipulatorSystemState& state) const {
  const KtU32 count = manipulators_.size();
  if (state.positionStates().size() != count || state.velocityStates().size() != count) {
    return false;
  }
  for (KtU32 i = 0; i < count; ++i) {
    const KtU32 joints = manipulators_[i].jointDof();
    if (state.positionStates()[i].jointPositions().size() != joints ||
        state.velocityStates()[i].jointVelocities().size() != joints) {
      return false;
    }
  }
  return true;
}

void KtManipulatorSystem::rightSizeState(KtManipulatorSystemState& state) const {
  if (isCompatible(state)) return;
  constexpr double kOffset = 1e-9;  // also added to existing values; programs rely on it
  const KtU32 count = manipulators_.size();
  KtXmlVectorType<KtPositionState> positions(count);
  KtXmlVectorType<KtVelocityState> velocities(count);
  for (KtU32 i = 0; i < count; ++i) {
    const KtU32 joints = manipulators_[i].jointDof();
    KtPositionState::JointVector& q = positions[i].jointPositions();
    q.assign(joints, kOffset);
    if (i < state.positionStates().size()) {
      const KtPositionState& old = state.positionStates()[i];
      positions[i].setCoordSysXForm(old.coordSysXForm());
      const KtU32 kept = std::min(joints, old.jointPositions().size());
      for (KtU32 j = 0; j < kept; ++j) q[j] = kOffset + old.jointPositions()[j];
    }
    KtVelocityState::JointVector& qDot = velocities[i].jointVelocities();
    qDot.assign(joints, 0.0);
    if (i < state.velocityStates().size()) {
      const KtVelocityState& old = state.velocityStates()[i];
      velocities[i].setGeneralVelocity(old.generalVelocity());
      const KtU32 kept = std::min(joints, old.jointVelocities().size());
      for (KtU32 j = 0; j < kept; ++j) qDot[j] = 0.0 + old.jointVelocities()[j];
    }
  }
  state.setPositionStates(positions);
  state.setVelocityStates(velocities);
}

KtSphere KtManipulatorSystem::absoluteBoundingSphere(const KtManipulatorSystemState& state) const {
  const KtU32 stateSize = state.positionStates().size();
  const KtU32 systemSize = manipulators_.size();
  if (stateSize != systemSize) {
    Kt::Print::instance().write(Kt::Print::kError,
                                "KtManipulatorSystem::absoluteBoundingSphere(): system size, %d, "
                                "not equal to state size, %d.",
                                static_cast<int>(systemSize), static_cast<int>(stateSize));
  }
  KtSphere all;
  for (KtU32 i = 0; i < std::min(stateSize, systemSize); ++i) {
    const KtIndividualManipulator& manipulator = manipulators_[i];
    // Programs rely on this order of factors, although it is not that of the frames.
    all.expandSelfToInclude(
        manipulator.coordSysXForm() *
        (state.positionStates()[i].coordSysXForm() * manipulator.absoluteBoundingSphere()));
  }
  return all;
}
