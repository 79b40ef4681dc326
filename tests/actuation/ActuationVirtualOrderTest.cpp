#include "ktManipulator/ktManipulator.h"
#include "support/VirtualSlots.h"

namespace {

TEST(VirtualOrder, ActuatorStateKeepsIts) {
  using S = KtActuatorState;
  expectOrder("KtActuatorState", kCompound + 1, constant(&S::outputTorques),
              variable(&S::outputTorques), &S::setOutputTorques, constant(&S::motorPositions),
              variable(&S::motorPositions), &S::setMotorPositions, constant(&S::motorVelocities),
              variable(&S::motorVelocities), &S::setMotorVelocities,
              constant(&S::motorAccelerations), variable(&S::motorAccelerations),
              &S::setMotorAccelerations, constant(&S::nonRigidActuatorFlags),
              variable(&S::nonRigidActuatorFlags), &S::setNonRigidActuatorFlags,
              constant(&S::springDamperCenters), variable(&S::springDamperCenters),
              &S::setSpringDamperCenters, constant(&S::staticFrictionModes),
              variable(&S::staticFrictionModes), &S::setStaticFrictionModes,
              constant(&S::lastVelocities), variable(&S::lastVelocities), &S::setLastVelocities,
              constant(&S::reverseMotionPositions), variable(&S::reverseMotionPositions),
              &S::setReverseMotionPositions, constant(&S::powerConverterStates),
              variable(&S::powerConverterStates), &S::setPowerConverterStates, &S::resize);
  using M = KtManufacturerData;
  expectOrder("KtManufacturerData", kCompound + 1, &M::manufacturer, &M::setManufacturer,
              &M::partNumber, &M::setPartNumber, &M::isValid);
}

TEST(VirtualOrder, JointActuatorsKeepTheirs) {
  using B = KtBaseJointActuator;
  expectOrder("KtBaseJointActuator", kCompound + 1, &B::setManipulatorLink, &B::lowerLimit,
              &B::setLowerLimit, &B::upperLimit, &B::setUpperLimit, &B::maxOutputRate,
              &B::setMaxOutputRate, &B::maxOutputTorque, &B::minOutputTorque, &B::maxTorque,
              &B::setMaxTorque, &B::minTorque, &B::setMinTorque, &B::inertia, &B::setInertia,
              &B::frictionCoefficient, &B::setFrictionCoefficient, &B::gearRatio, &B::isRigid,
              &B::outputTorque, &B::linearTorque, &B::acceleration, &B::effectiveInertia,
              &B::scaleBy, &B::initializeActuatorStates);
  using O = KtOldJointActuator;
  expectOrder("KtOldJointActuator", kCompound + 1 + 25, &O::setGearRatio, &O::stopperZone,
              &O::setStopperZone, &O::stopperSpringCoefficient, &O::setStopperSpringCoefficient,
              &O::stopperDampingCoefficient, &O::setStopperDampingCoefficient,
              &O::staticCoulombFriction, &O::setStaticCoulombFriction,
              &O::kineticCoulombFrictionPercentage, &O::setKineticCoulombFrictionPercentage,
              &O::staticCoulombSpringCoefficient, &O::setStaticCoulombSpringCoefficient,
              &O::staticCoulombDamperCoefficient, &O::setStaticCoulombDamperCoefficient,
              &O::limitingVelocityStickRegion, &O::setLimitingVelocityStickRegion, &O::setIsRigid,
              &O::jointFlexibilityStiffness, &O::setJointFlexibilityStiffness,
              &O::jointFlexibilityDamping, &O::setJointFlexibilityDamping, &O::backlash,
              &O::setBacklash, &O::stopperTorque, &O::viscousFrictionTorque, &O::dryFrictionTorque,
              &O::nonRigidOutputTorque);
  using J = KtJointActuator;
  expectOrder(
      "KtJointActuator", kCompound + 1, &J::setManipulatorLink, &J::mechanicalComponentContainer,
      &J::setMechanicalPartContainer, &J::setMechanicalComponent, &J::powerConverterContainer,
      &J::setPowerConverterContainer, &J::setPowerConverter, &J::lowerLimit, &J::setLowerLimit,
      &J::upperLimit, &J::setUpperLimit, &J::maxOutputRate, &J::setMaxOutputRate,
      &J::maxOutputTorque, &J::minOutputTorque, &J::maxTorque, &J::setMaxTorque, &J::minTorque,
      &J::setMinTorque, &J::inertia, &J::setInertia, &J::frictionCoefficient,
      &J::setFrictionCoefficient, &J::gearRatio, &J::setGearRatio, &J::isRigid, &J::setIsRigid,
      &J::primeMoveManufacturerData, &J::setPrimeMoveManufacturerData,
      &J::gearheadManufacturerDataVector, &J::setGearheadManufacturerDataVector,
      &J::effectiveInertia, &J::scaleBy, &J::initializeActuatorStates, &J::setFromOldJointActuator);
}

TEST(VirtualOrder, MechanicalComponentsKeepTheirs) {
  using C = KtMechanicalActuatorComponent;
  expectOrder(
      "KtMechanicalActuatorComponent", kCompound + 1, &C::setManipulatorLink, &C::inertia,
      &C::setInertia, &C::frictionCoefficient, &C::setFrictionCoefficient, &C::gearRatio,
      &C::setGearRatio, &C::lowerLimit, &C::setLowerLimit, &C::upperLimit, &C::setUpperLimit,
      &C::maxOutputRate, &C::setMaxOutputRate, &C::stopperZone, &C::setStopperZone,
      &C::stopperSpringCoefficient, &C::setStopperSpringCoefficient, &C::stopperDampingCoefficient,
      &C::setStopperDampingCoefficient, &C::staticCoulombFriction, &C::setStaticCoulombFriction,
      &C::kineticCoulombFrictionPercentage, &C::setKineticCoulombFrictionPercentage,
      &C::staticCoulombSpringCoefficient, &C::setStaticCoulombSpringCoefficient,
      &C::staticCoulombDamperCoefficient, &C::setStaticCoulombDamperCoefficient,
      &C::limitingVelocityStickRegion, &C::setLimitingVelocityStickRegion, &C::isRigid,
      &C::setIsRigid, &C::jointFlexibilityStiffness, &C::setJointFlexibilityStiffness,
      &C::jointFlexibilityDamping, &C::setJointFlexibilityDamping, &C::backlash, &C::setBacklash,
      &C::maxEfficiency, &C::setMaxEfficiency, &C::outputTorque, &C::linearTorque,
      &C::stopperTorque, &C::viscousFrictionTorque, &C::dryFrictionTorque, &C::acceleration,
      &C::effectiveInertia, &C::scaleBy, &C::initializeActuatorStates, &C::nonRigidOutputTorque);
  using H = KtMechanicalActuatorComponentContainer;
  expectOrder("KtMechanicalActuatorComponentContainer", kHolder + 4, &H::outputTorque,
              &H::linearTorque);
}

TEST(VirtualOrder, PowerConvertersKeepTheirs) {
  using B = KtBasePowerConverter;
  expectOrder("KtBasePowerConverter", kCompound + 1, &B::setManipulatorLink, &B::maxTorque,
              &B::setMaxTorque, &B::minTorque, &B::setMinTorque, &B::numStateVariables, &B::scaleBy,
              &B::outputTorque, &B::computeStateDerivatives, &B::limitOutputTorque);
  using M = KtDcElectricMotor;
  expectOrder("KtDcElectricMotor", kCompound + 1 + 10, &M::armatureInductance,
              &M::setArmatureInductance, &M::armatureResistance, &M::setArmatureResistance,
              &M::torqueConstant, &M::setTorqueConstant, &M::maxEfficiency, &M::setMaxEfficiency,
              &M::noLoadSpeed, &M::setNoLoadSpeed, &M::noLoadCurrent, &M::setNoLoadCurrent,
              &M::stallTorque, &M::setStallTorque);
  using H = KtPowerConverterContainer;
  expectOrder("KtPowerConverterContainer", kHolder + 4, &H::numStateVariables, &H::outputTorque,
              &H::computeStateDerivatives);
}

TEST(VirtualOrder, SpringsAndDampersKeepTheirs) {
  using M = const KtIndividualManipulator&;
  using S = KtSpringProperties;
  expectOrder("KtSpringProperties", kCompound + 1, &S::springConstant, &S::setSpringConstant,
              &S::weightingFactors, &S::setWeightingFactors, &S::springOffsets,
              &S::setSpringOffsets, &S::associatedJoints, &S::setAssociatedJoints,
              taking<M, const KtPositionState&>(&S::torque),
              taking<M, const KtManipulatorActiveState&>(&S::torque));
  using D = KtDamperProperties;
  expectOrder("KtDamperProperties", kCompound + 1, &D::damperConstant, &D::setDamperConstant,
              &D::weightingFactors, &D::setWeightingFactors, &D::associatedJoints,
              &D::setAssociatedJoints, taking<M, const KtVelocityState&>(&D::torque),
              taking<M, const KtManipulatorActiveState&>(&D::torque));
}

}  // namespace
