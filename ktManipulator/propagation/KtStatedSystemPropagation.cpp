#include <algorithm>

#include "ktManipulator/activestate/KtSystemActiveState.h"
#include "ktManipulator/model/KtStatedSystem.h"

namespace {

bool takeToTime(double time, KtManipulatorSystemState& state,
                KtStatedSystem::ResultVector& results) {
  results.resize(std::min(state.positionStates().size(), state.velocityStates().size()));
  state.setTime(time);
  return true;
}

bool clearCollisions(KtStatedSystem::ResultVector& results) {
  for (KtPropagationResultData& result : results.elements()) {
    result.setCollisionOccurred(false);
  }
  return false;
}

}  // namespace

bool KtStatedSystem::propagateSelfTo(double time, KtSystemActiveState* activeState) {
  return propagateTo(time, state_, activeState);
}

bool KtStatedSystem::propagateSelfTo(double time, ResultVector& results,
                                     KtSystemActiveState* activeState) {
  if (activeState == nullptr) return takeToTime(time, state_, results);
  return propagateTo(time, state_, results, *activeState);
}

bool KtStatedSystem::propagateSelfTo(double time, ResultVector& results,
                                     KtSystemActiveState* activeState, KtU32 collisionCheckMode,
                                     const KtReal& reservedFactor, const KtU32& boundingVolumeLevel,
                                     const KtReal& collisionTolerance) {
  if (activeState == nullptr) return takeToTime(time, state_, results);
  return propagateTo(time, state_, results, *activeState, collisionCheckMode, reservedFactor,
                     boundingVolumeLevel, collisionTolerance);
}

bool KtStatedSystem::propagateTo(double time, KtManipulatorSystemState& state,
                                 KtSystemActiveState* activeState) const {
  ResultVector results;
  if (activeState == nullptr) return takeToTime(time, state, results);
  return propagateTo(time, state, results, *activeState, 0, 1.0, 1, 0.0);
}

bool KtStatedSystem::propagateTo(double time, KtManipulatorSystemState& state,
                                 ResultVector& results, KtSystemActiveState& activeState) const {
  return propagateTo(time, state, results, activeState, 0, 1.0, 1, 0.0);
}

bool KtStatedSystem::propagateTo(double time, KtManipulatorSystemState& state,
                                 ResultVector& results, KtSystemActiveState& /*activeState*/,
                                 KtU32 /*collisionCheckMode*/, const KtReal& /*reservedFactor*/,
                                 const KtU32& /*boundingVolumeLevel*/,
                                 const KtReal& /*collisionTolerance*/) const {
  return takeToTime(time, state, results);
}

void KtStatedSystem::propagateSingleStateBy(KtU32 index, const KtVelocityState& velocity, double dt,
                                            KtPositionState& position) const {
  const auto& manipulators = system().manipulators();
  if (index < manipulators.size()) manipulators[index].propagateState(velocity, dt, position);
}

void KtStatedSystem::propagateSingleStateBy(KtU32 index, const KtVelocityState& velocity, double dt,
                                            KtPositionState& position,
                                            KtPropagationResultData& result) const {
  const auto& manipulators = system().manipulators();
  if (index < manipulators.size()) {
    manipulators[index].propagateState(velocity, dt, position, result);
  }
}

void KtStatedSystem::propagateSingleVelocityStateBy(KtU32 index,
                                                    const KtAccelerationState& acceleration,
                                                    double dt, KtVelocityState& velocity) const {
  const auto& manipulators = system().manipulators();
  if (index < manipulators.size()) {
    manipulators[index].propagateVelocityState(acceleration, dt, velocity);
  }
}

bool KtStatedSystem::generateCollisionReport(ResultVector& results,
                                             const KtU32& boundingVolumeLevel,
                                             const KtReal& collisionTolerance) const {
  KtSystemActiveState& activeState = reportActiveState_.require();
  activeState.setNonredundantState(state());
  return checkForCollisions(activeState, 1.0, boundingVolumeLevel, collisionTolerance, results);
}

bool KtStatedSystem::checkForCollisions(KtSystemActiveState& /*activeState*/,
                                        const KtReal& /*reservedFactor*/,
                                        const KtU32& /*boundingVolumeLevel*/,
                                        const KtReal& /*collisionTolerance*/,
                                        ResultVector& results) const {
  results.resizeToAtLeast(system().numberOfManipulators());
  return clearCollisions(results);
}

void KtStatedSystem::intersectLineSegment(const KtLineSegment& /*segment*/,
                                          KtSystemPointEvent& /*event*/,
                                          KtSystemActiveState* /*activeState*/,
                                          KtU32 /*level*/) const {}
