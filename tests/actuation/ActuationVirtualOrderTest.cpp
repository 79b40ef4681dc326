#include "ktManipulator/ktManipulator.h"
#include "support/VirtualSlots.h"

namespace {

using Active = KtManipulatorActiveState;
using Reals = KtActuatorState::Reals;
using Flags = KtActuatorState::Flags;
using RealLists = KtActuatorState::RealLists;

TEST(VirtualOrder, ActuatorStateKeepsIts) {
  using S = KtActuatorState;
  expectOrder("KtActuatorState", kCompound + 1,
              {slotOf(static_cast<const Reals& (S::*)() const>(&S::outputTorques)),
               slotOf(static_cast<Reals& (S::*)()>(&S::outputTorques)),
               slotOf(&S::setOutputTorques),
               slotOf(static_cast<const Reals& (S::*)() const>(&S::motorPositions)),
               slotOf(static_cast<Reals& (S::*)()>(&S::motorPositions)),
               slotOf(&S::setMotorPositions),
               slotOf(static_cast<const Reals& (S::*)() const>(&S::motorVelocities)),
               slotOf(static_cast<Reals& (S::*)()>(&S::motorVelocities)),
               slotOf(&S::setMotorVelocities),
               slotOf(static_cast<const Reals& (S::*)() const>(&S::motorAccelerations)),
               slotOf(static_cast<Reals& (S::*)()>(&S::motorAccelerations)),
               slotOf(&S::setMotorAccelerations),
               slotOf(static_cast<const Flags& (S::*)() const>(&S::nonRigidActuatorFlags)),
               slotOf(static_cast<Flags& (S::*)()>(&S::nonRigidActuatorFlags)),
               slotOf(&S::setNonRigidActuatorFlags),
               slotOf(static_cast<const Reals& (S::*)() const>(&S::springDamperCenters)),
               slotOf(static_cast<Reals& (S::*)()>(&S::springDamperCenters)),
               slotOf(&S::setSpringDamperCenters),
               slotOf(static_cast<const Flags& (S::*)() const>(&S::staticFrictionModes)),
               slotOf(static_cast<Flags& (S::*)()>(&S::staticFrictionModes)),
               slotOf(&S::setStaticFrictionModes),
               slotOf(static_cast<const Reals& (S::*)() const>(&S::lastVelocities)),
               slotOf(static_cast<Reals& (S::*)()>(&S::lastVelocities)),
               slotOf(&S::setLastVelocities),
               slotOf(static_cast<const Reals& (S::*)() const>(&S::reverseMotionPositions)),
               slotOf(static_cast<Reals& (S::*)()>(&S::reverseMotionPositions)),
               slotOf(&S::setReverseMotionPositions),
               slotOf(static_cast<const RealLists& (S::*)() const>(&S::powerConverterStates)),
               slotOf(static_cast<RealLists& (S::*)()>(&S::powerConverterStates)),
               slotOf(&S::setPowerConverterStates),
               slotOf(&S::resize)});
  using M = KtManufacturerData;
  expectOrder("KtManufacturerData", kCompound + 1,
              {slotOf(&M::manufacturer), slotOf(&M::setManufacturer), slotOf(&M::partNumber),
               slotOf(&M::setPartNumber), slotOf(&M::isValid)});
}

TEST(VirtualOrder, JointActuatorsKeepTheirs) {
  using B = KtBaseJointActuator;
  expectOrder("KtBaseJointActuator", kCompound + 1,
              {slotOf(&B::setManipulatorLink),
               slotOf(&B::lowerLimit),
               slotOf(&B::setLowerLimit),
               slotOf(&B::upperLimit),
               slotOf(&B::setUpperLimit),
               slotOf(&B::maxOutputRate),
               slotOf(&B::setMaxOutputRate),
               slotOf(&B::maxOutputTorque),
               slotOf(&B::minOutputTorque),
               slotOf(&B::maxTorque),
               slotOf(&B::setMaxTorque),
               slotOf(&B::minTorque),
               slotOf(&B::setMinTorque),
               slotOf(&B::inertia),
               slotOf(&B::setInertia),
               slotOf(&B::frictionCoefficient),
               slotOf(&B::setFrictionCoefficient),
               slotOf(&B::gearRatio),
               slotOf(&B::isRigid),
               slotOf(&B::outputTorque),
               slotOf(&B::linearTorque),
               slotOf(&B::acceleration),
               slotOf(&B::effectiveInertia),
               slotOf(&B::scaleBy),
               slotOf(&B::initializeActuatorStates)});
  using O = KtOldJointActuator;
  expectOrder("KtOldJointActuator", kCompound + 1 + 25,
              {slotOf(&O::setGearRatio),
               slotOf(&O::stopperZone),
               slotOf(&O::setStopperZone),
               slotOf(&O::stopperSpringCoefficient),
               slotOf(&O::setStopperSpringCoefficient),
               slotOf(&O::stopperDampingCoefficient),
               slotOf(&O::setStopperDampingCoefficient),
               slotOf(&O::staticCoulombFriction),
               slotOf(&O::setStaticCoulombFriction),
               slotOf(&O::kineticCoulombFrictionPercentage),
               slotOf(&O::setKineticCoulombFrictionPercentage),
               slotOf(&O::staticCoulombSpringCoefficient),
               slotOf(&O::setStaticCoulombSpringCoefficient),
               slotOf(&O::staticCoulombDamperCoefficient),
               slotOf(&O::setStaticCoulombDamperCoefficient),
               slotOf(&O::limitingVelocityStickRegion),
               slotOf(&O::setLimitingVelocityStickRegion),
               slotOf(&O::setIsRigid),
               slotOf(&O::jointFlexibilityStiffness),
               slotOf(&O::setJointFlexibilityStiffness),
               slotOf(&O::jointFlexibilityDamping),
               slotOf(&O::setJointFlexibilityDamping),
               slotOf(&O::backlash),
               slotOf(&O::setBacklash),
               slotOf(&O::stopperTorque),
               slotOf(&O::viscousFrictionTorque),
               slotOf(&O::dryFrictionTorque),
               slotOf(&O::nonRigidOutputTorque)});
  using J = KtJointActuator;
  expectOrder("KtJointActuator", kCompound + 1,
              {slotOf(&J::setManipulatorLink),
               slotOf(&J::mechanicalComponentContainer),
               slotOf(&J::setMechanicalPartContainer),
               slotOf(&J::setMechanicalComponent),
               slotOf(&J::powerConverterContainer),
               slotOf(&J::setPowerConverterContainer),
               slotOf(&J::setPowerConverter),
               slotOf(&J::lowerLimit),
               slotOf(&J::setLowerLimit),
               slotOf(&J::upperLimit),
               slotOf(&J::setUpperLimit),
               slotOf(&J::maxOutputRate),
               slotOf(&J::setMaxOutputRate),
               slotOf(&J::maxOutputTorque),
               slotOf(&J::minOutputTorque),
               slotOf(&J::maxTorque),
               slotOf(&J::setMaxTorque),
               slotOf(&J::minTorque),
               slotOf(&J::setMinTorque),
               slotOf(&J::inertia),
               slotOf(&J::setInertia),
               slotOf(&J::frictionCoefficient),
               slotOf(&J::setFrictionCoefficient),
               slotOf(&J::gearRatio),
               slotOf(&J::setGearRatio),
               slotOf(&J::isRigid),
               slotOf(&J::setIsRigid),
               slotOf(&J::primeMoveManufacturerData),
               slotOf(&J::setPrimeMoveManufacturerData),
               slotOf(&J::gearheadManufacturerDataVector),
               slotOf(&J::setGearheadManufacturerDataVector),
               slotOf(&J::effectiveInertia),
               slotOf(&J::scaleBy),
               slotOf(&J::initializeActuatorStates),
               slotOf(&J::setFromOldJointActuator)});
}

TEST(VirtualOrder, MechanicalComponentsKeepTheirs) {
  using C = KtMechanicalActuatorComponent;
  expectOrder("KtMechanicalActuatorComponent", kCompound + 1,
              {slotOf(&C::setManipulatorLink),
               slotOf(&C::inertia),
               slotOf(&C::setInertia),
               slotOf(&C::frictionCoefficient),
               slotOf(&C::setFrictionCoefficient),
               slotOf(&C::gearRatio),
               slotOf(&C::setGearRatio),
               slotOf(&C::lowerLimit),
               slotOf(&C::setLowerLimit),
               slotOf(&C::upperLimit),
               slotOf(&C::setUpperLimit),
               slotOf(&C::maxOutputRate),
               slotOf(&C::setMaxOutputRate),
               slotOf(&C::stopperZone),
               slotOf(&C::setStopperZone),
               slotOf(&C::stopperSpringCoefficient),
               slotOf(&C::setStopperSpringCoefficient),
               slotOf(&C::stopperDampingCoefficient),
               slotOf(&C::setStopperDampingCoefficient),
               slotOf(&C::staticCoulombFriction),
               slotOf(&C::setStaticCoulombFriction),
               slotOf(&C::kineticCoulombFrictionPercentage),
               slotOf(&C::setKineticCoulombFrictionPercentage),
               slotOf(&C::staticCoulombSpringCoefficient),
               slotOf(&C::setStaticCoulombSpringCoefficient),
               slotOf(&C::staticCoulombDamperCoefficient),
               slotOf(&C::setStaticCoulombDamperCoefficient),
               slotOf(&C::limitingVelocityStickRegion),
               slotOf(&C::setLimitingVelocityStickRegion),
               slotOf(&C::isRigid),
               slotOf(&C::setIsRigid),
               slotOf(&C::jointFlexibilityStiffness),
               slotOf(&C::setJointFlexibilityStiffness),
               slotOf(&C::jointFlexibilityDamping),
               slotOf(&C::setJointFlexibilityDamping),
               slotOf(&C::backlash),
               slotOf(&C::setBacklash),
               slotOf(&C::maxEfficiency),
               slotOf(&C::setMaxEfficiency),
               slotOf(&C::outputTorque),
               slotOf(&C::linearTorque),
               slotOf(&C::stopperTorque),
               slotOf(&C::viscousFrictionTorque),
               slotOf(&C::dryFrictionTorque),
               slotOf(&C::acceleration),
               slotOf(&C::effectiveInertia),
               slotOf(&C::scaleBy),
               slotOf(&C::initializeActuatorStates),
               slotOf(&C::nonRigidOutputTorque)});
  using H = KtMechanicalActuatorComponentContainer;
  expectOrder("KtMechanicalActuatorComponentContainer", kHolder + 4,
              {slotOf(&H::outputTorque), slotOf(&H::linearTorque)});
}

TEST(VirtualOrder, PowerConvertersKeepTheirs) {
  using B = KtBasePowerConverter;
  expectOrder("KtBasePowerConverter", kCompound + 1,
              {slotOf(&B::setManipulatorLink), slotOf(&B::maxTorque), slotOf(&B::setMaxTorque),
               slotOf(&B::minTorque), slotOf(&B::setMinTorque), slotOf(&B::numStateVariables),
               slotOf(&B::scaleBy), slotOf(&B::outputTorque), slotOf(&B::computeStateDerivatives),
               slotOf(&B::limitOutputTorque)});
  using M = KtDcElectricMotor;
  expectOrder("KtDcElectricMotor", kCompound + 1 + 10,
              {slotOf(&M::armatureInductance), slotOf(&M::setArmatureInductance),
               slotOf(&M::armatureResistance), slotOf(&M::setArmatureResistance),
               slotOf(&M::torqueConstant), slotOf(&M::setTorqueConstant), slotOf(&M::maxEfficiency),
               slotOf(&M::setMaxEfficiency), slotOf(&M::noLoadSpeed), slotOf(&M::setNoLoadSpeed),
               slotOf(&M::noLoadCurrent), slotOf(&M::setNoLoadCurrent), slotOf(&M::stallTorque),
               slotOf(&M::setStallTorque)});
  using H = KtPowerConverterContainer;
  expectOrder("KtPowerConverterContainer", kHolder + 4,
              {slotOf(&H::numStateVariables), slotOf(&H::outputTorque),
               slotOf(&H::computeStateDerivatives)});
}

TEST(VirtualOrder, SpringsAndDampersKeepTheirs) {
  using M = const KtIndividualManipulator&;
  using S = KtSpringProperties;
  expectOrder(
      "KtSpringProperties", kCompound + 1,
      {slotOf(&S::springConstant), slotOf(&S::setSpringConstant), slotOf(&S::weightingFactors),
       slotOf(&S::setWeightingFactors), slotOf(&S::springOffsets), slotOf(&S::setSpringOffsets),
       slotOf(&S::associatedJoints), slotOf(&S::setAssociatedJoints),
       slotOf(static_cast<double (S::*)(M, const KtPositionState&) const>(&S::torque)),
       slotOf(static_cast<double (S::*)(M, const Active&) const>(&S::torque))});
  using D = KtDamperProperties;
  expectOrder("KtDamperProperties", kCompound + 1,
              {slotOf(&D::damperConstant), slotOf(&D::setDamperConstant),
               slotOf(&D::weightingFactors), slotOf(&D::setWeightingFactors),
               slotOf(&D::associatedJoints), slotOf(&D::setAssociatedJoints),
               slotOf(static_cast<double (D::*)(M, const KtVelocityState&) const>(&D::torque)),
               slotOf(static_cast<double (D::*)(M, const Active&) const>(&D::torque))});
}

}  // namespace
