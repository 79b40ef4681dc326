// The time step of systems and stated systems.
#include <algorithm>
#include <utility>

#include "ktManipulator/activestate/KtSystemActiveState.h"
#include "ktManipulator/model/KtStatedSystem.h"

namespace {

void copyCollision(const KtPropagationResultData& from, KtPropagationResultData& to) {
  to.setCollisionOccurred(true);
  to.setCollidedManipulator(from.collidedManipulator());
  to.setCollidedLink(from.collidedLink());
  to.setOtherCollidedLink(from.otherCollidedLink());
  to.setOtherCollidedManipulator(from.otherCollidedManipulator());
}

}  // namespace

bool KtStatedSystem::propagateSelfTo(double time, KtSystemActiveState* activeState) {
  return propagateTo(time, state_, activeState);
}

bool KtStatedSystem::propagateSelfTo(double time, ResultVector& results,
                                     KtSystemActiveState* activeState) {
  return propagateTo(time, state_, results, givenOrLazy(activeState));
}

bool KtStatedSystem::propagateSelfTo(double time, ResultVector& results,
                                     KtSystemActiveState* activeState, KtU32 collisionCheckMode,
                                     const KtReal& reservedFactor, const KtU32& boundingVolumeLevel,
                                     const KtReal& collisionTolerance) {
  return propagateTo(time, state_, results, givenOrLazy(activeState), collisionCheckMode,
                     reservedFactor, boundingVolumeLevel, collisionTolerance);
}

bool KtStatedSystem::propagateTo(double time, KtManipulatorSystemState& state,
                                 KtSystemActiveState* activeState) const {
  return propagateTo(time, state, propagation_.require().defaultResults, givenOrLazy(activeState),
                     0, 1.0, 1, 0.0);
}

bool KtStatedSystem::propagateTo(double time, KtManipulatorSystemState& state,
                                 ResultVector& results, KtSystemActiveState& activeState) const {
  return propagateTo(time, state, results, activeState, 0, 1.0, 1, 0.0);
}

KtSystemActiveState& KtStatedSystem::givenOrLazy(KtSystemActiveState* activeState) const {
  return activeState != nullptr ? *activeState : lazyActiveState_.require();
}

bool KtStatedSystem::propagateTo(double time, KtManipulatorSystemState& state,
                                 ResultVector& results, KtSystemActiveState& activeState,
                                 KtU32 collisionCheckMode, const KtReal& reservedFactor,
                                 const KtU32& boundingVolumeLevel,
                                 const KtReal& collisionTolerance) const {
  auto& positions = state.positionStates();
  auto& velocities = state.velocityStates();
  const KtU32 count = std::min(positions.size(), velocities.size());
  if (activeState.manipulatorActiveStateVector().size() != count) {
    activeState.manipulatorActiveStateVector().resize(count);
    activeState.invalidateSystemLevel();
  }
  results.resize(count);
  const double dt = time - state.time();
  PropagationScratch& scratch = propagation_.require();
  if (collisionCheckMode != 0) scratch.results.resize(count);
  scratch.savedPositions = positions;

  // Const access, since the non-const accessor marks the cache as modified.
  const auto& active = std::as_const(activeState).manipulatorActiveStateVector().elements();
  for (KtU32 i = 0; i < count; ++i) {
    propagateSingleVelocityStateBy(i, active[i].accelerationState(), dt, velocities[i]);
    propagateSingleStateBy(i, velocities[i], dt, positions[i], results[i]);
  }
  carryAttachments(state);
  if (collisionCheckMode == 1 || collisionCheckMode == 2) {
    activeState.setNonredundantState(state);
  }
  if (count > 0) {
    if (collisionCheckMode == 1) {
      takeBackAll(state, results, activeState, reservedFactor, boundingVolumeLevel,
                  collisionTolerance);
    } else if (collisionCheckMode == 2) {
      takeBackCollided(state, results, activeState, reservedFactor, boundingVolumeLevel,
                       collisionTolerance);
    }
    askStoppingCriteria(time, state, results, activeState);
  }
  state.setTime(time);
  return true;
}

// One pass by ascending index of the dependents: a manipulator attached to another dependent one
// follows the new pose of that one only if that one has the lower index.
void KtStatedSystem::carryAttachments(KtManipulatorSystemState& state) const {
  const KtManipulatorAttachmentMap& map = system().manipulatorAttachmentMap();
  const auto& manipulators = system().manipulators().elements();
  auto& positions = state.positionStates().elements();
  auto& velocities = state.velocityStates().elements();
  for (const auto& [key, attachment] : map.mapContainer()) {
    const KtU32 dependent = key;
    KtU32 parent = 0;
    PropagationScratch& scratch = propagation_.require();
    KtCoordinateSystemTransformation offset;
    if (!map.getDependentManipulatorInfo(dependent, parent, scratch.linkLabel, offset)) continue;
    const std::size_t reach = std::min({manipulators.size(), positions.size(), velocities.size()});
    if (parent >= reach || dependent >= reach) continue;
    const KtManipulatorLink* link = manipulators[parent].linkByIdentifier(scratch.linkLabel);
    if (link == nullptr) continue;
    // Without this, equal positions would keep the results of the manipulator before.
    KtManipulatorActiveState& active = scratch.parentState;
    active.invalidateAll();
    active.setPositionState(positions[parent]);
    active.setVelocityState(velocities[parent]);
    const KtCoordinateSystemTransformation& own = manipulators[dependent].coordSysXForm();
    positions[dependent].setCoordSysXForm(
        own.inverse() * (link->primaryFrameInSystem(active.activePositionState()) * offset));
    KtGeneralMotion motion = link->primaryFrameVelocityInSystem(active);
    motion.transformBy(-offset.translation());
    motion.transformBy(own.orientation());
    velocities[dependent].setGeneralVelocity(motion);
  }
}

void KtStatedSystem::takeBackAll(KtManipulatorSystemState& state, ResultVector& results,
                                 KtSystemActiveState& activeState, const KtReal& reservedFactor,
                                 const KtU32& boundingVolumeLevel,
                                 const KtReal& collisionTolerance) const {
  PropagationScratch& scratch = propagation_.require();
  if (!checkForCollisions(activeState, reservedFactor, boundingVolumeLevel, collisionTolerance,
                          scratch.results)) {
    return;
  }
  for (KtU32 i = 0; i < results.size(); ++i) {
    state.positionStates()[i] = scratch.savedPositions[i];
    copyCollision(scratch.results[i], results[i]);
  }
}

// Resets colliding manipulators in the active state until there are no more collisions; a reset may
// cause new ones. Then resets them in the state. If collisions remain, the state stays propagated.
void KtStatedSystem::takeBackCollided(KtManipulatorSystemState& state, ResultVector& results,
                                      KtSystemActiveState& activeState,
                                      const KtReal& reservedFactor,
                                      const KtU32& boundingVolumeLevel,
                                      const KtReal& collisionTolerance) const {
  PropagationScratch& scratch = propagation_.require();
  const KtU32 count = results.size();
  for (KtU32 attempt = 0; attempt < count; ++attempt) {
    if (!checkForCollisions(activeState, reservedFactor, boundingVolumeLevel, collisionTolerance,
                            scratch.results)) {
      for (KtU32 i = 0; i < count; ++i) {
        if (results[i].collisionOccurred()) state.positionStates()[i] = scratch.savedPositions[i];
      }
      return;
    }
    KtU32 collided = 0;
    for (KtU32 i = 0; i < count; ++i) {
      if (!scratch.results[i].collisionOccurred()) continue;
      activeState.setManipulatorNonredundantPositionState(scratch.savedPositions[i], i);
      copyCollision(scratch.results[i], results[i]);
      ++collided;
    }
    if (collided == count) return;
  }
}

void KtStatedSystem::askStoppingCriteria(double time, KtManipulatorSystemState& state,
                                         ResultVector& results,
                                         KtSystemActiveState& activeState) const {
  const auto& manipulators = system().manipulators().elements();
  for (KtU32 i = 0; i < std::min<std::size_t>(results.size(), manipulators.size()); ++i) {
    for (const KtBaseStoppingCriterion* criterion :
         manipulators[i].stoppingCriteria().vectorContainer()) {
      if (criterion != nullptr && criterion->stop(activeState, *this, time, i, results[i])) {
        state.positionStates()[i] = propagation_.require().savedPositions[i];
      }
    }
  }
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
  for (KtPropagationResultData& result : results.elements()) result.setCollisionOccurred(false);
  return false;
}

void KtStatedSystem::intersectLineSegment(const KtLineSegment& /*segment*/,
                                          KtSystemPointEvent& /*event*/,
                                          KtSystemActiveState* /*activeState*/,
                                          KtU32 /*level*/) const {}

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
