#include "support/Actuation.h"
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

KtMechanicalActuatorComponent component() {
  auto part = fullMechanics<KtMechanicalActuatorComponent>();
  part.setMaxEfficiency(0.875);
  return part;
}

KtOldJointActuator oldActuator() {
  auto old = fullMechanics<KtOldJointActuator>();
  old.setMinTorque(-10.0);
  old.setMaxTorque(11.0);
  return old;
}

void fillMotor(KtDcElectricMotor& motor) {
  using M = KtDcElectricMotor;
  setEach(motor, {&M::setMinTorque, &M::setMaxTorque, &M::setArmatureInductance,
                  &M::setArmatureResistance, &M::setTorqueConstant, &M::setMaxEfficiency,
                  &M::setNoLoadSpeed, &M::setNoLoadCurrent, &M::setStallTorque});
}

void fillCylinder(KtHydraulicCylinder& cylinder) {
  using C = KtHydraulicCylinder;
  setEach(cylinder,
          {&C::setMaxTorque, &C::setFluidBulkModulus, &C::setFluidDensity, &C::setSupplyPressure,
           &C::setDrainPressure, &C::setDischargeCoefficient, &C::setFlowAreaGradient,
           &C::setMaximumValveOpening, &C::setEffectiveArea1, &C::setEffectiveArea2,
           &C::setFluidVolume1, &C::setFluidVolume2, &C::setMaximumFluidLength});
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
