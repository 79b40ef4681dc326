// A motor drives a flywheel through a gear. The program computes the motor's current, the torque on
// the joint side, the friction and the acceleration.

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <span>

#include "ktManipulator/ktManipulator.h"

namespace {

void check(bool holds, const char* what) {
  std::printf("%s %s\n", holds ? "as said:" : "NOT AS SAID:", what);
  if (!holds) std::exit(1);
}

constexpr double kResistance = 2.0;   // ohm
constexpr double kInductance = 1e-3;  // H
constexpr double kConstant = 0.05;    // N m/A, and V s/rad
constexpr double kFriction = 1e-4;    // N m s/rad, at the motor
constexpr double kRatio = 50.0;

KtStatedSystem flywheel() {
  KtDcElectricMotor motor;
  motor.setArmatureResistance(kResistance);
  motor.setArmatureInductance(kInductance);
  motor.setTorqueConstant(kConstant);
  KtJointActuator actuator;
  actuator.setInertia(2e-5);  // inertia of the rotor, kg m^2
  actuator.setFrictionCoefficient(kFriction);
  actuator.setGearRatio(kRatio);
  actuator.setPowerConverter(motor);

  KtManipulatorLink wheel;
  wheel.setLabel("wheel");
  wheel.setLinkKinematics(KtDenavitHartenberg());
  wheel.setMassProperties(
      KtRigidBodyMassProperties::uniformSolidAxisAlignedCylinder(10.0, 0.1, 0.05));
  wheel.setJointActuator(actuator);
  KtIndividualManipulator drive;
  drive.addChild(wheel);
  KtStatedSystem scene;
  scene.setFromManipulator(drive);
  return scene;
}

}  // namespace

int main() {
  const KtStatedSystem scene = flywheel();
  const KtIndividualManipulator& drive = scene.system().manipulators()[0];
  const KtJointActuator& actuator = drive.linkByIndex(0)->jointActuator();
  const KtPowerConverterContainer& motor = actuator.powerConverterContainer();
  std::printf("at the joint the rotor has %.3f kg m^2, the wheel 0.05\n",
              actuator.effectiveInertia(0.0));

  constexpr double kVoltage = 24.0, kStep = 1e-5;
  KtSimulation simulation(scene);
  KtActuatorState& motors = simulation.active().actuatorState();
  motors.powerConverterStates()[0].resize(motor.numStateVariables());
  KtXmlBasicType<double>& current = motors.powerConverterStates()[0][0];
  KtBasePowerConverter::Derivatives rates;
  // The joint is rigid, so it determines the motor's rate; the program integrates the current.
  simulation.setTorqueLaw([&](const KtManipulatorSystemState&, std::span<double> torques) {
    torques[0] = kRatio * motor.outputTorque(kVoltage, motors);
    motor.computeStateDerivatives(kVoltage, motors, rates);
    current = current + kStep * rates[0];
  });
  for (int k = 1; k <= 200000; ++k) simulation.stepTo(k * kStep);

  // At constant speed K i = b w and u = R i + K w.
  const double expected = kVoltage * kConstant / (kResistance * kFriction + kConstant * kConstant);
  const double rate = simulation.active().actuatorState().motorVelocities()[0];
  std::printf("after %.0f s the motor turns at %.3f rad/s with %.4f A, the wheel at %.3f rad/s\n",
              simulation.state().time(), rate, current.value(), rate / kRatio);
  check(std::abs(rate - expected) < 1e-6 * expected, "that is the rate at which torques balance");
  check(std::abs(current - kFriction * expected / kConstant) < 1e-6, "and this current's torque");
  return 0;
}
