#include "ktManipulator/actuation/KtJointMechanics.h"

#include <cmath>
#include <typeinfo>

#include "ktManipulator/activestate/KtManipulatorActiveState.h"
#include "ktManipulator/actuation/KtActuatorState.h"
#include "ktManipulator/actuation/KtMechanicalActuatorComponent.h"
#include "ktManipulator/actuation/KtOldJointActuator.h"
#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"

namespace {

using Reals = KtActuatorState::Reals;

// Whether every list has an entry i.
template <class... Lists>
bool reach(KtU32 i, const Lists&... lists) {
  return ((i < lists.elements().size()) && ...);
}

template <class List, class Value>
void storeIfThere(List& list, KtU32 i, const Value& value) {
  if (i < list.elements().size()) list[i] = value;
}

template <class Cls>
void reportIndex(const char* operation) {
  Kt::Print::instance().write(Kt::Print::kError, "%s::%s()->index out of range\n", Cls::kClassName,
                              operation);
}

}  // namespace

template <class Base>
void KtJointMechanicsParameters<Base>::registerDriveParameters() {
  this->registerComponent(KtManip::KtInertiaToken, &inertia_);
  this->registerComponent(KtManip::KtFrictionCoefficientToken, &frictionCoefficient_);
  this->registerComponent(KtManip::KtGearRatioToken, &gearRatio_);
  this->registerComponent(KtManip::KtLowerLimitToken, &lowerLimit_);
  this->registerComponent(KtManip::KtUpperLimitToken, &upperLimit_);
  this->registerComponent(KtManip::KtMaxOutputRateToken, &maxOutputRate_);
  this->registerComponent(KtManip::KtStopperZoneToken, &stopperZone_);
}

template <class Base>
void KtJointMechanicsParameters<Base>::registerContactParameters() {
  this->registerComponent(KtManip::KtStopperSpringCoefficientToken, &stopperSpringCoefficient_);
  this->registerComponent(KtManip::KtStopperDampingCoefficientToken, &stopperDampingCoefficient_);
  this->registerComponent(KtManip::KtStaticCoulombFrictionToken, &staticCoulombFriction_);
  this->registerComponent(KtManip::KtKineticCoulombFrictionPercentageToken,
                          &kineticCoulombFrictionPercentage_);
  this->registerComponent(KtManip::KtStaticCoulombSpringCoefficientToken,
                          &staticCoulombSpringCoefficient_);
  this->registerComponent(KtManip::KtStaticCoulombDamperCoefficientToken,
                          &staticCoulombDamperCoefficient_);
  this->registerComponent(KtManip::KtLimitingVelocityStickRegionToken,
                          &limitingVelocityStickRegion_);
  this->registerComponent(KtManip::KtIsRigidJointToken, &isRigid_);
  this->registerComponent(KtManip::KtJointFlexibilityStiffnessToken, &jointFlexibilityStiffness_);
  this->registerComponent(KtManip::KtJointFlexibilityDampingToken, &jointFlexibilityDamping_);
  this->registerComponent(KtManip::KtBacklashToken, &backlash_);
}

void KtEfficientJointMechanics::registerEfficiency() {
  registerComponent(KtManip::KtMaxEfficiencyToken, &maxEfficiency_);
}

// These are asked for every joint in every step. The states' own operations are named, which makes
// the calls direct: the states stand by value in the active state.

template <class Cls, class Params>
double KtJointMechanics<Cls, Params>::outputTorque(double command, double load,
                                                   KtManipulatorActiveState& active) const {
  const KtU32 i = this->linkIndex();
  Reals& outputTorques =
      active.KtManipulatorActiveState::actuatorState().KtActuatorState::outputTorques();
  // The reserved indices of the root and of unmapped links are no lengths.
  if (i < ktBaseIndex && i > outputTorques.elements().size()) outputTorques.resizeToAtLeast(i);
  if (!this->isRigid_) return nonRigidOutputTorque(active);
  const double torque = this->driveTorque(command);
  // Without virtual calls where no derived class can have another opinion.
  const bool exact = typeid(*this) == typeid(Cls);
  double linear = 0.0;
  if (exact) {
    linear = stopperTorqueOf(i, active);
    linear += viscousFrictionTorqueOf(i, active);
  } else {
    linear = linearTorque(active);
  }
  double drive = torque - load;
  if constexpr (Cls::kFrictionSeesLinearTorque) drive -= linear;
  const double dry =
      exact ? dryFrictionTorqueOf(i, drive, active) : dryFrictionTorque(drive, active);
  const double result = torque - linear - dry;
  storeIfThere(active.KtManipulatorActiveState::actuatorState().KtActuatorState::outputTorques(), i,
               result);
  return result;
}

template <class Cls, class Params>
double KtJointMechanics<Cls, Params>::linearTorque(KtManipulatorActiveState& active) const {
  const double stopper = stopperTorque(active);
  return stopper + viscousFrictionTorque(active);
}

template <class Cls, class Params>
double KtJointMechanics<Cls, Params>::stopperTorque(const KtManipulatorActiveState& active) const {
  return stopperTorqueOf(this->linkIndex(), active);
}

template <class Cls, class Params>
inline double KtJointMechanics<Cls, Params>::stopperTorqueOf(
    KtU32 i, const KtManipulatorActiveState& active) const {
  const Reals& positions =
      active.KtManipulatorActiveState::positionState().KtPositionState::jointPositions();
  const Reals& velocities =
      active.KtManipulatorActiveState::velocityState().KtVelocityState::jointVelocities();
  if (!reach(i, positions, velocities)) {
    reportIndex<Cls>("stopperTorque");
    return 0.0;
  }
  const double position = positions[i];
  const double damping = velocities[i] * this->stopperDampingCoefficient_;
  const double lowerStop = this->lowerLimit_ + this->stopperZone_;
  const double upperStop = this->upperLimit_ - this->stopperZone_;
  double torque = 0.0;
  if (position < lowerStop) {
    torque = damping - this->stopperSpringCoefficient_ * (lowerStop - position);
  }
  if (position > upperStop) {
    torque = torque + this->stopperSpringCoefficient_ * (position - upperStop) + damping;
  }
  return torque;
}

template <class Cls, class Params>
double KtJointMechanics<Cls, Params>::viscousFrictionTorque(
    const KtManipulatorActiveState& active) const {
  return viscousFrictionTorqueOf(this->linkIndex(), active);
}

template <class Cls, class Params>
inline double KtJointMechanics<Cls, Params>::viscousFrictionTorqueOf(
    KtU32 i, const KtManipulatorActiveState& active) const {
  const Reals& rates =
      active.KtManipulatorActiveState::actuatorState().KtActuatorState::motorVelocities();
  if (!reach(i, rates)) {
    reportIndex<Cls>("viscousFrictionTorque");
    return 0.0;
  }
  return rates[i] * this->frictionCoefficient_ * this->gearRatio_;
}

template <class Cls, class Params>
double KtJointMechanics<Cls, Params>::dryFrictionTorque(double drive,
                                                        KtManipulatorActiveState& active) const {
  return dryFrictionTorqueOf(this->linkIndex(), drive, active);
}

template <class Cls, class Params>
inline double KtJointMechanics<Cls, Params>::dryFrictionTorqueOf(
    KtU32 i, double drive, KtManipulatorActiveState& active) const {
  KtActuatorState& state = active.KtManipulatorActiveState::actuatorState();
  const Reals& positions = state.KtActuatorState::motorPositions();
  const Reals& rates = state.KtActuatorState::motorVelocities();
  KtActuatorState::Flags& modes = state.KtActuatorState::staticFrictionModes();
  if (!reach(i, positions, rates, modes)) {
    reportIndex<Cls>("dryFrictionTorque");
    return 0.0;
  }
  const double position = positions[i];
  const double rate = rates[i];
  const double most = this->staticCoulombFriction_ * this->gearRatio_;
  KtXmlBasicType<bool>& sticks = modes[i];

  if (!(std::abs(rate) < this->limitingVelocityStickRegion_)) {
    sticks = false;
    const double kinetic =
        this->kineticCoulombFrictionPercentage_ * this->staticCoulombFriction_ * this->gearRatio_;
    return rate < 0.0 ? -kinetic : kinetic;
  }
  if (!sticks) {
    sticks = true;
    storeIfThere(state.KtActuatorState::springDamperCenters(), i, position);
  }
  const double motorDrive = drive / this->gearRatio_;
  if (motorDrive < -this->staticCoulombFriction_) return -most;
  if (motorDrive > this->staticCoulombFriction_) return most;
  const Reals& centers = state.KtActuatorState::springDamperCenters();
  const double center = i < centers.elements().size() ? centers[i].value() : position;
  return this->gearRatio_ * (motorDrive + rate * this->staticCoulombDamperCoefficient_ +
                             (position - center) * this->staticCoulombSpringCoefficient_);
}

template <class Cls, class Params>
void KtJointMechanics<Cls, Params>::acceleration(double command,
                                                 KtManipulatorActiveState& active) const {
  const KtU32 i = this->linkIndex();
  Reals& motorAccelerations = active.actuatorState().motorAccelerations();
  if (!this->isRigid_ && this->inertia_ != 0.0) {
    const double linear = linearTorque(active);
    const double drive = this->driveTorque(command) - linear - nonRigidOutputTorque(active);
    const double friction = dryFrictionTorque(drive, active);
    storeIfThere(motorAccelerations, i, (drive - friction) / this->gearRatio_ / this->inertia_);
    return;
  }
  const Reals& jointAccelerations = active.accelerationState().jointAccelerations();
  if (!reach(i, jointAccelerations, motorAccelerations)) {
    reportIndex<Cls>("acceleration");
    return;
  }
  motorAccelerations[i] = jointAccelerations[i] * this->gearRatio_;
}

template <class Cls, class Params>
double KtJointMechanics<Cls, Params>::effectiveInertia(double /*position*/) const {
  return this->isRigid_ ? this->gearRatio_ * this->gearRatio_ * this->inertia_ : 0.0;
}

template <class Cls, class Params>
void KtJointMechanics<Cls, Params>::scaleBy(double lengthScale, double limitScale) {
  const double cube = std::pow(lengthScale, 3.0);
  this->inertia_ = this->inertia_ * std::pow(lengthScale, 5.0);
  this->frictionCoefficient_ = this->frictionCoefficient_ * (lengthScale * lengthScale);
  this->lowerLimit_ = this->lowerLimit_ * limitScale;
  this->upperLimit_ = this->upperLimit_ * limitScale;
  this->stopperZone_ = this->stopperZone_ * limitScale;
  this->stopperSpringCoefficient_ = this->stopperSpringCoefficient_ * cube;
  this->stopperDampingCoefficient_ = this->stopperDampingCoefficient_ * cube;
}

template <class Cls, class Params>
void KtJointMechanics<Cls, Params>::initializeActuatorStates(
    KtManipulatorActiveState& active) const {
  const KtU32 i = this->linkIndex();
  const Reals& positions = active.positionState().jointPositions();
  const Reals& velocities = active.velocityState().jointVelocities();
  const Reals& accelerations = active.accelerationState().jointAccelerations();
  if (!reach(i, positions, velocities, accelerations)) {
    reportIndex<Cls>("initializeActuatorStates");
    return;
  }
  KtActuatorState& state = active.actuatorState();
  state.resize(positions.size());
  const double motorPosition = positions[i] * this->gearRatio_;
  const double motorRate = velocities[i] * this->gearRatio_;
  state.motorPositions()[i] = motorPosition;
  state.motorVelocities()[i] = motorRate;
  state.motorAccelerations()[i] = accelerations[i] * this->gearRatio_;
  state.springDamperCenters()[i] = motorPosition;
  state.staticFrictionModes()[i] = false;
  state.reverseMotionPositions()[i] = motorPosition;
  state.lastVelocities()[i] = motorRate;
  state.nonRigidActuatorFlags()[i] = !this->isRigid_;
}

template <class Cls, class Params>
double KtJointMechanics<Cls, Params>::nonRigidOutputTorque(KtManipulatorActiveState& active) const {
  const KtU32 i = this->linkIndex();
  KtActuatorState& state = active.actuatorState();
  const Reals& positions = active.positionState().jointPositions();
  const Reals& velocities = active.velocityState().jointVelocities();
  const Reals& motorPositions = state.motorPositions();
  const Reals& motorRates = state.motorVelocities();
  if (!reach(i, positions, motorPositions, velocities, motorRates)) {
    reportIndex<Cls>("nonRigidOutputTorque");
    return 0.0;
  }
  const double motorPosition = motorPositions[i];
  const double motorRate = motorRates[i];
  const double high = positions[i] * this->gearRatio_;
  const double low = high - this->backlash_;
  double torque = 0.0;
  if (!(low < motorPosition && motorPosition < high)) {
    const double touching = motorPosition <= low ? motorPosition + this->backlash_ : motorPosition;
    torque = (motorRate / this->gearRatio_ - velocities[i]) * this->jointFlexibilityDamping_ +
             (touching / this->gearRatio_ - positions[i]) * this->jointFlexibilityStiffness_;
  }
  storeIfThere(state.outputTorques(), i, torque);
  return torque;
}

template class KtJointMechanicsParameters<KtActuatorPart>;
template class KtJointMechanicsParameters<KtBaseJointActuator>;
template class KtJointMechanics<KtMechanicalActuatorComponent, KtEfficientJointMechanics>;
template class KtJointMechanics<KtOldJointActuator,
                                KtJointMechanicsParameters<KtBaseJointActuator>>;
