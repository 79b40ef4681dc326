#include <boost/algorithm/string/replace.hpp>

#include "support/Actuation.h"
#include "support/Testing.h"

namespace {

using Derivatives = KtBasePowerConverter::Derivatives;
using states::joints;
constexpr KtU32 kJoint = DrivenElbow::kElbow;

class PowerConverter : public testing::Test {
 protected:
  // The derivatives for state variables and a command, of the converter in a holder; the motor's
  // state is set before.
  Derivatives rates(const KtBasePowerConverter& converter, double command,
                    const std::vector<double>& variables) {
    state.powerConverterStates()[kJoint] = joints(variables);
    holder.setElement(converter);
    holder.element()->setManipulatorLink(driven.elbow());
    Derivatives derivatives(7);
    holder.computeStateDerivatives(command, state, derivatives);
    EXPECT_EQ(derivatives.size(), holder.numStateVariables());
    return derivatives;
  }

  DrivenElbow driven;
  KtActuatorState& state = driven.active.actuatorState();
  KtPowerConverterContainer holder;
};

TEST_F(PowerConverter, PassThroughGivesTheCommandWithinItsLimits) {
  KtPassThroughPowerConverter converter;
  EXPECT_EQ(holder.outputTorque(5.0, state), 0.0) << "nothing is held";
  EXPECT_EQ(converter.outputTorque(1e200, state), 1e200);
  converter.setMinTorque(-1.0);
  converter.setMaxTorque(2.0);
  EXPECT_EQ(rates(converter, 1.0, {3.0}).size(), 0U);
  for (const auto& [command, torque] : {std::pair{5.0, 2.0}, {-5.0, -1.0}, {0.5, 0.5}}) {
    EXPECT_EQ(holder.outputTorque(command, state), torque);
  }
  converter.scaleBy(2.0, 7.0);
  EXPECT_EQ(converter.minTorque(), -8.0);
  EXPECT_EQ(converter.maxTorque(), 16.0);
}

// What the source gives is heat, the magnetic field's gain and shaft work.
TEST_F(PowerConverter, MotorKeepsTheBalanceOfPower) {
  KtDcElectricMotor motor;
  motor.setArmatureInductance(0.02);
  motor.setArmatureResistance(1.5);
  motor.setTorqueConstant(0.3);
  for (int trial = 0; trial < 20; ++trial) {
    const double u = uniform(-24, 24), i = uniform(-5, 5), omega = uniform(-100, 100);
    driven.setMotor(0.0, omega);
    const double gain = 0.02 * i * rates(motor, u, {i})[0];
    EXPECT_NEAR(u * i, 1.5 * i * i + gain + holder.outputTorque(u, state) * omega, 1e-11);
  }
}

KtHydraulicCylinder cylinder() {
  KtHydraulicCylinder c;
  c.setFluidBulkModulus(1000.0);
  c.setFluidDensity(2.0);
  c.setSupplyPressure(30.0);
  c.setDrainPressure(1.0);
  c.setDischargeCoefficient(0.5);
  c.setFlowAreaGradient(4.0);
  c.setMaximumValveOpening(0.25);
  c.setEffectiveArea1(2.0);
  c.setEffectiveArea2(1.5);
  c.setFluidVolume1(3.0);
  c.setFluidVolume2(5.0);
  c.setMaximumFluidLength(0.8);
  return c;
}

// Closed valve: the fluid is compressed by the moving piston, dp = -B dV / V.
TEST_F(PowerConverter, CylinderWithClosedValveIsASpring) {
  const auto pressure1 = [](double y) { return 10.0 - 1000.0 * std::log((2.0 * y + 3.0) / 3.0); };
  const auto pressure2 = [](double y) {
    return 10.0 - 1000.0 * std::log((1.5 * (0.8 - y) + 5.0) / 5.0);
  };
  for (const double y : {-0.2, 0.1, 0.75}) {
    for (const double v : {-0.3, 0.0, 2.0}) {
      driven.setMotor(y, v);
      const Derivatives d = rates(cylinder(), 0.0, {pressure1(y), pressure2(y)});
      EXPECT_NEAR(d[0], slope(pressure1, y, 1e-6) * v, 1e-5);
      EXPECT_NEAR(d[1], slope(pressure2, y, 1e-6) * v, 1e-5);
      EXPECT_NEAR(holder.outputTorque(0.0, state), 2.0 * pressure1(y) - 1.5 * pressure2(y), 1e-9);
    }
  }
  // Beyond the stroke chamber 2 keeps its least volume.
  driven.setMotor(7.0, 0.1);
  EXPECT_NEAR(rates(cylinder(), 0.0, {1.0, 1.0})[1], 1000.0 / 5.0 * 1.5 * 0.1, 1e-12);
}

// Piston at rest at y = 0: volumes 3 and 1.5 * 0.8 + 5 = 6.2, speeds sqrt(2 dp / 2) = sqrt(dp), so
// that an opening of 0.25 lets 0.5 sqrt(dp) through. The columns: command, pressures, flow into
// chamber 1 and out of chamber 2.
TEST_F(PowerConverter, CylinderFlowsFollowThePressures) {
  for (const auto& [command, p1, p2, into1, outOf2] :
       std::vector<std::array<double, 5>>{{0.25, 5, 10, 2.5, 1.5},
                                          {0.125, 5, 10, 1.25, 0.75},
                                          {9, 5, 10, 2.5, 1.5},
                                          {-0.25, 10, 5, -1.5, -2.5},
                                          {-9, 10, 5, -1.5, -2.5},
                                          {0.25, 34, 10, -1, 1.5},
                                          {0.25, 5, 0, 2.5, -0.5},
                                          {-0.25, 0, 34, 0.5, 1}}) {
    const Derivatives d = rates(cylinder(), command, {p1, p2});
    EXPECT_NEAR(d[0], 1000.0 / 3.0 * into1, 1e-9) << command << ' ' << p1;
    EXPECT_NEAR(d[1], -1000.0 / 6.2 * outOf2, 1e-9) << command << ' ' << p2;
  }
}

// A guard leaves the derivatives as they were, and says why. Without its entry a converter gives
// 0, without its variables 0 within the limits.
TEST_F(PowerConverter, GuardsReportAndLeaveTheDerivatives) {
  const auto expect = [this](const KtBasePowerConverter& converter, KtU32 size, double torque,
                             const std::string& messages) {
    Derivatives derivatives = joints({7.0, 8.0, 9.0});
    const KtLogCapture log;
    converter.computeStateDerivatives(1.0, state, derivatives);
    EXPECT_EQ(converter.outputTorque(1.0, state), torque) << messages;
    EXPECT_EQ(log.errors(), messages);
    EXPECT_EQ(derivatives.size(), size) << messages;
    EXPECT_EQ(derivatives[0], 7.0) << messages;
  };
  const std::string dc = "KtDcElectricMotor::", hydraulic = "KtHydraulicCylinder::";
  const std::string rate = "computeStateDerivatives - ", index = "index out of range\n";
  KtDcElectricMotor motor;
  motor.setMinTorque(0.5);
  motor.setArmatureInductance(1.0);
  KtHydraulicCylinder c = cylinder();
  expect(motor, 3, 0.0, dc + rate + index + dc + "outputTorque - " + index);
  expect(c, 3, 0.0, hydraulic + rate + index + hydraulic + "outputTorque - " + index);
  motor.setManipulatorLink(driven.elbow());
  c.setManipulatorLink(driven.elbow());
  expect(motor, 3, 0.5, "");
  state.powerConverterStates()[kJoint] = joints({1.0});
  expect(c, 3, 0.0, "");  // one pressure is none
  motor.setArmatureInductance(-1.0);
  expect(motor, 1, 0.5, "");
  motor.setArmatureInductance(0.0);
  expect(motor, 3, 0.5, dc + rate + "divided by zeroo\n");
  c.setFluidVolume2(0.0);
  expect(c, 3, 0.0, hydraulic + rate + "potentially divided by zeroo\n");
}

using J = KtJointActuator;

// A file may hold parts that nobody knows: their holders are empty then, which is no error.
TEST(JointActuator, EmptyHoldersAnswerLikeParts) {
  const J full(0.1, 0.2, 40.0, -1.0, 1.5, 3.0, 0.1, -2.0, 2.5, 100.0, 5.0), fresh;
  std::string text = KtXmlWriter::writeString(full);
  boost::replace_all(text, "ktMechanicalActuatorComponent>", "futureComponent>");
  boost::replace_all(text, "passThroughPowerConverter>", "futureConverter>");
  J actuator, changed = full;
  KtLogCapture log;
  KtXmlReader::readString(text, actuator);
  EXPECT_TRUE(log.contains("futureConverter\" tag not registered"));
  log.clear();
  ASSERT_EQ(actuator.mechanicalComponentContainer().element(), nullptr);
  ASSERT_EQ(actuator.powerConverterContainer().element(), nullptr);

  DrivenElbow driven;
  KtManipulatorActiveState active = driven.active;
  const J empty = actuator;
  actuator.setManipulatorLink(driven.elbow());
  actuator.initializeActuatorStates(active);
  EXPECT_EQ(active, driven.active);
  actuator.scaleBy(2.0, 2.0);
  struct Row {
    double (J::*get)() const;
    void (J::*set)(double);
    double value, given;
  };
  for (const Row& row : {Row{&J::lowerLimit, &J::setLowerLimit, -1e300, -1.0},
                         Row{&J::upperLimit, &J::setUpperLimit, 1e300, 1.5},
                         Row{&J::maxOutputRate, &J::setMaxOutputRate, 1e300, 3.0},
                         Row{&J::inertia, &J::setInertia, 0.0, 0.1},
                         Row{&J::frictionCoefficient, &J::setFrictionCoefficient, 0.0, 0.2},
                         Row{&J::gearRatio, &J::setGearRatio, 1.0, 40.0},
                         Row{&J::minTorque, &J::setMinTorque, -1e300, -2.0},
                         Row{&J::maxTorque, &J::setMaxTorque, 1e300, 2.5}}) {
    for (J* each : {&changed, &actuator}) (each->*row.set)(7.0);
    EXPECT_EQ((changed.*row.get)(), 7.0);
    EXPECT_EQ((actuator.*row.get)(), row.value);
    EXPECT_EQ((fresh.*row.get)(), row.value) << "a default part does nothing either";
    EXPECT_EQ((full.*row.get)(), row.given);
  }
  actuator.setIsRigid(false);
  EXPECT_TRUE(actuator.isRigid());
  EXPECT_EQ(actuator.effectiveInertia(0.0), 0.0);
  EXPECT_EQ(actuator.mechanicalComponentContainer().outputTorque(3.5, 1.0, active), 3.5);
  EXPECT_EQ(actuator.mechanicalComponentContainer().linearTorque(active), 0.0);
  EXPECT_EQ(actuator, empty);
  EXPECT_EQ(log.text(), "");
  // The converter's limits are the motor's, the output limits the joint's.
  EXPECT_EQ(full.maxOutputTorque(), 100.0);
  EXPECT_EQ(full.minOutputTorque(), -80.0);
}

TEST(JointActuator, DefaultObjectIsASmallGearedMotor) {
  J actuator = J::defaultObject();
  KtMechanicalActuatorComponent expected(0.004, 0.001, 40, -150, 150, 1000, 0.08, 4900, 0);
  expected.setStaticCoulombDamperCoefficient(140.0);
  EXPECT_EQ(*actuator.mechanicalComponentContainer().element(), expected);
  actuator.setMaxTorque(3.0);
  actuator.scaleBy(2.0, 0.5);
  expected.scaleBy(2.0, 0.5);
  EXPECT_EQ(*actuator.mechanicalComponentContainer().element(), expected);
  EXPECT_EQ(actuator.maxTorque(), 24.0);
}

// However a part comes in, it answers for the actuator's joint; so do those of copies.
TEST(JointActuator, PartsKnowTheJoint) {
  DrivenElbow driven;
  KtActuatorState& state = driven.active.actuatorState();
  driven.setMotor(0.0, 2.0);
  state.powerConverterStates()[kJoint].pushBack(4.0);
  KtMechanicalActuatorComponent component;
  component.setFrictionCoefficient(3.0);
  KtDcElectricMotor motor;
  motor.setTorqueConstant(0.5);
  J late, parts;
  late.setMechanicalComponent(component);
  late.setPowerConverter(motor);
  J holders = parts;
  holders.setManipulatorLink(driven.elbow());
  parts = holders;
  parts.setMechanicalComponent(component);
  parts.setPowerConverter(motor);
  holders.setMechanicalPartContainer(late.mechanicalComponentContainer());
  holders.setPowerConverterContainer(late.powerConverterContainer());
  late.setManipulatorLink(driven.elbow());
  const KtLogCapture log;
  for (const J& actuator : {parts, holders, late}) {
    EXPECT_EQ(actuator.mechanicalComponentContainer().linearTorque(driven.active), 6.0);
    EXPECT_EQ(actuator.powerConverterContainer().outputTorque(0.0, state), 2.0);
    EXPECT_EQ(actuator, parts);
  }
  EXPECT_EQ(log.text(), "");
}

}  // namespace
