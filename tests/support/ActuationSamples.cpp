#include "support/SampleKit.h"

namespace {

using namespace samplekit;

KtManufacturerData manufacturer() {
  KtManufacturerData data;
  data.setManufacturer("Drives & Gears");
  data.setPartNumber("G-40 \"b\"");
  return data;
}

KtActuatorState actuatorState() {
  KtActuatorState state;
  state.setOutputTorques(someReals());
  state.resize(2);
  state.nonRigidActuatorFlags()[1] = true;
  state.staticFrictionModes()[0] = true;
  KtActuatorState::Reals* const lists[] = {
      &state.motorPositions(),      &state.motorVelocities(), &state.motorAccelerations(),
      &state.springDamperCenters(), &state.lastVelocities(),  &state.reverseMotionPositions()};
  double value = 0.1;
  for (auto* list : lists) {
    (*list)[0] = value;
    value = -1.5 * value;
  }
  state.powerConverterStates()[1] = someReals();
  return state;
}

// All that both forms of the mechanics have beyond the first nine parameters.
template <class Mechanics>
void fillContact(Mechanics& mechanics) {
  mechanics.setStaticCoulombFriction(0.5);
  mechanics.setKineticCoulombFrictionPercentage(0.25);
  mechanics.setStaticCoulombSpringCoefficient(30.0);
  mechanics.setStaticCoulombDamperCoefficient(0.75);
  mechanics.setLimitingVelocityStickRegion(0.01);
  mechanics.setIsRigid(false);
  mechanics.setJointFlexibilityStiffness(1200.0);
  mechanics.setJointFlexibilityDamping(3.5);
  mechanics.setBacklash(0.002);
}

KtMechanicalActuatorComponent component() {
  KtMechanicalActuatorComponent part(0.1, 0.2, 30.0, -4.0, 5.0, 6.0, 0.7, 800.0, 9.0);
  fillContact(part);
  part.setMaxEfficiency(0.875);
  return part;
}

KtOldJointActuator oldActuator() {
  KtOldJointActuator old(0.1, 0.2, 30.0, -4.0, 5.0, 6.0, 0.7, -10.0, 11.0, 800.0, 9.0);
  fillContact(old);
  return old;
}

void fillMotor(KtDcElectricMotor& motor) {
  motor.setMinTorque(-2.0);
  motor.setMaxTorque(3.0);
  motor.setArmatureInductance(0.1);
  motor.setArmatureResistance(0.2);
  motor.setTorqueConstant(0.3);
  motor.setMaxEfficiency(0.4);
  motor.setNoLoadSpeed(0.5);
  motor.setNoLoadCurrent(0.6);
  motor.setStallTorque(0.7);
}

void fillCylinder(KtHydraulicCylinder& cylinder) {
  cylinder.setMaxTorque(1e5);
  cylinder.setFluidBulkModulus(1.4e9);
  cylinder.setFluidDensity(870.0);
  cylinder.setSupplyPressure(2.1e7);
  cylinder.setDrainPressure(1e5);
  cylinder.setDischargeCoefficient(0.61);
  cylinder.setFlowAreaGradient(0.02);
  cylinder.setMaximumValveOpening(1e-3);
  cylinder.setEffectiveArea1(2e-3);
  cylinder.setEffectiveArea2(1.5e-3);
  cylinder.setFluidVolume1(1e-4);
  cylinder.setFluidVolume2(2e-4);
  cylinder.setMaximumFluidLength(0.5);
}

}  // namespace

void addActuationSamples(std::vector<Sample>& samples) {
  const auto add = [&samples](Sample one) { samples.push_back(std::move(one)); };
  add(sample<KtManufacturerData>("ManufacturerData", manufacturer()));
  add(sample<KtActuatorState>("ActuatorState", actuatorState()));
  add(filled<KtPassThroughPowerConverter>("PassThroughPowerConverter",
                                          [](auto& converter) { converter.setMaxTorque(2.5); }));
  add(filled<KtDcElectricMotor>("DcElectricMotor", fillMotor));
  add(filled<KtHydraulicCylinder>("HydraulicCylinder", fillCylinder));
  add(filled<KtPowerConverterContainer>("PowerConverterContainer", [](auto& holder) {
    KtDcElectricMotor motor;
    fillMotor(motor);
    holder.setElement(motor);
  }));
  add(sample<KtMechanicalActuatorComponent>("MechanicalActuatorComponent", component()));
  add(filled<KtMechanicalActuatorComponentContainer>(
      "MechanicalActuatorComponentContainer",
      [](auto& holder) { holder.setElement(component()); }));
  add(sample<KtOldJointActuator>("OldJointActuator", oldActuator()));
  add(filled<KtJointActuatorContainer>("JointActuatorContainer",
                                       [](auto& holder) { holder.setElement(oldActuator()); }));
  add(filled<KtJointActuator>("JointActuator", [](auto& actuator) {
    KtHydraulicCylinder cylinder;
    fillCylinder(cylinder);
    actuator.setPowerConverter(cylinder);
    actuator.setMechanicalComponent(component());
    actuator.setPrimeMoveManufacturerData(manufacturer());
    actuator.setGearheadManufacturerDataVector({2, manufacturer()});
  }));
  add(filled<KtXmlVectorType<KtJointActuator>>(
      "JointActuatorVector", [](auto& list) { list.pushBack(KtJointActuator::defaultObject()); }));
  add(filled<KtSpringProperties>("SpringProperties", [](auto& spring) {
    spring.setSpringConstant(20.0);
    spring.setWeightingFactors(someReals());
    spring.setSpringOffsets({2, 0.25});
    spring.setAssociatedJoints(someTexts());
  }));
  add(filled<KtDamperProperties>("DamperProperties", [](auto& damper) {
    damper.setDamperConstant(0.5);
    damper.setWeightingFactors(someReals());
    damper.setAssociatedJoints(someTexts());
  }));
}
