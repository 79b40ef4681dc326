#include "support/SampleKit.h"

using namespace samplekit;

void addActuationSamples(std::vector<Sample>& samples) {
  const auto add = [&samples](Sample one) { samples.push_back(std::move(one)); };
  add(tableSample<KtManufacturerData>("ManufacturerData"));
  add(tableSample<KtActuatorState>("ActuatorState"));
  add(tableSample<KtPassThroughPowerConverter>("PassThroughPowerConverter"));
  add(tableSample<KtDcElectricMotor>("DcElectricMotor"));
  add(tableSample<KtHydraulicCylinder>("HydraulicCylinder"));
  add(filled<KtPowerConverterContainer>("PowerConverterContainer", [](auto& holder) {
    holder.setElement(fromTable<KtDcElectricMotor>());
  }));
  add(tableSample<KtMechanicalActuatorComponent>("MechanicalActuatorComponent"));
  add(filled<KtMechanicalActuatorComponentContainer>(
      "MechanicalActuatorComponentContainer",
      [](auto& holder) { holder.setElement(fromTable<KtMechanicalActuatorComponent>()); }));
  add(tableSample<KtOldJointActuator>("OldJointActuator"));
  add(filled<KtJointActuatorContainer>("JointActuatorContainer", [](auto& holder) {
    holder.setElement(fromTable<KtOldJointActuator>());
  }));
  add(filled<KtJointActuator>("JointActuator", [](auto& actuator) {
    fillComponents(actuator);
    actuator.setPowerConverter(fromTable<KtHydraulicCylinder>());
    actuator.setMechanicalComponent(fromTable<KtMechanicalActuatorComponent>());
  }));
  add(filled<KtXmlVectorType<KtJointActuator>>(
      "JointActuatorVector", [](auto& list) { list.pushBack(KtJointActuator::defaultObject()); }));
  add(tableSample<KtSpringProperties>("SpringProperties"));
  add(tableSample<KtDamperProperties>("DamperProperties"));
}
