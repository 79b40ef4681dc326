#include <algorithm>

#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/model/KtStatedSystem.h"

namespace {

// Whether the index is valid; reports an invalid one.
template <class State>
bool checkIndex(const char* operation, const char* kind, KtU32 index,
                const KtXmlVectorType<State>& states) {
  if (index < states.size()) return true;
  Kt::Print::instance().write(
      Kt::Print::kError, "KtStatedSystem::%s(): manipulator index %d to big for %s state size, %d",
      operation, static_cast<int>(index), kind, static_cast<int>(states.size()));
  return false;
}

void report(const char* text) {
  Kt::Print::instance().write(Kt::Print::kError, "%s", text);
}

}  // namespace

const KtManipulatorSystemState& KtStatedSystem::state() const {
  return state_;
}

void KtStatedSystem::setState(const KtManipulatorSystemState& state) {
  state_ = state;
}

void KtStatedSystem::setPositionStates(const KtXmlVectorType<KtPositionState>& states) {
  state_.setPositionStates(states);
}

void KtStatedSystem::setVelocityStates(const KtXmlVectorType<KtVelocityState>& states) {
  state_.setVelocityStates(states);
}

void KtStatedSystem::setIndividualPositionState(KtU32 index, const KtPositionState& position) {
  if (!checkIndex("setIndividualState", "position", index, state_.positionStates())) return;
  state_.positionStates()[index] = position;
}

void KtStatedSystem::setIndividualCoordinateSystemTransformation(
    KtU32 index, const KtCoordinateSystemTransformation& frame) {
  if (!checkIndex("setIndividualCoordinateSystemTransformation", "position", index,
                  state_.positionStates())) {
    return;
  }
  state_.positionStates()[index].setCoordSysXForm(frame);
}

void KtStatedSystem::setIndividualVelocityState(KtU32 index, const KtVelocityState& velocity) {
  if (!checkIndex("setIndividualState", "velocity", index, state_.velocityStates())) return;
  state_.velocityStates()[index] = velocity;
}

void KtStatedSystem::rotateIndividualBaseVelocity(KtU32 index, const KtOrientation& rotation) {
  if (!checkIndex("rotateIndividualBaseVelocity", "velocity", index, state_.velocityStates())) {
    return;
  }
  state_.velocityStates()[index].generalVelocity().transformBy(rotation);
}

void KtStatedSystem::zeroIndividualVelocityState(KtU32 index) {
  if (!checkIndex("setIndividualState", "velocity", index, state_.velocityStates())) return;
  KtVelocityState& velocity = state_.velocityStates()[index];
  std::ranges::fill(velocity.jointVelocities().elements(), 0.0);
  velocity.setGeneralVelocity(KtGeneralMotion::nullObject());
}

void KtStatedSystem::addCompatibleState() {
  KtManipulatorSystemState state;
  rightSizeState(state);
  setState(state);
}

void KtStatedSystem::setToMidpointState() {
  KtManipulatorSystemState state;
  rightSizeState(state);
  const auto& manipulators = system().manipulators();
  for (KtU32 i = 0; i < state.positionStates().size(); ++i) {
    KtPositionState::JointVector& positions = state.positionStates()[i].jointPositions();
    for (KtU32 j = 0; j < positions.size(); ++j) {
      const KtManipulatorLink* const link = manipulators[i].linkByIndex(j);
      if (link == nullptr) continue;
      const KtJointActuator& actuator = link->jointActuator();
      positions[j] = (actuator.upperLimit() + actuator.lowerLimit()) * 0.5;
    }
  }
  setState(state);
}

bool KtStatedSystem::validateTopLevelDimensions() {
  const KtU32 count = system().numberOfManipulators();
  if (state_.positionStates().size() == count) return true;
  report(
      "KtStatedSystem::validateTopLevelDimensions(): number of states does not equal the number of "
      "systems in the input file--correcting.\n");
  state_.positionStates().resize(count);
  state_.velocityStates().resize(count);
  return false;
}

bool KtStatedSystem::validateLowLevelDimensions() {
  const auto& manipulators = system().manipulators();
  auto& positions = state_.positionStates();
  auto& velocities = state_.velocityStates();
  const KtU32 count = std::min(positions.size(), manipulators.size());
  bool match = true;
  for (KtU32 i = 0; i < count; ++i) {
    const KtU32 joints = manipulators[i].jointDof();
    if (positions[i].jointPositions().size() != joints) {
      match = false;
      report(
          "KtStatedSystem::validateLowLevelDimensions: joint positions do not match the numbers of "
          "degrees of freedom--correcting.\n");
    }
    const KtU32 rates = i < velocities.size() ? velocities[i].jointVelocities().size() : 0;
    if (rates != joints) {
      match = false;
      report(
          "KtStatedSystem::validateLowLevelDimensions: joint velocities do not match the numbers "
          "of degrees of freedom--correcting.\n");
    }
  }
  if (match) return true;
  velocities.resizeToAtLeast(count);
  for (KtU32 i = 0; i < count; ++i) {
    const KtU32 joints = manipulators[i].jointDof();
    positions[i].jointPositions().elements().resize(joints, 1e-9);
    velocities[i].jointVelocities().elements().resize(joints, 0.0);
  }
  return false;
}
